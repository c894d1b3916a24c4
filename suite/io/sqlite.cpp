// vo_sqlite_*: vok_io's SQLite operations over the engine's own C interface.
#include <sqlite3.h>

#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/codePages.h"
#include "platform/vok_io.h"
#include "suite/io/declaredTypes.h"
#include "suite/io/sqliteConnection.h"

using suiteIo::columnType;
using suiteIo::connectionKind;
using suiteIo::openConnection;
using suiteIo::utf8Of;

namespace {

constexpr int typeColumn = 2;  // of the rows of PRAGMA table_info

struct statementFinalizer {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using preparedStatement = std::unique_ptr<sqlite3_stmt, statementFinalizer>;

// WHY asked: the engine takes a value that it cannot make into text for a lack of memory, as in the schema of a damaged
// database. Statements need little.
bool isMemoryLeft() {
  constexpr int some = 1 << 16;
  void* const memory = sqlite3_malloc(some);
  sqlite3_free(memory);
  return memory != nullptr;
}

// The first statement of a text; null when there is none or it is refused.
// @param rest  when wanted, receives where the text goes on
preparedStatement prepare(sqlite3* connection, const char* sql, const char** rest = nullptr,
                          bool* refused = nullptr) {
  sqlite3_stmt* statement = nullptr;
  const int result = sqlite3_prepare_v2(connection, sql, -1, &statement, rest);
  if (result == SQLITE_NOMEM && !isMemoryLeft()) throw std::bad_alloc();
  if (refused != nullptr) *refused = result != SQLITE_OK;
  return preparedStatement(statement);
}

// A column as text; NULL is empty.
const char* columnText(sqlite3_stmt* statement, int column) {
  const auto* const text =
      static_cast<const char*>(static_cast<const void*>(sqlite3_column_text(statement, column)));
  if (text != nullptr) return text;
  if (sqlite3_errcode(sqlite3_db_handle(statement)) == SQLITE_NOMEM) throw std::bad_alloc();
  return "";
}

// The same with its length, NUL characters included.
std::string_view columnBytes(sqlite3_stmt* statement, int column) {
  const char* const text = columnText(statement, column);
  return {text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

std::wstring decoded(std::string_view bytes) {
  const int length = static_cast<int>(bytes.size());
  if (length == 0) return {};
  const int needed =
      platform::decodeCodePage(platform::utf8CodePage, bytes.data(), length, nullptr, 0);
  std::wstring text(static_cast<std::size_t>(needed), L'\0');
  if (needed > 0)
    platform::decodeCodePage(platform::utf8CodePage, bytes.data(), length, text.data(), needed);
  return text;
}

std::string quoted(const std::string& name) {
  std::string result = "\"";
  for (const char c : name) result.append(c == '"' ? 2 : 1, c);
  return result + '"';
}

// The schemas in which the engine looks for a table that is named without one, in its order.
std::vector<std::string> schemas(sqlite3* connection) {
  std::vector<std::string> names = {"temp"};
  const preparedStatement list = prepare(connection, "PRAGMA database_list");
  while (list && sqlite3_step(list.get()) == SQLITE_ROW)
    if (columnBytes(list.get(), 1) != "temp") names.emplace_back(columnBytes(list.get(), 1));
  return names;
}

// The CREATE statement of a table or view; empty when there is none.
std::string createStatement(sqlite3* connection, const suiteIo::tableInfoCall& call) {
  const auto places =
      call.schema.empty() ? schemas(connection) : std::vector<std::string>{call.schema};
  for (const std::string& schema : places) {
    const std::string sql = "SELECT sql FROM " + quoted(schema) +
                            ".sqlite_master WHERE type IN ('table', 'view') AND name = ?1 COLLATE "
                            "NOCASE";
    const preparedStatement query = prepare(connection, sql.c_str());
    if (!query) continue;
    sqlite3_bind_text(query.get(), 1, call.table.data(), static_cast<int>(call.table.size()),
                      SQLITE_STATIC);
    if (sqlite3_step(query.get()) == SQLITE_ROW) return std::string(columnBytes(query.get(), 0));
  }
  return {};
}

// The types for the rows of a PRAGMA table_info; empty for every other statement.
std::vector<columnType> declaredTypes(sqlite3* connection, const std::string& sql) {
  const auto call = suiteIo::readTableInfoCall(sql);
  if (!call) return {};
  std::vector<columnType> columns;
  const preparedStatement list = prepare(connection, sql.c_str());
  while (list && sqlite3_step(list.get()) == SQLITE_ROW)
    columns.push_back({std::string(columnBytes(list.get(), 1)),
                       std::string(columnBytes(list.get(), typeColumn))});
  return suiteIo::withDeclaredTypes(std::move(columns), createStatement(connection, *call));
}

}  // namespace

struct Ivo_sqlite_db {
  std::wstring path;
  suiteIo::sqliteConnection
      connection;  // none while only reading is wanted: each query has its own then

  // From here on an ordinary connection.
  bool allowChanges() {
    if (!connection) connection = openConnection(path, connectionKind::writing);
    return connection != nullptr;
  }
};

struct Ivo_sqlite_stmt {
  suiteIo::readingConnection reading;  // its own connection, where it has one
  preparedStatement statement;
  std::vector<columnType> declared;  // by row, where the statement is a PRAGMA table_info
  std::size_t rowsSeen = 0;
  bool ended = false;
  bool failed = false;

  // The declared type that stands for a column of the current row; null: the engine's text does.
  const std::string* declaredText(int column) const {
    if (column != typeColumn || ended || rowsSeen == 0 || rowsSeen > declared.size())
      return nullptr;
    return &declared[rowsSeen - 1].type;
  }

  std::string_view bytes(int column) {
    const std::string* const own = declaredText(column);
    return own != nullptr ? std::string_view(*own) : columnBytes(statement.get(), column);
  }
};

Ivo_sqlite_db* vo_sqlite_db_open(const wchar_t* path, int) {
  if (path == nullptr) return nullptr;
  const auto named = suiteIo::databaseOfConnectionString(path);
  auto database = std::make_unique<Ivo_sqlite_db>();
  database->path = named.value_or(path);
  if (named) return suiteIo::readingConnection().open(*named) ? database.release() : nullptr;
  database->connection = openConnection(database->path, connectionKind::creating);
  return database->connection ? database.release() : nullptr;
}

void vo_sqlite_db_close(Ivo_sqlite_db* database) { delete database; }

bool vo_sqlite_db_execute(Ivo_sqlite_db* database, const wchar_t* sql) {
  if (database == nullptr || sql == nullptr || !database->allowChanges()) return false;
  const std::string text = utf8Of(sql);
  const char* rest = text.c_str();
  while (*rest != '\0') {
    bool refused = false;
    const preparedStatement statement = prepare(database->connection.get(), rest, &rest, &refused);
    if (refused) return false;
    if (!statement) continue;  // blanks and comments alone
    int result = SQLITE_ROW;
    while (result == SQLITE_ROW) result = sqlite3_step(statement.get());
    if (result != SQLITE_DONE) return false;
  }
  return true;
}

Ivo_sqlite_stmt* vo_sqlite_db_query_stmt(Ivo_sqlite_db* database, const wchar_t* sql, int) {
  if (database == nullptr || sql == nullptr) return nullptr;
  const std::string text = utf8Of(sql);
  auto query = std::make_unique<Ivo_sqlite_stmt>();
  sqlite3* connection = database->connection.get();
  if (connection == nullptr) {
    if (!query->reading.open(database->path)) return nullptr;
    connection = query->reading.get();
  }
  query->statement = prepare(connection, text.c_str());
  if (query->reading.get() != nullptr && query->statement &&
      sqlite3_stmt_readonly(query->statement.get()) == 0) {
    query->statement.reset();
    query->reading.close();
    if (!database->allowChanges()) return nullptr;
    connection = database->connection.get();
    query->statement = prepare(connection, text.c_str());
  }
  if (!query->statement) return nullptr;
  query->declared = declaredTypes(connection, text);
  return query.release();
}

bool vo_sqlite_stmt_next_row(Ivo_sqlite_stmt* statement) {
  // The engine would run a statement that has ended once more.
  if (statement == nullptr || statement->ended) return false;
  const int result = sqlite3_step(statement->statement.get());
  ++statement->rowsSeen;
  statement->ended = result != SQLITE_ROW;
  statement->failed = statement->ended && result != SQLITE_DONE;
  return !statement->ended;
}

bool vo_sqlite_stmt_has_failed(const Ivo_sqlite_stmt* statement) {
  return statement != nullptr && (statement->failed || statement->reading.isDisturbed());
}

int vo_sqlite_stmt_get_column_count(const Ivo_sqlite_stmt* statement) {
  return statement == nullptr ? 0 : sqlite3_column_count(statement->statement.get());
}

void vo_sqlite_stmt_get_str(Ivo_sqlite_stmt* statement, int column, vo_string_adp* adapter) {
  if (statement == nullptr || adapter == nullptr) return;
  vo_string_adp_feed(adapter, decoded(statement->bytes(column)).c_str());
}

const char* vo_sqlite_stmt_get_utf8(Ivo_sqlite_stmt* statement, int column, size_t* size) {
  if (size != nullptr) *size = 0;
  if (statement == nullptr) return "";
  if (size == nullptr && statement->declaredText(column) == nullptr)
    return columnText(statement->statement.get(), column);
  const std::string_view bytes = statement->bytes(column);
  if (size != nullptr) *size = bytes.size();
  return bytes.data();
}

int vo_sqlite_stmt_get_int(Ivo_sqlite_stmt* statement, int column) {
  return statement == nullptr ? 0 : sqlite3_column_int(statement->statement.get(), column);
}

double vo_sqlite_stmt_get_dbl(Ivo_sqlite_stmt* statement, int column) {
  return statement == nullptr ? 0 : sqlite3_column_double(statement->statement.get(), column);
}

void vo_sqlite_stmt_destroy(Ivo_sqlite_stmt* statement) { delete statement; }

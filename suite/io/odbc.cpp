// vo_odbc_*: vok_io's ODBC operations over the driver manager.
#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/vok_io.h"
#include "suite/io/odbcBlocks.h"
#include "suite/io/odbcHandles.h"
#include "suite/io/odbcSources.h"
#include "suite/io/odbcValues.h"

using suiteIo::allocate;
using suiteIo::bytesOf;
using suiteIo::fromDriver;
using suiteIo::odbcColumn;
using suiteIo::odbcEnvironment;
using suiteIo::odbcHandle;

namespace {

// Columns of the rows that SQLTables gives.
constexpr SQLUSMALLINT tableNameColumn = 3;
constexpr SQLUSMALLINT tableTypeColumn = 4;

#ifdef _WIN32
constexpr const char* managerName = "odbc32";
#else
constexpr const char* managerName = "unixODBC";
#endif

// A connection that is open, or what a failed attempt leaves.
struct connection {
  odbcEnvironment environment = suiteIo::makeEnvironment();
  odbcHandle<SQL_HANDLE_DBC> handle;
  bool open = false;
  std::string message;

  connection() = default;
  connection(const connection&) = delete;
  connection& operator=(const connection&) = delete;
  ~connection() {
    if (open) SQLDisconnect(handle.get());
  }

  // Keeps what is said about a failure. @return whether the call succeeded
  bool check(SQLRETURN result, SQLSMALLINT kind, SQLHANDLE source) {
    if (SQL_SUCCEEDED(result)) return true;
    message = suiteIo::diagnosticsOf(kind, source);
    return false;
  }

  void connect(const char* text) {
    if (environment) handle = allocate<SQL_HANDLE_DBC>(environment.get());
    if (!handle) {
      message = "the driver manager gives no handle";
      return;
    }
    const std::string fitted = suiteIo::fittedConnectionString(
        suiteIo::toDriver(text), suiteIo::listDataSources(environment.get()),
        suiteIo::listDrivers(environment.get()));
    // Drivers may leave the completed string untouched; nothing here looks at it.
    std::array<SQLCHAR, 1024> completed = {};
    SQLSMALLINT length = 0;
    const SQLRETURN result =
        SQLDriverConnect(handle.get(), nullptr, bytesOf(fitted), SQL_NTS, completed.data(),
                         static_cast<SQLSMALLINT>(completed.size()), &length, SQL_DRIVER_NOPROMPT);
    open = check(result, SQL_HANDLE_DBC, handle.get());
  }

  // What the driver calls the database program; empty when it does not tell.
  std::string databaseProgram() const {
    std::array<char, 256> name = {};
    SQLSMALLINT length = 0;
    SQLGetInfo(handle.get(), SQL_DBMS_NAME, name.data(), static_cast<SQLSMALLINT>(name.size() - 1),
               &length);
    return name.data();
  }
};

bool endsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// Drivers may ignore the types that were asked for, so each entry is looked at. mdbtools calls some of Access'
// own tables ordinary ones, and lists saved queries, which it cannot read.
bool isWanted(std::string_view name, std::string_view type, bool sheets, bool byMdbtools) {
  if (type == "SYSTEM TABLE") return sheets && (endsWith(name, "$") || endsWith(name, "$'"));
  if (type == "VIEW") return !byMdbtools;
  return type == "TABLE" && !(byMdbtools && name.substr(0, 4) == "MSys");
}

void addEntries(vo_strings* list, const std::vector<suiteIo::odbcEntry>& entries) {
  for (const suiteIo::odbcEntry& entry : entries)
    vo_strings_add(list, fromDriver(entry.name).c_str());
}

}  // namespace

struct Ivo_odbc_connect {
  std::shared_ptr<connection> current = std::make_shared<connection>();
};

struct Ivo_odbc_field {
  Ivo_odbc_stmt* statement;
  SQLUSMALLINT number;  // from 1
  SQLSMALLINT type;
  std::string name;
  std::string value;
};

struct Ivo_odbc_fields {
  std::vector<Ivo_odbc_field> columns;
};

struct Ivo_odbc_stmt {
  std::shared_ptr<connection> base;  // before the handle, as are the blocks: it is freed first
  suiteIo::odbcBlocks blocks;
  odbcHandle<SQL_HANDLE_STMT> handle;
  std::string sql;
  std::vector<odbcColumn> described;
  Ivo_odbc_fields fields;
  suiteIo::odbcValues values;
  std::size_t columnsRead = 0;  // of the current row
  bool fresh = false;           // has run, and no row has been asked for
  bool onRow = false;
  bool ended = true;  // nothing more can be fetched
  bool failed = false;

  bool check(SQLRETURN result) { return base->check(result, SQL_HANDLE_STMT, handle.get()); }

  bool makeHandle() {
    handle.reset();  // first: some drivers have room for one alone
    blocks.stop();
    handle = allocate<SQL_HANDLE_STMT>(base->handle.get());
    return base->check(handle ? SQL_SUCCESS : SQL_ERROR, SQL_HANDLE_DBC, base->handle.get());
  }

  // A statement that changes rows, and found none, has run too.
  bool run(bool& hasRows) {
    const SQLRETURN result = SQLExecDirect(handle.get(), bytesOf(sql), SQL_NTS);
    hasRows = SQL_SUCCEEDED(result);
    return result == SQL_NO_DATA || check(result);
  }

  bool describe(std::vector<odbcColumn>& columns) {
    columns.clear();
    SQLSMALLINT count = 0;
    bool succeeded = check(SQLNumResultCols(handle.get(), &count));
    for (int number = 1; succeeded && number <= count; ++number)
      succeeded = describe(static_cast<SQLUSMALLINT>(number), columns.emplace_back());
    if (!succeeded) columns.clear();
    return succeeded;
  }

  bool describe(SQLUSMALLINT number, odbcColumn& column) {
    std::vector<SQLCHAR> name(256);
    while (true) {
      SQLSMALLINT length = 0;
      SQLSMALLINT decimals = 0;
      SQLSMALLINT nullable = 0;
      const SQLRETURN result =
          SQLDescribeCol(handle.get(), number, name.data(), static_cast<SQLSMALLINT>(name.size()),
                         &length, &column.type, &column.size, &decimals, &nullable);
      if (!check(result)) return false;
      // A driver that does not tell it ends the name with a NUL all the same.
      if (length < 0)
        length = static_cast<SQLSMALLINT>(std::find(name.begin(), name.end() - 1, SQLCHAR{0}) -
                                          name.begin());
      const auto nameLength = static_cast<std::size_t>(length);
      if (nameLength >= name.size()) {
        name.assign(nameLength + 1, 0);
        continue;
      }
      column.name = fromDriver(std::string(name.begin(), name.begin() + length));
      return true;
    }
  }

  // Blocks may make a second run necessary, which must change nothing.
  bool mayRunTwice() const {
    constexpr std::string_view select = "select ";
    return std::string_view(sql).substr(0, select.size()) == select &&
           sql.find(';') == std::string::npos;
  }

  bool nextRow() {
    if (fresh && mayRunTwice()) blocks.begin(handle.get(), described);
    fresh = false;
    if (blocks.inUse()) {
      const auto step = blocks.next(handle.get());
      if (step != suiteIo::odbcBlocks::step::unsound) return step == suiteIo::odbcBlocks::step::row;
      failed = !runToTheSameRow();
      if (failed) return false;
    }
    const SQLRETURN result = SQLFetch(handle.get());
    failed = result != SQL_NO_DATA && !check(result);
    return SQL_SUCCEEDED(result);
  }

  // Runs the SQL again, to go on one row at a time behind those that the blocks have given.
  bool runToTheSameRow() {
    const suiteIo::rowsGiven before = blocks.given();
    bool hasRows = false;
    std::vector<odbcColumn> columns;
    if (!makeHandle() || !run(hasRows) || !describe(columns)) return false;
    suiteIo::rowsGiven now;
    std::string value;
    SQLRETURN result = SQL_SUCCESS;
    while (now.rows() < before.rows() && SQL_SUCCEEDED(result = SQLFetch(handle.get()))) {
      for (const Ivo_odbc_field& field : fields.columns) {
        if (!check(values.readRaw(handle.get(), field.number, field.type, value) ? SQL_SUCCESS
                                                                                 : SQL_ERROR))
          return false;
        now.addValue(value);
      }
      now.endRow();
    }
    if (result != SQL_NO_DATA && !check(result)) return false;
    if (now == before && columns == described) return true;
    base->message = "the table has changed while it was read";
    return false;
  }

  // Many drivers give the values of a row in their order only, and each once.
  void readUpTo(SQLUSMALLINT number) {
    while (onRow && columnsRead < number) {
      Ivo_odbc_field& field = fields.columns[columnsRead];
      if (blocks.inUse()) {
        field.value = fromDriver(blocks.value(columnsRead++));
        continue;
      }
      ++columnsRead;
      if (values.read(handle.get(), field.number, field.type, field.value)) continue;
      base->message = suiteIo::diagnosticsOf(SQL_HANDLE_STMT, handle.get());
      failed = ended = true;
      onRow = false;
    }
  }
};

void vo_odbc_get_data_sources(vo_strings* list) {
  addEntries(list, suiteIo::listDataSources(suiteIo::makeEnvironment().get()));
}

void vo_odbc_get_drivers(vo_strings* list) {
  addEntries(list, suiteIo::listDrivers(suiteIo::makeEnvironment().get()));
}

void vo_odbc_get_manager(vo_strings* list) {
  const odbcEnvironment environment = suiteIo::makeEnvironment();
  if (!environment) return;
  const auto handle = allocate<SQL_HANDLE_DBC>(environment.get());
  if (!handle) return;
  std::array<char, 64> version = {};
  SQLSMALLINT length = 0;
  SQLGetInfo(handle.get(), SQL_ODBC_VER, version.data(),
             static_cast<SQLSMALLINT>(version.size() - 1), &length);
  std::string text = managerName;
  if (version[0] != '\0') text.append(" ").append(version.data());
  vo_strings_add(list, text.c_str());
}

Ivo_odbc_connect* vo_odbc_connect_create(void) { return new Ivo_odbc_connect; }

bool vo_odbc_connect_open_driver(Ivo_odbc_connect* connection, void*, const char* text) {
  if (connection == nullptr) return false;
  connection->current = std::make_shared<struct connection>();
  connection->current->connect(text == nullptr ? "" : text);
  return connection->current->open;
}

const char* vo_odbc_connect_get_message(const Ivo_odbc_connect* connection) {
  return connection == nullptr ? "" : connection->current->message.c_str();
}

void vo_odbc_connect_get_tables(Ivo_odbc_connect* connection, vo_strings* list, bool sheets) {
  if (connection == nullptr || !connection->current->open) return;
  struct connection& base = *connection->current;
  const auto statement = allocate<SQL_HANDLE_STMT>(base.handle.get());
  if (!base.check(statement ? SQL_SUCCESS : SQL_ERROR, SQL_HANDLE_DBC, base.handle.get())) return;
  const std::string types = sheets ? "TABLE,VIEW,SYSTEM TABLE" : "TABLE,VIEW";
  const SQLRETURN result = SQLTables(statement.get(), nullptr, 0, nullptr, 0, nullptr, 0,
                                     bytesOf(types), static_cast<SQLSMALLINT>(types.size()));
  if (!base.check(result, SQL_HANDLE_STMT, statement.get())) return;
  const bool byMdbtools = base.databaseProgram() == "MDBTOOLS";
  suiteIo::odbcValues values;
  std::string name;
  std::string type;
  while (true) {
    const SQLRETURN fetched = SQLFetch(statement.get());
    if (fetched == SQL_NO_DATA) return;
    const bool isRead = SQL_SUCCEEDED(fetched) &&
                        values.read(statement.get(), tableNameColumn, SQL_VARCHAR, name) &&
                        values.read(statement.get(), tableTypeColumn, SQL_VARCHAR, type);
    if (!base.check(isRead ? SQL_SUCCESS : SQL_ERROR, SQL_HANDLE_STMT, statement.get())) return;
    if (isWanted(name, type, sheets, byMdbtools)) vo_strings_add(list, name.c_str());
  }
}

Ivo_odbc_stmt* vo_odbc_connect_create_stmt(Ivo_odbc_connect* connection) {
  if (connection == nullptr || !connection->current->open) return nullptr;
  auto statement = std::make_unique<Ivo_odbc_stmt>();
  statement->base = connection->current;
  return statement->makeHandle() ? statement.release() : nullptr;
}

void vo_odbc_connect_destroy_stmt(Ivo_odbc_connect*, Ivo_odbc_stmt* statement) { delete statement; }

void vo_odbc_connect_destroy(Ivo_odbc_connect* connection) { delete connection; }

void vo_odbc_stmt_set_sql(Ivo_odbc_stmt* statement, const char* sql) {
  if (statement != nullptr) statement->sql = suiteIo::toDriver(sql == nullptr ? "" : sql);
}

bool vo_odbc_stmt_exec_direct(Ivo_odbc_stmt* statement) {
  if (statement == nullptr) return false;
  statement->described.clear();
  statement->fields.columns.clear();
  statement->fresh = statement->onRow = statement->failed = false;
  statement->ended = true;
  if (statement->blocks.inUse()) {
    if (!statement->makeHandle()) return false;
  } else {
    SQLFreeStmt(statement->handle.get(), SQL_CLOSE);
  }
  bool hasRows = false;
  const bool hasRun = statement->run(hasRows);
  statement->fresh = hasRows;
  statement->ended = !hasRows;
  return hasRun;
}

bool vo_odbc_stmt_get_fields_desc(Ivo_odbc_stmt* statement) {
  if (statement == nullptr) return false;
  statement->fields.columns.clear();
  const bool isDescribed = statement->describe(statement->described);
  SQLUSMALLINT number = 0;
  for (const odbcColumn& column : statement->described)
    statement->fields.columns.push_back({statement, ++number, column.type, column.name, {}});
  return isDescribed;
}

Ivo_odbc_fields* vo_odbc_stmt_get_fields(Ivo_odbc_stmt* statement) {
  return statement == nullptr ? nullptr : &statement->fields;
}

uint32_t vo_odbc_fields_get_size(const Ivo_odbc_fields* fields) {
  return fields == nullptr ? 0 : static_cast<uint32_t>(fields->columns.size());
}

Ivo_odbc_field* vo_odbc_fields_get_field(Ivo_odbc_fields* fields, uint32_t index) {
  return index < vo_odbc_fields_get_size(fields) ? &fields->columns[index] : nullptr;
}

const char* vo_odbc_field_get_name(const Ivo_odbc_field* field) {
  return field == nullptr ? nullptr : field->name.c_str();
}

int16_t vo_odbc_field_get_type(const Ivo_odbc_field* field) {
  return field == nullptr ? int16_t{0} : field->type;
}

bool vo_odbc_stmt_fetch(Ivo_odbc_stmt* statement) {
  if (statement == nullptr || statement->ended) return false;
  statement->columnsRead = 0;
  statement->onRow = statement->nextRow();
  statement->ended = !statement->onRow;
  return statement->onRow;
}

const char* vo_odbc_field_get_as_string(Ivo_odbc_field* field) {
  if (field == nullptr) return "";
  field->statement->readUpTo(field->number);
  return field->statement->onRow ? field->value.c_str() : "";
}

bool vo_odbc_stmt_has_failed(const Ivo_odbc_stmt* statement) {
  return statement != nullptr && statement->failed;
}

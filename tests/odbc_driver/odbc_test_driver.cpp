// An ODBC driver for tests, loaded by the real driver manager: it serves the tables that a script holds and
// fails any call on demand. The "database" is the script itself, lines of values separated by TAB:
//
//     table    NAME  TYPE              a table; `fields` and `row` lines belong to the one before them
//     fields   NAME:TYPE ...           columns with their SQL types as numbers
//     row      VALUE ...               \N is NULL; *3*ab is ababab
//     broken                           a row that cannot be fetched, ever
//     fail     CALL  N                 the N-th such call on this file fails
//     password                         nobody gets in
//     program  NAME                    what SQL_DBMS_NAME answers
//     no_total                         the length of a value that is cut is not told
//     sizes    SIZE ...                the columns' sizes as they are described, right or wrong; else 0
//     blocks   HOW                     rows are given in blocks: `well`, or as one of the ways below
//     changes  WHAT                    from its second run on a statement finds other `values`, `columns`, `types` or
//                                      `sizes`, or fewer `rows`
//     values   HOW                     how values that are asked for are given: see below
//     messages N                       of each problem there are so many messages, all but the first without a state
//     nameless                         the lengths of names are told as -1
//
// Ways of giving blocks: `halved` takes half of the rows that are asked for, `doubled` takes twice as many, `untold` takes them
// and does not tell the number when asked, `no_state` refuses the place for states. `uncounted` leaves the count
// of rows unwritten, `unstated` the states, `unmeasured` the lengths; `short_lengths` writes 32 bits of them.
// `warns` says that something is odd with each block, `all_or_nothing` gives no row of a block with a broken one.
// `overcounted` tells more rows than were asked for, `untotalled` no length of values, `ends_early` gives the rows of
// the last block and says the end.
//
// Ways of giving values: `untold` tells no length of what is whole; `endless` calls what is whole cut, too, until it
// is asked for more; `unended` puts no NUL behind a piece that is cut; `none` has no value of text for anything.
// A statement that deletes finds nothing to delete.
//
// Every call is a line in the file FILE.log: connect, disconnect, statement, "free statement", execute,
// columns, describe, fetch, get, tables, bind, block. Tests count them there, and so does `fail`, over all connections.
// Values must be asked for in the order of their columns, as strict drivers want it. A value of type -2, -3 or -4
// (pictures) is given as bytes alone. A data source whose name holds "Refusing" refuses every file.
//
// Under Wine this is a driver of the system below, and finds its files where Wine keeps the drives.
#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace {

using textRow = std::vector<std::string>;
using valueRow = std::vector<std::optional<std::string>>;

struct column {
  std::string name;
  SQLSMALLINT type;
  SQLULEN size;
};

struct table {
  std::string name;
  std::string type;
  std::vector<column> columns;
  std::vector<valueRow> rows;
};

struct script {
  std::vector<table> tables;
  std::map<std::string, std::vector<int>> failures;
  std::string program = "TEST";
  bool locked = false;
  bool noTotal = false;
  std::string blocks;
  std::string changes;
  std::string values;
  int messages = 1;
  bool nameless = false;
};

// A column that is bound.
struct place {
  char* text = nullptr;
  SQLLEN room = 0;
  SQLLEN* lengths = nullptr;
};

struct diagnosed {
  std::string problem;
  int messages = 1;
  SQLRETURN fail(const std::string& text) {
    problem = text;
    return SQL_ERROR;
  }
};

struct connection : diagnosed {
  std::string log;
  script content;

  int count(const std::string& call) const {
    std::ifstream file(log);
    int calls = 0;
    for (std::string line; std::getline(file, line);) calls += line == call ? 1 : 0;
    return calls;
  }
  // @return whether this call may go on
  bool enter(const std::string& call) const {
    if (log.empty()) return true;
    std::ofstream(log, std::ios::app) << call << '\n';
    const auto numbers = content.failures.find(call);
    if (numbers == content.failures.end()) return true;
    const int calls = count(call);
    return std::find(numbers->second.begin(), numbers->second.end(), calls) ==
           numbers->second.end();
  }
};

struct statement : diagnosed {
  connection* base = nullptr;
  table result;
  std::size_t nextRow = 0;
  std::size_t lastColumn = 0;
  std::size_t offset = 0;
  SQLULEN rowsOfBlock = 1;
  SQLULEN* fetched = nullptr;
  SQLUSMALLINT* states = nullptr;
  std::map<SQLUSMALLINT, place> places;

  void show(const table& rows) {
    result = rows;
    nextRow = lastColumn = offset = 0;
  }
};

textRow split(const std::string& line, char separator) {
  textRow parts;
  std::istringstream stream(line);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  if (!line.empty() && line.back() == separator) parts.emplace_back();
  return parts;
}

std::optional<std::string> valueOf(const std::string& text) {
  if (text == "\\N") return std::nullopt;
  const std::size_t star = text.empty() || text[0] != '*' ? std::string::npos : text.find('*', 1);
  if (star == std::string::npos) return text;
  std::string value;
  for (int i = std::stoi(text.substr(1)); i > 0; --i) value += text.substr(star + 1);
  return value;
}

void take(script& content, const textRow& words) {
  const std::string& what = words[0];
  const textRow rest(words.begin() + 1, words.end());
  if (what == "table") content.tables.push_back({rest.at(0), rest.at(1), {}, {}});
  if (what == "fail") content.failures[rest.at(0)].push_back(std::stoi(rest.at(1)));
  if (what == "program") content.program = rest.at(0);
  content.locked = content.locked || what == "password";
  content.noTotal = content.noTotal || what == "no_total";
  if (what == "changes") content.changes = rest.at(0);
  if (what == "broken") content.tables.back().rows.emplace_back();
  if (what == "blocks") content.blocks = rest.at(0);
  if (what == "values") content.values = rest.at(0);
  if (what == "messages") content.messages = std::stoi(rest.at(0));
  content.nameless = content.nameless || what == "nameless";
  if (what == "sizes")
    for (std::size_t i = 0; i < rest.size(); ++i)
      content.tables.back().columns.at(i).size = std::stoul(rest[i]);
  if (what == "fields")
    for (const std::string& field : rest) {
      const std::size_t colon = field.rfind(':');
      content.tables.back().columns.push_back(
          {field.substr(0, colon), static_cast<SQLSMALLINT>(std::stoi(field.substr(colon + 1))),
           0});
    }
  if (what != "row") return;
  valueRow row;
  std::transform(rest.begin(), rest.end(), std::back_inserter(row), valueOf);
  row.resize(content.tables.back().columns.size());
  content.tables.back().rows.push_back(row);
}

bool load(const std::string& path, script& content) {
  std::ifstream file(path);
  if (!file) return false;
  for (std::string line; std::getline(file, line);)
    if (!line.empty()) take(content, split(line, '\t'));
  return true;
}

std::string keyOf(const std::string& connectionString, const std::string& key) {
  for (const std::string& part : split(connectionString, ';'))
    if (part.rfind(key + "=", 0) == 0) return part.substr(key.size() + 1);
  return {};
}

std::string nativePath(std::string path) {
  std::replace(path.begin(), path.end(), '\\', '/');
  const char* const prefix = std::getenv("WINEPREFIX");
  if (prefix == nullptr || path.size() < 2 || path[1] != ':') return path;
  path[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(path[0])));
  return std::string(prefix) + "/dosdevices/" + path;
}

void put(const std::string& text, SQLCHAR* to, SQLSMALLINT room, SQLSMALLINT* length) {
  if (length != nullptr) *length = static_cast<SQLSMALLINT>(text.size());
  if (to == nullptr || room <= 0) return;
  const std::size_t size = std::min(text.size(), static_cast<std::size_t>(room) - 1);
  std::memcpy(to, text.data(), size);
  to[size] = 0;
}

std::string textOf(const SQLCHAR* text, SQLINTEGER length) {
  const auto* const bytes = static_cast<const char*>(static_cast<const void*>(text));
  return length == SQL_NTS ? std::string(bytes)
                           : std::string(bytes, static_cast<std::size_t>(length));
}

// One value into its place. @return false when it had to be cut
bool putBound(const place& to, std::size_t row, const std::optional<std::string>& value,
              const std::string& way) {
  char* const text = to.text + row * static_cast<std::size_t>(to.room);
  const std::size_t length = value ? value->size() : 0;
  const std::size_t size = std::min(length, static_cast<std::size_t>(to.room) - 1);
  if (value) std::memcpy(text, value->data(), size);
  text[size] = '\0';
  SQLLEN told = value ? static_cast<SQLLEN>(length) : SQLLEN{SQL_NULL_DATA};
  if (value && way == "untotalled") told = SQL_NO_TOTAL;
  if (way == "short_lengths") std::memcpy(&to.lengths[row], &told, 4);
  if (way != "short_lengths" && way != "unmeasured") to.lengths[row] = told;
  return size == length;
}

SQLRETURN fetchBlock(statement& one) {
  const std::string& way = one.base->content.blocks;
  if (!one.base->enter("block")) return one.fail("no block this time");
  bool isWhole = true;
  SQLULEN row = 0;
  for (; row < one.rowsOfBlock && one.nextRow < one.result.rows.size(); ++row) {
    const valueRow& values = one.result.rows[one.nextRow++];
    if (values.empty() && (row == 0 || way == "all_or_nothing")) return one.fail("a broken row");
    if (way != "unstated") one.states[row] = values.empty() ? SQL_ROW_ERROR : SQL_ROW_SUCCESS;
    isWhole = isWhole && !values.empty();
    for (const auto& [number, to] : one.places)
      if (!values.empty()) isWhole = putBound(to, row, values.at(number - 1U), way) && isWhole;
  }
  if (way != "uncounted") *one.fetched = way == "overcounted" ? 2 * one.rowsOfBlock : row;
  const bool saysTheEnd = way == "ends_early" && one.nextRow == one.result.rows.size();
  if (row == 0 || saysTheEnd) return SQL_NO_DATA;
  return isWhole && way != "warns" ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

connection* asConnection(SQLHANDLE handle) { return static_cast<connection*>(handle); }
statement* asStatement(SQLHANDLE handle) { return static_cast<statement*>(handle); }

}  // namespace

extern "C" {

SQLRETURN SQL_API SQLAllocHandle(SQLSMALLINT kind, SQLHANDLE parent, SQLHANDLE* handle) {
  if (kind == SQL_HANDLE_ENV) *handle = new diagnosed;
  if (kind == SQL_HANDLE_DBC) *handle = new connection;
  if (kind != SQL_HANDLE_STMT) return SQL_SUCCESS;
  connection* const base = asConnection(parent);
  if (!base->enter("statement")) {
    base->enter("free statement");  // nothing is left to be freed
    return base->fail("no statement this time");
  }
  auto* const made = new statement;
  made->base = base;
  made->messages = base->content.messages;
  *handle = made;
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLFreeHandle(SQLSMALLINT kind, SQLHANDLE handle) {
  if (kind == SQL_HANDLE_ENV) delete static_cast<diagnosed*>(handle);
  if (kind == SQL_HANDLE_DBC) delete asConnection(handle);
  if (kind == SQL_HANDLE_STMT) {
    asStatement(handle)->base->enter("free statement");
    delete asStatement(handle);
  }
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLSetEnvAttr(SQLHENV, SQLINTEGER, SQLPOINTER, SQLINTEGER) { return SQL_SUCCESS; }

SQLRETURN SQL_API SQLDriverConnect(SQLHDBC handle, SQLHWND, SQLCHAR* text, SQLSMALLINT length,
                                   SQLCHAR* completed, SQLSMALLINT room, SQLSMALLINT* needed,
                                   SQLUSMALLINT) {
  connection& base = *asConnection(handle);
  const std::string given = textOf(text, length);
  put(given, completed, room, needed);
  if (keyOf(given, "DSN").find("Refusing") != std::string::npos)
    return base.fail("this data source refuses every file");
  const std::string path = nativePath(keyOf(given, "DefaultDir") + keyOf(given, "DBQ"));
  if (!load(path, base.content)) return base.fail("there is no file " + path);
  base.log = path + ".log";
  const bool entered = base.enter("connect");
  if (entered && !base.content.locked) return SQL_SUCCESS;
  // The driver manager gives up a connection that failed without a word.
  base.enter("disconnect");
  return base.fail(base.content.locked ? "not a valid password" : "no connection this time");
}

SQLRETURN SQL_API SQLDisconnect(SQLHDBC handle) {
  asConnection(handle)->enter("disconnect");
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLGetInfo(SQLHDBC handle, SQLUSMALLINT what, SQLPOINTER value, SQLSMALLINT room,
                             SQLSMALLINT* length) {
  auto* const to = static_cast<SQLCHAR*>(value);
  if (what == SQL_DRIVER_ODBC_VER) return put("03.00", to, room, length), SQL_SUCCESS;
  if (what != SQL_DBMS_NAME) return SQL_ERROR;
  return put(asConnection(handle)->content.program, to, room, length), SQL_SUCCESS;
}

SQLRETURN SQL_API SQLExecDirect(SQLHSTMT handle, SQLCHAR* text, SQLINTEGER length) {
  statement& one = *asStatement(handle);
  if (!one.base->enter("execute")) return one.fail("not executed this time");
  const std::string sql = textOf(text, length);
  if (sql.rfind("delete ", 0) == 0) return SQL_NO_DATA;
  for (const table& each : one.base->content.tables) {
    if (sql != "select * from [" + each.name + "]") continue;
    one.show(each);
    const std::string& changes = one.base->content.changes;
    if (changes.empty() || one.base->count("execute") == 1) return SQL_SUCCESS;
    if (changes == "values") one.result.rows.at(0).at(0) = "changed";
    if (changes == "columns") one.result.columns.at(0).name = "changed";
    if (changes == "types") one.result.columns.at(0).type = SQL_DOUBLE;
    if (changes == "sizes") one.result.columns.at(0).size += 1;
    if (changes == "rows") one.result.rows.resize(10);
    return SQL_SUCCESS;
  }
  return one.fail("there is no table for: " + sql);
}

SQLRETURN SQL_API SQLTables(SQLHSTMT handle, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR*,
                            SQLSMALLINT, SQLCHAR*, SQLSMALLINT) {
  statement& one = *asStatement(handle);
  if (!one.base->enter("tables")) return one.fail("no tables this time");
  table list;
  for (const char* const name : {"CAT", "SCHEM", "NAME", "TYPE", "REMARKS"})
    list.columns.push_back({name, SQL_VARCHAR, 0});
  // Which types are asked for is not heeded, as with other drivers.
  for (const table& each : one.base->content.tables)
    list.rows.push_back({std::nullopt, std::nullopt, each.name, each.type, std::nullopt});
  one.show(list);
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLNumResultCols(SQLHSTMT handle, SQLSMALLINT* count) {
  statement& one = *asStatement(handle);
  if (!one.base->enter("columns")) return one.fail("no columns this time");
  *count = static_cast<SQLSMALLINT>(one.result.columns.size());
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLDescribeCol(SQLHSTMT handle, SQLUSMALLINT number, SQLCHAR* name,
                                 SQLSMALLINT room, SQLSMALLINT* length, SQLSMALLINT* type,
                                 SQLULEN* size, SQLSMALLINT* decimals, SQLSMALLINT* nullable) {
  statement& one = *asStatement(handle);
  if (!one.base->enter("describe")) return one.fail("not described this time");
  const column& described = one.result.columns.at(number - 1U);
  put(described.name, name, room, length);
  if (one.base->content.nameless) *length = -1;
  *type = described.type;
  *size = described.size;
  *decimals = 0;
  *nullable = SQL_NULLABLE;
  return described.name.size() < static_cast<std::size_t>(room) ? SQL_SUCCESS
                                                                : SQL_SUCCESS_WITH_INFO;
}

SQLRETURN SQL_API SQLFetch(SQLHSTMT handle) {
  statement& one = *asStatement(handle);
  if (one.fetched != nullptr) return fetchBlock(one);
  if (!one.base->enter("fetch")) return one.fail("no row this time");
  if (one.nextRow >= one.result.rows.size()) return SQL_NO_DATA;
  if (one.result.rows[one.nextRow].empty()) return one.fail("a broken row");
  ++one.nextRow;
  one.lastColumn = one.offset = 0;
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLSetStmtAttr(SQLHSTMT handle, SQLINTEGER what, SQLPOINTER value, SQLINTEGER) {
  statement& one = *asStatement(handle);
  const std::string& way = one.base->content.blocks;
  if (way.empty()) return one.fail("rows come one at a time");
  if (what == SQL_ATTR_ROW_ARRAY_SIZE) {
    one.rowsOfBlock = static_cast<SQLULEN>(reinterpret_cast<std::uintptr_t>(value));
    if (way == "halved") one.rowsOfBlock /= 2;
    if (way == "doubled") one.rowsOfBlock *= 2;
    return SQL_SUCCESS;
  }
  if (what == SQL_ATTR_ROWS_FETCHED_PTR)
    return one.fetched = static_cast<SQLULEN*>(value), SQL_SUCCESS;
  if (what != SQL_ATTR_ROW_STATUS_PTR || way == "no_state") return one.fail("no such attribute");
  return one.states = static_cast<SQLUSMALLINT*>(value), SQL_SUCCESS;
}

SQLRETURN SQL_API SQLGetStmtAttr(SQLHSTMT handle, SQLINTEGER what, SQLPOINTER value, SQLINTEGER,
                                 SQLINTEGER*) {
  statement& one = *asStatement(handle);
  const std::string& way = one.base->content.blocks;
  if (way.empty() || way == "untold" || what != SQL_ATTR_ROW_ARRAY_SIZE)
    return one.fail("no such attribute");
  return *static_cast<SQLULEN*>(value) = one.rowsOfBlock, SQL_SUCCESS;
}

SQLRETURN SQL_API SQLBindCol(SQLHSTMT handle, SQLUSMALLINT number, SQLSMALLINT, SQLPOINTER text,
                             SQLLEN room, SQLLEN* lengths) {
  statement& one = *asStatement(handle);
  if (!one.base->enter("bind")) return one.fail("not bound this time");
  one.places[number] = {static_cast<char*>(text), room, lengths};
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLGetData(SQLHSTMT handle, SQLUSMALLINT number, SQLSMALLINT type,
                             SQLPOINTER value, SQLLEN room, SQLLEN* length) {
  statement& one = *asStatement(handle);
  if (!one.base->enter("get")) return one.fail("no value this time");
  if (number < one.lastColumn) return one.fail("values must be asked for in order");
  if (number > one.lastColumn) one.offset = 0;
  one.lastColumn = number;
  const std::optional<std::string>& whole = one.result.rows[one.nextRow - 1].at(number - 1U);
  const SQLSMALLINT kind = one.result.columns[number - 1U].type;
  const bool isPicture = kind >= SQL_LONGVARBINARY && kind <= SQL_BINARY;
  const std::string& way = one.base->content.values;
  if (type == SQL_C_CHAR && (isPicture || way == "none")) return SQL_NO_DATA;
  if (!whole) return *length = SQL_NULL_DATA, SQL_SUCCESS;
  if (one.offset > whole->size()) return SQL_NO_DATA;
  const std::size_t left = whole->size() - one.offset;
  const bool ends = type == SQL_C_CHAR;
  const std::size_t size = std::min(left, static_cast<std::size_t>(room) - (ends ? 1 : 0));
  std::memcpy(value, whole->data() + one.offset, size);
  const bool cut = size < left;
  if (ends) static_cast<char*>(value)[size] = cut && way == "unended" ? '?' : '\0';
  const bool isUntold = cut ? one.base->content.noTotal : way == "untold" || way == "endless";
  *length = isUntold ? SQLLEN{SQL_NO_TOTAL} : static_cast<SQLLEN>(left);
  one.offset += cut ? size : left + 1;
  return cut || way == "endless" ? SQL_SUCCESS_WITH_INFO : SQL_SUCCESS;
}

SQLRETURN SQL_API SQLFreeStmt(SQLHSTMT handle, SQLUSMALLINT option) {
  if (option == SQL_CLOSE) asStatement(handle)->show({});
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLGetDiagRec(SQLSMALLINT, SQLHANDLE handle, SQLSMALLINT record, SQLCHAR* state,
                                SQLINTEGER* native, SQLCHAR* text, SQLSMALLINT room,
                                SQLSMALLINT* length) {
  const auto& source = *static_cast<diagnosed*>(handle);
  if (record > source.messages || source.problem.empty()) return SQL_NO_DATA;
  if (state != nullptr) std::memcpy(state, record == 1 ? "HY000" : "     ", 6);
  if (native != nullptr) *native = 1;
  put(record == 1 ? source.problem : "more " + std::to_string(record), text, room, length);
  return SQL_SUCCESS;
}

// unixODBC asks SQLGetDiagRec only of drivers that have this too.
SQLRETURN SQL_API SQLGetDiagField(SQLSMALLINT, SQLHANDLE, SQLSMALLINT, SQLSMALLINT, SQLPOINTER,
                                  SQLSMALLINT, SQLSMALLINT*) {
  return SQL_NO_DATA;
}

}  // extern "C"

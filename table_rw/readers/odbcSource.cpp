#include "table_rw/readers/odbcSource.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "platform/files.h"
#include "platform/vok_basic.h"
#include "table_rw/text/textConversion.h"

namespace tableRW {
namespace {

struct stringsCloser {
  void operator()(vo_strings* list) const { vo_strings_destroy(list); }
};
using ownedStrings = std::unique_ptr<vo_strings, stringsCloser>;

// The SQL types that are numbers: TINYINT -6, BIGINT -5, NUMERIC 2, DECIMAL 3, INTEGER 4, SMALLINT 5, FLOAT 6,
// REAL 7, DOUBLE 8.
bool isNumeric(std::int16_t sqlType) {
  return (sqlType >= 2 && sqlType <= 8) || sqlType == -6 || sqlType == -5;
}

// FORMAT: bytes 4 to 18 of an Access database are `Standard Jet DB` or `Standard ACE DB`, byte 20 is its version; it
// consists of pages of 2048 bytes in version 0, of 4096 later.
// WHY asked: mdbtools takes what is missing for the end of a table.
bool isCutDatabase(const std::wstring& path) {
  constexpr std::size_t versionAt = 20;
  constexpr std::size_t nameAt = 4;
  constexpr std::size_t nameSize = 15;
  platform::binaryFile file;
  std::array<char, versionAt + 1> begin = {};
  if (!file.openForReading(path) || file.read(begin.data(), begin.size()) != begin.size())
    return false;
  const std::string_view name(&begin[nameAt], nameSize);
  if (name != "Standard Jet DB" && name != "Standard ACE DB") return false;
  const unsigned pageSize = begin[versionAt] == '\0' ? 2048 : 4096;
  return file.size() % pageSize != 0;
}

}  // namespace

std::wstring fromSystem(const char* text) {
  if (text == nullptr) return {};
  return decodeText(text, static_cast<std::int32_t>(std::strlen(text)), encodingSystem);
}

std::string toSystem(const std::wstring& text) {
  return encodeText(text.data(), static_cast<std::int32_t>(text.size()), encodingSystem);
}

std::vector<std::string> odbcDataSources() {
  const ownedStrings list(vo_strings_create());
  vo_odbc_get_data_sources(list.get());
  std::vector<std::string> names;
  for (std::size_t i = 0; i < vo_strings_get_size(list.get()); ++i)
    names.emplace_back(vo_strings_get_str(list.get(), i));
  return names;
}

odbcSource::odbcSource()
    : connection_(vo_odbc_connect_create()),
      statement_(nullptr, statementCloser{connection_.get()}) {}

bool odbcSource::connect(const std::string& connectionString, const std::wstring& path) {
  constexpr std::wstring_view separators(L";\0", 2);
  if (path.find_first_of(separators) != std::wstring::npos ||
      fromSystem(toSystem(path).c_str()) != path || platform::isPipeOrDevice(path) ||
      isCutDatabase(path))
    return false;
  return vo_odbc_connect_open_driver(connection_.get(), nullptr, connectionString.c_str());
}

void odbcSource::listTables(std::vector<std::wstring>& names, bool sheets) {
  const ownedStrings list(vo_strings_create());
  vo_odbc_connect_get_tables(connection_.get(), list.get(), sheets);
  for (std::size_t i = 0; i < vo_strings_get_size(list.get()); ++i)
    names.push_back(fromSystem(vo_strings_get_str(list.get(), i)));
}

bool odbcSource::selectFrom(const std::wstring& table, tableReader& lister) {
  std::string name = toSystem(table);
  if (name.empty()) {
    std::vector<std::wstring> tables;
    lister.tableList(tables);
    if (tables.empty()) return false;
    name = toSystem(tables.front());
  }
  statement_.reset(vo_odbc_connect_create_stmt(connection_.get()));
  const std::string sql = "select * from [" + name + "]";
  vo_odbc_stmt_set_sql(statement_.get(), sql.c_str());
  return vo_odbc_stmt_exec_direct(statement_.get());
}

bool odbcSource::describe() { return vo_odbc_stmt_get_fields_desc(statement_.get()); }

std::uint32_t odbcSource::columnCount() const {
  return vo_odbc_fields_get_size(vo_odbc_stmt_get_fields(statement_.get()));
}

Ivo_odbc_field* odbcSource::column(std::uint32_t index) const {
  return vo_odbc_fields_get_field(vo_odbc_stmt_get_fields(statement_.get()), index);
}

std::wstring odbcSource::columnName(std::uint32_t index) const {
  return fromSystem(vo_odbc_field_get_name(column(index)));
}

fldType odbcSource::columnType(std::uint32_t index) const {
  return isNumeric(vo_odbc_field_get_type(column(index))) ? fldNumber : fldText;
}

bool odbcSource::fetch() { return vo_odbc_stmt_fetch(statement_.get()); }

void odbcSource::addRow(valueTable& rows) {
  bool isEmpty = true;
  const std::uint32_t columns = columnCount();
  for (std::uint32_t index = 0; index < columns; ++index) {
    const std::wstring value = fromSystem(vo_odbc_field_get_as_string(column(index)));
    isEmpty = isEmpty && value.empty();
    rows.addValue(std::wstring_view(value));
  }
  // ODD: databases keep rows free.
  if (isEmpty || vo_odbc_stmt_has_failed(statement_.get()))
    rows.dropRow();
  else
    rows.endRow();
}

bool odbcSource::addRows(valueTable& rows, std::int32_t limit) {
  while (fetch()) {
    if (limit != -1 && static_cast<std::int32_t>(rows.rowCount()) >= limit) break;
    addRow(rows);
  }
  return !vo_odbc_stmt_has_failed(statement_.get());
}

}  // namespace tableRW

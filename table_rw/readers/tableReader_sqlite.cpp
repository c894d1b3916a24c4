#include "table_rw/readers/tableReader_sqlite.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

#include "table_rw/text/textConversion.h"
#include "table_rw/text/utf8.h"

namespace tableRW {
namespace {

constexpr int nameColumn = 1;  // of a row of PRAGMA table_info
constexpr int typeColumn = 2;

struct queryCloser {
  odbc_database* database;
  void operator()(odbc_result* query) const { database->close_query(query); }
};
using ownedQuery = std::unique_ptr<odbc_result, queryCloser>;

ownedQuery makeQuery(odbc_database& database, const std::wstring& sql) {
  return ownedQuery(database.get_query(sql), queryCloser{&database});
}

// ODD: a quote in a name is not doubled; such a table has fields alone.
std::wstring columnList(const std::vector<std::wstring>& names) {
  std::wstring list;
  for (const std::wstring& name : names) {
    if (!list.empty()) list += L", ";
    list += L'"' + name + L'"';
  }
  return list;
}

// True when the engine takes the name for one word: it would take `wells new` for the table wells under another name.
bool isOneWord(std::wstring_view name) {
  static constexpr std::wstring_view letters =
      L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_$";
  constexpr wchar_t firstBeyondAscii = 0x80;
  return std::all_of(name.begin(), name.end(), [](wchar_t c) {
    return c >= firstBeyondAscii || letters.find(c) != std::wstring_view::npos;
  });
}

// Most values, told eight bytes at a time.
bool isAscii(std::string_view bytes) {
  const char* next = bytes.data();
  std::size_t left = bytes.size();
  std::uint64_t seen = 0;
  for (std::uint64_t word = 0; left >= sizeof word; next += sizeof word, left -= sizeof word) {
    std::memcpy(&word, next, sizeof word);
    seen |= word;
  }
  for (; left > 0; ++next, --left) seen |= static_cast<unsigned char>(*next);
  return (seen & 0x8080808080808080U) == 0;
}

// Adds what get_as_wstring would give, without the wide string on the way where the bytes are the same.
void addValue(valueTable& rows, std::string_view bytes) {
  if (isAscii(bytes) || isValidUtf8(bytes)) return rows.addValue(bytes);
  rows.addValue(std::wstring_view(
      decodeText(bytes.data(), static_cast<std::int32_t>(bytes.size()), encodingUtf8)));
}

}  // namespace

tableReader_sqlite::tableReader_sqlite(tableReaderOptions options)
    : tableReader(std::move(options)), database_(std::make_unique<odbc_database>()) {
  ok_ = database_->connect(L"Driver=SQLite3 ODBC Driver;Database=" + options_.path + L";");
}

tableReader_sqlite::~tableReader_sqlite() = default;

bool tableReader_sqlite::readOnlyHeaders() {
  headersOnly_ = true;
  return read();
}

bool tableReader_sqlite::readDemo(int n) {
  headersOnly_ = false;
  rowLimit_ = n;
  return read();
}

bool tableReader_sqlite::read() {
  fieldNames_.clear();
  rows_.clear();
  namesAreWhole_ = true;
  isWhole_ = true;
  if (!ok_ || !readFields()) return false;
  // ODD: of a missing table too, without fields: hosts ask for the fields first.
  if (headersOnly_) return true;
  return !fieldNames_.empty() && readRows();
}

bool tableReader_sqlite::readFields() {
  const ownedQuery query = makeQuery(*database_, L"PRAGMA table_info('" + options_.table + L"')");
  if (!query) return false;
  while (query->next()) {
    fieldNames_.push_back(query->get_as_wstring(nameColumn));
    namesAreWhole_ = namesAreWhole_ && isValidUtf8(query->get_as_utf8(nameColumn));
    const std::wstring type = query->get_as_wstring(typeColumn);
    // ODD: in these letters alone, and no other name of a number: schemas mark numbers so.
    fieldTypes_.push_back(type == L"INTEGER" || type == L"FLOAT" ? fldNumber : fldText);
  }
  return !query->has_failed();
}

// WHY not without whole names: the engine takes a quoted name that no column has for a text, which would come
// as every row's value.
bool tableReader_sqlite::readRows() {
  if (!namesAreWhole_ || !isOneWord(options_.table)) return false;
  const ownedQuery query =
      makeQuery(*database_, L"SELECT " + columnList(fieldNames_) + L" FROM " + options_.table);
  if (!query) return false;
  const int columns = static_cast<int>(fieldNames_.size());
  while (query->next()) {
    if (rowLimit_ >= 0 && rows_.rowCount() >= static_cast<std::size_t>(rowLimit_)) break;
    for (int column = 0; column < columns; ++column) addValue(rows_, query->get_as_utf8(column));
    rows_.endRow();
  }
  return !query->has_failed();
}

void tableReader_sqlite::setTable(std::wstring name) { options_.table = std::move(name); }

void tableReader_sqlite::tableList(std::vector<std::wstring>& list) {
  list.clear();
  isWhole_ = true;
  if (!ok_) return;
  const ownedQuery query = makeQuery(*database_, L"SELECT distinct(tbl_name) FROM sqlite_master");
  while (query && query->next()) list.push_back(query->get_as_wstring(0));
  isWhole_ = query && !query->has_failed();
}

capability_options tableReader_sqlite::get_capabilities() { return {true, true, true, false}; }

}  // namespace tableRW

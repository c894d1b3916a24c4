#include "suite/io/odbcBlocks.h"

#include <algorithm>
#include <functional>
#include <optional>

namespace suiteIo {
namespace {

constexpr std::size_t mostRows = 256;
// Below this the calls that are saved are not worth the trouble.
constexpr std::size_t fewestRows = 4;
constexpr std::size_t mostBytes = std::size_t{4} << 20;
constexpr SQLULEN longestText = 4000;
// Numbers, dates and identifiers as text, with the blanks and signs that drivers put around them.
constexpr std::size_t roomOfNumber = 64;
// A character of a column's size is one of UTF-16 at most.
constexpr std::size_t bytesOfCharacter = 3;

// What nobody writes: a place that still holds it, wholly or in part, was left out by the driver.
constexpr SQLULEN unwrittenCount = SQLULEN{0x5A5A5A5A};
constexpr SQLUSMALLINT unwrittenState = 0x5A5A;
constexpr auto unwrittenLength = static_cast<SQLLEN>(0x5A5A5A5A5A5A5A5A);

// The bytes that a value of the column takes, its NUL included; nothing where that cannot be told.
std::optional<std::size_t> roomFor(const odbcColumn& column) {
  const bool isText = column.type == SQL_CHAR || column.type == SQL_VARCHAR ||
                      column.type == SQL_WCHAR || column.type == SQL_WVARCHAR;
  if (isText && (column.size == 0 || column.size > longestText)) return std::nullopt;
  if (isText) return static_cast<std::size_t>(column.size) * bytesOfCharacter + 2;
  const bool isNumber = (column.type >= SQL_NUMERIC && column.type <= SQL_DOUBLE) ||
                        column.type == SQL_TINYINT || column.type == SQL_BIGINT ||
                        column.type == SQL_BIT;
  const bool isDate = column.type == SQL_TYPE_DATE || column.type == SQL_TYPE_TIME ||
                      column.type == SQL_TYPE_TIMESTAMP;
  if (isNumber || isDate || column.type == SQL_GUID) return roomOfNumber;
  return std::nullopt;
}

bool setAttribute(SQLHSTMT statement, SQLINTEGER attribute, SQLPOINTER value) {
  return SQLSetStmtAttr(statement, attribute, value, SQL_IS_POINTER) == SQL_SUCCESS;
}

bool setBlockRows(SQLHSTMT statement, std::size_t rows) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): ODBC takes numbers of this kind in the place of a pointer
  auto* const number = reinterpret_cast<SQLPOINTER>(static_cast<std::uintptr_t>(rows));
  return SQLSetStmtAttr(statement, SQL_ATTR_ROW_ARRAY_SIZE, number, SQL_IS_UINTEGER) == SQL_SUCCESS;
}

}  // namespace

void rowsGiven::addValue(std::string_view value) {
  constexpr std::uint64_t factor = 1099511628211U;
  digest_ = (digest_ ^ std::hash<std::string_view>()(value)) * factor;
}

bool odbcBlocks::begin(SQLHSTMT statement, const std::vector<odbcColumn>& columns) {
  stop();
  std::size_t bytes = 0;
  for (const odbcColumn& column : columns) {
    const std::optional<std::size_t> room = roomFor(column);
    if (!room) return false;
    bytes += *room + sizeof(SQLLEN);
  }
  if (bytes == 0) return false;
  const std::size_t rows = std::min(mostRows, mostBytes / bytes);
  if (rows < fewestRows || !setBlockRows(statement, rows)) return false;
  rowsOfBlock_ = rows;
  states_.assign(rows, unwrittenState);
  for (const odbcColumn& column : columns) {
    const std::size_t room = *roomFor(column);
    columns_.push_back({room, std::vector<char>(room * rows), std::vector<SQLLEN>(rows)});
  }
  refused_ = !bind(statement);
  return true;
}

bool odbcBlocks::bind(SQLHSTMT statement) {
  // A driver may have taken another number than it was given.
  SQLULEN taken = 0;
  if (SQLGetStmtAttr(statement, SQL_ATTR_ROW_ARRAY_SIZE, &taken, SQL_IS_UINTEGER, nullptr) !=
          SQL_SUCCESS ||
      taken != rowsOfBlock_)
    return false;
  if (!setAttribute(statement, SQL_ATTR_ROWS_FETCHED_PTR, &fetched_) ||
      !setAttribute(statement, SQL_ATTR_ROW_STATUS_PTR, states_.data()))
    return false;
  SQLUSMALLINT number = 0;
  for (boundColumn& column : columns_)
    if (SQLBindCol(statement, ++number, SQL_C_CHAR, column.text.data(),
                   static_cast<SQLLEN>(column.room), column.lengths.data()) != SQL_SUCCESS)
      return false;
  return true;
}

odbcBlocks::step odbcBlocks::next(SQLHSTMT statement) {
  if (refused_) return step::unsound;
  if (row_ + 1 < fetched_) {
    ++row_;
    return step::row;
  }
  return fetchBlock(statement);
}

odbcBlocks::step odbcBlocks::fetchBlock(SQLHSTMT statement) {
  row_ = 0;
  fetched_ = unwrittenCount;
  std::fill(states_.begin(), states_.end(), unwrittenState);
  for (boundColumn& column : columns_)
    std::fill(column.lengths.begin(), column.lengths.end(), unwrittenLength);
  const SQLRETURN result = SQLFetch(statement);
  const bool gaveRows = fetched_ != 0 && fetched_ != unwrittenCount;
  if (result == SQL_NO_DATA && !gaveRows) {
    fetched_ = 0;
    return step::end;
  }
  refused_ = result != SQL_SUCCESS || !gaveRows || !isSound();
  if (refused_) return step::unsound;
  for (std::size_t row = 0; row < fetched_; ++row) {
    for (const boundColumn& column : columns_) given_.addValue(valueAt(column, row));
    given_.endRow();
  }
  return step::row;
}

bool odbcBlocks::isSound() const {
  if (fetched_ > rowsOfBlock_) return false;
  const auto rows = static_cast<std::ptrdiff_t>(fetched_);
  if (!std::all_of(states_.begin(), states_.begin() + rows,
                   [](SQLUSMALLINT state) { return state == SQL_ROW_SUCCESS; }))
    return false;
  return std::all_of(columns_.begin(), columns_.end(), [rows](const boundColumn& column) {
    // The text, its NUL, and a byte that shows that there was room for more.
    const auto most = static_cast<SQLLEN>(column.room) - 2;
    return std::all_of(column.lengths.begin(), column.lengths.begin() + rows,
                       [most](SQLLEN length) {
                         return length == SQL_NULL_DATA || (length >= 0 && length <= most);
                       });
  });
}

std::string_view odbcBlocks::valueAt(const boundColumn& column, std::size_t row) const {
  const SQLLEN length = column.lengths[row];
  if (length == SQL_NULL_DATA) return {};
  return {&column.text[row * column.room], static_cast<std::size_t>(length)};
}

std::string_view odbcBlocks::value(std::size_t column) const {
  return valueAt(columns_[column], row_);
}

void odbcBlocks::stop() {
  columns_.clear();
  states_.clear();
  fetched_ = 0;
  rowsOfBlock_ = row_ = 0;
  refused_ = false;
  given_ = {};
}

}  // namespace suiteIo

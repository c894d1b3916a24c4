#include "suite/io/odbcValues.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace suiteIo {
namespace {

constexpr std::size_t longestPiece = std::size_t{1} << 20;
// Longer values cannot be decoded; a driver that never comes to an end must come to one here.
constexpr std::size_t longestValue = std::size_t{1} << 30;
// A driver that keeps characters whole leaves so many bytes of a piece at most.
constexpr std::size_t longestPartOfCharacter = 3;

bool isBinary(SQLSMALLINT sqlType) {
  return sqlType == SQL_BINARY || sqlType == SQL_VARBINARY || sqlType == SQL_LONGVARBINARY;
}

// What stands in the last bytes of the room for a piece before the driver writes there.
constexpr std::ptrdiff_t unwrittenSize = longestPartOfCharacter + 1;
constexpr char unwritten = '\x01';

// How much text is in the room when the driver does not tell it, or has called it cut. Text may hold NULs itself; one
// among the last bytes shows that the room was filled up, and ends the piece.
std::size_t textLength(std::string_view room) {
  const std::size_t last = room.find_last_of('\0');
  if (last != std::string_view::npos && last + longestPartOfCharacter + 1 >= room.size())
    return last;
  return std::min(room.find('\0'), room.size() - 1);
}

std::string hexadecimal(std::string_view bytes) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    text += {digits[value >> 4], digits[value & 15]};
  }
  return text;
}

}  // namespace

odbcValues::outcome odbcValues::readPieces(SQLHSTMT statement, SQLUSMALLINT column,
                                           SQLSMALLINT type, std::string& value) {
  const bool isText = type == SQL_C_CHAR;
  for (bool first = true;; first = false) {
    std::fill(buffer_.end() - unwrittenSize, buffer_.end(), unwritten);
    SQLLEN left = 0;  // bytes from here to the value's end
    const SQLRETURN result = SQLGetData(statement, column, type, buffer_.data(),
                                        static_cast<SQLLEN>(buffer_.size()), &left);
    if (result == SQL_NO_DATA) return first ? outcome::nothing : outcome::whole;
    if (!SQL_SUCCEEDED(result)) return outcome::failed;
    if (left == SQL_NULL_DATA) return outcome::whole;
    const std::size_t room = buffer_.size() - (isText ? 1 : 0);
    const bool isCut =
        left == SQL_NO_TOTAL ? result == SQL_SUCCESS_WITH_INFO : left > static_cast<SQLLEN>(room);
    std::size_t size = room;
    if (!isCut && left >= 0) {
      size = static_cast<std::size_t>(left);
    } else if (isText) {
      size = textLength({buffer_.data(), buffer_.size()});
    } else if (!isCut) {
      return outcome::failed;  // bytes end nowhere by themselves
    }
    value.append(buffer_.data(), size);
    if (!isCut) return outcome::whole;
    if (value.size() > longestValue) return outcome::failed;
    const std::size_t wanted = left > 0 ? static_cast<std::size_t>(left) + 1 : longestPiece;
    if (wanted > buffer_.size()) buffer_.resize(std::min(wanted, longestPiece));
  }
}

bool odbcValues::readRaw(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT sqlType,
                         std::string& value) {
  value.clear();
  outcome read = readPieces(statement, column, SQL_C_CHAR, value);
  if (read == outcome::nothing && isBinary(sqlType)) {
    read = readPieces(statement, column, SQL_C_BINARY, value);
    value = hexadecimal(value);
  }
  if (read == outcome::failed) value.clear();
  return read != outcome::failed;
}

bool odbcValues::read(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT sqlType,
                      std::string& value) {
  const bool isRead = readRaw(statement, column, sqlType, value);
  value = fromDriver(value);
  return isRead;
}

}  // namespace suiteIo

#include "suite/io/odbcValues.h"

#include <algorithm>
#include <cstring>

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

std::size_t lengthUpToNul(const char* text, std::size_t most) {
  const void* const end = std::memchr(text, '\0', most);
  return end == nullptr ? most : static_cast<std::size_t>(static_cast<const char*>(end) - text);
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
      const std::size_t length = lengthUpToNul(buffer_.data(), room);
      if (!isCut || room - length <= longestPartOfCharacter) size = length;
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

#include "suite/file_micromine/micromineValues.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "suite/file_micromine/micromineLayout.h"

namespace fileMicromine {
namespace {

template <class Bits>
Bits littleEndian(const char* bytes) {
  Bits number = 0;
  for (std::size_t i = sizeof(Bits); i > 0; --i)
    number = static_cast<Bits>(number << 8 | static_cast<unsigned char>(bytes[i - 1]));
  return number;
}

template <class Number>
std::string_view digitsOf(Number number, char* digits) {
  const auto result = std::to_chars(digits, digits + longestNumber, number);
  return {digits, static_cast<std::size_t>(result.ptr - digits)};
}

// FORMAT: binary variables hold numbers or no value, which is a NaN; an infinity is no number either.
template <class Number>
std::string_view realText(Number number, char* digits) {
  return std::isfinite(number) ? digitsOf(number, digits) : std::string_view();
}

// FORMAT: the range of whole numbers ends one before their smallest, which stands for no value.
template <class Number>
std::string_view wholeText(Number number, char* digits) {
  return number == std::numeric_limits<Number>::min() ? std::string_view()
                                                      : digitsOf(number, digits);
}

std::string_view characterText(const char* bytes, std::size_t width) {
  const void* const nul = std::memchr(bytes, 0, width);
  std::size_t size =
      nul == nullptr ? width : static_cast<std::size_t>(static_cast<const char*>(nul) - bytes);
  while (size > 0 && bytes[size - 1] == ' ') --size;
  return {bytes, size};
}

}  // namespace

bool isBinary(char type) { return type != typeCharacter && type != typeNumeric; }

std::string_view textOf(const variable& column, const char* record, char* digits) {
  const char* const bytes = record + column.offset;
  switch (column.type) {
    case typeReal:
      return realText(std::bit_cast<double>(littleEndian<std::uint64_t>(bytes)), digits);
    case typeFloat:
      return realText(std::bit_cast<float>(littleEndian<std::uint32_t>(bytes)), digits);
    case typeLong:
      return wholeText(static_cast<std::int32_t>(littleEndian<std::uint32_t>(bytes)), digits);
    case typeShort:
      return wholeText(static_cast<std::int16_t>(littleEndian<std::uint16_t>(bytes)), digits);
    default:
      break;
  }
  std::string_view text = characterText(bytes, column.width);
  if (column.type == typeNumeric)
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  return text;
}

}  // namespace fileMicromine

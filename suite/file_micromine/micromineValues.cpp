#include "suite/file_micromine/micromineValues.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>

#include "suite/file_micromine/micromineLayout.h"

namespace fileMicromine {
namespace {

template <class Bits>
Bits littleEndian(const char* bytes) {
  Bits number = 0;
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(&number, bytes, sizeof(Bits));
  } else {
    for (std::size_t i = sizeof(Bits); i > 0; --i)
      number = static_cast<Bits>(number << 8 | static_cast<unsigned char>(bytes[i - 1]));
  }
  return number;
}

template <class Number>
std::string_view digitsOf(Number number, char* digits) {
  const auto result = std::to_chars(digits, digits + longestNumber, number);
  return {digits, static_cast<std::size_t>(result.ptr - digits)};
}

// The shortest text of a number with at most four decimals, as coordinates and depths are, found without
// the search for it; empty for any other, and where an exponent might be shorter.
// WHY it is the same text: a double has at most one decimal of up to 15 digits that reads back to it, and a
// quotient of two whole numbers that doubles hold exactly is rounded as that decimal is.
std::string_view plainText(double number, char* digits) {
  constexpr std::uint64_t powers[] = {1, 10, 100, 1000, 10000};
  constexpr std::uint64_t mostZeros = 100000;  // a number that ends in as many may need an exponent
  const double size = std::fabs(number);
  if (!(size >= 0.001 && size < 1e10)) return {};
  std::size_t decimals = 0;
  std::uint64_t whole = 0;
  for (;; ++decimals) {
    if (decimals == std::size(powers)) return {};
    const auto power = static_cast<double>(powers[decimals]);
    // A candidate that is rounded wrongly is refused by the comparison.
    whole = static_cast<std::uint64_t>(size * power + 0.5);  // NOLINT(bugprone-incorrect-roundings)
    if (static_cast<double>(whole) / power == size) break;
  }
  if (decimals == 0 && whole % mostZeros == 0) return {};
  char* to = digits;
  if (number < 0) *to++ = '-';
  // A number below 1 gets its zero from a 1 in front.
  const bool small = whole < powers[decimals];
  char* end =
      std::to_chars(to, digits + longestNumber, small ? whole + powers[decimals] : whole).ptr;
  if (small) *to = '0';
  if (decimals > 0) {
    char* const point = end - decimals;
    std::memmove(point + 1, point, decimals);
    *point = '.';
    ++end;
  }
  return {digits, static_cast<std::size_t>(end - digits)};
}

// FORMAT: binary variables hold numbers or no value, which is a NaN; an infinity is no number either.
std::string_view realText(double number, char* digits) {
  if (!std::isfinite(number)) return {};
  const std::string_view plain = plainText(number, digits);
  return plain.empty() ? digitsOf(number, digits) : plain;
}

std::string_view floatText(float number, char* digits) {
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
      return floatText(std::bit_cast<float>(littleEndian<std::uint32_t>(bytes)), digits);
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

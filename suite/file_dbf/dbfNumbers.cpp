#include "suite/file_dbf/dbfNumbers.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>

namespace fileDbf {
namespace {

constexpr std::int64_t largestExponent = 1000000;  // beyond it nothing fits, or nothing is left
constexpr std::int64_t mostDigits = 600;           // more than any field can show

bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

// 0.DIGITS times ten to the power of `point`; no digits for zero.
struct decimalNumber {
  bool negative = false;
  std::string digits;  // the first is not 0
  std::int64_t point = 0;
};

std::optional<std::int64_t> parseExponent(std::wstring_view text) {
  const bool negative = !text.empty() && text.front() == L'-';
  if (negative || (!text.empty() && text.front() == L'+')) text.remove_prefix(1);
  if (text.empty() || !std::all_of(text.begin(), text.end(), isDigit)) return std::nullopt;
  std::int64_t value = 0;
  for (const wchar_t c : text) value = std::min(10 * value + (c - L'0'), largestExponent);
  return negative ? -value : value;
}

std::optional<decimalNumber> parseNumber(std::wstring_view text) {
  text = withoutBlanks(text);
  decimalNumber number;
  number.negative = !text.empty() && text.front() == L'-';
  if (number.negative || (!text.empty() && text.front() == L'+')) text.remove_prefix(1);
  bool anyDigit = false;
  bool behindPoint = false;
  std::size_t at = 0;
  for (; at < text.size(); ++at) {
    const wchar_t c = text[at];
    if (!behindPoint && (c == L'.' || c == L',')) {
      behindPoint = true;
      continue;
    }
    if (!isDigit(c)) break;
    anyDigit = true;
    if (number.digits.empty() && c == L'0') {
      number.point -= behindPoint ? 1 : 0;
      continue;
    }
    number.point += behindPoint ? 0 : 1;
    if (number.digits.size() < mostDigits) number.digits += static_cast<char>(c);
  }
  if (!anyDigit) return std::nullopt;
  if (at < text.size()) {
    if (text[at] != L'e' && text[at] != L'E') return std::nullopt;
    const auto exponent = parseExponent(text.substr(at + 1));
    if (!exponent) return std::nullopt;
    number.point += *exponent;
  }
  return number;
}

// Cuts the digits behind the last one that is kept, rounding half away from zero.
void roundTo(decimalNumber& number, std::int64_t decimals) {
  const std::int64_t kept = number.point + decimals;
  if (kept >= static_cast<std::int64_t>(number.digits.size())) return;
  const bool up = kept >= 0 && number.digits[static_cast<std::size_t>(kept)] >= '5';
  number.digits.resize(static_cast<std::size_t>(std::max<std::int64_t>(kept, 0)));
  if (!up) return;
  while (!number.digits.empty() && number.digits.back() == '9') number.digits.pop_back();
  if (number.digits.empty()) {
    number.digits = "1";
    ++number.point;
  } else {
    ++number.digits.back();
  }
}

// The digits at places of the number, of ten to the power of `from` - 1 downwards.
std::string digitsFrom(const decimalNumber& number, std::int64_t from, std::size_t count) {
  std::string text(count, '0');
  for (std::size_t i = 0; i < count; ++i) {
    const std::int64_t at = number.point - from + static_cast<std::int64_t>(i);
    if (at >= 0 && at < static_cast<std::int64_t>(number.digits.size()))
      text[i] = number.digits[static_cast<std::size_t>(at)];
  }
  return text;
}

// Nothing when it takes more than `width`.
std::optional<std::string> fixedText(decimalNumber number, std::size_t decimals,
                                     std::size_t width) {
  roundTo(number, static_cast<std::int64_t>(decimals));
  if (number.digits.find_first_not_of('0') == std::string::npos) number = {};
  if (number.point > static_cast<std::int64_t>(width)) return std::nullopt;
  const std::int64_t whole = std::max<std::int64_t>(number.point, 0);
  std::string text = digitsFrom(number, whole, static_cast<std::size_t>(whole));
  if (decimals > 0) text += '.' + digitsFrom(number, 0, decimals);
  if (number.negative) text.insert(0, 1, '-');
  // The zero in front of the point stands where there is room for it.
  const std::size_t zeroAt = number.negative ? 1 : 0;
  if (whole == 0 && (decimals == 0 || text.size() < width)) text.insert(zeroAt, 1, '0');
  return text.size() > width ? std::nullopt : std::optional(text);
}

// What most values are: at most a sign, digits, at most a point and not more digits than there is room
// for. @return false, and nothing is written, for everything else
bool writePlain(const wchar_t* text, std::size_t decimals, char* to, std::size_t width) {
  const wchar_t* next = text;
  const bool negative = *next == L'-';
  if (negative) ++next;
  const wchar_t* const whole = next;
  while (isDigit(*next)) ++next;
  const auto wholeSize = static_cast<std::size_t>(next - whole);
  if (wholeSize == 0 || (*whole == L'0' && (wholeSize > 1 || negative))) return false;
  const wchar_t* fraction = next;
  if (*next == L'.') {
    fraction = ++next;
    while (isDigit(*next)) ++next;
  }
  const auto fractionSize = static_cast<std::size_t>(next - fraction);
  const std::size_t size = (negative ? 1 : 0) + wholeSize + (decimals > 0 ? decimals + 1 : 0);
  if (*next != L'\0' || fractionSize > decimals || size > width) return false;
  char* const end = to + width;
  for (; width > size; --width) *to++ = ' ';
  if (negative) *to++ = '-';
  for (std::size_t i = 0; i < wholeSize; ++i) *to++ = static_cast<char>(whole[i]);
  if (decimals > 0) *to++ = '.';
  for (std::size_t i = 0; i < fractionSize; ++i) *to++ = static_cast<char>(fraction[i]);
  while (to < end) *to++ = '0';
  return true;
}

}  // namespace

std::wstring_view withoutBlanks(std::wstring_view text) {
  while (!text.empty() && (text.front() == L' ' || text.front() == L'\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == L' ' || text.back() == L'\t')) text.remove_suffix(1);
  return text;
}

void writeNumber(const wchar_t* text, std::size_t decimals, char* to, std::size_t width) {
  if (writePlain(text, decimals, to, width)) return;
  const std::optional<decimalNumber> number = parseNumber(text);
  if (!number) {
    std::fill_n(to, width, ' ');
    return;
  }
  const std::optional<std::string> shown = fixedText(*number, decimals, width);
  if (!shown) {
    std::fill_n(to, width, '*');
    return;
  }
  std::fill_n(to, width - shown->size(), ' ');
  std::copy(shown->begin(), shown->end(), to + (width - shown->size()));
}

}  // namespace fileDbf

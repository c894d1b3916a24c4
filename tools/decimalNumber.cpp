#include "tools/decimalNumber.h"

#include <algorithm>

namespace vokTable {
namespace {

constexpr std::int64_t greatestExponent = 1'000'000'000;

bool isDigit(wchar_t character) { return character >= L'0' && character <= L'9'; }

std::int64_t exponentOf(std::wstring_view text) {
  const bool isNegative = text.starts_with(L'-');
  std::int64_t exponent = 0;
  for (const wchar_t character : text)
    if (isDigit(character))
      exponent = std::min(exponent * 10 + (character - L'0'), greatestExponent);
  return isNegative ? -exponent : exponent;
}

}  // namespace

decimalNumber::decimalNumber(std::wstring_view text) {
  const std::size_t mark = std::min(text.find_first_of(L"eE"), text.size());
  const std::wstring_view mantissa = text.substr(0, mark);
  const bool hasExponent = mark < text.size();
  isNegative_ = mantissa.starts_with(L'-');
  bool isFraction = false;
  for (const wchar_t character : mantissa) {
    if (character == L'.' || character == L',') isFraction = true;
    if (!isDigit(character)) continue;
    const bool isLeadingZero = digits_.empty() && character == L'0';
    if (!isLeadingZero) digits_ += character;
    // The point moves right with a digit before it, and left with a zero that is not kept.
    if (!isFraction && !isLeadingZero) ++point_;
    if (isFraction && isLeadingZero) --point_;
  }
  digits_.erase(digits_.find_last_not_of(L'0') + 1);
  if (hasExponent) point_ += exponentOf(text.substr(mark + 1));
  if (!digits_.empty()) return;
  point_ = 0;
  isNegative_ = false;
}

int decimalNumber::compare(const decimalNumber& other) const {
  const auto sign = [](const decimalNumber& number) {
    if (number.digits_.empty()) return 0;
    return number.isNegative_ ? -1 : 1;
  };
  if (sign(*this) != sign(other)) return sign(*this) < sign(other) ? -1 : 1;
  int magnitude = 0;
  if (point_ != other.point_)
    magnitude = point_ < other.point_ ? -1 : 1;
  else
    magnitude = std::clamp(digits_.compare(other.digits_), -1, 1);
  return isNegative_ ? -magnitude : magnitude;
}

}  // namespace vokTable

#include "converter/workbook/cellText.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <system_error>

namespace converter {
namespace {

constexpr double fixedFrom = 1e-5;
constexpr double fixedBelow = 1e16;
constexpr std::int64_t millisecondsOfDay = 86400000;
constexpr std::int64_t daysFrom1900To1904 = 1462;
// ODD: sheets show this day as 1900-02-29 and day 0 as 1900-01-00.
constexpr std::int64_t falseLeapDay = 60;
constexpr double daysBehindYear9999 = 2958466;
constexpr std::size_t digitsThatAlwaysReadBack = 15;
constexpr std::size_t zerosBehindThePoint = 4;  // at most, for a number that is not below fixedFrom

void appendPadded(std::string& text, std::int64_t number, std::size_t width) {
  const std::string digits = std::to_string(number);
  if (digits.size() < width) text.append(width - digits.size(), '0');
  text += digits;
}

struct civilDate {
  std::int64_t year;
  std::int64_t month;
  std::int64_t day;
};

// Days since 1970-01-01 in the Gregorian calendar, for years from 0 on.
civilDate civilFromDays(std::int64_t days) {
  days += 719468;  // from 0000-03-01, so that a leap day ends its year
  const std::int64_t era = days / 146097;
  const std::int64_t dayOfEra = days - era * 146097;
  const std::int64_t yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t shiftedMonth = (5 * dayOfYear + 2) / 153;
  const std::int64_t month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
  return {yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month,
          dayOfYear - (153 * shiftedMonth + 2) / 5 + 1};
}

void appendDate(std::string& text, std::int64_t day) {
  constexpr std::int64_t day1899Dec30 = -25569;  // since 1970-01-01
  civilDate date = civilFromDays(day1899Dec30 + (day < falseLeapDay ? day + 1 : day));
  if (day == falseLeapDay) date = {1900, 2, 29};
  if (day == 0) date = {1900, 1, 0};
  appendPadded(text, date.year, 4);
  text += '-';
  appendPadded(text, date.month, 2);
  text += '-';
  appendPadded(text, date.day, 2);
}

void appendTime(std::string& text, std::int64_t milliseconds) {
  appendPadded(text, milliseconds / 3600000, 2);
  text += ':';
  appendPadded(text, milliseconds / 60000 % 60, 2);
  text += ':';
  appendPadded(text, milliseconds / 1000 % 60, 2);
  if (milliseconds % 1000 == 0) return;
  text += '.';
  appendPadded(text, milliseconds % 1000, 3);
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Whether the text is already the shortest one of its number: a plain decimal of at most 15 digits, none of
// them superfluous. No two of those are the same double, so nothing shorter reads back to it.
bool isShortest(std::string_view text) {
  const bool isNegative = !text.empty() && text[0] == '-';
  if (isNegative) text.remove_prefix(1);
  std::size_t whole = 0;
  while (whole < text.size() && isDigit(text[whole])) ++whole;
  if (whole == 0 || whole > digitsThatAlwaysReadBack || (whole > 1 && text[0] == '0')) return false;
  if (whole == text.size()) return !isNegative || text != "0";
  if (text[whole] != '.' || text.size() > digitsThatAlwaysReadBack + 1) return false;
  std::size_t zeros = 0;
  for (std::size_t i = whole + 1; i < text.size(); ++i) {
    if (!isDigit(text[i])) return false;
    if (text[i] == '0' && zeros == i - whole - 1) ++zeros;
  }
  return whole + 1 < text.size() && text.back() != '0' &&
         (text[0] != '0' || zeros <= zerosBehindThePoint);
}

}  // namespace

void appendNumber(std::string& text, double number) {
  if (number == 0) number = 0;  // drops the sign of -0
  const double size = std::fabs(number);
  const bool isFixed = number == 0 || (size >= fixedFrom && size < fixedBelow);
  char buffer[64];
  const auto result =
      std::to_chars(buffer, buffer + sizeof buffer, number,
                    isFixed ? std::chars_format::fixed : std::chars_format::scientific);
  text.append(buffer, result.ptr);
}

void appendFormatted(std::string& text, double number, numberKind kind, dateSystem system) {
  const bool isDay = kind == numberKind::date || kind == numberKind::dateTime;
  const double largest =
      kind == numberKind::elapsed || kind == numberKind::time ? 1e9 : daysBehindYear9999;
  if (kind == numberKind::number || !(number >= 0) || number >= largest) {
    appendNumber(text, number);
    return;
  }
  const double whole = std::floor(number);
  auto day = static_cast<std::int64_t>(whole);
  auto milliseconds = static_cast<std::int64_t>(std::llround((number - whole) * 86400000.0));
  if (milliseconds == millisecondsOfDay) {
    ++day;
    milliseconds = 0;
  }
  if (isDay && system == dateSystem::from1904) day += daysFrom1900To1904;
  if (isDay && static_cast<double>(day) >= daysBehindYear9999) {
    appendNumber(text, number);
    return;
  }
  if (kind == numberKind::elapsed) milliseconds += day * millisecondsOfDay;
  const bool isTimeAlone = kind == numberKind::dateTime && day == 0;
  if (isDay && !isTimeAlone) appendDate(text, day);
  if (kind == numberKind::dateTime && !isTimeAlone) text += 'T';
  if (kind != numberKind::date) appendTime(text, milliseconds);
}

void appendFormatted(std::string& text, std::string_view number, const numberFormat& format,
                     dateSystem system) {
  if (format.isPlain() && isShortest(number)) {
    text += number;
    return;
  }
  std::string_view digits = number;
  if (digits.size() > 1 && digits[0] == '+' && (isDigit(digits[1]) || digits[1] == '.'))
    digits.remove_prefix(1);
  double value = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  const bool isNumber = result.ec == std::errc() && result.ptr == digits.data() + digits.size() &&
                        std::isfinite(value);
  if (isNumber)
    appendFormatted(text, value, format.kindOf(value), system);
  else
    text += number;
}

std::string_view errorText(unsigned code) {
  switch (code) {
    case 0x00:
      return "#NULL!";
    case 0x07:
      return "#DIV/0!";
    case 0x0F:
      return "#VALUE!";
    case 0x17:
      return "#REF!";
    case 0x1D:
      return "#NAME?";
    case 0x24:
      return "#NUM!";
    case 0x2A:
      return "#N/A";
    case 0x2B:
      return "#GETTING_DATA";
    default:
      return {};
  }
}

}  // namespace converter

#include "suite/file_dbf/dbfCalendar.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdio>

namespace fileDbf {
namespace {

constexpr std::int64_t millisecondsOfSecond = 1000;
constexpr std::int64_t secondsOfDay = 86400;
constexpr std::int64_t firstDay = -719162;  // 0001-01-01, counted from 1970-01-01
constexpr std::int64_t lastDay = 2932896;   // 9999-12-31

// The number that the digits from `at` on make; -1 when one of them is none.
int number(std::string_view text, std::size_t at, std::size_t digits) {
  int value = 0;
  for (std::size_t i = at; i < at + digits; ++i) {
    if (text[i] < '0' || text[i] > '9') return -1;
    value = 10 * value + (text[i] - '0');
  }
  return value;
}

std::optional<day> ifExists(const day& date) {
  return exists(date) ? std::optional(date) : std::nullopt;
}

}  // namespace

bool exists(const day& date) {
  if (date.year < 1 || date.year > 9999 || date.month < 1 || date.dayOfMonth < 1) return false;
  return std::chrono::year_month_day(std::chrono::year(date.year),
                                     std::chrono::month(static_cast<unsigned>(date.month)),
                                     std::chrono::day(static_cast<unsigned>(date.dayOfMonth)))
      .ok();
}

std::optional<day> parseStoredDate(std::string_view text) {
  if (text.size() != 8) return std::nullopt;
  return ifExists({number(text, 0, 4), number(text, 4, 2), number(text, 6, 2)});
}

std::optional<day> parseWrittenDate(std::string_view text) {
  if (text.size() != 10) return parseStoredDate(text);
  if (text[4] == '-' && text[7] == '-')
    return ifExists({number(text, 0, 4), number(text, 5, 2), number(text, 8, 2)});
  if (text[2] == '.' && text[5] == '.')
    return ifExists({number(text, 6, 4), number(text, 3, 2), number(text, 0, 2)});
  return std::nullopt;
}

std::string shownDate(const day& date) {
  std::array<char, 48> text;
  const int length = std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", date.year,
                                   date.month, date.dayOfMonth);
  return {text.data(), static_cast<std::size_t>(length)};
}

std::optional<std::string> shownTime(std::int64_t daysSince1970, std::int64_t milliseconds) {
  if (daysSince1970 < firstDay - 1 || daysSince1970 > lastDay || milliseconds < 0 ||
      milliseconds >= 2 * secondsOfDay * millisecondsOfSecond)
    return std::nullopt;
  const std::int64_t seconds = (milliseconds + millisecondsOfSecond / 2) / millisecondsOfSecond;
  const std::int64_t days = daysSince1970 + seconds / secondsOfDay;
  if (days < firstDay || days > lastDay) return std::nullopt;
  const std::chrono::year_month_day date{
      std::chrono::sys_days(std::chrono::days(static_cast<std::int32_t>(days)))};
  const auto second = static_cast<int>(seconds % secondsOfDay);
  std::array<char, 48> text;
  const int length = std::snprintf(text.data(), text.size(), " %02d:%02d:%02d", second / 3600,
                                   second / 60 % 60, second % 60);
  return shownDate({int{date.year()}, static_cast<int>(unsigned{date.month()}),
                    static_cast<int>(unsigned{date.day()})}) +
         std::string(text.data(), static_cast<std::size_t>(length));
}

}  // namespace fileDbf

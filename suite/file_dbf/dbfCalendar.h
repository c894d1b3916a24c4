// Days of the Gregorian calendar: the dates of a table and the day numbers that some versions count.
// No state; any thread.
#ifndef VOK_SUITE_FILE_DBF_DBFCALENDAR_H
#define VOK_SUITE_FILE_DBF_DBFCALENDAR_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace fileDbf {

struct day {
  int year;  // 1 to 9999
  int month;
  int dayOfMonth;
};

bool exists(const day& date);

/// YYYYMMDD, as a record holds it. @return nothing for text that is no day of the calendar
std::optional<day> parseStoredDate(std::string_view text);

/// YYYYMMDD, YYYY-MM-DD or DD.MM.YYYY.
std::optional<day> parseWrittenDate(std::string_view text);

/// YYYY-MM-DD.
std::string shownDate(const day& date);

/// YYYY-MM-DD HH:MM:SS of days since 1970-01-01 and milliseconds of the day, rounded to the second.
/// @return nothing for a day outside the years 1 to 9999
std::optional<std::string> shownTime(std::int64_t daysSince1970, std::int64_t milliseconds);

}  // namespace fileDbf

#endif

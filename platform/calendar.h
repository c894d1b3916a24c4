// Calendar times: of now, as the user's clock shows it, and of files.
//
// Nothing is kept between calls; any thread may ask. The time zone is the process's.
#ifndef VOK_PLATFORM_CALENDAR_H
#define VOK_PLATFORM_CALENDAR_H

#include <optional>
#include <string>

namespace platform {

/// A moment as a calendar and a clock show it. Which time zone it is in, its source tells.
struct calendarTime {
  int year = 0;    ///< as in 2026
  int month = 0;   ///< 1 to 12
  int day = 0;     ///< 1 to 31
  int hour = 0;    ///< 0 to 23
  int minute = 0;  ///< 0 to 59
  int second = 0;  ///< 0 to 59, 60 in a leap second
};

/// Now, in local time.
calendarTime localTime();

/// When a file was last written to, in UTC; nothing when the system does not tell.
std::optional<calendarTime> lastWriteTime(const std::wstring& path);

}  // namespace platform

#endif

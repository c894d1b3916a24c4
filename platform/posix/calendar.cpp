#include "platform/calendar.h"

#include <sys/stat.h>

#include <ctime>

#include "platform/posix/nativePath.h"

namespace platform {
namespace {

calendarTime fromSystem(const std::tm& time) {
  return {time.tm_year + 1900, time.tm_mon + 1, time.tm_mday,
          time.tm_hour,        time.tm_min,     time.tm_sec};
}

}  // namespace

calendarTime localTime() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  ::localtime_r(&now, &local);
  return fromSystem(local);
}

std::optional<calendarTime> lastWriteTime(const std::wstring& path) {
  struct stat attributes;
  std::tm utc{};
  if (::stat(nativePath(path).c_str(), &attributes) != 0 ||
      ::gmtime_r(&attributes.st_mtime, &utc) == nullptr)
    return std::nullopt;
  return fromSystem(utc);
}

}  // namespace platform

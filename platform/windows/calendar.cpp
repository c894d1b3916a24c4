#include "platform/calendar.h"

#include <windows.h>

namespace platform {
namespace {

calendarTime fromSystem(const SYSTEMTIME& time) {
  return {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond};
}

}  // namespace

calendarTime localTime() {
  SYSTEMTIME local;
  GetLocalTime(&local);
  return fromSystem(local);
}

std::optional<calendarTime> lastWriteTime(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA attributes;
  SYSTEMTIME utc;
  if (GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &attributes) == 0 ||
      FileTimeToSystemTime(&attributes.ftLastWriteTime, &utc) == 0)
    return std::nullopt;
  return fromSystem(utc);
}

}  // namespace platform

// Calendar times: one behaviour on both targets.
#include "platform/calendar.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <optional>

#include "tests/support/environmentSetter.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"

namespace {

using platform::calendarTime;

TEST(calendar, localTimeIsTheClockOfTheUser) {
  // A zone whose clock differs from UTC in hours and minutes, where the environment chooses it.
  std::optional<testSupport::environmentSetter> zone;
  if (!testSupport::onWindows) zone.emplace(L"TZ", L"VOK-05:30");
  // Asked before and after: the answer lies between the two, whatever second changes meanwhile.
  const auto local = [] {
    const std::time_t now = std::time(nullptr);
    return *std::localtime(&now);
  };
  const std::tm before = local();
  const calendarTime time = platform::localTime();
  const std::tm after = local();
  const auto minutes = [](int hour, int minute) { return hour * 60 + minute; };
  EXPECT_TRUE(time.year == before.tm_year + 1900 || time.year == after.tm_year + 1900);
  EXPECT_TRUE(time.month == before.tm_mon + 1 || time.month == after.tm_mon + 1);
  EXPECT_TRUE(time.day == before.tm_mday || time.day == after.tm_mday);
  EXPECT_TRUE(minutes(time.hour, time.minute) == minutes(before.tm_hour, before.tm_min) ||
              minutes(time.hour, time.minute) == minutes(after.tm_hour, after.tm_min));
  EXPECT_GE(time.second, 0);
  EXPECT_LE(time.second, 60);
}

TEST(calendar, filesHaveTheTimeOfTheirLastWriteInUtc) {
  const testSupport::temporaryFolder folder;
  const std::wstring path = folder.write(L"f", "x");
  const std::chrono::sys_seconds moment{std::chrono::seconds{1000000000}};
  std::filesystem::last_write_time(path, std::chrono::file_clock::from_sys(moment));
  const auto time = platform::lastWriteTime(path);
  ASSERT_TRUE(time);
  EXPECT_EQ(time->year, 2001);
  EXPECT_EQ(time->month, 9);
  EXPECT_EQ(time->day, 9);
  EXPECT_EQ(time->hour, 1);
  EXPECT_EQ(time->minute, 46);
  EXPECT_EQ(time->second, 40);
}

TEST(calendar, aMissingFileHasNoTime) {
  const testSupport::temporaryFolder folder;
  EXPECT_FALSE(platform::lastWriteTime(folder.file(L"gone")));
}

}  // namespace

// platform/memoryRegion.h on both targets.
#include "platform/memoryRegion.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <utility>

#include "tests/support/targetSystem.h"

namespace {

using platform::memoryRegion;

constexpr std::size_t mebibyte = std::size_t{1} << 20;

TEST(memoryRegion, holdsNothingAtFirst) {
  memoryRegion region;
  EXPECT_EQ(region.data(), nullptr);
  EXPECT_EQ(region.reserved(), 0U);
  EXPECT_EQ(region.committed(), 0U);
  EXPECT_TRUE(region.commit(0));
  EXPECT_FALSE(region.commit(1));
}

TEST(memoryRegion, growsWithoutMoving) {
  memoryRegion region;
  ASSERT_TRUE(region.reserve(1024 * mebibyte, mebibyte));
  ASSERT_GE(region.reserved(), mebibyte);
  char* const start = region.data();
  ASSERT_NE(start, nullptr);
  for (const std::size_t size : {std::size_t{1}, mebibyte, 3 * mebibyte + 7, 40 * mebibyte}) {
    ASSERT_TRUE(region.commit(size));
    EXPECT_EQ(region.data(), start);
    EXPECT_GE(region.committed(), size);
    EXPECT_EQ(start[size - 1], 0) << "new bytes are zero";
    start[size - 1] = 'x';
  }
  EXPECT_EQ(start[0], 'x');
  EXPECT_EQ(start[mebibyte - 1], 'x');
}

TEST(memoryRegion, reservingMuchCostsNoMemory) {
  memoryRegion regions[8];
  for (memoryRegion& region : regions) {
    ASSERT_TRUE(region.reserve(std::size_t{1} << 36, mebibyte));
    EXPECT_EQ(region.committed(), 0U);
  }
}

TEST(memoryRegion, commitsNoMoreThanWasReserved) {
  memoryRegion region;
  ASSERT_TRUE(region.reserve(mebibyte, mebibyte));
  EXPECT_FALSE(region.commit(region.reserved() + 1));
  EXPECT_TRUE(region.commit(region.reserved()));
}

TEST(memoryRegion, refusesWhatNoSystemHas) {
  memoryRegion region;
  constexpr std::size_t most = std::numeric_limits<std::size_t>::max() / 4;
  EXPECT_FALSE(region.reserve(most, most));
  EXPECT_EQ(region.data(), nullptr);
}

TEST(memoryRegion, takesLessWhereTheWishCannotBeMet) {
  if (testSupport::onWindows)
    GTEST_SKIP() << "an emulation of Windows looks for so much for minutes";
  memoryRegion region;
  // More than any address space of today.
  ASSERT_TRUE(region.reserve(std::size_t{1} << 48, mebibyte));
  EXPECT_GE(region.reserved(), mebibyte);
}

TEST(memoryRegion, movesAndReservesAgain) {
  memoryRegion first;
  ASSERT_TRUE(first.reserve(2 * mebibyte, mebibyte));
  ASSERT_TRUE(first.commit(1));
  char* const start = first.data();
  start[0] = 'x';
  memoryRegion second = std::move(first);
  EXPECT_EQ(second.data(), start);
  EXPECT_EQ(second.data()[0], 'x');
  ASSERT_TRUE(second.reserve(mebibyte, mebibyte));
  EXPECT_EQ(second.committed(), 0U);
  ASSERT_TRUE(second.commit(1));
  EXPECT_EQ(second.data()[0], 0);
}

}  // namespace

// The sequence behind the table in memory.
#include "table_rw/text/growingArray.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <new>
#include <utility>
#include <vector>

namespace {

using tableRW::growingArray;

template <class T>
std::vector<T> contentOf(const growingArray<T>& array) {
  std::vector<T> values;
  for (std::size_t i = 0; i < array.size(); ++i) values.push_back(array[i]);
  return values;
}

TEST(growingArray, isEmptyAtFirst) {
  const growingArray<int> array;
  EXPECT_EQ(array.size(), 0U);
}

TEST(growingArray, keepsItsValuesWhileItGrows) {
  growingArray<std::uint64_t> array;
  std::vector<std::uint64_t> wanted;
  for (std::uint64_t i = 0; i < 10000; ++i) {
    array.push(i * i);
    wanted.push_back(i * i);
  }
  EXPECT_EQ(contentOf(array), wanted);
  EXPECT_EQ(array.data()[9999], 9999U * 9999U);
}

TEST(growingArray, roomCountsOnlyWhenAdvanced) {
  growingArray<int> array;
  array.push(1);
  int* const room = array.room(500);
  for (int i = 0; i < 500; ++i) room[i] = i;
  EXPECT_EQ(array.size(), 1U);
  array.advance(2);
  EXPECT_EQ(contentOf(array), (std::vector<int>{1, 0, 1}));
}

TEST(growingArray, appendsRunsOfAnyLength) {
  const std::vector<int> run(300, 7);
  growingArray<int> array;
  array.append(nullptr, 0);
  array.append(run.data(), 1);
  array.append(run.data(), run.size());
  array.append(run.data(), 0);
  EXPECT_EQ(contentOf(array), std::vector<int>(301, 7));
}

TEST(growingArray, shrinksAndGrowsAgain) {
  growingArray<int> array;
  for (int i = 0; i < 100; ++i) array.push(i);
  array.shrinkTo(2);
  array.push(9);
  EXPECT_EQ(contentOf(array), (std::vector<int>{0, 1, 9}));
  array.shrinkTo(0);
  EXPECT_EQ(array.size(), 0U);
}

TEST(growingArray, copiesMovesAndSwaps) {
  growingArray<int> array;
  for (int i = 0; i < 3; ++i) array.push(i);
  growingArray<int> copy(array);
  copy.push(3);
  EXPECT_EQ(contentOf(array), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(contentOf(copy), (std::vector<int>{0, 1, 2, 3}));
  const growingArray<int>& itself = copy;
  copy = itself;
  EXPECT_EQ(contentOf(copy), (std::vector<int>{0, 1, 2, 3}));
  array.swap(copy);
  EXPECT_EQ(array.size(), 4U);
  EXPECT_EQ(copy.size(), 3U);
  const growingArray<int> moved(std::move(array));
  EXPECT_EQ(contentOf(moved), (std::vector<int>{0, 1, 2, 3}));
  copy = growingArray<int>();
  EXPECT_EQ(copy.size(), 0U);
  EXPECT_EQ(growingArray<int>(copy).size(), 0U);
}

TEST(growingArray, refusesMoreThanMemoryCanHold) {
  growingArray<std::uint64_t> array;
  array.push(5);
  EXPECT_THROW(array.room(std::numeric_limits<std::size_t>::max()), std::bad_alloc);
  EXPECT_THROW(array.room(std::numeric_limits<std::size_t>::max() / 8), std::bad_alloc);
  EXPECT_EQ(contentOf(array), std::vector<std::uint64_t>{5});
  array.push(6);
  EXPECT_EQ(contentOf(array), (std::vector<std::uint64_t>{5, 6}));
}

}  // namespace

// The options record: defaults, constructors, the order of its members, and the numbers that hosts
// store.
#include "table_rw/core/tableReaderOptions.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>

namespace {

using tableRW::tableReaderOptions;

tableReaderOptions unusualOptions() {
  tableReaderOptions options(L"C:\\data\\wells.csv");
  options.header_position = -3;
  options.data_position = 0xFFFFFFFFFFFFFFFFU;
  options.direction = 1;
  options.file_type = 9;
  options.delimiter = L"<->";
  options.quote = L"'";
  options.encoding = 18;
  options.table = L"Sheet1";
  return options;
}

void expectUnusual(const tableReaderOptions& options) {
  EXPECT_EQ(options.path, L"C:\\data\\wells.csv");
  EXPECT_EQ(options.header_position, -3);
  EXPECT_EQ(options.data_position, 0xFFFFFFFFFFFFFFFFU);
  EXPECT_EQ(options.direction, 1);
  EXPECT_EQ(options.file_type, 9);
  EXPECT_EQ(options.delimiter, L"<->");
  EXPECT_EQ(options.quote, L"'");
  EXPECT_EQ(options.encoding, 18);
  EXPECT_EQ(options.table, L"Sheet1");
}

void expectDefaultsBesidesPath(const tableReaderOptions& options) {
  EXPECT_EQ(options.header_position, 0);
  EXPECT_EQ(options.data_position, 1U);
  EXPECT_EQ(options.direction, 0);
  EXPECT_EQ(options.file_type, 0);
  EXPECT_EQ(options.delimiter, L";");
  EXPECT_EQ(options.quote, L"\"");
  EXPECT_EQ(options.encoding, 0);
  EXPECT_EQ(options.table, L"");
}

TEST(tableReaderOptions, hasDefaults) {
  const tableReaderOptions options;
  EXPECT_EQ(options.path, L"");
  expectDefaultsBesidesPath(options);
}

TEST(tableReaderOptions, takesThePathAndDefaultsForTheRest) {
  const tableReaderOptions options(std::wstring(L"wells.csv"));
  EXPECT_EQ(options.path, L"wells.csv");
  expectDefaultsBesidesPath(options);
}

TEST(tableReaderOptions, movesThePathIn) {
  std::wstring path(1000, L'p');
  const wchar_t* const characters = path.data();
  const tableReaderOptions options(std::move(path));
  EXPECT_EQ(options.path.data(), characters);
}

TEST(tableReaderOptions, copiesAndMovesEveryMember) {
  const tableReaderOptions source = unusualOptions();
  const tableReaderOptions copy(source);
  expectUnusual(copy);
  expectUnusual(source);

  tableReaderOptions assigned;
  assigned = source;
  expectUnusual(assigned);

  tableReaderOptions moved(std::move(assigned));
  expectUnusual(moved);

  tableReaderOptions moveAssigned;
  moveAssigned = std::move(moved);
  expectUnusual(moveAssigned);
}

TEST(tableReaderOptions, membersHaveTheirTypesAndOrder) {
  const tableReaderOptions o;
  static_assert(std::is_same_v<decltype(o.path), std::wstring>);
  static_assert(std::is_same_v<decltype(o.header_position), std::int32_t>);
  static_assert(std::is_same_v<decltype(o.data_position), std::uint64_t>);
  static_assert(std::is_same_v<decltype(o.direction), std::int32_t>);
  static_assert(std::is_same_v<decltype(o.file_type), std::int32_t>);
  static_assert(std::is_same_v<decltype(o.delimiter), std::wstring>);
  static_assert(std::is_same_v<decltype(o.quote), std::wstring>);
  static_assert(std::is_same_v<decltype(o.encoding), std::int32_t>);
  static_assert(std::is_same_v<decltype(o.table), std::wstring>);

  const void* const members[] = {&o.path,      &o.header_position, &o.data_position,
                                 &o.direction, &o.file_type,       &o.delimiter,
                                 &o.quote,     &o.encoding,        &o.table};
  for (std::size_t i = 1; i < std::size(members); ++i) EXPECT_LT(members[i - 1], members[i]) << i;
}

TEST(fldType, hasItsNumbers) {
  static_assert(sizeof(tableRW::fldType) == 4);
  EXPECT_EQ(static_cast<int>(tableRW::fldText), 0);
  EXPECT_EQ(static_cast<int>(tableRW::fldNumber), 1);
}

TEST(fileType, hasItsNumbers) {
  EXPECT_EQ(tableRW::fileTypeAuto, 0);
  EXPECT_EQ(tableRW::fileTypeCsv, 1);
  EXPECT_EQ(tableRW::fileTypeXlsConverter, 2);
  EXPECT_EQ(tableRW::fileTypeXlsOdbc, 3);
  EXPECT_EQ(tableRW::fileTypeAccessOdbc, 4);
  EXPECT_EQ(tableRW::fileTypeDbf, 5);
  EXPECT_EQ(tableRW::fileTypeSqlite, 6);
  EXPECT_EQ(tableRW::fileTypeMicromineData, 7);
  EXPECT_EQ(tableRW::fileTypeMicromineDhdb, 8);
  EXPECT_EQ(tableRW::fileTypePetrel, 9);
}

TEST(capability_options, areFourFlags) {
  static_assert(sizeof(tableRW::capability_options) == 4 * sizeof(bool));
  const auto [first, second, third, fourth] = tableRW::capability_options{true, false, true, false};
  EXPECT_TRUE(first);
  EXPECT_FALSE(second);
  EXPECT_TRUE(third);
  EXPECT_FALSE(fourth);
}

}  // namespace

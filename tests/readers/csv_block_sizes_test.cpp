// A file read in blocks of every size from 1 to 4,096 bytes: what the blocks are must not show.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/codePages.h"
#include "table_rw/core/valueTable.h"
#include "table_rw/readers/csvBlockParser.h"
#include "table_rw/text/textModeFile.h"
#include "tests/reference/csvTwin.h"
#include "tests/reference/textTwin.h"
#include "tests/support/csvComparison.h"
#include "tests/support/temporaryFolder.h"

namespace {

using tableRW::textModeInput;
using testSupport::temporaryFolder;

constexpr std::size_t largestBlock = 4096;

// Line ends of every kind, characters of one to four bytes, quotes, values of many lengths.
std::string sampleTable() {
  std::string bytes;
  for (int i = 0; i < 60; ++i) {
    bytes += std::to_string(i) + ";\xD0\x96\xD0\xB8;" +
             std::string(static_cast<std::size_t>(i) % 37, 'v');
    bytes += i % 3 == 0 ? "\n" : i % 3 == 1 ? "\r\n" : "\r\r\n";
    if (i % 4 == 0) bytes += "\"a;b\";\xE2\x82\xAC; \xF0\x9F\x98\x80 \r\n";
    if (i % 9 == 0) bytes += "too;few\n;;\r\n\r\n1;2;3;4\n";
  }
  return bytes + "the last;line;without an end";
}

TEST(blockSizes, doNotShowInTheFoldedBytes) {
  const temporaryFolder folder;
  const std::string bytes = sampleTable() + "\r\r\n\r\x1A" + "behind the end";
  const std::wstring path = folder.write(L"t.csv", bytes);
  const std::string wanted = reference::foldTextMode(bytes);
  for (std::size_t size = 1; size <= largestBlock; ++size) {
    textModeInput input(size);
    ASSERT_TRUE(input.open(path));
    std::string folded;
    std::array<char, 100> chunk;
    while (const std::size_t got = input.getChunk(chunk.data(), chunk.size()))
      folded.append(chunk.data(), got);
    ASSERT_EQ(folded, wanted) << size;
    ASSERT_TRUE(input.atEnd());
  }
}

TEST(blockSizes, doNotShowInTheRows) {
  const temporaryFolder folder;
  const std::string bytes = sampleTable();
  const std::wstring path = folder.write(L"t.csv", bytes);
  const tableRW::tableReaderOptions options = testSupport::csvOptions().forFile(path);
  const testSupport::tableContent wanted = reference::readCsv("a;b;c\n" + bytes, options);
  for (std::size_t size = 1; size <= largestBlock; ++size) {
    textModeInput input(size);
    ASSERT_TRUE(input.open(path));
    tableRW::csvBlockParser parser(options, platform::utf8CodePage);
    tableRW::valueTable rows;
    std::vector<std::uint64_t> errors;
    parser.addRecords(input, 1, 3, rows, errors);
    ASSERT_TRUE(input.atEnd()) << size;
    ASSERT_EQ(errors, wanted.errors) << size;
    ASSERT_EQ(rows.rowCount(), wanted.rows.size()) << size;
    for (std::size_t row = 0; row < rows.rowCount(); ++row)
      for (std::size_t column = 0; column < 3; ++column)
        ASSERT_EQ(rows.text(row, column), wanted.rows[row][column]) << size;
  }
}

TEST(blockSizes, aLineTooLongForTheFastWayIsLeftToTheOther) {
  const temporaryFolder folder;
  const std::string longLine = std::string(300, 'x') + ";y\n";
  const std::wstring path = folder.write(L"t.csv", "1;2\n3;4\n" + longLine + "5;6\n");
  textModeInput input(64);
  ASSERT_TRUE(input.open(path));
  tableRW::csvBlockParser parser(testSupport::csvOptions().forFile(path), platform::utf8CodePage,
                                 200);
  tableRW::valueTable rows;
  std::vector<std::uint64_t> errors;
  EXPECT_EQ(parser.addRecords(input, 1, 2, rows, errors), 3U);
  EXPECT_EQ(rows.rowCount(), 2U);
  EXPECT_EQ(rows.text(1, 1), L"4");
  std::array<char, 400> line;
  EXPECT_EQ(std::string(line.data(), input.getChunk(line.data(), line.size())), longLine);
  EXPECT_EQ(parser.addRecords(input, 4, 2, rows, errors), 5U);
  EXPECT_EQ(rows.text(2, 1), L"6");
  EXPECT_EQ(input.getChunk(line.data(), line.size()), 0U);
}

}  // namespace

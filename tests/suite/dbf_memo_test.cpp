// Memo files of each kind, and block numbers that lead nowhere.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/dbfBuilder.h"
#include "tests/support/openedDbf.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"

namespace {

using namespace std::string_literals;
using testSupport::bigEndian;
using testSupport::dbfBuilder;
using testSupport::littleEndian;

std::string filled(std::string text, std::size_t size) {
  text.resize(size);
  return text;
}

// One text in block 1, another in block 2.
std::string dbase3() {
  return filled(littleEndian(3, 4), 512) + filled("first\x1A\x1A", 512) + "second, to the end";
}

std::string dbase4(std::uint64_t length, std::size_t blockSize = 512) {
  std::string header = filled(littleEndian(2, 4), 20) + littleEndian(blockSize, 2);
  return filled(header, blockSize == 0 ? 512 : blockSize) + "\xFF\xFF\x08\0"s +
         littleEndian(length, 4) + "first";
}

std::string foxPro(std::uint64_t kind, std::uint64_t length) {
  const std::string header = bigEndian(9, 4) + std::string(2, '\0') + bigEndian(64, 2);
  return filled(header, 512) + bigEndian(kind, 4) + bigEndian(length, 4) + "first";
}

struct row {
  const char* name;
  unsigned version;
  const wchar_t* memoName;
  std::string memo;
  std::string block;
  const char* expected;
  int line = __builtin_LINE();
};

// clang-format off
const std::vector<row> rows = {
    row{"dBASE III", 0x83, L"t.dbt", dbase3(), "         1", "first"},
    row{"dBASE III without an end mark", 0x83, L"t.dbt", dbase3(), "         2", "second, to the end"},
    row{"dBASE III, a text longer than a step", 0x83, L"t.dbt", filled("", 512) + std::string(9000, 'x') + "\x1A", "         1", nullptr},
    row{"a number at the left", 0x83, L"t.dbt", dbase3(), "1", "first"},
    row{"a number with zeros", 0x83, L"t.dbt", dbase3(), "0000000001", "first"},
    row{"no number", 0x83, L"t.dbt", dbase3(), "", "~"},
    row{"text instead of a number", 0x83, L"t.dbt", dbase3(), "        1x", "~"},
    row{"a negative number", 0x83, L"t.dbt", dbase3(), "        -1", "~"},
    row{"block 0", 0x83, L"t.dbt", dbase3(), "         0", "~"},
    row{"a block behind the end", 0x83, L"t.dbt", dbase3(), "         9", "~"},
    row{"a block far behind the end", 0x83, L"t.dbt", dbase3(), "9999999999", "~"},
    row{"a memo file in capitals", 0x83, L"T.DBT", dbase3(), "         1", "first"},
    row{"an empty memo file", 0x83, L"t.dbt", "", "         1", "~"},
    row{"another memo file", 0x83, L"other.dbt", dbase3(), "         1", "~"},
    row{"dBASE IV", 0x8B, L"t.dbt", dbase4(13), "         1", "first"},
    row{"dBASE IV, larger blocks", 0x8B, L"t.dbt", dbase4(13, 1024), "         1", "first"},
    row{"dBASE IV, no size of blocks", 0x8B, L"t.dbt", dbase4(13, 0), "         1", "first"},
    row{"dBASE IV, a length beyond the file", 0x8B, L"t.dbt", dbase4(14), "         1", "~"},
    row{"dBASE IV, the largest length", 0x8B, L"t.dbt", dbase4(0xFFFFFFFF), "         1", "~"},
    row{"dBASE IV, a length below its own header", 0x8B, L"t.dbt", dbase4(7), "         1", "~"},
    row{"dBASE IV, an empty text", 0x8B, L"t.dbt", dbase4(8), "         1", "~"},
    row{"dBASE IV, a block that begins otherwise", 0x8B, L"t.dbt", dbase3(), "         1", "~"},
    row{"dBASE 7", 0x8C, L"t.dbt", dbase4(13), "         1", "first"},
    row{"FoxPro 2", 0xF5, L"t.fpt", foxPro(1, 5), "         8", "first"},
    row{"FoxPro, a picture", 0xF5, L"t.fpt", foxPro(0, 5), "         8", "~"},
    row{"FoxPro, an object", 0xF5, L"t.fpt", foxPro(2, 5), "         8", "~"},
    row{"FoxPro, a length beyond the file", 0xF5, L"t.fpt", foxPro(1, 6), "         8", "~"},
    row{"FoxPro, the largest length", 0xF5, L"t.fpt", foxPro(1, 0xFFFFFFFF), "         8", "~"},
    row{"FoxPro, a block in the header", 0xF5, L"t.fpt", foxPro(1, 5), "         1", "~"},
    row{"a NUL ends the text", 0xF5, L"t.fpt", foxPro(1, 5).replace(522, 1, 1, '\0'), "         8", "fi"},
    row{"dBASE III with a memo file of FoxPro", 0x03, L"t.fpt", foxPro(1, 5), "         8", "first"},
};
// clang-format on

TEST(dbfMemo, table) {
  for (const row& each : rows) {
    const testing::ScopedTrace trace(__FILE__, each.line, each.name);
    const testSupport::temporaryFolder folder;
    folder.write(each.memoName, each.memo);
    const testSupport::ownedDbf table = testSupport::openDbf(
        folder.write(L"t.dbf", dbfBuilder("M M10", each.version).record(each.block).bytes()));
    ASSERT_NE(table, nullptr);
    const std::string expected = each.expected == nullptr ? std::string(9000, 'x') : each.expected;
    EXPECT_EQ(testSupport::valueOf(table.get(), 0, 0), expected);
    EXPECT_EQ(testSupport::recordsAtOnce(table.get()), expected);
  }
}

TEST(dbfMemo, visualFoxProKeepsTheNumberInFourBytes) {
  const testSupport::temporaryFolder folder;
  folder.write(L"t.fpt", foxPro(1, 5));
  const std::string bytes =
      dbfBuilder("M M4", 0x30).record(littleEndian(8, 4)).record(littleEndian(0, 4)).bytes();
  const testSupport::ownedDbf table = testSupport::openDbf(folder.write(L"t.dbf", bytes));
  EXPECT_EQ(testSupport::recordsOf(table.get()), "first / ~");
}

TEST(dbfMemo, ofTwoMemoFilesTheOneOfTheTablesKindIsTaken) {
  const testSupport::temporaryFolder folder;
  folder.write(L"t.dbt", filled("", 8 * 512) + "dBASE\x1A");
  folder.write(L"t.fpt", foxPro(1, 5));
  for (const unsigned version : {0x83u, 0x03u, 0xF5u, 0x30u, 0x31u, 0x32u}) {
    const testSupport::ownedDbf table = testSupport::openDbf(
        folder.write(L"t.dbf", dbfBuilder("M M10", version).record("         8").bytes()));
    const bool dbase = version == 0x83 || version == 0x03;
    EXPECT_EQ(testSupport::recordsOf(table.get()), dbase ? "dBASE" : "first") << version;
  }
}

// Blocks that point at themselves and at each other: there are no links to follow.
TEST(dbfMemo, nothingGoesRoundInCircles) {
  const testSupport::temporaryFolder folder;
  std::string memo = dbase4(13);
  memo.replace(0, 4, littleEndian(1, 4));    // the next free block is the one in use
  memo.replace(512, 4, littleEndian(1, 4));  // and that one names itself as the next free one
  folder.write(L"t.dbt", memo);
  const testSupport::ownedDbf table = testSupport::openDbf(
      folder.write(L"t.dbf", dbfBuilder("M M10", 0x8B).record("         1").bytes()));
  EXPECT_EQ(testSupport::recordsOf(table.get()), "~");
}

// A small table whose records all name one long text does not become a table of any size.
TEST(dbfMemo, aTextThatAllRecordsNameEndsSomewhere) {
  const testSupport::temporaryFolder folder;
  constexpr std::size_t size = 65536;
  folder.write(L"t.dbt", filled("", 512) + std::string(size, 'x') + "\x1A");
  dbfBuilder builder("M M10", 0x83);
  for (int i = 0; i < 400; ++i) builder.record("         1");
  const testSupport::ownedDbf table = testSupport::openDbf(folder.write(L"t.dbf", builder.bytes()));
  std::size_t texts = 0;
  for (std::int32_t record = 0; record < 400; ++record)
    texts += vo_dbf_get_record(table.get(), record)->bytes != nullptr ? 1U : 0U;
  EXPECT_GT(texts, 16u);
  EXPECT_LT(texts, 40u);
  ASSERT_NE(vo_dbf_get_record(table.get(), 0)->bytes, nullptr) << "a new pass begins anew";
  EXPECT_EQ(testSupport::valueOf(table.get(), 0, 399).size(), size) << "one value alone is there";
}

TEST(dbfMemo, everyCutOfAMemoFile) {
  const testSupport::temporaryFolder folder;
  for (const unsigned version : {0x83u, 0x8Bu, 0xF5u}) {
    const std::string memo = version == 0x83   ? dbase3()
                             : version == 0x8B ? dbase4(13)
                                               : foxPro(1, 5);
    const bool foxProFile = version == 0xF5;
    const std::wstring path = folder.write(
        L"t.dbf",
        dbfBuilder("M M10", version).record(foxProFile ? "         8" : "         1").bytes());
    for (std::size_t size = 0; size < memo.size(); size += size < 505 ? 101 : 1) {
      folder.write(foxProFile ? L"t.fpt" : L"t.dbt", memo.substr(0, size));
      const testSupport::ownedDbf table = testSupport::openDbf(path);
      const std::string text = testSupport::recordsOf(table.get());
      ASSERT_TRUE(text == "~" || (version == 0x83 && "first"s.starts_with(text))) << text;
    }
  }
}

// A memo file of no more than its header, and one of two texts, that others change while they are open.
TEST(dbfMemo, whatOthersDoMeanwhileIsNoText) {
  if (testSupport::onWindows) GTEST_SKIP() << "nobody can write to a file that is being read there";
  const testSupport::temporaryFolder folder;
  const std::wstring path =
      folder.write(L"t.dbf", dbfBuilder("M M10", 0x8B).record("         1").bytes());
  const std::filesystem::path memo(folder.write(L"t.dbt", dbase4(13).substr(0, 512)));
  const testSupport::ownedDbf grows = testSupport::openDbf(path);
  std::ofstream(memo, std::ios::binary | std::ios::app) << dbase4(13).substr(512);
  EXPECT_EQ(testSupport::recordsOf(grows.get()), "~");
  const testSupport::ownedDbf shrinks = testSupport::openDbf(path);
  EXPECT_EQ(testSupport::recordsOf(shrinks.get()), "first");
  std::filesystem::resize_file(memo, 522);
  EXPECT_EQ(testSupport::recordsOf(shrinks.get()), "~");
  std::filesystem::resize_file(memo, 515);
  EXPECT_EQ(testSupport::recordsOf(shrinks.get()), "~") << "not even the text's length is there";
}

}  // namespace

// Headers and records: which files open, how many records they hold, and how each of them is found.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/files.h"
#include "suite/file_dbf/dbfRecords.h"
#include "tests/support/dbfBuilder.h"
#include "tests/support/openedDbf.h"
#include "tests/support/randomNumbers.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"

namespace {

using namespace std::string_literals;
using testSupport::dbfBuilder;
using testSupport::littleEndian;
using testSupport::openDbf;
using testSupport::ownedDbf;
using testSupport::poked;

const std::string sample = dbfBuilder("A C3, B N4").row("one|1").row("two|2").row("six|6").bytes();
constexpr std::size_t sampleHeader = 32 + 2 * 32 + 1;
constexpr const char* sampleRecords = "one|1 / two|2 / six|6";

struct row {
  const char* name;
  std::string bytes;
  const char* expected;  // "refused", or the records
  int line = __builtin_LINE();
};

// clang-format off
const std::vector<row> rows = {
    row{"as it should be", sample, sampleRecords},
    row{"an empty file", "", "refused"},
    row{"a file of one byte", "\x03", "refused"},
    row{"text", "ID;NAME;DEPTH\n1;A;3\n2;B;4\n3;C;5\n", "refused"},
    row{"a version nobody knows", poked(sample, 0, "\x77"), sampleRecords},
    row{"an impossible date", poked(sample, 1, "\xFF\xFF\xFF"), sampleRecords},
    row{"no end mark of the file", sample.substr(0, sample.size() - 1), sampleRecords},
    row{"bytes behind the end mark", sample + std::string(127, ' '), sampleRecords},
    row{"NULs behind the records", sample.substr(0, sample.size() - 1) + std::string(400, '\0'), sampleRecords},
    row{"2^31 - 1 records in a short file", poked(sample, 4, littleEndian(0x7FFFFFFF, 4)), sampleRecords},
    row{"2^32 - 1 records in a short file", poked(sample, 4, littleEndian(0xFFFFFFFF, 4)), "one|1 / two|2 / six|6"},
    row{"a count that is too small", poked(sample, 4, littleEndian(1, 4)), sampleRecords},
    row{"a count that leaves out a deleted record", poked(dbfBuilder("A C1").row("1").row("2", '*').row("3").bytes(), 4, littleEndian(1, 4)), "1 / 3"},
    row{"a count of 0 after a crash", poked(sample, 4, littleEndian(0, 4)), sampleRecords},
    row{"the last record is cut", sample.substr(0, sample.size() - 3), "one|1 / two|2"},
    row{"the header alone", sample.substr(0, sampleHeader), ""},
    row{"the header but its last byte", sample.substr(0, sampleHeader - 1), "refused"},
    row{"records of no length", poked(sample, 10, littleEndian(0, 2)), "refused"},
    row{"records shorter than their fields", poked(sample, 10, littleEndian(7, 2)), "refused"},
    row{"records longer than their fields", dbfBuilder("A C2, B C1").row("ab|x").tail("").bytes().replace(32 + 32 + 16, 1, 1, '\0'), "ab|~"},
    row{"a field longer than a record", poked(sample, 32 + 16, "\xFE"), "refused"},
    row{"a header of no length", poked(sample, 8, littleEndian(0, 2)), "refused"},
    row{"a header of 31 bytes", poked(sample, 8, littleEndian(31, 2)), "refused"},
    row{"a header longer than the file", poked(sample, 8, littleEndian(65535, 2)), "refused"},
    row{"no field at all", dbfBuilder("").record("").record("").bytes(), " / "},
    row{"0A as the header's last byte", dbfBuilder("A C3").row("one").end("\x0A").bytes(), "one"},
    row{"00 as the end of the list", dbfBuilder("A C3").row("one").end("\0"s).bytes(), "one"},
    row{"no end of the list", dbfBuilder("A C3").row("one").end("").bytes(), "one"},
    row{"0A as the first letter of a name", dbfBuilder("A C1, \nB C1").row("x|y").bytes(), "x|y"},
    row{"a backlink that the header counts", dbfBuilder("A C3", 0x30).row("one").end("\x0D" + std::string(263, '\0')).bytes(), "one"},
    row{"a backlink that it does not count", dbfBuilder("A C3", 0x30).bytes().substr(0, 65) + std::string(263, '\0') + " one\x1A", "one"},
    row{"dBASE II", dbfBuilder("A C3, B N4.1", 0x02).row("one|1.5").row("two|2.5").bytes(), "one|1.5 / two|2.5"},
    row{"dBASE II, cut in its header", dbfBuilder("A C3", 0x02).row("one").bytes().substr(0, 520), "refused"},
    row{"dBASE II, lengths that do not add up", poked(dbfBuilder("A C3", 0x02).row("one").bytes(), 6, "\x09"), "refused"},
    row{"dBASE 7", dbfBuilder("a name longer than ten bytes C3", 0x8C).row("one").bytes(), "one"},
    row{"04 with the descriptors of dBASE IV", poked(sample, 0, "\x04"), sampleRecords},
    row{"a byte of decimals that is no length", poked(dbfBuilder("A C3, B C3").row("one|two").bytes(), 32 + 17, "\x02"), "one|two"},
    row{"the first record deleted", dbfBuilder("A C1").row("1", '*').row("2").row("3").bytes(), "2 / 3"},
    row{"the last record deleted", dbfBuilder("A C1").row("1").row("2").row("3", '*').bytes(), "1 / 2"},
    row{"all records deleted", dbfBuilder("A C1").row("1", '*').row("2", '*').bytes(), ""},
    row{"a record with a mark of its own is live", dbfBuilder("A C1").row("1", 'x').row("2").bytes(), "1 / 2"},
    row{"1A within the records does not end them", dbfBuilder("A C1").row("1").row("\x1A").row("3").bytes(), "1 / \x1A / 3"},
};
// clang-format on

TEST(dbfRecords, table) {
  const testSupport::temporaryFolder folder;
  for (const row& each : rows) {
    const testing::ScopedTrace trace(__FILE__, each.line, each.name);
    const ownedDbf table = openDbf(folder.write(L"t.dbf", each.bytes));
    EXPECT_EQ(table == nullptr ? "refused" : testSupport::recordsOf(table.get()), each.expected);
    if (table != nullptr) {
      EXPECT_EQ(testSupport::recordsAtOnce(table.get()), each.expected);
    }
  }
}

TEST(dbfRecords, fieldNames) {
  const testSupport::temporaryFolder folder;
  std::string bytes = dbfBuilder("NAME C1, PADDED C1, X C1").row("a|b|c").bytes();
  bytes = poked(bytes, 64, "PADDED    \0"s);
  bytes = poked(bytes, 96, "X\0garbage"s);
  const ownedDbf table = openDbf(folder.write(L"t.dbf", bytes));
  ASSERT_EQ(vo_dbf_get_nf(table.get()), 3u);
  EXPECT_EQ(testSupport::narrowNameOf(table.get(), 0), "NAME");
  EXPECT_EQ(testSupport::narrowNameOf(table.get(), 1), "PADDED");
  EXPECT_EQ(testSupport::narrowNameOf(table.get(), 2), "X");
  EXPECT_EQ(testSupport::narrowNameOf(table.get(), 3), "untouched");
}

TEST(dbfRecords, longNamesOfDbase7) {
  const testSupport::temporaryFolder folder;
  const std::string name(31, 'n');
  const ownedDbf table =
      openDbf(folder.write(L"t.dbf", dbfBuilder(name + " C3", 0x8C).row("one").bytes()));
  EXPECT_EQ(testSupport::narrowNameOf(table.get(), 0), name);
}

TEST(dbfRecords, recordsInAnyOrder) {
  const testSupport::temporaryFolder folder;
  testSupport::randomNumbers random(7);
  dbfBuilder builder("A N9, B C100");
  std::vector<std::string> live;
  for (int i = 0; i < 9000; ++i) {
    const bool deleted = random.onceIn(3) || (i > 3000 && i < 4000);
    builder.row(std::to_string(i), deleted ? '*' : ' ');
    if (!deleted) live.push_back(std::to_string(i));
  }
  const std::wstring path = folder.write(L"t.dbf", builder.bytes());
  const ownedDbf table = openDbf(path);
  for (int i = 0; i < 3000; ++i) {
    const std::size_t record = random.below(live.size() + 10);
    const std::string expected = record < live.size() ? live[record] : "~";
    ASSERT_EQ(testSupport::valueOf(table.get(), 0, static_cast<std::int32_t>(record)), expected);
    if (i == 1000) {
      ASSERT_EQ(vo_dbf_get_nr(table.get()), static_cast<std::int32_t>(live.size()));
    }
  }
  for (std::size_t record = live.size(); record-- > 0;)
    ASSERT_EQ(testSupport::valueOf(table.get(), 0, static_cast<std::int32_t>(record)),
              live[record]);
}

TEST(dbfRecords, aRecordLongerThanABlockHolds) {
  const testSupport::temporaryFolder folder;
  std::string fields;
  for (int i = 0; i < 250; ++i) fields += "F" + std::to_string(i) + " C255, ";
  fields.resize(fields.size() - 2);
  dbfBuilder builder(fields);
  for (int i = 0; i < 9; ++i) builder.row("r" + std::to_string(i));
  const ownedDbf table = openDbf(folder.write(L"t.dbf", builder.bytes()));
  ASSERT_EQ(vo_dbf_get_nr(table.get()), 9);
  for (int i = 8; i >= 0; --i)
    EXPECT_EQ(testSupport::valueOf(table.get(), 0, i), "r" + std::to_string(i));
}

// Values without bytes: some are allowed, and a small file that would fill the memory with them is none.
TEST(dbfRecords, fieldsOfNoLengthAreNoBomb) {
  const testSupport::temporaryFolder folder;
  std::string fields = "F C0";
  for (int i = 1; i < 2046; ++i) fields += ", F C0";
  const std::string bytes = dbfBuilder(fields).tail(std::string(500, ' ')).bytes();
  const ownedDbf table = openDbf(folder.write(L"t.dbf", bytes));
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(vo_dbf_get_nr(table.get()), 500);
  EXPECT_EQ(openDbf(folder.write(L"u.dbf", bytes + std::string(200000, ' '))), nullptr);
}

TEST(dbfRecords, whatIsNotThere) {
  const testSupport::temporaryFolder folder;
  const ownedDbf table = openDbf(folder.write(L"t.dbf", sample));
  for (const std::int32_t record : {-1, 3, 2147483647}) {
    EXPECT_EQ(testSupport::valueOf(table.get(), 0, record), "~");
    EXPECT_EQ(vo_dbf_get_record(table.get(), record), nullptr);
  }
  EXPECT_EQ(testSupport::valueOf(table.get(), 2, 0), "~");
  EXPECT_EQ(vo_dbf_get_field_type(table.get(), 2), 0);
  EXPECT_STREQ(vo_dbf_get_str(table.get(), 0, 1, nullptr), "two");
}

TEST(dbfRecords, onlyReadingIsAMode) {
  const testSupport::temporaryFolder folder;
  const std::wstring path = folder.write(L"t.dbf", sample);
  EXPECT_EQ(vo_dbf_open_w(path.c_str(), 0, 0), nullptr);
  EXPECT_EQ(vo_dbf_open_w(path.c_str(), 2, 0), nullptr);
  EXPECT_EQ(vo_dbf_open_w(nullptr, 1, 0), nullptr);
  EXPECT_EQ(vo_dbf_open_w(folder.file(L"missing.dbf").c_str(), 1, 0), nullptr);
  EXPECT_EQ(vo_dbf_open_w(folder.path().c_str(), 1, 0), nullptr) << "a folder";
}

TEST(dbfRecords, aNullHandleIsAccepted) {
  EXPECT_EQ(vo_dbf_get_nf(nullptr), 0u);
  EXPECT_EQ(vo_dbf_get_nr(nullptr), 0);
  EXPECT_EQ(vo_dbf_get_field_type(nullptr, 0), 0);
  EXPECT_EQ(testSupport::narrowNameOf(nullptr, 0), "untouched");
  EXPECT_EQ(testSupport::valueOf(nullptr, 0, 0), "~");
  EXPECT_STREQ(vo_dbf_get_str(nullptr, 0, 0, nullptr), "");
  EXPECT_EQ(vo_dbf_get_record(nullptr, 0), nullptr);
  EXPECT_FALSE(vo_dbf_has_failed(nullptr));
  EXPECT_EQ(vo_dbf_add_records(nullptr, 1), 0);
  EXPECT_EQ(vo_dbf_set_str_w(nullptr, 0, 0, L"x"), 0);
  vo_dbf_close(nullptr);
}

TEST(dbfRecords, aFileThatGrowsIsReadAsItWas) {
  if (testSupport::onWindows) GTEST_SKIP() << "nobody can write to a file that is being read there";
  const testSupport::temporaryFolder folder;
  const std::string grown = sample.substr(0, sample.size() - 1) + " new   7" + "\x1A";
  const std::wstring path = folder.write(L"t.dbf", sample);
  const ownedDbf table = openDbf(path);
  EXPECT_EQ(testSupport::valueOf(table.get(), 0, 0), "one");
  std::ofstream(std::filesystem::path(path), std::ios::binary | std::ios::in) << grown;
  EXPECT_EQ(testSupport::recordsOf(table.get()), sampleRecords);
  EXPECT_EQ(testSupport::recordsOf(openDbf(path).get()), sampleRecords + " / new|7"s);
}

TEST(dbfRecords, aFileThatShrinksEndsEarlier) {
  if (testSupport::onWindows) GTEST_SKIP() << "nobody can write to a file that is being read there";
  const testSupport::temporaryFolder folder;
  const std::wstring path = folder.write(L"t.dbf", sample);
  const ownedDbf table = openDbf(path);
  std::filesystem::resize_file(path, sampleHeader + 8 + 3);
  EXPECT_EQ(testSupport::recordsOf(table.get()), "one|1");
}

// Records behind 2^32 bytes, in a file that is mostly a hole. Reading it takes some seconds, so it has to be
// asked for: VOK_LARGE_FILES=1.
TEST(dbfRecords, positionsHaveMoreThan32Bits) {
  if (std::getenv("VOK_LARGE_FILES") == nullptr) GTEST_SKIP() << "VOK_LARGE_FILES is not set";
  const testSupport::temporaryFolder folder;
  dbfBuilder builder("A C250, B C250, C C250, D C249");
  const std::uint64_t records = 4400000;
  std::string header = builder.bytes().substr(0, builder.headerLength());
  header = poked(header, 4, littleEndian(records, 4));
  const std::wstring path = folder.file(L"t.dbf");
  platform::binaryFile file;
  ASSERT_TRUE(file.openForWriting(path));
  ASSERT_TRUE(file.write(header.data(), header.size()));
  const std::uint64_t last = header.size() + (records - 1) * builder.recordLength();
  if (testSupport::onWindows || !file.seek(last))
    GTEST_SKIP() << "a file with a hole costs too much";
  const std::string record = " last" + std::string(builder.recordLength() - 5, ' ') + "\x1A";
  ASSERT_TRUE(file.write(record.data(), record.size()));
  ASSERT_TRUE(file.close());
  platform::binaryFile source;
  ASSERT_TRUE(source.openForReading(path));
  auto parsed = fileDbf::readHeader(source);
  ASSERT_TRUE(parsed.has_value());
  fileDbf::recordSource found(std::move(source), *parsed);
  EXPECT_EQ(found.count(), records);
  const char* const bytes = found.record(static_cast<std::uint32_t>(records - 1));
  ASSERT_NE(bytes, nullptr);
  EXPECT_EQ(std::string(bytes, 5), " last");
}

}  // namespace

// The Petrel reader and its slow twin: random files, files cut at every byte, lines of every length and over
// block borders, and input that is too large to be meant well. Fixed seeds: a failure repeats.
// Real files are no part of the project: the environment variable VOK_REAL_FILES names the folder that holds
// them in its subfolder petrel. Without it that test is skipped.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "table_rw/readers/tableReader_petrel.h"
#include "tests/reference/petrelTwin.h"
#include "tests/support/failingAllocations.h"
#include "tests/support/randomNumbers.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_view_literals;
using tableRW::tableReader_petrel;
using tableRW::tableReaderOptions;
using testSupport::contentOf;
using testSupport::describe;
using testSupport::randomNumbers;
using testSupport::shortened;
using testSupport::temporaryFolder;

constexpr std::size_t blockSize = std::size_t{256} * 1024;
const std::string header = "# Petrel well tops\nBEGIN HEADER\nA\nB\nEND HEADER\n";

// Empty when library and twin agree.
std::string differenceFromTwin(const std::wstring& path, std::string_view bytes,
                               std::int32_t limit = -1) {
  tableReader_petrel reader{tableReaderOptions(path)};
  if (!reader.readDemo(limit)) return "the read has failed";
  const testSupport::tableContent twin = reference::readPetrel(bytes, limit);
  if (contentOf(reader) != twin)
    return "library " + shortened(describe(reader)) + "\ntwin    " + shortened(describe(twin));
  if (!reader.readOnlyHeaders()) return "the headers have failed";
  return contentOf(reader) == reference::readPetrel(bytes, limit, true) ? "" : "the headers differ";
}

std::string randomData(randomNumbers& random, std::size_t size) {
  static constexpr std::string_view pieces[] = {
      " "sv,    " "sv,        " "sv,         "\""sv,  "-999"sv, "\"NULL\""sv,    "1200.5"sv,
      "\n"sv,   " \n"sv,      "\r\n"sv,      "\r"sv,  "\t"sv,   "\"A 1\""sv,     "x"sv,
      "\xCF"sv, "\xFF\x98"sv, " \"a b\" "sv, "   "sv, "-"sv,    "a long value"sv};
  const bool nuls = random.onceIn(3);
  std::string bytes;
  while (bytes.size() < size) {
    bytes += random.oneOf(pieces);
    if (nuls && random.onceIn(50)) bytes += '\0';
    if (random.onceIn(5000)) bytes += '\x1A';
    if (random.onceIn(200)) bytes.append(random.below(3000), 'y');
  }
  return bytes;
}

TEST(petrelTwin, agreesOnRandomFiles) {
  const temporaryFolder folder;
  randomNumbers random(91);
  constexpr std::int32_t limits[] = {-1, -1, -1, 0, 1, 3, 50, -5};
  for (int round = 0; round < 300; ++round) {
    const std::string bytes = header + randomData(random, random.below(20000));
    ASSERT_EQ(differenceFromTwin(folder.write(L"t", bytes), bytes, random.oneOf(limits)), "")
        << "round " << round;
  }
}

TEST(petrelTwin, agreesOnRandomHeaders) {
  static constexpr std::string_view lines[] = {
      "BEGIN HEADER", "END HEADER",          "A",       "", " B ", "# Petrel x", "end header",
      "END HEADER ",  "BEGIN HEADER\0x\n"sv, "1 2 \0"sv};
  const temporaryFolder folder;
  randomNumbers random(92);
  for (int round = 0; round < 500; ++round) {
    std::string bytes;
    for (std::size_t i = random.below(14); i > 0; --i)
      bytes.append(random.oneOf(lines)).append(random.onceIn(3) ? "\r\n" : "\n");
    if (random.onceIn(2) && !bytes.empty()) bytes.pop_back();
    ASSERT_EQ(differenceFromTwin(folder.write(L"t", bytes), bytes), "") << "round " << round;
  }
}

TEST(petrelTwin, agreesAcrossBlockBorders) {
  const temporaryFolder folder;
  randomNumbers random(93);
  for (const std::string_view over :
       {"1 2 \r\n3 4 \r\n"sv, "\"a b\" \xCF 3 \n"sv, "1 \0 2 \n3 \n"sv, "-999 \"NULL\" \n"sv,
        "1 2 \r\r\n3 \x1A 4 \n"sv}) {
    for (std::size_t before = 0; before <= over.size(); ++before) {
      std::string bytes = header;
      while (bytes.size() + 8 < blockSize - before) bytes += "123 456 \n";
      bytes.insert(header.size(), blockSize - before - std::min(bytes.size(), blockSize - before),
                   ' ');
      bytes += over;
      bytes += randomData(random, 300);
      ASSERT_EQ(differenceFromTwin(folder.write(L"t", bytes), bytes), "") << before;
    }
  }
}

TEST(petrelTwin, agreesOnEveryLengthOfALine) {
  const temporaryFolder folder;
  std::string bytes = header;
  for (std::size_t length = 0; length <= 2100; ++length) {
    bytes.append(length / 2, 'x').append(" ").append(length - length / 2, '\xDF');
    if (length % 7 == 0) bytes += '\0';
    bytes += length % 5 == 0 ? " \r\n" : " \n";
  }
  EXPECT_EQ(differenceFromTwin(folder.write(L"t", bytes), bytes), "");
}

TEST(petrelDamage, aFileCutAtEveryByte) {
  const temporaryFolder folder;
  const std::string whole = header + "\"A 1\" 1200.5 -999 \r\n\"NULL\" x \n\n 1 2 3 \n";
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    const std::string bytes = whole.substr(0, size);
    ASSERT_EQ(differenceFromTwin(folder.write(L"t", bytes), bytes), "") << size;
  }
}

// Text of Petrel is Windows-1251 or its neighbours; of others the reader makes what the rules say.
TEST(petrelDamage, filesInOtherEncodings) {
  const temporaryFolder folder;
  const std::string plain = header + "\"A 1\" 1200.5 -999 \n\"NULL\" x \n";
  std::string low = "\xFF\xFE";
  std::string high = "\xFE\xFF";
  for (const char c : plain) {
    low.append(1, c).append(1, '\0');
    high.append(1, '\0').append(1, c);
  }
  for (const std::string& bytes : {"\xEF\xBB\xBF" + plain, low, high, header + low, header + high})
    EXPECT_EQ(differenceFromTwin(folder.write(L"t", bytes), bytes), "");
}

TEST(petrelDamage, aHeaderOfAHundredThousandNames) {
  const temporaryFolder folder;
  std::string bytes = "# Petrel x\nBEGIN HEADER\n";
  for (int i = 0; i < 100000; ++i) bytes += "name " + std::to_string(i) + "\n";
  bytes += "END HEADER\n1 2 \n";
  tableReader_petrel reader{tableReaderOptions(folder.write(L"t", bytes))};
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.fieldCount(), 100000u);
  EXPECT_EQ(reader.fieldName(99999), L"name 99999");
  EXPECT_EQ(reader.value(std::size_t{99999}, 0), L"");
  EXPECT_EQ(reader.count(), 1u);
}

TEST(petrelDamage, aLineOfAHundredMegabytes) {
  constexpr std::size_t size = 100000000;
  const temporaryFolder folder;
  std::string bytes = header + "\"open ";
  bytes.resize(size, 'x');
  bytes += " \n1 ";
  bytes.append(size / 2, 'y');
  bytes += " \n3 4 \n";
  tableReader_petrel reader{tableReaderOptions(folder.write(L"t", bytes))};
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 3u);
  EXPECT_EQ(reader.value(std::size_t{0}, 0), L"") << "the quotes never close";
  EXPECT_EQ(reader.value(std::size_t{1}, 1).size(), size / 2);
  EXPECT_EQ(reader.value(std::size_t{1}, 2), L"4");
}

TEST(petrelDamage, noAllocationThatFailsIsTakenForAnAnswer) {
  const temporaryFolder folder;
  const std::string bytes = header + "1 2 \n3\0x\n 4 \n" + std::string(5000, 'x') + " \n";
  const tableReaderOptions options(folder.write(L"t", bytes));
  tableReader_petrel whole(options);
  ASSERT_TRUE(whole.read());
  std::size_t number = 0;
  for (bool failed = true; failed; ++number) {
    ASSERT_LT(number, 10000u);
    tableReader_petrel reader(options);
    bool thrown = false;
    {
      const testSupport::failingAllocation failing(number);
      try {
        reader.read();
      } catch (const std::bad_alloc&) {
        thrown = true;
      }
      failed = failing.hasFailed();
    }
    EXPECT_EQ(thrown, failed) << number;
    ASSERT_TRUE(reader.read());
    ASSERT_EQ(describe(reader), describe(whole)) << number;
  }
  EXPECT_GT(number, 5u);
}

TEST(petrelRealFiles, areReadWhole) {
  std::vector<fs::path> files;
  if (const char* const folder = std::getenv("VOK_REAL_FILES")) {
    std::error_code failure;
    for (auto entry = fs::recursive_directory_iterator(fs::path(folder) / "petrel", failure);
         !failure && entry != fs::recursive_directory_iterator(); entry.increment(failure))
      if (entry->is_regular_file()) files.push_back(entry->path());
  }
  if (files.empty()) GTEST_SKIP() << "VOK_REAL_FILES names no folder with Petrel tables";
  for (const fs::path& file : files) {
    const std::optional<std::string> bytes = testSupport::readFile(file.wstring());
    ASSERT_TRUE(bytes.has_value()) << file;
    EXPECT_EQ(differenceFromTwin(file.wstring(), *bytes), "") << file;
    tableReader_petrel reader{tableReaderOptions(file.wstring())};
    ASSERT_TRUE(reader.read());
    EXPECT_GT(reader.fieldCount(), 0u) << file;
    EXPECT_GT(reader.count(), 0u) << file;
    std::vector<std::wstring> row;
    for (std::size_t i = 0; i < reader.count(); ++i) {
      reader.getRow(i, row);
      EXPECT_EQ(row.size(), reader.fieldCount()) << file << ", row " << i;
    }
  }
}

}  // namespace

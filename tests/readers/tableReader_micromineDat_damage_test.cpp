// Damaged data files: cut at every byte of the header and at places in the records, every byte of the header
// changed, random bytes, files that promise much, allocations that fail. What opens has rows of full width
// and no more of them than the file has bytes, and gives the same table again. Fixed seeds.
#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "table_rw/readers/tableReader_micromineDat.h"
#include "tests/support/failingAllocations.h"
#include "tests/support/micromineBuilder.h"
#include "tests/support/randomNumbers.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using tableRW::tableReader_micromineDat;
using tableRW::tableReaderOptions;
using testSupport::describe;
using testSupport::micromineBuilder;
using testSupport::randomNumbers;
using testSupport::temporaryFolder;

std::string sample() {
  micromineBuilder builder("WELL C8, N N6.2, X R8.3, F F4.1, L L4, S S2, TENLETTERS C3");
  builder.describe(6, "TENLETTERSLONG");
  for (int i = 0; i < 300; ++i)
    builder.row("W-" + std::to_string(i) + "|" + std::to_string(i) + "|1.25|0.5|7|8|x");
  return builder.bytes();
}

// Rows of what is read, or -1; the table is looked at whole.
std::int64_t rowsOf(const std::wstring& path, std::size_t fileSize) {
  tableReader_micromineDat reader{tableReaderOptions(path)};
  if (!reader.read()) {
    EXPECT_EQ(describe(reader), "failed");
    return -1;
  }
  const std::string content = describe(reader);
  EXPECT_LE(reader.count(), fileSize);
  std::vector<std::wstring> row;
  for (std::size_t i = 0; i < reader.count(); ++i) {
    reader.getRow(i, row);
    EXPECT_EQ(row.size(), reader.fieldCount());
  }
  tableReader_micromineDat again{tableReaderOptions(path)};
  EXPECT_TRUE(again.read());
  EXPECT_EQ(describe(again), content);
  return static_cast<std::int64_t>(reader.count());
}

TEST(micromineDamage, cutAtEveryByteOfTheHeader) {
  const temporaryFolder folder;
  const std::string whole = sample();
  const std::size_t header = whole.find("W-0 ");
  // The metadata's page as a whole is one state; of it every 64th byte does.
  for (std::size_t size = 0; size<header; size += size> 600 && size < 4000 ? 64 : 1)
    ASSERT_EQ(rowsOf(folder.write(L"t", whole.substr(0, size)), size), -1) << size;
  EXPECT_EQ(rowsOf(folder.write(L"t", whole.substr(0, header)), header), 0);
}

TEST(micromineDamage, cutAtTwoHundredPlacesOfItsRecords) {
  const temporaryFolder folder;
  const std::string whole = sample();
  const std::size_t header = whole.find("W-0 ");
  constexpr std::size_t values = 8 + 6 + 8 + 4 + 4 + 2 + 3;
  for (std::size_t i = 0; i < 200; ++i) {
    const std::size_t size = header + (whole.size() - header) * i / 200;
    const std::size_t left = size - header;
    const std::size_t rows = left / (values + 2) + (left % (values + 2) >= values ? 1 : 0);
    ASSERT_EQ(rowsOf(folder.write(L"t", whole.substr(0, size)), size),
              static_cast<std::int64_t>(rows))
        << size;
  }
}

TEST(micromineDamage, everyByteOfTheHeaderChanged) {
  const temporaryFolder folder;
  const std::string whole = sample();
  const std::size_t header = whole.find("W-0 ");
  randomNumbers random(7);
  for (std::size_t at = 0; at<header + 40; at += at> 600 && at < 4096 ? 97 : 1) {
    std::string bytes = whole;
    bytes[at] = static_cast<char>(random.below(256));
    rowsOf(folder.write(L"t", bytes), bytes.size());
  }
}

TEST(micromineDamage, bytesPutInAndTakenOut) {
  const temporaryFolder folder;
  const std::string whole = sample();
  randomNumbers random(8);
  for (int round = 0; round < 200; ++round) {
    std::string bytes = whole;
    const std::size_t at = 4096 + random.below(whole.size() - 4096);
    if (random.onceIn(2))
      bytes.insert(at, 1 + random.below(3), static_cast<char>(random.below(256)));
    else
      bytes.erase(at, 1 + random.below(50));
    rowsOf(folder.write(L"t", bytes), bytes.size());
  }
}

TEST(micromineDamage, bytesPutInAreNotReadAsValues) {
  const temporaryFolder folder;
  std::string bytes = sample();
  bytes.insert(bytes.find("W-100"), 1, '?');
  tableReader_micromineDat reader{tableReaderOptions(folder.write(L"t", bytes))};
  ASSERT_TRUE(reader.read());
  EXPECT_EQ(reader.value(std::size_t{0}, 99), L"W-99");
  for (std::size_t row = 100; row < reader.count(); ++row)
    EXPECT_EQ(reader.value(std::size_t{0}, row), L"") << row;
}

TEST(micromineDamage, randomRecords) {
  const temporaryFolder folder;
  randomNumbers random(9);
  for (int round = 0; round < 100; ++round) {
    micromineBuilder builder("A C5, B N4, X R8, F F4, L L4, S S2");
    for (std::size_t rows = random.below(20); rows > 0; --rows) {
      std::string bytes;
      for (int i = 0; i < 27; ++i) bytes += static_cast<char>(random.below(256));
      builder.record(bytes);
    }
    EXPECT_GE(rowsOf(folder.write(L"t", builder.bytes()), builder.bytes().size()), 0);
  }
}

TEST(micromineDamage, nineThousandVariablesAndFewBytes) {
  const temporaryFolder folder;
  std::string variables;
  for (int i = 0; i < 9999; ++i) variables += i > 0 ? ", V C999" : "V C999";
  micromineBuilder builder(variables);
  EXPECT_EQ(rowsOf(folder.write(L"t", builder.bytes()), builder.bytes().size()), 0);
  const std::string cut = builder.bytes() + std::string(100000, 'x');
  EXPECT_EQ(rowsOf(folder.write(L"t", cut), cut.size()), 0) << "no whole record";
}

TEST(micromineDamage, noAllocationThatFailsIsTakenForAnAnswer) {
  const temporaryFolder folder;
  const tableReaderOptions options(folder.write(L"t", sample()));
  tableReader_micromineDat whole(options);
  ASSERT_TRUE(whole.read());
  for (const bool headersOnly : {false, true}) {
    std::size_t number = 0;
    for (bool failed = true; failed; ++number) {
      ASSERT_LT(number, 10000u);
      tableReader_micromineDat reader(options);
      bool thrown = false;
      {
        const testSupport::failingAllocation failing(number);
        try {
          headersOnly ? reader.readOnlyHeaders() : reader.read();
        } catch (const std::bad_alloc&) {
          thrown = true;
        }
        failed = failing.hasFailed();
      }
      EXPECT_EQ(thrown, failed) << number;
      tableReader_micromineDat again(options);
      ASSERT_TRUE(again.read());
      ASSERT_EQ(describe(again), describe(whole)) << number;
    }
    EXPECT_GT(number, 10u);
  }
}

}  // namespace

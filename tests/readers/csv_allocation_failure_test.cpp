// Every allocation of a read fails once: the standard exception comes out, nothing leaks (the build with
// AddressSanitizer tells), and the reader reads the file as if nothing had happened afterwards.
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>

#include "table_rw/core/tableReader.h"
#include "table_rw/writers/tableWriter.h"
#include "tests/support/csvComparison.h"
#include "tests/support/failingAllocations.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using testSupport::csvOptions;
using testSupport::describe;
using testSupport::failingAllocation;
using testSupport::temporaryFolder;

constexpr std::size_t mostAllocations = 10000;  // a bound for the loop, far above what a read makes

std::string sampleTable() {
  std::string bytes = "a;b;c\n";
  for (int i = 0; i < 40; ++i)
    bytes += "1;\"two; and more\";" + std::string(static_cast<std::size_t>(i) * 20, 'x') + "\n" +
             "a value too few;\n" + "\xFF;broken;3\n";
  return bytes;
}

TEST(csvAllocationFailure, readAnswersWithTheStandardExceptionOrInFull) {
  const temporaryFolder folder;
  tableRW::tableReaderOptions options = csvOptions().forFile(folder.write(L"t.csv", sampleTable()));
  const std::unique_ptr<tableRW::tableReader> whole(tableRW::tableReader::open(options));
  ASSERT_TRUE(whole->read());
  const std::string expected = describe(*whole);

  std::size_t number = 0;
  for (bool failed = true; failed; ++number) {
    ASSERT_LT(number, mostAllocations);
    const std::unique_ptr<tableRW::tableReader> reader(tableRW::tableReader::open(options));
    bool thrown = false;
    {
      const failingAllocation failing(number);
      try {
        reader->read();
      } catch (const std::bad_alloc&) {
        thrown = true;
      }
      failed = failing.hasFailed();
    }
    EXPECT_EQ(thrown, failed) << number;
    ASSERT_TRUE(reader->read()) << number;
    ASSERT_EQ(describe(*reader), expected) << number;
  }
  EXPECT_GT(number, 10U);  // the sweep has met allocations at all
}

TEST(csvAllocationFailure, openGivesAReaderOrTheStandardException) {
  const temporaryFolder folder;
  // An unknown extension, so that the first line is read too.
  tableRW::tableReaderOptions options = csvOptions().forFile(folder.write(L"t.txt", sampleTable()));
  bool failed = true;
  for (std::size_t number = 0; failed; ++number) {
    ASSERT_LT(number, mostAllocations);
    const failingAllocation failing(number);
    tableRW::tableReader* reader = nullptr;
    try {
      reader = tableRW::tableReader::open(options);
      EXPECT_NE(reader, nullptr);
    } catch (const std::bad_alloc&) {
      EXPECT_EQ(reader, nullptr);
    }
    failed = failing.hasFailed();
    tableRW::tableReader::close(reader);
  }
}

TEST(csvAllocationFailure, aWriterGoesOnAfterAFailure) {
  const temporaryFolder folder;
  const std::vector<std::wstring> row = {L"a value that needs memory of its own", L"\u0416"};
  bool failed = true;
  for (std::size_t number = 0; failed; ++number) {
    ASSERT_LT(number, mostAllocations);
    tableRW::tableWriterOptions options;
    options.fileName = folder.file(L"out.csv");
    tableRW::tableWriter* const writer = tableRW::tableWriter::open(options);
    {
      const failingAllocation failing(number);
      try {
        writer->addRow(row);
      } catch (const std::bad_alloc&) {
        EXPECT_TRUE(failing.hasFailed());
      }
      failed = failing.hasFailed();
    }
    EXPECT_TRUE(writer->addRow(row));
    tableRW::tableWriter::close(writer);
    const std::string line = "a value that needs memory of its own;\xC6\r\n";
    const std::string written = testSupport::readFile(folder.file(L"out.csv")).value_or("");
    EXPECT_EQ(written, failed ? line : line + line) << number;
  }
}

}  // namespace

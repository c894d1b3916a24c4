// The reader factory: what a reader is told of its options, where the data begins, and that opening
// reads nothing.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "table_rw/core/readerVariants.h"
#include "table_rw/core/tableReader.h"
#include "table_rw/readers/tableReader_dummy.h"
#include "tests/support/filledReader.h"
#include "tests/support/ownedReader.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using tableRW::tableReader;
using tableRW::tableReader_dummy;
using tableRW::tableReaderOptions;
using testSupport::describe;
using testSupport::openReader;
using testSupport::ownedReader;
using testSupport::temporaryFolder;

// The options that reached a reader.
const tableReaderOptions& optionsOf(const tableReader& reader) {
  return reader.*&testSupport::filledReader::options_;
}

bool isDummy(const tableReader& reader) {
  return dynamic_cast<const tableReader_dummy*>(&reader) != nullptr;
}

constexpr std::uint64_t allOnes = std::numeric_limits<std::uint64_t>::max();
constexpr std::int32_t unknownType = 12;

// ---- positions ----------------------------------------------------------------------------------

struct positionRow {
  const char* name;
  std::int32_t header;
  std::uint64_t data;
  std::uint64_t dataThatArrives;
  int line = __builtin_LINE();
};

constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();
constexpr std::uint64_t farthest = 0xFFFFFFFF80000000;  // the smallest one, widened

const positionRow positionRows[] = {
    positionRow{"the defaults",                       0,        1,            1           },
    positionRow{"data in the header line",            0,        0,            1           },
    positionRow{"data further below",                 0,        7,            7           },
    positionRow{"data above the header",              5,        3,            6           },
    positionRow{"data in a later header",             5,        5,            6           },
    positionRow{"right below a later header",         5,        6,            6           },
    positionRow{"data at the end of the world",       5,        allOnes,      allOnes     },
    positionRow{"no header, data 0",                  -1,       0,            0           },
    positionRow{"no header, data 1",                  -1,       1,            0           },
    positionRow{"no header, data 1000",               -1,       1000,         0           },
    positionRow{"no header, data all ones but one",   -1,       allOnes - 1,  0           },
    positionRow{"no header, all ones is not greater", -1,       allOnes,      0           },
    positionRow{"header -2 leaves no room",           -2,       0,            allOnes     },
    positionRow{"header -2, data equal to it",        -2,       allOnes - 1,  allOnes     },
    positionRow{"header -2, data greater",            -2,       allOnes,      allOnes     },
    positionRow{"header -3",                          -3,       5,            allOnes - 1 },
    positionRow{"header -3, data greater by one",     -3,       allOnes - 1,  allOnes - 1 },
    positionRow{"header -3, data greater by two",     -3,       allOnes,      allOnes     },
    positionRow{"largest header, data below",         largest,  2147483648,   2147483648  },
    positionRow{"largest header wraps round",         largest,  0,            farthest    },
    positionRow{"largest header, data in it",         largest,  2147483647,   farthest    },
    positionRow{"smallest header",                    smallest, 1,            farthest + 1},
    positionRow{"smallest header, data in it",        smallest, farthest,     farthest + 1},
    positionRow{"smallest header, data greater",      smallest, farthest + 5, farthest + 5},
};

TEST(readerFactoryOptions, positions) {
  temporaryFolder folder;
  const std::wstring sniffed = folder.write(L"table.txt", "a;b\n1;2\n");
  for (const positionRow& r : positionRows) {
    const testing::ScopedTrace trace(__FILE__, r.line, r.name);
    for (const auto& [path, fileType] :
         {std::pair(sniffed, 0), std::pair(sniffed, 1), std::pair(std::wstring(L"gone.csv"), 0)}) {
      tableReaderOptions options(path);
      options.header_position = r.header;
      options.data_position = r.data;
      options.file_type = fileType;
      const ownedReader reader = openReader(options);
      EXPECT_EQ(optionsOf(*reader).header_position, r.header);
      EXPECT_EQ(optionsOf(*reader).data_position, r.dataThatArrives);
      EXPECT_EQ(options.data_position, r.data) << "the caller's record stays as it was";
    }
  }
}

struct readRow {
  const char* name;
  std::int32_t header;
  std::uint64_t data;
  const char* expected;
  int line = __builtin_LINE();
};

const readRow readRows[] = {
    readRow{"the defaults",           0,  1, "fields a|b  rows 1|2 / 3|4 / 5|6  ok"},
    readRow{"data moves down",        1,  0, "fields 1|2  rows 3|4 / 5|6  ok"      },
    readRow{"data further below",     0,  3, "fields a|b  rows 5|6  ok"            },
    readRow{"no header, data from 1", -1, 1,
            "fields field_0|field_1  rows a|b / 1|2 / 3|4 / 5|6  ok"               },
    readRow{"no header, data from 3", -1, 3,
            "fields field_0|field_1  rows a|b / 1|2 / 3|4 / 5|6  ok"               },
    readRow{"header -2 has no data",  -2, 0, "fields field_0|field_1  ok"          },
};

TEST(readerFactoryOptions, positionsAsTheReaderUsesThem) {
  temporaryFolder folder;
  const std::wstring path = folder.write(L"table.csv", "a;b\n1;2\n3;4\n5;6\n");
  for (const readRow& r : readRows) {
    const testing::ScopedTrace trace(__FILE__, r.line, r.name);
    tableReaderOptions options(path);
    options.header_position = r.header;
    options.data_position = r.data;
    const ownedReader reader = openReader(options);
    EXPECT_TRUE(reader->read());
    EXPECT_EQ(describe(*reader), r.expected);
  }
}

TEST(readerFactoryOptions, everyOtherOptionArrivesAsItIs) {
  tableReaderOptions options(L"dir.x/nowhere.csv");
  options.direction = 7;
  options.delimiter = L"<>";
  options.quote = L"'";
  options.encoding = 8;
  options.table = L"T";
  const ownedReader reader = openReader(options);
  const tableReaderOptions& arrived = optionsOf(*reader);
  EXPECT_EQ(arrived.path, L"dir.x/nowhere.csv");
  EXPECT_EQ(arrived.direction, 7);
  EXPECT_EQ(arrived.file_type, 0);
  EXPECT_EQ(arrived.delimiter, L"<>");
  EXPECT_EQ(arrived.quote, L"'");
  EXPECT_EQ(arrived.encoding, 8);
  EXPECT_EQ(arrived.table, L"T");
}

// ---- the reader that comes out ------------------------------------------------------------------

TEST(readerFactoryOptions, nothingIsReadByOpening) {
  temporaryFolder folder;
  const ownedReader reader =
      openReader(tableReaderOptions(folder.write(L"table.txt", "a;b\n1;2\n")));
  EXPECT_EQ(describe(*reader), "failed");
  EXPECT_TRUE(reader->read());
  EXPECT_EQ(describe(*reader), "fields a|b  rows 1|2  ok");
}

TEST(readerFactoryOptions, theReaderKeepsAPathAndATableOfItsOwn) {
  tableReaderOptions options(L"dir/wells.csv");
  options.table = L"Sheet1";
  const ownedReader reader = openReader(options);
  tableReaderOptions other = options;
  options.path = L"changed";
  EXPECT_EQ(reader->path(), L"dir/wells.csv");
  EXPECT_TRUE(reader->isSameFile(other));
  other.header_position = 5;
  other.encoding = 8;
  EXPECT_TRUE(reader->isSameFile(other)) << "only path and table are compared";
  other.table = L"sheet1";
  EXPECT_FALSE(reader->isSameFile(other));
  other.table.clear();
  EXPECT_FALSE(reader->isSameFile(other));
  EXPECT_FALSE(reader->isSameFile(options));
  other.table = L"Sheet1";
  other.path = L"dir/Wells.csv";
  EXPECT_FALSE(reader->isSameFile(other));
  other.path = L"dir\\wells.csv";
  EXPECT_FALSE(reader->isSameFile(other));
}

TEST(readerFactoryOptions, theDummyForgetsWhatItWasOpenedWith) {
  tableReaderOptions options(L"dir/gone");
  options.table = L"T";
  const ownedReader reader = openReader(options);
  ASSERT_TRUE(isDummy(*reader));
  EXPECT_EQ(reader->path(), L"");
  EXPECT_FALSE(reader->isSameFile(options));
  EXPECT_TRUE(reader->isSameFile(tableReaderOptions()));
  tableReaderOptions tableOnly;
  tableOnly.table = L"T";
  EXPECT_FALSE(reader->isSameFile(tableOnly));
}

TEST(readerFactoryOptions, theDummyReadsNothing) {
  tableReaderOptions options(L"x");
  options.file_type = unknownType;
  const ownedReader reader = openReader(options);
  EXPECT_FALSE(reader->readOnlyHeaders());
  EXPECT_FALSE(reader->readDemo(1));
  EXPECT_FALSE(reader->read());
  reader->setTable(L"T");
  EXPECT_TRUE(reader->isSameFile(tableReaderOptions())) << "the table's name is ignored";
  std::vector<std::wstring> list{L"left", L"alone"};
  reader->tableList(list);
  EXPECT_EQ(describe(list), "left|alone");
  const tableRW::capability_options flags = reader->get_capabilities();
  const auto [first, second, third, fourth] = flags;
  EXPECT_TRUE(first && second && third && fourth);
  EXPECT_EQ(describe(*reader), "failed");
}

TEST(readerFactoryOptions, makeDummyReaderMakesOne) {
  const ownedReader reader(tableRW::makeDummyReader(tableReaderOptions(L"x.csv")));
  EXPECT_TRUE(isDummy(*reader));
  EXPECT_EQ(reader->path(), L"");
}

}  // namespace

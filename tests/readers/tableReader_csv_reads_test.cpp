// The CSV reader as an object: its read calls one after another, its files, and the lines it
// rejects.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <stdexcept>
#include <vector>

#include "platform/files.h"
#include "table_rw/readers/tableReader_csv.h"
#include "tests/support/csvComparison.h"

namespace {

using namespace std::string_literals;
using tableRW::rejectedRecord;
using tableRW::tableReader;
using tableRW::tableReader_csv;
using tableRW::tableReaderOptions;
using testSupport::csvOptions;
using testSupport::describe;
using testSupport::temporaryFolder;
using testSupport::textRow;

// Shows what the base keeps for itself.
class watchedReader : public tableReader_csv {
 public:
  using tableReader::options_;
  using tableReader::rowLimit_;
  using tableReader_csv::tableReader_csv;
};

constexpr std::string_view wells = "a;b\n1;2\nbad\n3;4\n";
const std::string allOfWells = "fields a|b  rows 1|2 / 3|4  errors 2  ok";

TEST(tableReader_csv, isUnreadAfterConstruction) {
  const temporaryFolder folder;
  const watchedReader reader(csvOptions().forFile(folder.write(L"wells.csv", wells)));
  EXPECT_EQ(describe(reader), "failed");
  EXPECT_EQ(reader.rowLimit_, -1);
  EXPECT_EQ(reader.path(), folder.file(L"wells.csv"));
}

TEST(tableReader_csv, readOnlyHeadersStopsAtTheNames) {
  const temporaryFolder folder;
  watchedReader reader(csvOptions().forFile(folder.write(L"wells.csv", wells)));
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(describe(reader), "fields a|b  ok");
  EXPECT_EQ(reader.fieldType(std::size_t{1}), tableRW::fldText);
  EXPECT_EQ(reader.rowLimit_, -1);
}

TEST(tableReader_csv, readOnlyHeadersWithoutAHeaderReadsNoRow) {
  const temporaryFolder folder;
  csvOptions options;
  options.header = -1;
  options.data = 0;
  tableReader_csv reader(options.forFile(folder.write(L"wells.csv", wells)));
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(describe(reader), "fields field_0|field_1  ok");
}

TEST(tableReader_csv, readOnlyHeadersWithTheHeaderBehindTheEnd) {
  const temporaryFolder folder;
  csvOptions options;
  options.header = 100;
  tableReader_csv reader(options.forFile(folder.write(L"wells.csv", wells)));
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(describe(reader), "ok");
}

TEST(tableReader_csv, readDemoReadsEverything) {
  const temporaryFolder folder;
  watchedReader reader(csvOptions().forFile(folder.write(L"wells.csv", wells)));
  for (const int n : {1, 0, -5, 1000, std::numeric_limits<int>::max()}) {
    EXPECT_TRUE(reader.readDemo(n));
    EXPECT_EQ(describe(reader), allOfWells) << n;
    EXPECT_EQ(reader.rowLimit_, n);
  }
}

TEST(tableReader_csv, readFollowsEveryOtherRead) {
  const temporaryFolder folder;
  watchedReader reader(csvOptions().forFile(folder.write(L"wells.csv", wells)));
  EXPECT_TRUE(reader.readDemo(1));
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.rowLimit_, -1);
  EXPECT_EQ(describe(reader), allOfWells);
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(describe(reader), "fields a|b  ok");
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), allOfWells);
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_TRUE(reader.readDemo(1));
  EXPECT_EQ(describe(reader), allOfWells);
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(reader.rowLimit_, -1);
}

TEST(tableReader_csv, everyReadBeginsAfresh) {
  const temporaryFolder folder;
  const std::wstring path = folder.write(L"wells.csv", wells);
  tableReader_csv reader(csvOptions().forFile(path));
  EXPECT_TRUE(reader.read());
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), allOfWells);
  folder.write(L"wells.csv", "x;y;z\n1;2;3\n");
  EXPECT_EQ(describe(reader), allOfWells);  // the file is not looked at between reads
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields x|y|z  rows 1|2|3  ok");
  folder.write(L"wells.csv", "");
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields 0  ok");
}

TEST(tableReader_csv, aFileThatIsGoneLeavesNothing) {
  const temporaryFolder folder;
  const std::wstring path = folder.write(L"wells.csv", wells);
  tableReader_csv reader(csvOptions().forFile(path));
  EXPECT_TRUE(reader.read());
  ASSERT_TRUE(platform::removeFile(path));  // nothing holds it open
  EXPECT_TRUE(reader.isOK());
  EXPECT_FALSE(reader.read());
  EXPECT_EQ(describe(reader), "failed");
  EXPECT_FALSE(reader.readDemo(1));
  EXPECT_FALSE(reader.readOnlyHeaders());
  folder.write(L"wells.csv", wells);
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), allOfWells);
}

void expectUnreadable(const std::wstring& path) {
  tableReader_csv reader(csvOptions().forFile(path));
  EXPECT_FALSE(reader.read());
  EXPECT_FALSE(reader.readDemo(1));
  EXPECT_FALSE(reader.readOnlyHeaders());
  EXPECT_FALSE(reader.rejectedRecords([](const rejectedRecord&) { return true; }));
  EXPECT_EQ(describe(reader), "failed");
}

TEST(tableReader_csv, pathsThatCannotBeOpened) {
  const temporaryFolder folder;
  expectUnreadable(L"");
  expectUnreadable(folder.file(L"missing.csv"));
  expectUnreadable(folder.file(L"missing/wells.csv"));
  expectUnreadable(folder.path());
  expectUnreadable(folder.path().substr(0, folder.path().size() - 1));
  ASSERT_TRUE(platform::createFolder(folder.file(L"folder.csv")));
  expectUnreadable(folder.file(L"folder.csv"));
}

TEST(tableReader_csv, aFileWithoutPermission) {
  const temporaryFolder folder;
  const std::filesystem::path path = folder.write(L"wells.csv", wells);
  std::error_code error;
  std::filesystem::permissions(path, std::filesystem::perms::none, error);
  if (error || std::ifstream(path).is_open()) GTEST_SKIP() << "this user may read every file";
  expectUnreadable(path.wstring());
}

TEST(tableReader_csv, pathsOfEveryKind) {
  const temporaryFolder folder;
  ASSERT_TRUE(platform::createFolder(folder.file(L"with blank.d")));
  for (const wchar_t* name :
       {L"\u0421\u043A\u0432\u0430\u0436\u0438\u043D\u044B.csv", L"with blank.d/a b",
        L"with blank.d\\c", L"no_extension", L"\U0001F600.txt"}) {
    const std::wstring path = folder.write(name, wells);
    EXPECT_EQ(describe(testSupport::readCsvFile(path, {})), allOfWells)
        << testSupport::printable(name);
  }
}

TEST(tableReader_csv, anotherDirectionIsRefused) {
  const temporaryFolder folder;
  watchedReader reader(csvOptions().forFile(folder.write(L"wells.csv", wells)));
  ASSERT_TRUE(reader.read());
  for (const std::int32_t direction : {1, 2, -1, std::numeric_limits<std::int32_t>::min()}) {
    reader.options_.direction = direction;
    reader.rowLimit_ = 7;
    EXPECT_FALSE(reader.read());
    EXPECT_EQ(reader.rowLimit_, -1);
    EXPECT_FALSE(reader.readDemo(3));
    EXPECT_EQ(reader.rowLimit_, 3);
    EXPECT_FALSE(reader.readOnlyHeaders());
    EXPECT_EQ(reader.rowLimit_, -1);
    EXPECT_EQ(describe(reader), allOfWells);  // the results and the flag stay
  }
  reader.options_.path.clear();
  EXPECT_FALSE(reader.read());  // before the file is looked for
  EXPECT_EQ(describe(reader), allOfWells);

  tableReaderOptions options(folder.file(L"wells.csv"));
  options.direction = 1;
  tableReader_csv horizontal(options);
  EXPECT_FALSE(horizontal.read());
  EXPECT_EQ(describe(horizontal), "failed");
}

TEST(tableReader_csv, hasOneTable) {
  const temporaryFolder folder;
  tableReaderOptions options(folder.write(L"wells.csv", wells));
  options.table = L"t";
  tableReader_csv reader(options);
  reader.setTable(L"other");
  EXPECT_TRUE(reader.isSameFile(options));
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), allOfWells);
  textRow list = {L"old", L"older"};
  reader.tableList(list);
  EXPECT_EQ(describe(list), "csv");
}

TEST(tableReader_csv, capabilities) {
  tableReader_csv reader{tableReaderOptions()};
  const auto [first, second, third, fourth] = reader.get_capabilities();
  EXPECT_FALSE(first);
  EXPECT_TRUE(second);
  EXPECT_TRUE(third);
  EXPECT_TRUE(fourth);
}

TEST(tableReader_csv, copiesHoldTheirOwnTable) {
  const temporaryFolder folder;
  auto reader =
      std::make_unique<tableReader_csv>(csvOptions().forFile(folder.write(L"wells.csv", wells)));
  ASSERT_TRUE(reader->read());
  tableReader_csv copy(*reader);
  reader.reset();
  EXPECT_EQ(describe(copy), allOfWells);
  EXPECT_TRUE(copy.readOnlyHeaders());
  EXPECT_EQ(describe(copy), "fields a|b  ok");
}

// Positions: what the class does with them itself, and where the factory moves them first.
std::string readDirectly(const std::wstring& path, std::int32_t header, std::uint64_t data) {
  csvOptions options;
  options.header = header;
  options.data = data;
  return describe(testSupport::readCsvFile(path, options));
}

std::string readOpened(const std::wstring& path, std::int32_t header, std::uint64_t data) {
  csvOptions options;
  options.header = header;
  options.data = data;
  const std::unique_ptr<tableReader, void (*)(tableReader*)> reader(
      tableReader::open(options.forFile(path)), tableReader::close);
  EXPECT_TRUE(reader->read());
  return describe(*reader);
}

TEST(tableReader_csv, positionsAtTheEndsOfTheirRanges) {
  constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
  constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
  constexpr std::uint64_t allOnes = std::numeric_limits<std::uint64_t>::max();
  const std::string named = "fields a|b  rows 1|2 / 3|4  ok";
  const std::string numbered = "fields field_0|field_1  rows a|b / 1|2 / 3|4  ok";
  const std::string onlyNumbers = "fields field_0|field_1  ok";
  const temporaryFolder folder;
  const std::wstring path = folder.write(L"wells.csv", "a;b\n1;2\n3;4");

  EXPECT_EQ(readDirectly(path, 0, 0), named);
  EXPECT_EQ(readDirectly(path, 0, allOnes), "fields a|b  ok");
  EXPECT_EQ(readDirectly(path, lowest, 0), numbered);
  EXPECT_EQ(readDirectly(path, lowest, allOnes), onlyNumbers);
  EXPECT_EQ(readDirectly(path, highest, 0), "ok");
  EXPECT_EQ(readDirectly(path, highest, allOnes), "ok");

  EXPECT_EQ(readOpened(path, 0, 0), named);
  EXPECT_EQ(readOpened(path, 0, allOnes), "fields a|b  ok");
  EXPECT_EQ(readOpened(path, 1, 0), "fields 1|2  rows 3|4  ok");
  EXPECT_EQ(readOpened(path, 2, 0), "fields 3|4  ok");
  for (const std::uint64_t data : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{2}, allOnes})
    EXPECT_EQ(readOpened(path, -1, data), numbered) << data;
  // Below -1 the first line after the header, widened, lies far behind every file's end.
  EXPECT_EQ(readOpened(path, -2, 0), onlyNumbers);
  EXPECT_EQ(readOpened(path, lowest, 1), onlyNumbers);
  EXPECT_EQ(readOpened(path, lowest, allOnes), onlyNumbers);
  EXPECT_EQ(readOpened(path, highest, 0), "ok");
  EXPECT_EQ(readOpened(path, highest, 1), "ok");
}

// The rejected records as "[2: 1 in bad]".
std::string rejectedBy(tableReader_csv& reader, std::size_t most = 1000) {
  std::string all;
  std::size_t count = 0;
  const bool answer = reader.rejectedRecords([&](const rejectedRecord& record) {
    all.append("[").append(std::to_string(record.line)).append(": ");
    all.append(std::to_string(record.valueCount)).append(" in ");
    all.append(testSupport::printable(record.text)).append("]");
    return ++count < most;
  });
  return answer ? all : "false";
}

constexpr std::string_view manyErrors = "a;b\n1\n\n2;3\n4;5;6\n;;\n\"x;\" 7 \n8;\"9;9\n;;z;\r\n 0";

TEST(tableReader_csv, handsOverRejectedRecordsInOrder) {
  const temporaryFolder folder;
  tableReader_csv reader(csvOptions().forFile(folder.write(L"wells.csv", manyErrors)));
  ASSERT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields a|b  rows 2|3 / x|7 / 8|9;9  errors 1,4,8,9  ok");
  const std::string all = "[1: 1 in 1][4: 3 in 4;5;6][8: 4 in ;;z;][9: 1 in  0]";
  EXPECT_EQ(rejectedBy(reader), all);
  EXPECT_EQ(rejectedBy(reader), all);
  EXPECT_EQ(describe(reader), "fields a|b  rows 2|3 / x|7 / 8|9;9  errors 1,4,8,9  ok");
}

TEST(tableReader_csv, rejectedRecordsTellTheirBytes) {
  const temporaryFolder folder;
  const std::string longText(3000, 'x');  // more than one chunk of a line
  struct row {
    const char* name;
    std::string bytes;
    std::string rejected;  // each as offset:bytes, with a bar behind it
    int line = __builtin_LINE();
  };
  for (const row& each : {
           row{"LF",                  "a;b\n1\n2;3\n4;5;6\n",         "4:1\n|10:4;5;6\n|"           },
           row{"CR LF",               "a;b\r\n1\r\n2;3\r\n\r\n4\r\n", "5:1\r\n|15:4\r\n|"           },
           row{"no line end",         "a;b\r\n1",                     "5:1|"                        },
           row{"CR at the end",       "a;b\r\n1\r",                   "5:1\r|"                      },
           row{"Ctrl-Z behind it",    "a;b\n1\x1A;2",                 "4:1|"                        },
           row{"lines joined by NUL", "a;b\n1\0x\r\n2;3;4\r\n5\n"s,   "4:1\0x\r\n2;3;4\r\n|16:5\n|"s},
           row{"beyond one chunk",    "a;b\n" + longText + "\r\n1\n",
               "4:" + longText + "\r\n|3006:1\n|"                                                   },
  }) {
    const testing::ScopedTrace trace(__FILE__, each.line, each.name);
    tableReader_csv reader(csvOptions().forFile(folder.write(L"wells.csv", each.bytes)));
    ASSERT_TRUE(reader.read());
    std::string found;
    EXPECT_TRUE(reader.rejectedRecords([&](const rejectedRecord& record) {
      found +=
          std::to_string(record.offset) + ":" + each.bytes.substr(record.offset, record.size) + "|";
      return true;
    }));
    EXPECT_EQ(found, each.rejected);
  }
}

TEST(tableReader_csv, theReceiverStopsEarly) {
  const temporaryFolder folder;
  tableReader_csv reader(csvOptions().forFile(folder.write(L"wells.csv", manyErrors)));
  ASSERT_TRUE(reader.read());
  EXPECT_EQ(rejectedBy(reader, 1), "[1: 1 in 1]");
  EXPECT_EQ(rejectedBy(reader, 2), "[1: 1 in 1][4: 3 in 4;5;6]");
}

TEST(tableReader_csv, rejectedRecordsAreReadAgain) {
  const temporaryFolder folder;
  tableReader_csv reader(csvOptions().forFile(folder.write(L"wells.csv", manyErrors)));
  ASSERT_TRUE(reader.read());
  folder.write(L"wells.csv", "a;b\n10\n\n\n7\n");  // shortened meanwhile
  EXPECT_EQ(rejectedBy(reader), "[1: 1 in 10][4: 1 in 7]");
  folder.write(L"wells.csv", "");
  EXPECT_EQ(rejectedBy(reader), "");
  ASSERT_TRUE(platform::removeFile(folder.file(L"wells.csv")));
  EXPECT_EQ(rejectedBy(reader), "false");
  EXPECT_EQ(describe(reader), "fields a|b  rows 2|3 / x|7 / 8|9;9  errors 1,4,8,9  ok");
}

TEST(tableReader_csv, withoutRejectedRecordsNothingIsHandedOver) {
  const temporaryFolder folder;
  tableReader_csv reader(csvOptions().forFile(folder.write(L"wells.csv", manyErrors)));
  EXPECT_EQ(rejectedBy(reader), "");  // nothing was read yet
  ASSERT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(rejectedBy(reader), "");
  folder.write(L"wells.csv", "a;b\n1;2\n");
  ASSERT_TRUE(reader.read());
  EXPECT_EQ(rejectedBy(reader), "");
}

TEST(tableReader_csv, aReceiverThatThrowsLeavesTheReaderAsItWas) {
  const temporaryFolder folder;
  const std::wstring path = folder.write(L"wells.csv", wells);
  tableReader_csv reader(csvOptions().forFile(path));
  ASSERT_TRUE(reader.read());
  EXPECT_THROW(reader.rejectedRecords(
                   [](const rejectedRecord&) -> bool { throw std::runtime_error("no more"); }),
               std::runtime_error);
  EXPECT_EQ(describe(reader), allOfWells);
  EXPECT_TRUE(platform::removeFile(path));  // nothing holds it open
}

}  // namespace

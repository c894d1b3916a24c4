// Drill-hole databases, over the tests' own ODBC driver, which stands under the name of Access' own.
#include "table_rw/readers/tableReader_micromineDHDB.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/odbcScript.h"
#include "tests/support/ownedReader.h"
#include "tests/support/tableText.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"

namespace {

using tableRW::tableReader_micromineDHDB;
using tableRW::tableReaderOptions;
using testSupport::describe;
using testSupport::odbcScript;
using testSupport::temporaryFolder;

constexpr const char* holes =
    "program\tACCESS\n"
    "table\tMSysObjects\tSYSTEM TABLE\nfields\tid:4\n"
    "table\tCOLLAR\tTABLE\n"
    "fields\tHOLE:12\tEAST:8\tNOTE:-1\n"
    "row\tDH1\t10.5\t a \n"
    "row\t\\N\t\\N\t\n"
    "row\tDH2\t\\N\t\n"
    "row\tDH3\t30.5\tx\n"
    "table\tSURVEY\tTABLE\nfields\tDEPTH:2\nrow\t0\n";
constexpr const char* collar = "fields HOLE|EAST:number|NOTE";

class dhdbReader : public testing::Test {
 protected:
  void SetUp() override {
    if (!testSupport::hasOdbcTestDriver()) GTEST_SKIP() << "the tests' own driver is not set up";
  }
  void TearDown() override { EXPECT_EQ(leaks_, ""); }

  odbcScript base(const std::string& lines) { return {folder_.file(L"holes.dhdb"), lines}; }

  std::string read(const std::string& lines, const std::wstring& table = L"") {
    const odbcScript file = base(lines);
    tableReaderOptions options(file.path());
    options.table = table;
    tableReader_micromineDHDB reader(options);
    const bool answer = reader.read();
    leaks_ += file.leaks();
    return (answer ? "true: " : "false: ") + describe(reader);
  }

  temporaryFolder folder_;
  std::string leaks_;
};

TEST_F(dhdbReader, readsTheFirstTable) {
  EXPECT_EQ(read(holes),
            std::string("true: ") + collar + "  rows DH1|10.5| a  / DH2|| / DH3|30.5|x  ok");
}

TEST_F(dhdbReader, readsTheTableThatIsNamed) {
  EXPECT_EQ(read(holes, L"SURVEY"), "true: fields DEPTH:number  rows 0  ok");
}

TEST_F(dhdbReader, aTableThatIsNotThere) { EXPECT_EQ(read(holes, L"ASSAY"), "false: ok"); }

TEST_F(dhdbReader, noTables) {
  EXPECT_EQ(read("program\tACCESS\n"), "false: ok");
  EXPECT_EQ(read("program\tACCESS\ntable\tMSysObjects\tSYSTEM TABLE\nfields\tid:4\n"), "false: ok");
  tableReader_micromineDHDB reader{tableReaderOptions(folder_.file(L"holes.dhdb"))};
  std::vector<std::wstring> list = {L"left over"};
  reader.tableList(list);
  EXPECT_TRUE(list.empty());
  EXPECT_TRUE(reader.isOK());
}

TEST_F(dhdbReader, listsTables) {
  const odbcScript file = base(holes);
  tableReader_micromineDHDB reader{tableReaderOptions(file.path())};
  std::vector<std::wstring> list = {L"left over"};
  reader.tableList(list);
  EXPECT_EQ(describe(list), "COLLAR|SURVEY");
  leaks_ = file.leaks();
}

TEST_F(dhdbReader, theFactoryChoosesIt) {
  const odbcScript file = base(holes);
  const auto reader = testSupport::openReader(tableReaderOptions(file.path()));
  EXPECT_NE(dynamic_cast<tableReader_micromineDHDB*>(reader.get()), nullptr);
  tableReaderOptions byNumber(file.path());
  byNumber.file_type = tableRW::fileTypeMicromineDhdb;
  EXPECT_TRUE(testSupport::openReader(byNumber)->read());
}

TEST_F(dhdbReader, rowLimits) {
  const struct {
    int limit;
    std::uint64_t rows;
  } limits[] = {
      {0,  0},
      {1,  1},
      {2,  2},
      {3,  3},
      {9,  3},
      {-1, 3},
      {-2, 0},
  };
  const odbcScript file = base(holes);
  for (const auto& each : limits) {
    tableReader_micromineDHDB reader{tableReaderOptions(file.path())};
    EXPECT_TRUE(reader.readDemo(each.limit));
    EXPECT_EQ(reader.count(), each.rows) << each.limit;
    EXPECT_EQ(reader.fieldCount(), 3U);
  }
}

TEST_F(dhdbReader, theFlagAndTheLimitPersist) {
  const odbcScript file = base(holes);
  tableReader_micromineDHDB reader{tableReaderOptions(file.path())};
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(describe(reader), std::string(collar) + "  ok");
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 0U) << "still headers only";
  EXPECT_TRUE(reader.readDemo(2));
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 2U) << "still limited";
}

TEST_F(dhdbReader, typesPileUp) {
  const odbcScript file = base(holes);
  tableReader_micromineDHDB reader{tableReaderOptions(file.path())};
  reader.setTable(L"SURVEY");
  EXPECT_TRUE(reader.read());
  reader.setTable(L"COLLAR");
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(describe(reader), "fields HOLE:number|EAST|NOTE:number  ok");
}

TEST_F(dhdbReader, columnsThatCannotBeHadAreASuccess) {
  EXPECT_EQ(read(std::string(holes) + "fail\tcolumns\t1\n", L"COLLAR"), "true: ok");
  EXPECT_EQ(read(std::string(holes) + "fail\tdescribe\t3\n", L"COLLAR"), "true: ok");
}

TEST_F(dhdbReader, whatCannotBeOpened) {
  EXPECT_EQ(read("password\n"), "false: failed");
  for (const std::wstring& path : {folder_.file(L"gone.dhdb"), std::wstring()}) {
    tableReader_micromineDHDB reader{tableReaderOptions(path)};
    EXPECT_FALSE(reader.read());
    EXPECT_FALSE(reader.readOnlyHeaders());
    EXPECT_EQ(describe(reader), "failed");
  }
}

TEST_F(dhdbReader, aFailureWhileFetchingKeepsTheRowsBefore) {
  EXPECT_EQ(read(std::string(holes) + "fail\tfetch\t2\n", L"COLLAR"),
            std::string("false: ") + collar + "  rows DH1|10.5| a   ok");
}

TEST_F(dhdbReader, everyCallFailsOnce) {
  for (const char* const call :
       {"connect", "statement", "execute", "columns", "describe", "fetch", "get", "tables"}) {
    for (int n = 1; n <= 12; ++n) {
      const std::string failure = std::string("fail\t") + call + "\t" + std::to_string(n) + "\n";
      const std::string answer = read(holes + failure);
      // What is not all is never called so, but for the columns that cannot be had.
      if (answer == "true: ok") continue;
      const bool isWhole = answer.find("DH1|10.5| a  / DH2|| / DH3|30.5|x") != std::string::npos;
      EXPECT_TRUE(isWhole || answer.starts_with("false")) << failure << answer;
    }
  }
}

TEST_F(dhdbReader, valuesOfAMegabyte) {
  for (const char* const more : {"", "no_total\n"}) {
    const odbcScript file = base(std::string(more) +
                                 "table\tt\tTABLE\nfields\ta:-1\tb:12\nrow\t*100000*"
                                 "0123456789\tend\nrow\t*4095*x\t*4096*y\n");
    tableReader_micromineDHDB reader{tableReaderOptions(file.path())};
    EXPECT_TRUE(reader.read());
    ASSERT_EQ(reader.count(), 2U);
    EXPECT_EQ(reader.value(0, 0).size(), 1000000U);
    EXPECT_EQ(reader.value(0, 0).substr(999990), L"0123456789");
    EXPECT_EQ(reader.value(1, 0), L"end");
    EXPECT_EQ(reader.value(0, 1), std::wstring(4095, L'x'));
    EXPECT_EQ(reader.value(1, 1), std::wstring(4096, L'y'));
    leaks_ += file.leaks();
  }
}

// Whatever a driver tells of lengths and ends.
TEST_F(dhdbReader, longValuesOfOddDrivers) {
  for (const char* const way : {"untold", "endless", "unended", "well"})
    for (const char* const size :
         {"*1*y", "*4092*y", "*4093*y", "*4094*y", "*4095*y", "*4096*y", "*5000*y", "*2100000*y"}) {
      const odbcScript file =
          base("no_total\nvalues\t" + std::string(way) +
               "\ntable\tt\tTABLE\nfields\ta:-1\tb:12\nrow\t*30*x\tbefore\nrow\t" + size +
               "\tend\nrow\tshort\tlast\n");
      tableReader_micromineDHDB reader{tableReaderOptions(file.path())};
      EXPECT_TRUE(reader.read());
      ASSERT_EQ(reader.count(), 3U);
      EXPECT_EQ(reader.value(0, 0), std::wstring(30, L'x')) << way;
      EXPECT_TRUE(reader.value(0, 1) == std::wstring(std::stoul(size + 1), L'y')) << way << size;
      EXPECT_EQ(reader.value(1, 1), L"end") << way << size;
      EXPECT_EQ(reader.value(0, 2), L"short") << way << size;
      leaks_ += file.leaks();
    }
}

TEST_F(dhdbReader, picturesAreHexadecimal) {
  for (const char* const type : {"-2", "-3", "-4"})
    EXPECT_EQ(read(std::string("table\tt\tTABLE\nfields\ta:") + type +
                   "\tb:12\nrow\tAz\tx\nrow\t\\N\ty\n"),
              "true: fields a|b  rows 417A|x / |y  ok");
  const std::string longBytes = read("no_total\ntable\tt\tTABLE\nfields\ta:-4\nrow\t*5000*A\n");
  EXPECT_EQ(longBytes.size(), std::string("true: fields a  rows   ok").size() + 10000) << longBytes;
  EXPECT_EQ(std::count(longBytes.begin(), longBytes.end(), '4'), 5000);
  EXPECT_EQ(read("values\tuntold\ntable\tt\tTABLE\nfields\ta:-4\tb:12\nrow\t\\N\tx\nrow\tAz\ty\n"),
            "false: fields a|b  rows |x  ok")
      << "bytes without a length have no end";
}

TEST_F(dhdbReader, aDriverWithoutValuesGivesEmptyOnes) {
  EXPECT_EQ(read("values\tnone\ntable\tt\tTABLE\nfields\ta:4\tb:-2\nrow\t1\tx\n", L"t"),
            "true: fields a:number|b  rows |78  ok");
}

TEST_F(dhdbReader, namesWhoseLengthIsNotTold) {
  EXPECT_EQ(read("nameless\n" + std::string(holes), L"COLLAR"),
            std::string("true: ") + collar + "  rows DH1|10.5| a  / DH2|| / DH3|30.5|x  ok");
}

TEST_F(dhdbReader, manyColumnsAndOddNames) {
  std::string fields = "fields\t:12";
  std::string row = "row\tfirst";
  for (int i = 1; i < 255; ++i) {
    fields += "\tc" + std::to_string(i) + ":4";
    row += "\t" + std::to_string(i);
  }
  const odbcScript file = base("table\tt\tTABLE\n" + fields + "\n" + row + "\n");
  tableReader_micromineDHDB reader{tableReaderOptions(file.path())};
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.fieldCount(), 255U);
  EXPECT_EQ(reader.fieldName(0), L"");
  EXPECT_EQ(reader.value(L"c254", 0), L"254");
  EXPECT_EQ(reader.value(std::size_t{0}, 0), L"first");
}

TEST_F(dhdbReader, aNameLongerThanDriversHave) {
  const std::string name(1000, 'n');
  EXPECT_EQ(read("table\tt\tTABLE\nfields\t" + name + ":12\nrow\tx\n"),
            "true: fields " + name + "  rows x  ok");
}

TEST_F(dhdbReader, cyrillicNamesAndValues) {
  if (testSupport::onWindows) GTEST_SKIP() << "drivers below Wine speak UTF-8, Windows' own do not";
  EXPECT_EQ(read("table\t\xD0\x96\tTABLE\nfields\t\xD0\xB3:12\nrow\t\xD1\x8F\n", L"\x0416"),
            "true: fields \xD0\xB3  rows \xD1\x8F  ok");
}

TEST_F(dhdbReader, capabilities) {
  const auto [first, second, third, fourth] =
      tableReader_micromineDHDB(tableReaderOptions(L"b.dhdb")).get_capabilities();
  EXPECT_TRUE(first && !second && !third && !fourth);
}

}  // namespace

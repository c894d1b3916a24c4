// Workbooks and Access databases through data sources, over the tests' own ODBC driver.
#include "table_rw/readers/tableReader_xlsODBC.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "platform/codePages.h"
#include "table_rw/capi/vo_table_reader.h"
#include "tests/support/namedPipe.h"
#include "tests/support/odbcScript.h"
#include "tests/support/ownedReader.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using tableRW::tableReader_xlsODBC;
using tableRW::tableReaderOptions;
using testSupport::describe;
using testSupport::odbcScript;
using testSupport::temporaryFolder;

constexpr const char* wells =
    "table\tSheet1$\tSYSTEM TABLE\n"
    "fields\tWELL:12\tX:8\n"
    "row\tW-1\t1.5\n"
    "row\tW-2\t2.5\n"
    "row\t\\N\t\n"
    "row\tW-3\t3.5\n"
    "row\tW-4\t\\N\n";

class xlsOdbcReader : public testing::Test {
 protected:
  void SetUp() override {
    if (!testSupport::hasOdbcTestDriver()) GTEST_SKIP() << "the tests' own driver is not set up";
  }

  static constexpr int all = -1;

  // Reads the sheet as the factory would set the positions; `limit` of all: read().
  std::string read(const odbcScript& file, std::int32_t header, std::uint64_t data,
                   int limit = all) {
    tableReaderOptions options(file.path());
    options.file_type = tableRW::fileTypeXlsOdbc;
    options.header_position = header;
    options.data_position = data;
    const auto reader = testSupport::openReader(options);
    const bool answer = limit == all ? reader->read() : reader->readDemo(limit);
    EXPECT_EQ(file.leaks(), "");
    return (answer ? "true: " : "false: ") + describe(*reader);
  }

  odbcScript book(const std::string& lines) { return {folder_.file(L"b.xlsx"), lines}; }
  odbcScript base(const std::string& lines) { return {folder_.file(L"b.mdb"), lines}; }

  temporaryFolder folder_;
};

TEST_F(xlsOdbcReader, positionsOfASheet) {
  const struct {
    const char* name;
    std::int64_t header;
    std::uint64_t data;
    const char* expected;
    int line = __builtin_LINE();
  } rows[] = {
      {"names of the driver",                  0,          1,
       "true: fields WELL|X:number  rows W-1|1.5 / W-2|2.5 / W-3|3.5 / W-4|  ok"                                       },
      {"data position 3 passes over two rows", 0,          3,
       "true: fields WELL|X:number  rows W-3|3.5 / W-4|  ok"                                                           },
      {"without a header the names are a row", -1,         0,
       "true: fields F0|F1:number  rows WELL|X / W-1|1.5 / W-2|2.5 / W-3|3.5 / W-4|  ok"                               },
      {"any negative header is none",          -7,         9,
       "true: fields F0|F1:number  rows WELL|X / W-1|1.5 / W-2|2.5 / W-3|3.5 / W-4|  ok"                               },
      {"a header below the first line",        1,          2,                 "true: rows W-2|2.5 / W-3|3.5 / W-4|  ok"},
      {"header 2, data 5 pass over four rows", 2,          5,                 "true: rows W-4|  ok"                    },
      {"the last row is passed over",          0,          6,                 "true: fields WELL|X:number  ok"         },
      {"the sheet ends before the data",       0,          7,                 "false: fields WELL|X:number  ok"        },
      {"data at the end of the numbers",       0,          ~std::uint64_t{0}, "false: fields WELL|X:number  ok"        },
      {"the header is the last row",           5,          6,                 "true: ok"                               },
      {"the sheet ends before the header",     6,          7,                 "false: ok"                              },
      {"a header at the end of the numbers",   2147483647, 0,                 "false: ok"                              },
  };
  for (const auto& row : rows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    EXPECT_EQ(read(book(wells), static_cast<std::int32_t>(row.header), row.data), row.expected);
  }
}

// Only a reader that the factory has not made meets such positions.
TEST_F(xlsOdbcReader, aDataPositionAboveTheHeaderPassesOverNothing) {
  const odbcScript file = book(wells);
  const struct {
    std::int32_t header;
    std::uint64_t data;
    const char* expected;
  } rows[] = {
      {2,  0, "rows W-3|3.5 / W-4|  ok"                                          },
      {2,  2, "rows W-3|3.5 / W-4|  ok"                                          },
      {0,  0, "fields WELL|X:number  rows W-1|1.5 / W-2|2.5 / W-3|3.5 / W-4|  ok"},
      {-1, 1, "fields F0|F1:number  rows WELL|X / W-2|2.5 / W-3|3.5 / W-4|  ok"  },
  };
  for (const auto& row : rows) {
    tableReaderOptions options(file.path());
    options.header_position = row.header;
    options.data_position = row.data;
    tableReader_xlsODBC reader(options);
    EXPECT_TRUE(reader.read()) << row.header << row.data;
    EXPECT_EQ(describe(reader), row.expected) << row.header << row.data;
  }
}

TEST_F(xlsOdbcReader, pathsThatAConnectionStringCannotName) {
  const std::string lines = "table\tt\tTABLE\nfields\ta:4\nrow\t1\n";
  const odbcScript cut(folder_.file(L"a"), lines);
  const odbcScript whole(folder_.file(L"a.mdb"), lines);
  for (const std::wstring& name :
       {std::wstring(L"a;b.mdb"), std::wstring(L"b.mdb;DBQ=a"), std::wstring(L"a.mdb\0.mdb", 10)}) {
    tableReader_xlsODBC reader{tableReaderOptions(folder_.file(name))};
    EXPECT_FALSE(reader.read());
    EXPECT_FALSE(reader.isOK());
    std::vector<std::wstring> list;
    reader.tableList(list);
    EXPECT_TRUE(list.empty());
  }
  EXPECT_EQ(cut.calls("connect") + whole.calls("connect"), 0) << "another file than the one named";
  tableReader_xlsODBC reader{tableReaderOptions(whole.path())};
  EXPECT_TRUE(reader.read());
}

// A driver would wait for a writer for ever.
TEST_F(xlsOdbcReader, aPipeIsNotWaitedFor) {
  const std::wstring path = folder_.file(L"p.mdb");
  if (!testSupport::makeNamedPipe(path)) GTEST_SKIP() << "no file is a pipe here";
  tableReader_xlsODBC reader{tableReaderOptions(path)};
  EXPECT_FALSE(reader.read());
  std::vector<std::wstring> list;
  reader.tableList(list);
  EXPECT_FALSE(reader.isOK());
}

TEST_F(xlsOdbcReader, pathsThatTheCodePageCannotName) {
  struct pageSetter {
    explicit pageSetter(unsigned page) { platform::chooseSystemCodePage(page); }
    pageSetter(const pageSetter&) = delete;
    pageSetter& operator=(const pageSetter&) = delete;
    ~pageSetter() { platform::chooseSystemCodePage(before); }
    unsigned before = platform::chosenSystemCodePage();
  };
  const odbcScript other(folder_.file(L"_.mdb"), "table\tt\tTABLE\nfields\ta:4\nrow\t1\n");
  const pageSetter page(1252);
  tableReader_xlsODBC reader{tableReaderOptions(folder_.file(L"\x0416.mdb"))};
  EXPECT_FALSE(reader.read());
  EXPECT_TRUE(tableReader_xlsODBC{tableReaderOptions(other.path())}.read());
}

TEST_F(xlsOdbcReader, aDatabaseHeedsNoPositions) {
  std::string lines = wells;
  lines.replace(lines.find("SYSTEM TABLE"), 12, "TABLE");
  for (const std::int32_t header : {-1, 0, 2})
    EXPECT_EQ(read(base(lines), header, 7),
              "true: fields WELL|X:number  rows W-1|1.5 / W-2|2.5 / W-3|3.5 / W-4|  ok");
}

TEST_F(xlsOdbcReader, anExtensionInCapitalsHasNoKind) {
  std::string lines = wells;
  lines.replace(lines.find("SYSTEM TABLE"), 12, "TABLE");
  for (const wchar_t* const name : {L"b.XLSX", L"b.Mdb", L"b.txt"}) {
    const odbcScript file(folder_.file(name), lines);
    EXPECT_EQ(read(file, 2, 5), "true: rows W-1|1.5 / W-2|2.5 / W-3|3.5 / W-4|  ok");
  }
}

TEST_F(xlsOdbcReader, rowLimits) {
  const struct {
    int limit;
    const char* expected;
  } limits[] = {
      {3,  "true: fields WELL|X:number  rows W-1|1.5 / W-2|2.5 / W-3|3.5  ok"},
      {1,  "true: fields WELL|X:number  rows W-1|1.5  ok"                    },
      {0,  "true: fields WELL|X:number  ok"                                  },
      {-2, "true: fields WELL|X:number  ok"                                  },
  };
  for (const auto& each : limits)
    EXPECT_EQ(read(book(wells), 0, 1, each.limit), each.expected) << each.limit;
  // The row of names counts.
  EXPECT_EQ(read(book(wells), -1, 0, 2), "true: fields F0|F1:number  rows WELL|X / W-1|1.5  ok");
  EXPECT_EQ(read(book(wells), -1, 0, 0), "true: fields F0|F1:number  rows WELL|X  ok");
}

TEST_F(xlsOdbcReader, everyReadSetsFlagAndLimitAnew) {
  const odbcScript file = book(wells);
  tableReader_xlsODBC reader{tableReaderOptions(file.path())};
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(describe(reader), "fields WELL|X:number  ok");
  EXPECT_TRUE(reader.readDemo(1));
  EXPECT_EQ(reader.count(), 1U);
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 4U);
  EXPECT_TRUE(reader.readDemo(-1));
  EXPECT_EQ(reader.count(), 4U);
  EXPECT_EQ(file.leaks(), "");
}

TEST_F(xlsOdbcReader, headersAloneOfASheetWithoutAHeaderHoldItsFirstLine) {
  const odbcScript file = book(wells);
  tableReaderOptions options(file.path());
  options.header_position = -1;
  options.data_position = 0;
  tableReader_xlsODBC reader(options);
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(describe(reader), "fields F0|F1:number  rows WELL|X  ok");
}

TEST_F(xlsOdbcReader, typesPileUp) {
  const odbcScript file = base(
      "table\tt\tTABLE\nfields\ta:4\tb:12\n"
      "table\tu\tTABLE\nfields\tc:12\td:12\te:12\n");
  tableReader_xlsODBC reader{tableReaderOptions(file.path())};
  EXPECT_TRUE(reader.read());
  reader.setTable(L"u");
  EXPECT_TRUE(reader.read());
  // number text | text text text: the first two types are those of the read before.
  EXPECT_EQ(describe(reader), "fields c:number|d|e  ok");
}

TEST_F(xlsOdbcReader, whichTypesAreNumbers) {
  std::string fields = "table\tt\tTABLE\nfields";
  std::string expected = "true: fields ";
  for (int type = -11; type <= 13; ++type) {
    fields += "\tt" + std::to_string(type) + ":" + std::to_string(type);
    const bool number = (type >= 2 && type <= 8) || type == -6 || type == -5;
    expected += (type == -11 ? "t" : "|t") + std::to_string(type) + (number ? ":number" : "");
  }
  EXPECT_EQ(read(base(fields + "\n"), 0, 1), expected + "  ok");
}

TEST_F(xlsOdbcReader, listsSheets) {
  const odbcScript file = book(
      "table\tNamed range\tTABLE\nfields\ta:12\n"
      "table\t'My sheet$'\tSYSTEM TABLE\nfields\ta:12\n"
      "table\tSheet1$\tSYSTEM TABLE\nfields\ta:12\n"
      "table\t'Other\tSYSTEM TABLE\nfields\ta:12\n"
      "table\tq\tVIEW\nfields\ta:12\n"
      "table\ts\tSYNONYM\nfields\ta:12\n"
      "table\t\tSYSTEM TABLE\nfields\ta:12\n"
      "table\ts\tSYSTEM TABLE\nfields\ta:12\n");
  tableReader_xlsODBC reader{tableReaderOptions(file.path())};
  std::vector<std::wstring> list = {L"left over"};
  reader.tableList(list);
  EXPECT_EQ(describe(list), "Named range|'My sheet$'|Sheet1$|q");
  EXPECT_TRUE(reader.isOK());
  EXPECT_EQ(file.leaks(), "");
}

TEST_F(xlsOdbcReader, listsTablesWithoutTheDatabasesOwn) {
  const odbcScript file = base(
      "program\tMDBTOOLS\n"
      "table\tMSysObjects\tSYSTEM TABLE\nfields\ta:12\n"
      "table\tMSysCompactError\tTABLE\nfields\ta:12\n"
      "table\tSheet1$\tSYSTEM TABLE\nfields\ta:12\n"
      "table\tOrder Details\tTABLE\nfields\ta:12\n"
      "table\tq\tVIEW\nfields\ta:12\n");
  tableReader_xlsODBC reader{tableReaderOptions(file.path())};
  std::vector<std::wstring> list;
  reader.tableList(list);
  // mdbtools cannot read saved queries.
  EXPECT_EQ(describe(list), "Order Details");
}

// Drivers would take what is missing for the end of a table.
TEST_F(xlsOdbcReader, anAccessDatabaseThatIsCutIsRefused) {
  const struct {
    const char* name;
    char version;
    std::size_t size;
    bool isWhole;
  } rows[] = {
      {"Standard Jet DB", '\0', 2048 * 3,     true },
      {"Standard Jet DB", '\0', 2048 * 3 - 1, false},
      {"Standard Jet DB", '\1', 4096 * 2,     true },
      {"Standard Jet DB", '\1', 2048 * 3,     false},
      {"Standard ACE DB", '\2', 4096,         true },
      {"Standard ACE DB", '\2', 4097,         false},
      {"Nobody's own DB", '\1', 4097,         true },
  };
  for (const auto& row : rows) {
    std::string lines = std::string("\0\1\0\0", 4) + row.name + '\0' + row.version +
                        "\ntable\tt\tTABLE\nfields\ta:12\nrow\tx\n";
    lines.resize(row.size, '\n');
    const odbcScript file = base(lines);
    EXPECT_EQ(read(file, 0, 1), row.isWhole ? "true: fields a  rows x  ok" : "false: failed")
        << row.name << row.size;
  }
}

TEST_F(xlsOdbcReader, withoutANameTheFirstTableIsRead) {
  const std::string lines =
      "table\tMSysObjects\tSYSTEM TABLE\nfields\ta:12\n"
      "table\tfirst one\tTABLE\nfields\tb:12\nrow\tx\n"
      "table\tsecond\tTABLE\nfields\tc:12\nrow\ty\n";
  EXPECT_EQ(read(base(lines), 0, 1), "true: fields b  rows x  ok");
  const odbcScript file = base(lines);
  tableReader_xlsODBC reader{tableReaderOptions(file.path())};
  reader.setTable(L"second");
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields c  rows y  ok");
  reader.setTable(L"third");
  EXPECT_FALSE(reader.read());
  EXPECT_EQ(describe(reader), "ok");
}

TEST_F(xlsOdbcReader, aDatabaseWithoutTables) {
  EXPECT_EQ(read(base("program\tX\n"), 0, 1), "false: ok");
}

TEST_F(xlsOdbcReader, noDataSourceAcceptsTheFile) {
  EXPECT_EQ(read(base("password\n"), 0, 1), "false: failed");
  tableReader_xlsODBC missing{tableReaderOptions(folder_.file(L"gone.mdb"))};
  EXPECT_FALSE(missing.read());
  EXPECT_FALSE(missing.isOK());
  std::vector<std::wstring> list = {L"left over"};
  missing.tableList(list);
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(missing.errorCount(), 0U);
}

// One attempt to find the data source and one of the read itself; the same again for the list of tables.
TEST_F(xlsOdbcReader, connectsAnewForEveryCall) {
  const odbcScript file = base("table\tt\tTABLE\nfields\ta:4\nrow\t1\n");
  tableReaderOptions options(file.path());
  options.table = L"t";
  tableReader_xlsODBC reader(options);
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(file.calls("connect"), 2);
  reader.setTable(L"");
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(file.calls("connect"), 6);
  EXPECT_EQ(file.leaks(), "");
}

TEST_F(xlsOdbcReader, aPathWithoutADotIsOutOfRange) {
  tableReader_xlsODBC reader{tableReaderOptions(L"base")};
  EXPECT_THROW(reader.read(), std::out_of_range);
  EXPECT_THROW(reader.readDemo(1), std::out_of_range);
  EXPECT_THROW(reader.readOnlyHeaders(), std::out_of_range);
  std::vector<std::wstring> list = {L"left over"};
  EXPECT_THROW(reader.tableList(list), std::out_of_range);
  EXPECT_TRUE(list.empty());
}

TEST_F(xlsOdbcReader, theCInterfaceAnswersFalseForAPathWithoutADot) {
  vo_table_reader_options* const options = vo_table_reader_options_create(L"base");
  vo_table_reader_options_set_file_type(options, 3);
  vo_table_reader* const reader = vo_table_reader_open(options);
  EXPECT_FALSE(vo_table_reader_read(reader));
  EXPECT_FALSE(vo_table_reader_read_demo(reader, 1));
  EXPECT_FALSE(vo_table_reader_read_only_headers(reader));
  vo_table_reader_table_list(reader, nullptr);
  vo_table_reader_close(reader);
  vo_table_reader_options_close(options);
}

TEST_F(xlsOdbcReader, aDotInAFolderWillDo) {
  // The kind is empty then, and the file missing.
  tableReader_xlsODBC reader{tableReaderOptions(L"a.folder/base")};
  EXPECT_FALSE(reader.read());
}

TEST_F(xlsOdbcReader, columnsThatCannotBeHadAreASuccess) {
  for (const char* const call : {"columns", "describe"}) {
    const odbcScript file = base(std::string(wells) + "fail\t" + call + "\t3\nfail\t" + call +
                                 "\t4\n" + "fail\t" + call + "\t1\n");
    tableReaderOptions options(file.path());
    options.table = L"Sheet1$";
    tableReader_xlsODBC reader(options);
    EXPECT_TRUE(reader.read()) << call;
    EXPECT_EQ(describe(reader), "ok") << call;
    EXPECT_EQ(file.leaks(), "");
  }
}

TEST_F(xlsOdbcReader, aFailureWhileFetchingKeepsTheRowsBefore) {
  const struct {
    const char* call;
    const char* expected;
  } failures[] = {
      {"fail\tfetch\t1\n", "fields a:number|b  ok"                      },
      {"fail\tfetch\t3\n", "fields a:number|b  rows 1|x / 2|y  ok"      },
      {"fail\tfetch\t4\n", "fields a:number|b  rows 1|x / 2|y / 3|z  ok"},
      {"fail\tget\t1\n",   "fields a:number|b  ok"                      },
      {"fail\tget\t4\n",   "fields a:number|b  rows 1|x  ok"            },
  };
  for (const auto& each : failures) {
    const odbcScript file =
        base(std::string("table\tt\tTABLE\nfields\ta:4\tb:12\nrow\t1\tx\nrow\t2\ty\nrow\t3\tz\n") +
             each.call);
    tableReaderOptions options(file.path());
    options.table = L"t";
    tableReader_xlsODBC reader(options);
    EXPECT_FALSE(reader.read()) << each.call;
    EXPECT_EQ(describe(reader), each.expected) << each.call;
    EXPECT_EQ(file.leaks(), "");
  }
}

TEST_F(xlsOdbcReader, aFailureAmongRowsThatArePassedOverIsFalse) {
  EXPECT_EQ(read(book(std::string(wells) + "fail\tfetch\t3\n"), 2, 5), "false: ok");
}

TEST_F(xlsOdbcReader, capabilities) {
  const auto [first, second, third, fourth] =
      tableReader_xlsODBC(tableReaderOptions(L"b.mdb")).get_capabilities();
  EXPECT_TRUE(first && !second && !third && fourth);
}

TEST_F(xlsOdbcReader, aPathWithForwardAndBackwardSeparators) {
  const odbcScript file = base("table\tt\tTABLE\nfields\ta:4\nrow\t1\n");
  std::wstring path = file.path();
  path[path.find_last_of(L"/\\")] = L'\\';
  tableReader_xlsODBC reader{tableReaderOptions(path)};
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields a:number  rows 1  ok");
}

}  // namespace

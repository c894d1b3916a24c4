// Rows in blocks over the tests' own ODBC driver: whatever a driver makes of them, the rows are those that come one
// at a time.
#include "suite/io/odbcBlocks.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/codePages.h"
#include "platform/vok_io.h"
#include "table_rw/readers/tableReader_micromineDHDB.h"
#include "table_rw/readers/tableReader_xlsODBC.h"
#include "tests/support/odbcScript.h"
#include "tests/support/tableText.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"

namespace {

using testSupport::describe;
using testSupport::odbcScript;
using testSupport::temporaryFolder;

constexpr int rowCount = 600;  // two blocks and a part

struct connectionCloser {
  void operator()(Ivo_odbc_connect* connection) const { vo_odbc_connect_destroy(connection); }
};
struct statementCloser {
  void operator()(Ivo_odbc_stmt* statement) const {
    vo_odbc_connect_destroy_stmt(nullptr, statement);
  }
};

// `number` of -1: none of the rows is another one.
std::string rowsWith(int number, const std::string& other) {
  std::string lines;
  for (int row = 0; row < rowCount; ++row)
    lines += row == number
                 ? other + "\n"
                 : "row\t" + std::to_string(row) + "\tvalue " + std::to_string(row) + "\n";
  return lines;
}

std::string tableWith(int number, const std::string& other) {
  return "table\tt\tTABLE\nfields\ta:4\tb:12\nsizes\t10\t20\n" + rowsWith(number, other);
}

std::string plainTable() { return tableWith(-1, ""); }

class odbcBlockReader : public testing::Test {
 protected:
  void SetUp() override {
    if (!testSupport::hasOdbcTestDriver()) GTEST_SKIP() << "the tests' own driver is not set up";
  }

  struct outcome {
    std::string rows;  // values and lines, as they came
    int count = 0;
    bool failed = false;
    std::string message;
    int executed = 0;
    int blocks = 0;
    int gets = 0;
  };

  void open(const odbcScript& file) {
    const std::wstring& path = file.path();
    base_.reset(vo_odbc_connect_create());
    ASSERT_TRUE(
        vo_odbc_connect_open_driver(base_.get(), nullptr,
                                    ("Driver={Microsoft Access Driver (*.mdb, *.accdb)};DBQ=" +
                                     std::string(path.begin(), path.end()) + ";")
                                        .c_str()));
  }

  // Runs and reads a table of the open connection to its end.
  static void readTable(Ivo_odbc_stmt* statement, const std::string& name, outcome& result) {
    vo_odbc_stmt_set_sql(statement, ("select * from [" + name + "]").c_str());
    if (!vo_odbc_stmt_exec_direct(statement) || !vo_odbc_stmt_get_fields_desc(statement)) return;
    Ivo_odbc_fields* const fields = vo_odbc_stmt_get_fields(statement);
    while (vo_odbc_stmt_fetch(statement)) {
      std::string row;
      for (std::uint32_t i = 0; i < vo_odbc_fields_get_size(fields); ++i)
        row += std::string(vo_odbc_field_get_as_string(vo_odbc_fields_get_field(fields, i))) + "|";
      if (vo_odbc_stmt_has_failed(statement)) break;
      result.rows += row + "\n";
      ++result.count;
    }
    result.failed = vo_odbc_stmt_has_failed(statement);
  }

  outcome read(const std::string& lines, const std::string& name = "t") {
    const odbcScript file(folder_.file(L"t.mdb"), lines);
    outcome result;
    open(file);
    {
      const std::unique_ptr<Ivo_odbc_stmt, statementCloser> statement(
          vo_odbc_connect_create_stmt(base_.get()));
      readTable(statement.get(), name, result);
      result.message = vo_odbc_connect_get_message(base_.get());
    }
    base_.reset();
    EXPECT_EQ(file.leaks(), "");
    result.executed = file.calls("execute");
    result.blocks = file.calls("block");
    result.gets = file.calls("get");
    return result;
  }

  temporaryFolder folder_;
  std::unique_ptr<Ivo_odbc_connect, connectionCloser> base_;
};

TEST_F(odbcBlockReader, comesWithoutACallPerValue) {
  const outcome one = read(plainTable());
  const outcome many = read("blocks\twell\n" + plainTable());
  EXPECT_EQ(one.count, rowCount);
  EXPECT_EQ(one.blocks, 0);
  EXPECT_EQ(one.gets, 2 * rowCount);
  EXPECT_EQ(many.rows, one.rows);
  EXPECT_FALSE(many.failed);
  EXPECT_EQ(many.executed, 1);
  EXPECT_EQ(many.blocks, 4) << "256, 256, 88, and the end";
  EXPECT_EQ(many.gets, 0);
}

TEST_F(odbcBlockReader, emptyTablesAndWholeBlocks) {
  std::string lines = "blocks\twell\ntable\tt\tTABLE\nfields\ta:4\n";
  EXPECT_EQ(read(lines).count, 0);
  for (int row = 0; row < 256; ++row) lines += "row\t1\n";
  EXPECT_EQ(read(lines).count, 256);
  EXPECT_EQ(read(lines + "row\t2\n").count, 257);
}

TEST_F(odbcBlockReader, driversThatGiveThemBadly) {
  const std::string expected = read(plainTable()).rows;
  const struct {
    const char* way;
    int blocks;
  } ways[] = {
      {"halved",         0},
      {"doubled",        0},
      {"untold",         0},
      {"no_state",       0},
      {"uncounted",      1},
      {"unstated",       1},
      {"unmeasured",     1},
      {"short_lengths",  1},
      {"warns",          1},
      {"overcounted",    1},
      {"untotalled",     1},
      {"ends_early",     3},
      {"all_or_nothing", 4},
  };
  for (const auto& each : ways) {
    const outcome result = read(std::string("blocks\t") + each.way + "\n" + plainTable());
    EXPECT_EQ(result.rows, expected) << each.way;
    EXPECT_FALSE(result.failed) << each.way;
    EXPECT_EQ(result.blocks, each.blocks) << each.way;
    EXPECT_EQ(result.executed, each.blocks == 4 ? 1 : 2) << each.way;
  }
  const outcome unbound = read("blocks\twell\nfail\tbind\t2\n" + plainTable());
  EXPECT_EQ(unbound.rows, expected);
  EXPECT_EQ(unbound.blocks, 0);
}

TEST_F(odbcBlockReader, valuesLongerThanTheDriverTold) {
  for (const int number : {0, 1, 255, 256, 257, 599})
    for (const char* const value : {"*100000*0123456789", "*61*x", "*62*x"}) {
      const std::string table = tableWith(number, "row\t7\t" + std::string(value));
      const outcome one = read(table);
      const outcome many = read("blocks\twell\n" + table);
      EXPECT_EQ(many.rows, one.rows) << number << value;
      EXPECT_FALSE(many.failed);
      EXPECT_EQ(many.executed, 2) << number << value;
    }
  const outcome fits = read("blocks\twell\n" + tableWith(300, "row\t7\t*60*x"));
  EXPECT_EQ(fits.executed, 1);
  EXPECT_NE(fits.rows.find("\n7|" + std::string(60, 'x') + "|\n"), std::string::npos);
}

TEST_F(odbcBlockReader, nullsAndEmptyValues) {
  EXPECT_EQ(read("blocks\twell\n"
                 "table\tt\tTABLE\nfields\ta:4\tb:12\nsizes\t10\t20\n"
                 "row\t\\N\t\\N\nrow\t1\t\nrow\t\\N\tx\n")
                .rows,
            "||\n1||\n|x|\n");
}

TEST_F(odbcBlockReader, whichColumnsHaveABound) {
  const struct {
    const char* name;
    const char* fields;
    bool inBlocks;
  } rows[] = {
      {"numbers",             "fields\ta:4\tb:8\tc:-5\td:-7\te:2",                      true },
      {"small numbers",       "fields\ta:-6\tb:5",                                      true },
      {"dates",               "fields\ta:91\tb:92\tc:93\td:-11",                        true },
      {"text of a length",    "fields\ta:12\tb:1\tc:-8\td:-9\nsizes\t1\t4000\t255\t10", true },
      {"text of no length",   "fields\ta:4\tb:12\nsizes\t10\t0",                        false},
      {"text of much length", "fields\ta:12\nsizes\t4001",                              false},
      {"long text",           "fields\ta:4\tb:-1\nsizes\t4\t10",                        false},
      {"long wide text",      "fields\ta:-10\nsizes\t10",                               false},
      {"bytes",               "fields\ta:-2\nsizes\t10",                                false},
      {"pictures",            "fields\ta:4\tb:-4",                                      false},
      {"a type nobody knows", "fields\ta:100\nsizes\t10",                               false},
  };
  for (const auto& row : rows) {
    const outcome result = read(std::string("blocks\twell\ntable\tt\tTABLE\n") + row.fields +
                                "\nrow\t1\t2\t3\t4\t5\n");
    EXPECT_EQ(result.count, 1) << row.name;
    EXPECT_EQ(result.blocks > 0, row.inBlocks) << row.name;
    EXPECT_EQ(result.executed, 1) << row.name;
  }
}

TEST_F(odbcBlockReader, wideTables) {
  for (const auto& [size, inBlocks] : {
           std::pair{"255",  true },
           std::pair{"4000", false}
  }) {
    std::string fields = "fields";
    std::string sizes = "sizes";
    std::string row = "row";
    for (int i = 0; i < 255; ++i) {
      fields += "\tc" + std::to_string(i) + ":12";
      sizes += std::string("\t") + size;
      row += "\t" + std::to_string(i);
    }
    std::string lines = "blocks\twell\ntable\tt\tTABLE\n" + fields + "\n" + sizes + "\n";
    for (int i = 0; i < 50; ++i) lines += row + "\n";
    const outcome result = read(lines);
    EXPECT_EQ(result.count, 50);
    EXPECT_EQ(result.rows.substr(0, 6), "0|1|2|");
    EXPECT_EQ(result.blocks > 0, inBlocks);
  }
}

TEST_F(odbcBlockReader, aBrokenRowStopsTheReadThere) {
  for (const char* const way : {"well", "all_or_nothing"})
    for (const int number : {0, 1, 255, 256, 300, 599}) {
      const outcome result =
          read(std::string("blocks\t") + way + "\n" + tableWith(number, "broken"));
      EXPECT_EQ(result.count, number) << way;
      EXPECT_TRUE(result.failed) << way << number;
      EXPECT_NE(result.message.find("a broken row"), std::string::npos) << result.message;
    }
}

TEST_F(odbcBlockReader, aBlockThatFailsIsHadOneRowAtATime) {
  const std::string expected = read(plainTable()).rows;
  for (const int number : {1, 2, 3, 4}) {
    const outcome result =
        read("blocks\twell\nfail\tblock\t" + std::to_string(number) + "\n" + plainTable());
    EXPECT_EQ(result.rows, expected) << number;
    EXPECT_FALSE(result.failed) << number;
  }
}

// Rows of two states of a table are never called one table.
TEST_F(odbcBlockReader, aTableThatChangesBetweenTheRuns) {
  for (const char* const what : {"values", "columns", "types", "sizes", "rows"}) {
    const outcome result = read(std::string("blocks\twell\nchanges\t") + what + "\n" +
                                tableWith(300, "row\t7\t*100*x"));
    EXPECT_EQ(result.count, 256) << what;
    EXPECT_TRUE(result.failed) << what;
    EXPECT_EQ(result.message, "the table has changed while it was read");
  }
  const outcome early = read("blocks\twell\nchanges\tvalues\n" + tableWith(1, "row\t7\t*100*x"));
  EXPECT_EQ(early.count, rowCount) << "no row had been given";
  EXPECT_EQ(early.rows.substr(0, 8), "changed|");
  EXPECT_FALSE(early.failed);
}

TEST_F(odbcBlockReader, aSecondRunThatFails) {
  for (const char* const failure : {"statement\t2", "execute\t2", "columns\t2", "describe\t3",
                                    "fetch\t1", "fetch\t256", "get\t1", "get\t511"}) {
    const outcome result = read(std::string("blocks\twell\nfail\t") + failure + "\n" +
                                tableWith(300, "row\t7\t*100*x"));
    EXPECT_EQ(result.count, 256) << failure;
    EXPECT_TRUE(result.failed) << failure;
    EXPECT_NE(result.message, "") << failure;
  }
}

// A second run could change something.
TEST_F(odbcBlockReader, onlyPlainSelectsComeInBlocks) {
  const outcome result = read("blocks\twell\ntable\ta;b\tTABLE\nfields\ta:4\nrow\t1\n", "a;b");
  EXPECT_EQ(result.count, 1);
  EXPECT_EQ(result.blocks, 0);
}

TEST_F(odbcBlockReader, rowsMayComeBeforeAnybodyAsksForTheColumns) {
  const odbcScript file(folder_.file(L"t.mdb"), "blocks\twell\n" + plainTable());
  open(file);
  const std::unique_ptr<Ivo_odbc_stmt, statementCloser> statement(
      vo_odbc_connect_create_stmt(base_.get()));
  vo_odbc_stmt_set_sql(statement.get(), "select * from [t]");
  ASSERT_TRUE(vo_odbc_stmt_exec_direct(statement.get()));
  ASSERT_TRUE(vo_odbc_stmt_fetch(statement.get()));
  ASSERT_TRUE(vo_odbc_stmt_get_fields_desc(statement.get()));
  ASSERT_TRUE(vo_odbc_stmt_fetch(statement.get()));
  Ivo_odbc_fields* const fields = vo_odbc_stmt_get_fields(statement.get());
  EXPECT_STREQ(vo_odbc_field_get_as_string(vo_odbc_fields_get_field(fields, 1)), "value 1");
}

TEST_F(odbcBlockReader, aStatementRunsAnythingAfterBlocks) {
  const odbcScript file(folder_.file(L"t.mdb"),
                        "blocks\twell\n" + plainTable() +
                            "table\tlong\tTABLE\nfields\ta:-1\nrow\tx\nrow\ty\nrow\tz\n");
  open(file);
  const std::unique_ptr<Ivo_odbc_stmt, statementCloser> statement(
      vo_odbc_connect_create_stmt(base_.get()));
  for (const auto& [name, count] : {
           std::pair{"t",    rowCount},
           std::pair{"long", 3       },
           std::pair{"none", 0       },
           std::pair{"t",    rowCount}
  }) {
    outcome result;
    readTable(statement.get(), name, result);
    EXPECT_EQ(result.count, count) << name;
  }
}

TEST_F(odbcBlockReader, columnsInAnyOrderAndTheEndInMidBlock) {
  const odbcScript file(folder_.file(L"t.mdb"), "blocks\twell\n" + plainTable());
  open(file);
  Ivo_odbc_stmt* const statement = vo_odbc_connect_create_stmt(base_.get());
  vo_odbc_stmt_set_sql(statement, "select * from [t]");
  ASSERT_TRUE(vo_odbc_stmt_exec_direct(statement));
  ASSERT_TRUE(vo_odbc_stmt_get_fields_desc(statement));
  Ivo_odbc_fields* const fields = vo_odbc_stmt_get_fields(statement);
  ASSERT_TRUE(vo_odbc_stmt_fetch(statement));
  ASSERT_TRUE(vo_odbc_stmt_fetch(statement));
  EXPECT_STREQ(vo_odbc_field_get_as_string(vo_odbc_fields_get_field(fields, 1)), "value 1");
  EXPECT_STREQ(vo_odbc_field_get_as_string(vo_odbc_fields_get_field(fields, 0)), "1");
  vo_odbc_connect_destroy_stmt(base_.get(), statement);
  base_.reset();
  EXPECT_EQ(file.leaks(), "");
}

TEST_F(odbcBlockReader, readersPassOverRowsAndStopAtLimits) {
  const odbcScript book(folder_.file(L"b.xlsx"), "blocks\twell\n" + plainTable());
  tableRW::tableReaderOptions options(book.path());
  options.header_position = 2;
  options.data_position = 301;
  options.table = L"t";
  tableRW::tableReader_xlsODBC sheet(options);
  EXPECT_TRUE(sheet.readDemo(2));
  EXPECT_EQ(describe(sheet), "rows 300|value 300 / 301|value 301  ok");
  const odbcScript holes(folder_.file(L"h.dhdb"), "blocks\twell\n" + tableWith(3, "broken"));
  tableRW::tableReader_micromineDHDB reader{tableRW::tableReaderOptions(holes.path())};
  EXPECT_TRUE(reader.readDemo(2)) << "the broken row lies behind the limit";
  EXPECT_EQ(describe(reader), "fields a:number|b  rows 0|value 0 / 1|value 1  ok");
  EXPECT_EQ(book.leaks() + holes.leaks(), "");
}

TEST_F(odbcBlockReader, textIsConvertedToTheSystemsCodePage) {
  if (testSupport::onWindows) GTEST_SKIP() << "Windows' own drivers take the system's code page";
  struct pageSetter {
    explicit pageSetter(unsigned page) { platform::chooseSystemCodePage(page); }
    pageSetter(const pageSetter&) = delete;
    pageSetter& operator=(const pageSetter&) = delete;
    ~pageSetter() { platform::chooseSystemCodePage(before); }
    unsigned before = platform::chosenSystemCodePage();
  };
  const pageSetter page(1251);
  // The long value is in the second block: what is compared must be the same text.
  std::string lines =
      "blocks\twell\ntable\tt\tTABLE\nfields\ta:4\tb:12\nsizes\t10\t20\nrow\t0\t\xD1\x8F\n" +
      rowsWith(300, "row\t7\t*100*\xD0\xB3");
  const outcome result = read(lines);
  EXPECT_EQ(result.rows.substr(0, 4), "0|\xFF|");
  EXPECT_NE(result.rows.find(std::string(100, '\xE3')), std::string::npos);
  EXPECT_EQ(result.count, rowCount + 1);
  EXPECT_EQ(result.executed, 2);
}

}  // namespace

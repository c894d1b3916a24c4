// Every allocation of every operation fails once: readers, writers, the C interface, the database layer and the
// suite's file formats. The standard exception comes out, or the answer that the C interface declares, or the
// operation is whole; nothing leaks (the build with AddressSanitizer tells), the object goes on working, and no
// file is left that an undisturbed run does not leave.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "database/odbc_database.h"
#include "database/well_queries.h"
#include "platform/vok_basic.h"
#include "platform/vok_file_dbf.h"
#include "platform/vok_file_micromine.h"
#include "platform/vok_io.h"
#include "table_rw/capi/vo_table_reader_utf.h"
#include "table_rw/capi/vo_table_writer.h"
#include "table_rw/core/tableReader.h"
#include "table_rw/writers/tableWriter.h"
#include "tests/support/dbfBuilder.h"
#include "tests/support/environmentSetter.h"
#include "tests/support/failingAllocations.h"
#include "tests/support/micromineBuilder.h"
#include "tests/support/odbcScript.h"
#include "tests/support/openedDbf.h"
#include "tests/support/ownedReader.h"
#include "tests/support/sqliteDatabase.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using testSupport::describe;
using testSupport::failingAllocation;
using testSupport::ownedReader;
using testSupport::printable;
using testSupport::temporaryFolder;

constexpr std::size_t mostAllocations =
    20000;  // a bound for the loops, far above what any row needs

// A value that no short-string buffer holds.
const std::string longText = "a value that needs memory of its own";
const std::wstring wideLongText = L"a value that needs memory of its own";

std::vector<std::string> filesIn(const temporaryFolder& folder) {
  std::vector<std::string> names;
  const std::filesystem::path top(folder.path());
  for (const auto& entry : std::filesystem::recursive_directory_iterator(top))
    names.push_back(entry.path().lexically_relative(top).generic_string());
  std::sort(names.begin(), names.end());
  return names;
}

// ---- readers ------------------------------------------------------------------------------------

std::string memoTable() {
  return testSupport::dbfBuilder("NAME C40,NOTE M", 0x83)
      .row(longText + "|         1")
      .row("b|")
      .bytes();
}

std::string micromineTable() {
  return testSupport::micromineBuilder("NAME C40,DEPTH N8.2")
      .row(longText + "|1.5")
      .row("b|2")
      .bytes();
}

struct source {
  const char* name;
  std::wstring file;
  std::function<void(const temporaryFolder&)> make;
  bool needsDriver = false;  // for ODBC
  std::size_t step = 1;      // between the allocations that fail, where all of them take too long
};

// Through ODBC `t` comes one row at a time with `way` empty, or in blocks.
void makeOdbcTable(const temporaryFolder& folder, const wchar_t* file, const char* way) {
  const testSupport::odbcScript script(
      folder.file(file), std::string(way) +
                             "table\tt\tTABLE\nfields\ta:4\tb:12\nsizes\t10\t90\nrow\t1\t" +
                             longText + "\nrow\t2\t*80*x\nrow\t\\N\tlast\n");
}

const std::vector<source>& sources() {
  // It does not survive tables of functions.
  // clang-format off
  static const std::vector<source> all = {
      {"csv", L"t.csv",
       [](const temporaryFolder& to) {
         to.write(L"t.csv", "a;b\n" + longText + ";\"x; y\"\ntoo few\n\xFF;" + std::string(2000, 'z') + "\n");
       }},
      {"of_an_unknown_extension", L"t.txt",
       [](const temporaryFolder& to) { to.write(L"t.txt", "a;b\n" + longText + ";2\n"); }},
      {"petrel", L"t.tops",
       [](const temporaryFolder& to) {
         to.write(L"t.tops", "# Petrel well tops\nBEGIN HEADER\n" + longText + "\nb\nEND HEADER\n\"" +
                                 longText + "\" 2 \n-999 " + std::string(2000, 'z') + " \n");
       }},
      {"micromine", L"t.micromine",
       [](const temporaryFolder& to) { to.write(L"t.micromine", micromineTable()); }},
      {"dbf_with_memos", L"t.dbf",
       [](const temporaryFolder& to) {
         to.write(L"t.dbf", memoTable());
         to.write(L"t.dbt", std::string(512, '\1') + std::string(5000, 'm') + "\x1A\x1A");
       }},
      {"sqlite", L"t.sqlite",
       [](const temporaryFolder& to) {
         testSupport::sqliteDatabase(to.file(L"t.sqlite"))
             .run("CREATE TABLE t(a INTEGER, b TEXT); INSERT INTO t VALUES(1, '" + longText +
                  "'), (2, x'FF41')");
       }},
      {"odbc", L"t.mdb", [](const temporaryFolder& to) { makeOdbcTable(to, L"t.mdb", ""); }, true, 17},
      {"odbc_in_blocks", L"t.dhdb",
       [](const temporaryFolder& to) { makeOdbcTable(to, L"t.dhdb", "blocks\twell\n"); }, true, 3},
  };
  // clang-format on
  return all;
}

tableRW::tableReaderOptions optionsFor(const source& from, const temporaryFolder& folder) {
  tableRW::tableReaderOptions options;
  options.path = folder.file(from.file);
  options.table = L"t";
  return options;
}

// Without the field types, which pile up from read to read in some variants.
std::string tableOf(const tableRW::tableReader& reader) {
  testSupport::tableContent content = testSupport::contentOf(reader);
  content.types.clear();
  return describe(content);
}

struct readerCall {
  const char* name;
  std::function<void(tableRW::tableReader&)> run;
};

const std::vector<readerCall>& readerCalls() {
  // It does not survive tables of functions.
  // clang-format off
  static const std::vector<readerCall> all = {
      {"read", [](auto& reader) { reader.read(); }},
      {"readDemo", [](auto& reader) { reader.readDemo(1); }},
      {"readOnlyHeaders", [](auto& reader) { reader.readOnlyHeaders(); }},
      {"tableList",
       [](auto& reader) {
         std::vector<std::wstring> list;
         reader.tableList(list);
       }},
      {"fields and values",
       [](auto& reader) {
         std::vector<std::wstring> list;
         reader.fieldList(list);
         reader.values(std::size_t{0}, list);
         reader.values(L"b", list);
         reader.getRow(0, list);
         reader.value(std::size_t{1}, 0);
         reader.searchValue(L"b", {{std::size_t{0}, wideLongText}}, list);
       }},
      {"rejected records",
       [](auto& reader) {
         reader.rejectedRecords([](const tableRW::rejectedRecord&) { return true; });
       }},
  };
  // clang-format on
  return all;
}

class readersWithoutMemory : public testing::TestWithParam<std::size_t> {
 protected:
  void SetUp() override {
    if (sources()[GetParam()].needsDriver && !testSupport::hasOdbcTestDriver())
      GTEST_SKIP() << "the tests' own driver is not set up";
  }
};

TEST_P(readersWithoutMemory, everyCallThrowsOrIsWholeAndTheReaderGoesOn) {
  const source& from = sources()[GetParam()];
  const temporaryFolder folder;
  from.make(folder);
  const tableRW::tableReaderOptions options = optionsFor(from, folder);
  const ownedReader whole = testSupport::openReader(options);
  ASSERT_TRUE(whole->readDemo(1000));
  const std::string expected = tableOf(*whole);
  const std::vector<std::string> files = filesIn(folder);
  std::size_t failures = 0;
  for (const readerCall& call : readerCalls()) {
    bool failed = true;
    for (std::size_t number = 0; failed; number += from.step) {
      ASSERT_LT(number, mostAllocations);
      const ownedReader reader = testSupport::openReader(options);
      ASSERT_TRUE(reader->readDemo(1000));
      bool thrown = false;
      {
        const failingAllocation failing(number);
        try {
          call.run(*reader);
        } catch (const std::bad_alloc&) {
          thrown = true;
        }
        failed = failing.hasFailed();
      }
      if (failed) ++failures;
      EXPECT_EQ(thrown, failed) << call.name << ' ' << number;
      ASSERT_TRUE(reader->readDemo(1000)) << call.name << ' ' << number;
      ASSERT_EQ(tableOf(*reader), expected) << call.name << ' ' << number;
    }
  }
  EXPECT_GT(failures, 10u) << "the sweep has met allocations";
  EXPECT_EQ(filesIn(folder), files);
  EXPECT_EQ(testSupport::odbcLeaks(options.path), "");
}

TEST_P(readersWithoutMemory, openThrowsOrGivesAReader) {
  const source& from = sources()[GetParam()];
  const temporaryFolder folder;
  from.make(folder);
  const tableRW::tableReaderOptions options = optionsFor(from, folder);
  bool failed = true;
  for (std::size_t number = 0; failed; ++number) {
    ASSERT_LT(number, mostAllocations);
    ownedReader reader;
    {
      const failingAllocation failing(number);
      try {
        reader = testSupport::openReader(options);
      } catch (const std::bad_alloc&) {
        EXPECT_TRUE(failing.hasFailed());
      }
      failed = failing.hasFailed();
    }
    EXPECT_EQ(reader == nullptr, failed) << number;
    if (reader) {
      EXPECT_TRUE(reader->readDemo(1000));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(every, readersWithoutMemory,
                         testing::Range<std::size_t>(0, sources().size()),
                         [](const auto& row) { return sources()[row.param].name; });

// ---- everything else ----------------------------------------------------------------------------

constexpr const char* refused = "refused";  // what the C interface declares for short memory

std::string written(const temporaryFolder& folder, const std::wstring& name) {
  return testSupport::readFile(folder.file(name)).value_or("no file");
}

std::string writeTable(const temporaryFolder& folder, const std::wstring& name) {
  tableRW::tableWriterOptions options;
  options.fileName = folder.file(name);
  options.fields = {
      {L"\x0416 and a long name", tableRW::fldText,   40, 0},
      {L"b",                      tableRW::fldNumber, 8,  2}
  };
  tableRW::tableWriter* const writer = tableRW::tableWriter::open(options);
  const std::unique_ptr<tableRW::tableWriter, decltype(&tableRW::tableWriter::close)> owner(
      writer, &tableRW::tableWriter::close);
  return writer->addRow({wideLongText, L"1.5"}) && writer->addRow({L"x", L"2"}) ? "rows"
                                                                                : "no rows";
}

std::string readThroughC(const temporaryFolder& folder) {
  const std::string path = printable(folder.file(L"t.csv"));
  const std::unique_ptr<vo_table_reader_options, decltype(&vo_table_reader_options_close)> options(
      vo_table_reader_options_create_u8(path.c_str()), &vo_table_reader_options_close);
  if (!options || !vo_table_reader_options_set_delimiter_u8(options.get(), ";") ||
      !vo_table_reader_options_set_quote_u8(options.get(), "\""))
    return refused;
  const std::unique_ptr<vo_table_reader, decltype(&vo_table_reader_close)> reader(
      vo_table_reader_open(options.get()), &vo_table_reader_close);
  const std::unique_ptr<vo_text_list, decltype(&vo_text_list_close)> list(vo_text_list_create(),
                                                                          &vo_text_list_close);
  if (!reader || !list || !vo_table_reader_read(reader.get())) return refused;
  std::uint64_t texts = 0;
  const auto take = [&](bool done) {
    texts = texts * 10 + vo_text_list_count(list.get());
    return done;
  };
  const std::uint64_t column = 0;
  const char* const wanted = longText.c_str();
  const bool done =
      take(vo_table_reader_field_list_u8(reader.get(), list.get())) &&
      take(vo_table_reader_table_list_u16(reader.get(), list.get())) &&
      take(vo_table_reader_column_u8(reader.get(), 0, list.get())) &&
      take(vo_table_reader_row_u16(reader.get(), 0, list.get())) &&
      take(vo_table_reader_search_u8(reader.get(), "b", &column, &wanted, 1, list.get())) &&
      take(vo_table_reader_rejected_u8(reader.get(), 9, list.get())) &&
      take(vo_table_reader_set_table_u8(reader.get(), "another table than this"));
  return done ? std::to_string(texts) : refused;
}

std::string writeThroughC(const temporaryFolder& folder, const std::string& name) {
  const std::string path = printable(folder.path()) + name;
  const std::unique_ptr<vo_table_writer_options, decltype(&vo_table_writer_options_close)> options(
      vo_table_writer_options_create_u8(path.c_str()), &vo_table_writer_options_close);
  if (!options || !vo_table_writer_options_add_field_u8(options.get(), longText.c_str(), 0, 40, 0))
    return refused;
  const std::unique_ptr<vo_table_writer, decltype(&vo_table_writer_close)> writer(
      vo_table_writer_open(options.get()), &vo_table_writer_close);
  const char* const value = longText.c_str();
  return writer && vo_table_writer_add_row_u8(writer.get(), &value, 1) ? "written" : refused;
}

std::string useDatabase(const temporaryFolder& folder) {
  odbc_database database;
  if (!database.connect(folder.file(L"project.sqlite"))) return "not connected";
  database.set_file_container_path(folder.path());
  database.begin_transaction();
  const bool done =
      database.execute_sql(L"CREATE TABLE t(id INTEGER PRIMARY KEY, v); INSERT INTO t(v) VALUES('" +
                           wideLongText + L"')");
  const std::int64_t code = STRATA_insertWithCode(L"INSERT INTO t(v) VALUES('b')",
                                                  L"SELECT last_insert_rowid()", &database);
  std::vector<std::wstring> list;
  STRATA_getDBList(L"SELECT v FROM t", &database, list);
  bool ok = false;
  const std::int32_t number = STRATA_getDBNumValue(L"SELECT count(*) FROM t", &database, &ok);
  const std::wstring value = STRATA_getDBValue(L"SELECT v FROM t", &database);
  const bool exists = STRATA_isExist(L"SELECT v FROM t", &database);
  database.rollback();
  return std::to_string(done) + std::to_string(code) + std::to_string(list.size()) +
         std::to_string(ok) + std::to_string(number) + printable(value) + std::to_string(exists);
}

std::string readDbf(const temporaryFolder& folder) {
  const testSupport::ownedDbf table = testSupport::openDbf(folder.file(L"t.dbf"));
  if (table == nullptr) return "not opened";
  return testSupport::recordsOf(table.get()) + testSupport::recordsAtOnce(table.get());
}

std::string readMicromine(const temporaryFolder& folder) {
  const std::unique_ptr<vo_mm_tbl_reader, decltype(&vo_mm_tbl_reader_close)> table(
      vo_mm_tbl_reader_open(folder.file(L"t.micromine").c_str()), &vo_mm_tbl_reader_close);
  if (table == nullptr) return "not opened";
  std::wstring text;
  Tvo_std_wstring_adapter receiver(text);
  const std::unique_ptr<vo_string_adp, decltype(&vo_string_adp_destroy)> adapter(
      vo_string_adp_create(&receiver), &vo_string_adp_destroy);
  std::string all;
  for (std::int64_t row = 0; row < vo_mm_tbl_reader_get_row_count(table.get()); ++row) {
    vo_mm_tbl_reader_read_row(table.get(), row);
    for (std::int32_t property = 0; property < 2; ++property) {
      vo_mm_tbl_reader_read_str(table.get(), property, adapter.get());
      all += printable(text) + '|';
    }
  }
  return all;
}

std::string useSqlite(const temporaryFolder& folder) {
  const std::unique_ptr<Ivo_sqlite_db, decltype(&vo_sqlite_db_close)> database(
      vo_sqlite_db_open(folder.file(L"suite.sqlite").c_str(), 0), &vo_sqlite_db_close);
  if (database == nullptr) return "not opened";
  if (!vo_sqlite_db_execute(database.get(), L"CREATE TABLE IF NOT EXISTS t(a INTEGER)"))
    return "refused sql";
  const std::unique_ptr<Ivo_sqlite_stmt, decltype(&vo_sqlite_stmt_destroy)> statement(
      vo_sqlite_db_query_stmt(database.get(), L"PRAGMA table_info('t')", 1),
      &vo_sqlite_stmt_destroy);
  if (statement == nullptr) return "no statement";
  std::string all;
  while (vo_sqlite_stmt_next_row(statement.get())) {
    std::wstring text;
    Tvo_std_wstring_adapter receiver(text);
    const std::unique_ptr<vo_string_adp, decltype(&vo_string_adp_destroy)> adapter(
        vo_string_adp_create(&receiver), &vo_string_adp_destroy);
    vo_sqlite_stmt_get_str(statement.get(), 2, adapter.get());
    all += printable(text);
  }
  return all;
}

struct operation {
  const char* name;
  std::function<std::string(const temporaryFolder&)> run;
  std::wstring target = {};  // a file that is whole when nothing was thrown
  std::size_t step =
      1;  // between the numbers tried; a workbook takes its time, and has a test of its own
};

const std::vector<operation>& operations() {
  // It does not survive tables of functions.
  // clang-format off
  static const std::vector<operation> all = {
      {"write_csv", [](const auto& folder) { return writeTable(folder, L"o.csv"); }, L"o.csv"},
      {"write_dbf", [](const auto& folder) { return writeTable(folder, L"o.dbf"); }, L"o.dbf"},
      {"write_xlsx", [](const auto& folder) { return writeTable(folder, L"o.xlsx"); }, {}, 23},
      {"c_reader", readThroughC, {}},
      {"c_writer_csv", [](const auto& folder) { return writeThroughC(folder, "c.csv"); }, {}},
      {"c_writer_dbf", [](const auto& folder) { return writeThroughC(folder, "c.dbf"); }, {}},
      {"c_writer_xlsx", [](const auto& folder) { return writeThroughC(folder, "c.xlsx"); }, {}, 23},
      {"project_database", useDatabase, {}},
      {"suite_dbf", readDbf, {}},
      {"suite_micromine", readMicromine, {}},
      {"suite_sqlite", useSqlite, {}},
  };
  // clang-format on
  return all;
}

class operationsWithoutMemory : public testing::TestWithParam<std::size_t> {};

TEST_P(operationsWithoutMemory, throwOrAnswerAsDeclaredOrAreWhole) {
  const operation& each = operations()[GetParam()];
  const temporaryFolder folder;
  const testSupport::environmentSetter temporaryFiles(L"TEMP", folder.path());
  for (const source& from : sources()) from.make(folder);
  const std::string expected = each.run(folder);
  const std::string whole = each.target.empty() ? "" : written(folder, each.target);
  const std::vector<std::string> files = filesIn(folder);
  bool failed = true;
  std::size_t failures = 0;
  const std::size_t step = std::getenv("VOK_FULL_SWEEP") == nullptr ? each.step : 1;
  for (std::size_t number = 0; failed; number += step) {
    ASSERT_LT(number, mostAllocations);
    std::string answer;
    bool thrown = false;
    {
      const failingAllocation failing(number);
      try {
        answer = each.run(folder);
      } catch (const std::bad_alloc&) {
        thrown = true;
      }
      failed = failing.hasFailed();
    }
    if (!thrown && (!failed || answer != refused)) {
      EXPECT_EQ(answer, expected) << number;
      if (!each.target.empty()) {
        EXPECT_EQ(written(folder, each.target), whole) << number;
      }
    }
    if (failed) ++failures;
    EXPECT_TRUE(failed || !thrown) << number;
    const std::vector<std::string> left = filesIn(folder);
    EXPECT_TRUE(std::includes(files.begin(), files.end(), left.begin(), left.end()))
        << number << ' ' << testing::PrintToString(left);
    ASSERT_EQ(each.run(folder), expected) << "afterwards, " << number;
  }
  EXPECT_GT(failures, 10u) << "the sweep has met allocations";
}

INSTANTIATE_TEST_SUITE_P(every, operationsWithoutMemory,
                         testing::Range<std::size_t>(0, operations().size()),
                         [](const auto& row) { return operations()[row.param].name; });

TEST(csvWriterWithoutMemory, aWriterGoesOnAfterAFailure) {
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

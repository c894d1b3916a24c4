// Tables of SQLite databases, one behaviour a test.
#include "table_rw/readers/tableReader_sqlite.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "table_rw/text/textConversion.h"
#include "tests/support/ownedReader.h"
#include "tests/support/sqliteDatabase.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using tableRW::tableReader_sqlite;
using testSupport::describe;
using testSupport::sqliteDatabase;
using testSupport::temporaryFolder;
using testSupport::textRow;

tableRW::tableReaderOptions optionsFor(const std::wstring& path, const std::wstring& table) {
  tableRW::tableReaderOptions options(path);
  options.table = table;
  return options;
}

struct Row {
  const char* name;
  std::string sql;
  std::wstring table;
  std::string expected;
  int line = __builtin_LINE();
};

// clang-format off
const Row rows[] = {
    Row{"fields, types and rows", "CREATE TABLE t(a INTEGER, b TEXT); INSERT INTO t VALUES(1,'x'),(2,'y')", L"t",
        "fields a:number|b  rows 1|x / 2|y  ok"},
    Row{"INTEGER and FLOAT are numbers, in these letters",
        "CREATE TABLE t(a \"INTEGER\", b \"FLOAT\", c REAL, d integer, e DOUBLE, f INT, g, h float, i Integer)", L"t",
        "fields a:number|b:number|c|d|e|f|g|h|i  ok"},
    Row{"a type must be equal, not begin so", "CREATE TABLE t(a INTEGER(4), b FLOAT NOT NULL, c \"INTEGER \")", L"t",
        "fields a|b:number|c  ok"},
    Row{"values are the engine's text", "CREATE TABLE t(a, b, c, d); INSERT INTO t VALUES(2.0, 1e20, x'4142', -3)", L"t",
        "fields a|b|c|d  rows 2.0|1.0e+20|AB|-3  ok"},
    Row{"NULL is empty text", "CREATE TABLE t(a, b); INSERT INTO t VALUES(NULL, ''),(1, NULL)", L"t",
        "fields a|b  rows | / 1|  ok"},
    Row{"no rows", "CREATE TABLE t(a, b)", L"t", "fields a|b  ok"},
    Row{"blanks stay", "CREATE TABLE t(\" a \"); INSERT INTO t VALUES(' x ')", L"t", "fields  a   rows  x   ok"},
    Row{"a value ends at its NUL", "CREATE TABLE t(a, b); INSERT INTO t VALUES('x'||char(0)||'y', char(0)||'z')", L"t",
        "fields a|b  rows x|  ok"},
    Row{"line breaks, quotes", "CREATE TABLE t(a); INSERT INTO t VALUES('x' || char(10) || '\"y\";''')", L"t",
        "fields a  rows x\\x{0A}\"y\";'  ok"},
    Row{"Cyrillic", "CREATE TABLE \"\xD0\x96\"(\"\xD0\xB3\xD0\xBB\"); INSERT INTO \xD0\x96 VALUES('\xD1\x8F')", L"\x0416",
        "fields \xD0\xB3\xD0\xBB  rows \xD1\x8F  ok"},
    Row{"letter case of the table does not count", "CREATE TABLE Wells(a); INSERT INTO Wells VALUES(1)", L"wELLS",
        "fields a  rows 1  ok"},
    Row{"a view", "CREATE TABLE u(a INTEGER, b); INSERT INTO u VALUES(1, 2); CREATE VIEW t AS SELECT b, a FROM u", L"t",
        "fields b|a:number  rows 2|1  ok"},
    Row{"WITHOUT ROWID", "CREATE TABLE t(a INTEGER PRIMARY KEY, b) WITHOUT ROWID; INSERT INTO t VALUES(2,'x'),(1,'y')", L"t",
        "fields a:number|b  rows 1|y / 2|x  ok"},
    Row{"generated columns are no fields", "CREATE TABLE t(a, b AS (a * 2)); INSERT INTO t VALUES(1)", L"t",
        "fields a  rows 1  ok"},
    Row{"a column name with a blank", "CREATE TABLE t(\"a b\"); INSERT INTO t VALUES(1)", L"t", "fields a b  rows 1  ok"},
    Row{"a column named like a word of SQL", "CREATE TABLE t(\"select\"); INSERT INTO t VALUES(1)", L"t",
        "fields select  rows 1  ok"},
    Row{"a quote in a column name is not doubled", "CREATE TABLE t(\"a\"\"b\"); INSERT INTO t VALUES(1)", L"t",
        "fields a\"b  ok"},
    Row{"the schema itself", "CREATE TABLE t(a)", L"sqlite_master",
        "fields type|name|tbl_name|rootpage|sql  rows table|t|t|2|CREATE TABLE t(a)  ok"},
};
// clang-format on

TEST(tableReader_sqlite, reads) {
  for (const Row& row : rows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    const temporaryFolder folder;
    const std::wstring path = folder.file(L"t.sqlite");
    sqliteDatabase(path).run(row.sql);
    tableReader_sqlite reader(optionsFor(path, row.table));
    const bool quoteInName = row.expected.find("a\"b") != std::string::npos;
    EXPECT_EQ(reader.read(), !quoteInName);
    EXPECT_EQ(describe(reader), row.expected);
  }
}

class sqliteReader : public testing::Test {
 protected:
  sqliteReader() {
    sqliteDatabase(path_).run(
        "CREATE TABLE t(a INTEGER, b); INSERT INTO t VALUES(1,'x'),(2,'y'),(3,'z');"
        "CREATE TABLE \"my table\"(c); INSERT INTO \"my table\" VALUES(1);"
        "CREATE TABLE \"it's\"(d); CREATE TABLE \"semi;colon\"(e); CREATE INDEX i ON t(a);"
        "CREATE VIEW v AS SELECT a FROM t");
  }

  tableRW::tableReaderOptions options(const std::wstring& table) const {
    return optionsFor(path_, table);
  }

  temporaryFolder folder_;
  std::wstring path_ = folder_.file(L"t.sqlite");
};

TEST_F(sqliteReader, theFactoryChoosesIt) {
  for (const wchar_t* const name : {L"a.sqlite", L"a.well2", L"b.WELL2"}) {
    sqliteDatabase(folder_.file(name)).run("CREATE TABLE t(a); INSERT INTO t VALUES(5)");
    const auto reader = testSupport::openReader(optionsFor(folder_.file(name), L"t"));
    EXPECT_TRUE(reader->read());
    EXPECT_EQ(describe(*reader), "fields a  rows 5  ok");
  }
  sqliteDatabase(folder_.file(L"a.db")).run("CREATE TABLE t(a)");
  auto byNumber = optionsFor(folder_.file(L"a.db"), L"t");
  byNumber.file_type = tableRW::fileTypeSqlite;
  EXPECT_TRUE(testSupport::openReader(byNumber)->read());
}

TEST_F(sqliteReader, capabilities) {
  const auto flags = tableReader_sqlite(options(L"t")).get_capabilities();
  const auto& [first, second, third, fourth] = flags;
  EXPECT_TRUE(first && second && third && !fourth);
}

TEST_F(sqliteReader, listsTables) {
  tableReader_sqlite reader(options(L""));
  std::vector<std::wstring> list = {L"left over"};
  reader.tableList(list);
  EXPECT_EQ(list, (textRow{L"t", L"my table", L"it's", L"semi;colon", L"v"}));
}

TEST_F(sqliteReader, headersAlone) {
  tableReader_sqlite reader(options(L"t"));
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(describe(reader), "fields a:number|b  ok");
}

TEST_F(sqliteReader, aMissingTable) {
  for (const wchar_t* const table :
       {L"missing", L"", L"t LIMIT 1", L"\"my table\"", L"t; DROP TABLE t"}) {
    tableReader_sqlite reader(options(table));
    EXPECT_FALSE(reader.read());
    EXPECT_EQ(describe(reader), "ok") << "the database itself is open";
    EXPECT_TRUE(reader.readOnlyHeaders());
    EXPECT_EQ(reader.fieldCount(), 0U);
  }
}

// The name is quoted for the fields and bare for the rows.
TEST_F(sqliteReader, aTableNameWithABlankHasFieldsAlone) {
  tableReader_sqlite reader(options(L"my table"));
  EXPECT_FALSE(reader.read());
  EXPECT_EQ(describe(reader), "fields c  ok");
  EXPECT_TRUE(reader.readOnlyHeaders());
}

// Bare in a statement each of these would be another table, or this one under another name.
TEST_F(sqliteReader, aNameThatBeginsWithAnotherTablesIsNotThatTable) {
  sqliteDatabase database(path_);
  database.run("CREATE TABLE wells(a, b); INSERT INTO wells VALUES('of wells', 1)");
  for (const std::string name :
       {"wells new", "wells;old", "wells--old", "wells/*old", "main.wells", "wells\told", "[wells]",
        "(wells)", "wells as w", "wells where 1", "wells,wells"}) {
    database.run("CREATE TABLE \"" + name + "\"(a, c); INSERT INTO \"" + name +
                 "\" VALUES('its own', 2)");
    tableReader_sqlite reader(options(testSupport::wide(name)));
    EXPECT_FALSE(reader.read()) << name;
    EXPECT_EQ(describe(reader), "fields a|c  ok") << name;
  }
  for (const std::string name : {"wells_2", "Wells$", "\xD0\x96_", "wells\xC2\xA0new"}) {
    database.run("CREATE TABLE \"" + name + "\"(a); INSERT INTO \"" + name +
                 "\" VALUES('its own')");
    tableReader_sqlite reader(options(testSupport::wide(name)));
    EXPECT_TRUE(reader.read()) << name;
    EXPECT_EQ(describe(reader), "fields a  rows its own  ok") << name;
  }
}

TEST_F(sqliteReader, aTableNameWithASemicolonHasFieldsAlone) {
  tableReader_sqlite reader(options(L"semi;colon"));
  EXPECT_FALSE(reader.read());
  EXPECT_EQ(describe(reader), "fields e  ok");
}

TEST_F(sqliteReader, aTableNameWithAQuoteHasNothing) {
  tableReader_sqlite reader(options(L"it's"));
  EXPECT_FALSE(reader.readOnlyHeaders());
  EXPECT_FALSE(reader.read());
  EXPECT_EQ(describe(reader), "ok");
}

TEST_F(sqliteReader, sqlInATableNameIsNotRun) {
  for (const wchar_t* const table : {L"t'); DROP TABLE t; --", L"t; DROP TABLE t"}) {
    tableReader_sqlite reader(options(table));
    reader.read();
    reader.readOnlyHeaders();
  }
  tableReader_sqlite reader(options(L"t"));
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 3U);
}

TEST_F(sqliteReader, demoHeedsItsLimit) {
  const struct {
    int limit;
    std::uint64_t rows;
  } limits[] = {
      {0,    0},
      {1,    1},
      {3,    3},
      {4,    3},
      {-1,   3},
      {-100, 3}
  };
  for (const auto& each : limits) {
    tableReader_sqlite reader(options(L"t"));
    EXPECT_TRUE(reader.readDemo(each.limit));
    EXPECT_EQ(reader.count(), each.rows) << each.limit;
    EXPECT_EQ(reader.fieldCount(), 2U);
  }
}

TEST_F(sqliteReader, theFlagAndTheLimitPersist) {
  tableReader_sqlite reader(options(L"t"));
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 0U) << "still headers only";
  EXPECT_TRUE(reader.readDemo(2));
  EXPECT_EQ(reader.count(), 2U);
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 2U) << "still limited";
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(reader.count(), 0U);
  EXPECT_TRUE(reader.readDemo(-1));
  EXPECT_EQ(reader.count(), 3U);
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 3U);
}

TEST_F(sqliteReader, typesPileUp) {
  tableReader_sqlite reader(options(L"t"));
  EXPECT_TRUE(reader.read());
  reader.setTable(L"my table");
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(reader.fieldCount(), 1U);
  // The list is a:number b:text c:text now, and the one field has the first type.
  EXPECT_EQ(reader.fieldType(std::size_t{0}), tableRW::fldNumber);
}

TEST_F(sqliteReader, setTableChoosesForTheNextRead) {
  tableReader_sqlite reader(options(L"t"));
  EXPECT_TRUE(reader.read());
  reader.setTable(L"v");
  EXPECT_EQ(reader.fieldCount(), 2U) << "nothing is read yet";
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.fieldCount(), 1U);
  EXPECT_EQ(reader.count(), 3U);
  EXPECT_TRUE(reader.isSameFile(options(L"v")));
  EXPECT_FALSE(reader.isSameFile(options(L"t")));
}

TEST_F(sqliteReader, everyReadReadsAnew) {
  tableReader_sqlite reader(options(L"t"));
  EXPECT_TRUE(reader.read());
  sqliteDatabase(path_).run("DELETE FROM t WHERE a < 3");
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 1U);
  reader.setTable(L"missing");
  EXPECT_FALSE(reader.read());
  EXPECT_EQ(reader.count() + reader.fieldCount(), 0U);
}

TEST_F(sqliteReader, errorsAreNoBusinessOfThisVariant) {
  tableReader_sqlite reader(options(L"missing"));
  EXPECT_FALSE(reader.read());
  EXPECT_EQ(reader.errorCount(), 0U);
  EXPECT_FALSE(reader.rejectedRecords([](const tableRW::rejectedRecord&) { return true; }));
}

TEST_F(sqliteReader, twoThousandColumns) {
  std::string columns;
  std::string values;
  for (int i = 0; i < 2000; ++i) {
    columns += (i == 0 ? "c" : ", c") + std::to_string(i) + " INTEGER";
    values += (i == 0 ? "" : ",") + std::to_string(i);
  }
  sqliteDatabase(path_).run("CREATE TABLE wide(" + columns + "); INSERT INTO wide VALUES(" +
                            values + ")");
  tableReader_sqlite reader(options(L"wide"));
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.fieldCount(), 2000U);
  EXPECT_EQ(reader.value(1999, 0), L"1999");
  EXPECT_EQ(reader.fieldType(L"c1999"), tableRW::fldNumber);
}

TEST_F(sqliteReader, valuesOfTenMegabytes) {
  sqliteDatabase(path_).run(
      "CREATE TABLE big(a, b); INSERT INTO big VALUES(replace(hex(zeroblob(5000000)), '0', 'x'), "
      "'end'),"
      "(zeroblob(10000000), 'NUL first')");
  tableReader_sqlite reader(options(L"big"));
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.value(0, 0), std::wstring(10000000, L'x'));
  EXPECT_EQ(reader.value(1, 0), L"end");
  EXPECT_EQ(reader.value(0, 1), L"");
  EXPECT_EQ(reader.value(1, 1), L"NUL first");
}

// Its column cannot be named in wide text, and the engine would take the name for a text.
TEST_F(sqliteReader, aColumnNamedInBrokenUtf8HasNoRows) {
  sqliteDatabase(path_).run(
      "CREATE TABLE broken(a, \"x\xFF\", b); INSERT INTO broken VALUES(1, 2, 3);"
      "CREATE TABLE whole(\"x\xD0\x96\"); INSERT INTO whole VALUES(3)");
  tableReader_sqlite reader(options(L"broken"));
  EXPECT_FALSE(reader.read());
  EXPECT_EQ(describe(reader), "fields a|x\xEF\xBF\xBD|b  ok");
  EXPECT_TRUE(reader.readOnlyHeaders());
  reader.setTable(L"whole");
  EXPECT_TRUE(reader.readDemo(-1));
  EXPECT_EQ(describe(reader), "fields x\xD0\x96  rows 3  ok");
}

// A derived reader's read is called by the two others.
TEST_F(sqliteReader, readsGoThroughTheVirtualOperation) {
  struct countingReader : tableReader_sqlite {
    using tableReader_sqlite::tableReader_sqlite;
    bool read() override { return ++reads == 2; }
    int reads = 0;
  };
  countingReader reader(options(L"t"));
  EXPECT_FALSE(reader.readOnlyHeaders());
  EXPECT_TRUE(reader.readDemo(1));
  EXPECT_EQ(reader.reads, 2);
}

// The value is what decoding the bytes and storing the wide text gives, whichever way it went in.
TEST_F(sqliteReader, brokenTextIsStoredAsItsDecoding) {
  const std::vector<std::string> texts = {
      "A\xFF"
      "B and more",
      "\xC3\x28 and more",
      "\xED\xA0\x80\xED\xB0\x80 and more",
      "\xF4\x90\x80\x80 and more",
      "\xC0\xAF and more",
      "\x80 and more",
      "valid \xF0\x9F\x98\x80"};
  std::string sql = "CREATE TABLE broken(a)";
  for (const std::string& text : texts) {
    sql += "; INSERT INTO broken VALUES(CAST(x'";
    for (const char c : text) {
      constexpr char digits[] = "0123456789ABCDEF";
      sql += digits[static_cast<unsigned char>(c) >> 4];
      sql += digits[static_cast<unsigned char>(c) & 15];
    }
    sql += "' AS TEXT))";
  }
  sqliteDatabase(path_).run(sql);
  tableReader_sqlite reader(options(L"broken"));
  EXPECT_TRUE(reader.read());
  ASSERT_EQ(reader.count(), texts.size());
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const std::wstring decoded = tableRW::decodeText(
        texts[i].data(), static_cast<std::int32_t>(texts[i].size()), tableRW::encodingUtf8);
    EXPECT_EQ(reader.value(0, i), decoded) << i;
    EXPECT_EQ(reader.searchValue(L"a",
                                 {
                                     {0, decoded}
    }),
              decoded)
        << i;
  }
}

TEST_F(sqliteReader, whatCannotBeOpened) {
  const std::wstring missing = folder_.file(L"missing.sqlite");
  for (const std::wstring& path : {missing, folder_.path(), std::wstring()}) {
    tableReader_sqlite reader(optionsFor(path, L"t"));
    EXPECT_FALSE(reader.isOK());
    EXPECT_FALSE(reader.read());
    EXPECT_FALSE(reader.readOnlyHeaders());
    EXPECT_FALSE(reader.readDemo(1));
    std::vector<std::wstring> list = {L"left over"};
    reader.tableList(list);
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(describe(reader), "failed");
  }
  EXPECT_FALSE(testSupport::readFile(missing)) << "it is not created";
}

TEST_F(sqliteReader, readingLeavesTheFileAsItIs) {
  const auto before = testSupport::readFile(path_);
  {
    tableReader_sqlite reader(options(L"t"));
    EXPECT_TRUE(reader.read());
    std::vector<std::wstring> list;
    reader.tableList(list);
  }
  EXPECT_EQ(testSupport::readFile(path_), before);
  const std::filesystem::directory_iterator files{std::filesystem::path(folder_.path())};
  EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

// Real databases are no part of the project: VOK_REAL_FILES names a folder that holds them in its
// subfolder sqlite.
TEST(sqliteRealFiles, everyTableIsRead) {
  const char* const folder = std::getenv("VOK_REAL_FILES");
  std::vector<std::filesystem::path> files;
  std::error_code failure;
  if (folder != nullptr)
    for (auto entry = std::filesystem::recursive_directory_iterator(
             std::filesystem::path(folder) / "sqlite", failure);
         !failure && entry != std::filesystem::recursive_directory_iterator();
         entry.increment(failure))
      if (entry->is_regular_file()) files.push_back(entry->path());
  if (files.empty()) GTEST_SKIP() << "VOK_REAL_FILES names no folder with databases";
  for (const auto& file : files) {
    tableRW::tableReaderOptions options(file.wstring());
    options.file_type = tableRW::fileTypeSqlite;
    const auto before = testSupport::readFile(file.wstring());
    tableReader_sqlite lister(options);
    std::vector<std::wstring> tables;
    lister.tableList(tables);
    EXPECT_FALSE(tables.empty()) << file;
    for (const std::wstring& table : tables) {
      options.table = table;
      tableReader_sqlite reader(options);
      EXPECT_TRUE(reader.readOnlyHeaders()) << file << ' ' << testSupport::printable(table);
      EXPECT_GT(reader.fieldCount(), 0U) << file << ' ' << testSupport::printable(table);
      reader.readDemo(-1);  // a virtual table may need a module that is not there
      for (std::size_t row = 0; row < reader.count(); ++row) {
        textRow values;
        reader.getRow(row, values);
        ASSERT_EQ(values.size(), reader.fieldCount());
      }
    }
    EXPECT_EQ(testSupport::readFile(file.wstring()), before) << file;
  }
}

}  // namespace

// The small questions to a project database, and the folders of wells.
#include "database/well_queries.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <limits>

#include "platform/files.h"
#include "tests/support/tableText.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"

namespace {

using testSupport::printable;
using testSupport::temporaryFolder;
using texts = std::vector<std::wstring>;

class wellQueries : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(database_.connect(std::wstring(L":memory:")));
    run(L"CREATE TABLE t(id INTEGER PRIMARY KEY AUTOINCREMENT, v)");
  }

  void run(const std::wstring& sql) { ASSERT_TRUE(database_.execute_sql(sql)); }

  odbc_database database_;
  odbc_database* const db_ = &database_;
};

TEST_F(wellQueries, isExist) {
  EXPECT_FALSE(STRATA_isExist(L"nonsense", nullptr));
  EXPECT_FALSE(STRATA_isExist(L"SELECT 1", nullptr));
  EXPECT_FALSE(STRATA_isExist(L"nonsense", db_));
  EXPECT_FALSE(STRATA_isExist(L"SELECT v FROM t", db_));
  run(L"INSERT INTO t(v) VALUES(NULL)");
  EXPECT_TRUE(STRATA_isExist(L"SELECT v FROM t", db_)) << "a row of NULL is a row";
}

TEST_F(wellQueries, insertWithCode) {
  const std::wstring insert = L"INSERT INTO t(v) VALUES('a')";
  const std::wstring code = L"SELECT last_insert_rowid()";
  EXPECT_EQ(STRATA_insertWithCode(insert, code, db_), 1);
  EXPECT_EQ(STRATA_insertWithCode(insert, code, db_), 2);
  EXPECT_EQ(STRATA_insertWithCode(L"INSERT INTO missing VALUES(1)", code, db_), -1);
  EXPECT_EQ(STRATA_insertWithCode(insert, L"SELECT nonsense", db_), 0);
  EXPECT_EQ(STRATA_insertWithCode(insert, L"SELECT id FROM t WHERE id = 0", db_), -1);
  EXPECT_EQ(STRATA_insertWithCode(insert, L"SELECT -7", db_), -7) << "the sign is kept";
  EXPECT_EQ(STRATA_insertWithCode(insert, code, nullptr), -1);
  EXPECT_EQ(STRATA_getDBValue(L"SELECT count(*) FROM t", db_), L"5")
      << "the record stays when the code cannot be told";
}

TEST_F(wellQueries, getDBList) {
  run(L"INSERT INTO t(v) VALUES('b'),(NULL),('\x0416'),(2.5)");
  texts list = {L"left over"};
  STRATA_getDBList(L"SELECT v, id FROM t ORDER BY id", db_, list);
  EXPECT_EQ(list, (texts{L"b", L"", L"\x0416", L"2.5"}));
  STRATA_getDBList(L"nonsense", db_, list);
  EXPECT_EQ(list, texts());
  list = {L"left over"};
  STRATA_getDBList(L"SELECT v FROM t", nullptr, list);
  EXPECT_EQ(list, texts());
}

TEST_F(wellQueries, getDBValue) {
  run(L"INSERT INTO t(v) VALUES('first'),('second')");
  EXPECT_EQ(STRATA_getDBValue(L"SELECT v FROM t ORDER BY id", db_), L"first");
  EXPECT_EQ(STRATA_getDBValue(L"SELECT v FROM t WHERE id = 0", db_), L"");
  EXPECT_EQ(STRATA_getDBValue(L"nonsense", db_), L"");
  EXPECT_EQ(STRATA_getDBValue(L"SELECT 1", nullptr), L"");
}

struct numberRow {
  const char* name;
  std::wstring expression;
  std::int32_t number;
  bool ok;
  std::int64_t counter;
  bool counterOk;
  int line = __builtin_LINE();
};

constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t mostLong = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t leastLong = std::numeric_limits<std::int64_t>::min();

const numberRow numberRows[] = {
    numberRow{"a number",         L"'42'",                   42,    true,  42,          true },
    numberRow{"of the database",  L"42",                     42,    true,  42,          true },
    numberRow{"a letter behind",  L"'42a'",                  42,    false, 42,          false},
    numberRow{"no text",          L"''",                     0,     false, 0,           false},
    numberRow{"NULL",             L"NULL",                   0,     false, 0,           false},
    numberRow{"no number",        L"'a42'",                  0,     false, 0,           false},
    numberRow{"blanks before",    L"'  42'",                 42,    true,  42,          true },
    numberRow{"a blank behind",   L"'42 '",                  42,    false, 42,          false},
    numberRow{"blanks alone",     L"'  '",                   0,     false, 0,           false},
    numberRow{"signs",            L"'-42'",                  -42,   true,  -42,         true },
    numberRow{"a plus",           L"'+42'",                  42,    true,  42,          true },
    numberRow{"a sign alone",     L"'-'",                    0,     false, 0,           false},
    numberRow{"a real number",    L"2.5",                    2,     false, 2,           false},
    numberRow{"no octal number",  L"'010'",                  10,    true,  10,          true },
    numberRow{"the largest",      L"2147483647",             most,  true,  2147483647,  true },
    numberRow{"one more",         L"2147483648",             most,  false, 2147483648,  true },
    numberRow{"the smallest",     L"-2147483648",            least, true,  -2147483648, true },
    numberRow{"one less",         L"-2147483649",            least, false, -2147483649, true },
    numberRow{"out of range",     L"'99999999999'",          most,  false, 99999999999, true },
    numberRow{"and out of 64",    L"'9223372036854775808'",  most,  false, mostLong,    false},
    numberRow{"the other way",    L"'-9223372036854775809'", least, false, leastLong,   false},
    numberRow{"large, then text", L"'99999999999x'",         most,  false, 99999999999, false},
};

TEST_F(wellQueries, numbers) {
  for (const numberRow& each : numberRows) {
    const testing::ScopedTrace trace(__FILE__, each.line, each.name);
    const std::wstring sql = L"SELECT " + each.expression;
    bool ok = !each.ok;
    EXPECT_EQ(STRATA_getDBNumValue(sql, db_, &ok), each.number);
    EXPECT_EQ(ok, each.ok);
    EXPECT_EQ(STRATA_getDBNumValue(sql, db_, nullptr), each.number);
    ok = !each.counterOk;
    EXPECT_EQ(STRATA_getDBCounter(sql, db_, &ok), each.counter);
    EXPECT_EQ(ok, each.counterOk);
    EXPECT_EQ(STRATA_getDBCounter(sql, db_, nullptr), each.counter);
  }
}

TEST_F(wellQueries, numbersOfNothing) {
  bool ok = true;
  EXPECT_EQ(STRATA_getDBNumValue(L"SELECT id FROM t", db_, &ok), 0);
  EXPECT_FALSE(ok);
  ok = true;
  EXPECT_EQ(STRATA_getDBCounter(L"nonsense", db_, &ok), 0);
  EXPECT_FALSE(ok);
}

struct pathRow {
  const char* name;
  const wchar_t* values;  // name, field, work_object
  std::wstring well;
  std::wstring field;
  int line = __builtin_LINE();
};

// clang-format off
const pathRow pathRows[] = {
    pathRow{"all three", L"'W-12','North','Proj'", L"Proj\\North\\W-12", L"Proj\\North"},
    pathRow{"no field", L"'W-12','','Proj'", L"Proj\\W-12", L"Proj\\"},
    pathRow{"a field that is NULL", L"'W-12',NULL,'Proj'", L"Proj\\W-12", L"Proj\\"},
    pathRow{"no work object", L"'W-12','North',''", L"North\\W-12", L"North"},
    pathRow{"no name", L"'','North','Proj'", L"Proj\\North", L"Proj\\North"},
    pathRow{"nothing at all", L"NULL,NULL,NULL", L"", L""},
    pathRow{"an absolute work object", L"'W-12','North','D:\\Proj'", L"D:\\Proj\\North\\W-12", L"D:\\Proj\\North"},
    pathRow{"an absolute field", L"'W-12','\\North','Proj'", L"\\North\\W-12", L"\\North"},
    pathRow{"an absolute name", L"'/W','North','Proj'", L"/W", L"Proj\\North"},
    pathRow{"a work object with a separator gets one more", L"'W-12','North','Proj\\'", L"Proj\\\\North\\W-12",
            L"Proj\\\\North"},
    pathRow{"Cyrillic", L"'\x0421-1','\x0421\x0435\x0432','\x041F'", L"\x041F\\\x0421\x0435\x0432\\\x0421-1",
            L"\x041F\\\x0421\x0435\x0432"},
};
// clang-format on

TEST_F(wellQueries, paths) {
  run(L"CREATE TABLE well_base(w_id INTEGER, name TEXT, field TEXT, work_object TEXT)");
  for (const pathRow& each : pathRows) {
    const testing::ScopedTrace trace(__FILE__, each.line, each.name);
    run(std::wstring(L"DELETE FROM well_base; INSERT INTO well_base VALUES(7,") + each.values +
        L")");
    EXPECT_EQ(printable(STRATA_getWellPath(db_, 7)), printable(each.well));
    EXPECT_EQ(printable(STRATA_getWellPath(db_, L"7")), printable(each.well));
    EXPECT_EQ(printable(STRATA_getFieldPath(db_, L"7")), printable(each.field));
  }
}

TEST_F(wellQueries, pathsOfNothing) {
  EXPECT_EQ(STRATA_getWellPath(db_, 7), L"") << "no such table";
  run(L"CREATE TABLE well_base(w_id, name, field, work_object);"
      L"INSERT INTO well_base VALUES(-7, 'W', 'F', 'P'), ('a', 'A', 'F', 'P')");
  EXPECT_EQ(STRATA_getWellPath(db_, 7), L"") << "no such well";
  EXPECT_EQ(STRATA_getFieldPath(db_, L"7"), L"");
  EXPECT_EQ(STRATA_getWellPath(db_, L""), L"") << "no SQL";
  EXPECT_EQ(STRATA_getWellPath(nullptr, 7), L"");
  EXPECT_EQ(STRATA_getFieldPath(nullptr, L"7"), L"");
  EXPECT_EQ(STRATA_getWellPath(db_, -7), L"P\\F\\W");
}

TEST_F(wellQueries, theWellsKeyIsSqlAsItStands) {
  run(L"CREATE TABLE well_base(w_id, name, field, work_object);"
      L"INSERT INTO well_base VALUES('a', 'A', 'F', 'P'), (2, 'B', 'F', 'P')");
  EXPECT_EQ(STRATA_getWellPath(db_, L"a"), L"") << "no column of that name";
  EXPECT_EQ(STRATA_getWellPath(db_, L"'a'"), L"P\\F\\A");
  EXPECT_EQ(STRATA_getWellPath(db_, L"1 + 1"), L"P\\F\\B");
}

// --- folders --------------------------------------------------------------------------------------

struct folderRow {
  const char* name;
  const wchar_t* path;  // in the test's folder
  const wchar_t* part;
  const wchar_t* expected;
  int line = __builtin_LINE();
};

const folderRow folderRows[] = {
    folderRow{"every missing folder above", L"data\\x",       L"Proj",   L"data/x/Proj"      },
    folderRow{"no part",                    L"data",          L"",       L"data"             },
    folderRow{"a part of several folders",  L"data",          L"a\\b/c", L"data/a/b/c"       },
    folderRow{"slashes",                    L"a/b",           L"c/d",    L"a/b/c/d"          },
    folderRow{"a separator at the end",     L"data\\",        L"Proj\\", L"data/Proj"        },
    folderRow{"several separators",         L"a\\\\b",        L"c",      L"a/b/c"            },
    folderRow{"Cyrillic and blanks",        L"\x0416 \x0416", L"a b",    L"\x0416 \x0416/a b"},
};

TEST(makeObjectPath, createsFolders) {
  for (const folderRow& each : folderRows) {
    const testing::ScopedTrace trace(__FILE__, each.line, each.name);
    const temporaryFolder folder;
    STRATA_makeObjectPath(folder.path() + each.path, each.part);
    EXPECT_TRUE(platform::folderExists(folder.file(each.expected)));
    STRATA_makeObjectPath(folder.path() + each.path, each.part);
    EXPECT_TRUE(platform::folderExists(folder.file(each.expected))) << "once more";
  }
}

TEST(makeObjectPath, anAbsolutePartReplacesThePath) {
  const temporaryFolder folder;
  STRATA_makeObjectPath(folder.file(L"a"), folder.file(L"b"));
  EXPECT_FALSE(platform::fileExists(folder.file(L"a")));
  EXPECT_TRUE(platform::folderExists(folder.file(L"b")));
}

TEST(makeObjectPath, anEmptyPathDoesNothing) {
  const temporaryFolder folder;
  STRATA_makeObjectPath(L"", folder.file(L"b"));
  EXPECT_FALSE(platform::fileExists(folder.file(L"b")));
  STRATA_makeObjectPath(L"", L"");
  STRATA_makeObjectPath(L"\\", L"");
  STRATA_makeObjectPath(L"//", L"");
}

TEST(makeObjectPath, aRelativePathIsOfTheCurrentFolder) {
  const temporaryFolder folder;
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(std::filesystem::path(folder.path()));
  STRATA_makeObjectPath(L"a", L"b");
  std::filesystem::current_path(before);
  EXPECT_TRUE(platform::folderExists(folder.file(L"a/b")));
}

TEST(makeObjectPath, aFileInTheWayStays) {
  const temporaryFolder folder;
  const std::wstring file = folder.write(L"file", "x");
  STRATA_makeObjectPath(file, L"");
  STRATA_makeObjectPath(file, L"a");
  STRATA_makeObjectPath(file, L"a\\b");
  EXPECT_EQ(testSupport::readFile(file), "x");
  EXPECT_FALSE(platform::fileExists(folder.file(L"a")));
}

// With one of them the name would be one of this machine's folders.
TEST(makeObjectPath, twoSeparatorsAtTheBeginningAreKept) {
  if (!testSupport::onWindows) GTEST_SKIP() << "only Windows tells them from one";
  const temporaryFolder folder;
  std::wstring path = L"\\\\?\\" + folder.file(L"a");
  std::replace(path.begin(), path.end(), L'/', L'\\');
  STRATA_makeObjectPath(path, L"b");
  EXPECT_TRUE(platform::folderExists(folder.file(L"a/b")));
}

TEST(makeObjectPath, theCallersTextsStay) {
  const temporaryFolder folder;
  const std::wstring path = folder.file(L"a");
  const std::wstring part = L"b";
  STRATA_makeObjectPath(path, part);
  EXPECT_EQ(path, folder.file(L"a"));
  EXPECT_EQ(part, L"b");
}

}  // namespace

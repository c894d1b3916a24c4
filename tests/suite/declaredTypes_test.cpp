// The declared spelling of column types: out of CREATE statements, and as PRAGMA table_info delivers it.
#include "suite/io/declaredTypes.h"

#include <gtest/gtest.h>

#include "platform/vok_io.h"
#include "tests/support/sqliteDatabase.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using suiteIo::columnType;
using testSupport::sqliteDatabase;
using testSupport::temporaryFolder;

std::string listed(const std::vector<columnType>& columns) {
  std::string list;
  for (const columnType& column : columns)
    list += (list.empty() ? "" : "|") + column.name + ":" + column.type;
  return list;
}

// What PRAGMA table_info gives for a table of a database.
std::string tableInfo(Ivo_sqlite_db* database, const std::wstring& pragma) {
  std::vector<columnType> columns;
  Ivo_sqlite_stmt* const rows = vo_sqlite_db_query_stmt(database, pragma.c_str(), 1);
  while (vo_sqlite_stmt_next_row(rows)) {
    columnType column;
    Tvo_std_string_adapter receiver(column.type);
    vo_string_adp* const adapter = vo_string_adp_create(&receiver);
    vo_sqlite_stmt_get_str(rows, 2, adapter);
    vo_string_adp_destroy(adapter);
    size_t size = 0;
    const char* const type = vo_sqlite_stmt_get_utf8(rows, 2, &size);
    EXPECT_EQ(column.type, std::string(type, size));
    const char* const name = vo_sqlite_stmt_get_utf8(rows, 1, &size);
    column.name.assign(name, size);
    columns.push_back(std::move(column));
  }
  EXPECT_FALSE(vo_sqlite_stmt_has_failed(rows));
  vo_sqlite_stmt_destroy(rows);
  return listed(columns);
}

struct row {
  const char* name;
  std::string sql;       // makes the table t
  std::string expected;  // its columns
  int line = __builtin_LINE();
};

// clang-format off
const row rows[] = {
    row{"letter case of the standard names",
        "CREATE TABLE t(a INTEGER, b integer, c Integer, d int, e Text, f real, g blob, h Any)",
        "a:INTEGER|b:integer|c:Integer|d:int|e:Text|f:real|g:blob|h:Any"},
    row{"other names", "CREATE TABLE t(a FLOAT, b float, c Double, d varchar)",
        "a:FLOAT|b:float|c:Double|d:varchar"},
    row{"no type at all", "CREATE TABLE t(a, b , c)", "a:|b:|c:"},
    row{"several words", "CREATE TABLE t(a double precision, b unsigned  big int, c integer)",
        "a:double precision|b:unsigned  big int|c:integer"},
    row{"parentheses", "CREATE TABLE t(a DECIMAL(10, 2), b varchar (20), c integer)",
        "a:DECIMAL(10, 2)|b:varchar (20)|c:integer"},
    row{"quoted names", "CREATE TABLE t(\"a b\" integer, `c``d` text, [e f] real, 'g''h' int)",
        "a b:integer|c`d:text|e f:real|g'h:int"},
    row{"names with commas and parentheses", "CREATE TABLE t(\"a,(\" integer, \"b)\" text)",
        "a,(:integer|b):text"},
    row{"quoted types", "CREATE TABLE t(a \"integer\", b [text], c `Real`, d 'int')",
        "a:integer|b:text|c:Real|d:int"},
    row{"quoted types of any letters", "CREATE TABLE t(a \"x~{y}|\", b 'y z')", "a:x~{y}||b:y z"},
    row{"comments", "CREATE /*1*/ TABLE t -- (x y,\n(a /*,*/ integer -- z\n, b text/*)*/, c int)",
        "a:integer|b:text|c:int"},
    row{"line breaks", "CREATE TABLE t\n(\n  a\n  integer,\r\n\tb\ttext\n)", "a:integer|b:text"},
    row{"column constraints",
        "CREATE TABLE t(a integer PRIMARY KEY, b text NOT NULL DEFAULT ('x,y)'), c int DEFAULT -1,"
        " d real CHECK (d > (0)), e text COLLATE NOCASE UNIQUE, f int REFERENCES u(a),"
        " g int CONSTRAINT named NOT NULL, h text NULL)",
        "a:integer|b:text|c:int|d:real|e:text|f:int|g:int|h:text"},
    row{"table constraints",
        "CREATE TABLE t(a integer, b text, PRIMARY KEY(a), UNIQUE (b), CHECK (a > 0),"
        " CONSTRAINT n FOREIGN KEY(b) REFERENCES u(x))",
        "a:integer|b:text"},
    row{"a constraint without a comma", "CREATE TABLE t(a integer, b text PRIMARY KEY, CHECK(a) UNIQUE(b))",
        "a:integer|b:text"},
    row{"columns named like keywords", "CREATE TABLE t(key integer, \"check\" text, \"primary\" int)",
        "key:integer|check:text|primary:int"},
    row{"WITHOUT ROWID", "CREATE TABLE t(a integer PRIMARY KEY, b text) WITHOUT ROWID",
        "a:integer|b:text"},
    row{"STRICT", "CREATE TABLE t(a integer, b Any) STRICT", "a:integer|b:Any"},
    row{"generated columns are hidden",
        "CREATE TABLE t(a integer, b int AS (a + 1), c text GENERATED ALWAYS AS (a || ',') STORED, d real)",
        "a:integer|d:real"},
    row{"a type that is called GENERATED in part", "CREATE TABLE t(a integer GENERATED ALWAYS AS (1), b int)",
        "b:int"},
    row{"ALTER TABLE ADD COLUMN",
        "CREATE TABLE t(a integer); ALTER TABLE t ADD COLUMN b text; ALTER TABLE t ADD \"c d\" int NOT NULL "
        "DEFAULT 1", "a:integer|b:text|c d:int"},
    row{"ALTER TABLE RENAME", "CREATE TABLE x(a integer, b Text); ALTER TABLE x RENAME TO t;"
        " ALTER TABLE t RENAME COLUMN a TO \"a,a\"", "a,a:integer|b:Text"},
    row{"ALTER TABLE DROP COLUMN", "CREATE TABLE t(a integer, b Text, c real); ALTER TABLE t DROP COLUMN b",
        "a:integer|c:real"},
    row{"CREATE TABLE AS", "CREATE TABLE u(x integer, y text); CREATE TABLE t AS SELECT x, y, 1.5 AS z FROM u",
        "x:INT|y:TEXT|z:"},
    row{"IF NOT EXISTS and a schema", "CREATE TABLE IF NOT EXISTS main.t(a integer)", "a:integer"},
    row{"in other letters than the table's name", "CREATE TABLE T(a integer)", "a:integer"},
    row{"a temporary table", "CREATE TEMP TABLE t(a integer)", "a:integer"},
    row{"a temporary table before another", "CREATE TABLE t(a int); CREATE TEMPORARY TABLE t(b Integer)",
        "b:Integer"},
    row{"Cyrillic", "CREATE TABLE t(\xD0\x96 integer)", "\xD0\x96:integer"},
    row{"a view has what the engine says", "CREATE TABLE u(a integer, b Text); CREATE VIEW t AS SELECT a, b, 1 AS c FROM u",
        "a:INTEGER|b:TEXT|c:"},
    row{"a virtual table too", "CREATE VIRTUAL TABLE t USING fts5(a, b)", "a:|b:"},
    row{"no table", "CREATE TABLE u(a)", ""},
};
// clang-format on

TEST(declaredTypes, reachTheRowsOfTableInfo) {
  for (const row& each : rows) {
    const testing::ScopedTrace trace(__FILE__, each.line, each.name);
    Ivo_sqlite_db* const database = vo_sqlite_db_open(L":memory:", 0);
    ASSERT_TRUE(vo_sqlite_db_execute(database, testSupport::wide(each.sql).c_str()));
    EXPECT_EQ(tableInfo(database, L"PRAGMA table_info('t')"), each.expected);
    vo_sqlite_db_close(database);
  }
}

TEST(declaredTypes, statementsAsTheyAreWritten) {
  struct statement {
    const char* sql;
    const char* expected;
  };
  for (const statement& each : {
           statement{"CREATE TEMP TABLE t(a Integer)",              "a:Integer"},
           statement{"create temporary table if not exists t(a x)", "a:x"      },
           statement{"CREATE TABLE t",                              ""         },
           statement{"CREATE TABLE t AS SELECT (1)",                ""         },
           statement{"CREATE INDEX i ON t(a)",                      ""         },
           statement{"DROP TABLE t",                                ""         },
           statement{"",                                            ""         }
  })
    EXPECT_EQ(listed(suiteIo::readCreateTable(each.sql)), each.expected) << each.sql;
}

TEST(declaredTypes, waysToAsk) {
  const temporaryFolder folder;
  sqliteDatabase(folder.file(L"b.sqlite")).run("CREATE TABLE t(b Text)");
  Ivo_sqlite_db* const database = vo_sqlite_db_open(folder.file(L"a.sqlite").c_str(), 0);
  ASSERT_TRUE(vo_sqlite_db_execute(database,
                                   L"CREATE TABLE t(a integer); CREATE TABLE \"it's\"(q int);"
                                   L"CREATE TABLE \"a b\"(s Real);"));
  const std::wstring attach = L"ATTACH '" + folder.file(L"b.sqlite") + L"' AS \"o o\"";
  ASSERT_TRUE(vo_sqlite_db_execute(database, attach.c_str()));
  EXPECT_EQ(tableInfo(database, L"PRAGMA table_info(t)"), "a:integer");
  EXPECT_EQ(tableInfo(database, L" pragma /**/ TABLE_INFO ( \"t\" ) ; SELECT 1"), "a:integer");
  EXPECT_EQ(tableInfo(database, L"PRAGMA table_info = t"), "a:integer");
  EXPECT_EQ(tableInfo(database, L"PRAGMA main.table_info([t])"), "a:integer");
  EXPECT_EQ(tableInfo(database, L"PRAGMA \"o o\".table_info('t')"), "b:Text");
  EXPECT_EQ(tableInfo(database, L"PRAGMA table_info('it''s')"), "q:int");
  EXPECT_EQ(tableInfo(database, L"PRAGMA table_info('a b')"), "s:Real");
  EXPECT_EQ(tableInfo(database, L"PRAGMA table_info"), "");
  EXPECT_EQ(tableInfo(database, L"PRAGMA index_info(t)"), "");
  vo_sqlite_db_close(database);
}

TEST(declaredTypes, onlyTableInfoIsAnsweredDifferently) {
  EXPECT_FALSE(suiteIo::readTableInfoCall("PRAGMA table_xinfo(t)"));
  EXPECT_FALSE(suiteIo::readTableInfoCall("SELECT table_info(t)"));
  EXPECT_FALSE(suiteIo::readTableInfoCall("PRAGMA table_info"));
  EXPECT_FALSE(suiteIo::readTableInfoCall("PRAGMA table_info()"));
  EXPECT_FALSE(suiteIo::readTableInfoCall(""));
  const auto call = suiteIo::readTableInfoCall("pragma [a].table_info('b''c')");
  ASSERT_TRUE(call);
  EXPECT_EQ(call->schema, "a");
  EXPECT_EQ(call->table, "b'c");
}

// The statement counts only where it fits what the engine says.
TEST(declaredTypes, theEngineIsBelievedWhereTheStatementDiffers) {
  const std::vector<columnType> engines = {
      {"a", "INTEGER"},
      {"b", "TEXT"   }
  };
  const auto spelled = [&](const char* sql) {
    return listed(suiteIo::withDeclaredTypes(engines, sql));
  };
  EXPECT_EQ(spelled("CREATE TABLE t(a integer, b text)"), "a:integer|b:text");
  for (const char* const sql :
       {"CREATE TABLE t(a integer)", "CREATE TABLE t(a integer, b text, c int)",
        "CREATE TABLE t(b integer, a text)", "CREATE TABLE t(a int, b text)",
        "CREATE TABLE t(A integer, b text)", "CREATE VIEW t(a integer, b text)",
        "CREATE TABLE t AS (a integer, b text)", "CREATE TABLE t", "CREATE", "", "CREATE TABLE t(",
        "CREATE TABLE t(a", "CREATE TABLE t(a integer(", "CREATE TABLE t(a integer DEFAULT ((1",
        "CREATE TABLE t(\"a"})
    EXPECT_EQ(spelled(sql), "a:INTEGER|b:TEXT") << sql;
}

}  // namespace

// The operations of vok_io's SQLite: statements, rows and values.
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "platform/codePages.h"
#include "platform/vok_io.h"
#include "tests/support/tableText.h"
#include "tests/support/targetSystem.h"

namespace {

using namespace std::string_literals;

struct closer {
  void operator()(Ivo_sqlite_db* database) const { vo_sqlite_db_close(database); }
  void operator()(Ivo_sqlite_stmt* statement) const { vo_sqlite_stmt_destroy(statement); }
};
using ownedDatabase = std::unique_ptr<Ivo_sqlite_db, closer>;
using ownedStatement = std::unique_ptr<Ivo_sqlite_stmt, closer>;

ownedDatabase inMemory() { return ownedDatabase(vo_sqlite_db_open(L":memory:", 0)); }

ownedStatement query(const ownedDatabase& database, const std::wstring& sql) {
  return ownedStatement(vo_sqlite_db_query_stmt(database.get(), sql.c_str(), 1));
}

std::wstring text(const ownedStatement& statement, int column) {
  std::wstring received = L"(nothing was fed)";
  Tvo_std_wstring_adapter receiver(received);
  vo_string_adp* const adapter = vo_string_adp_create(&receiver);
  vo_sqlite_stmt_get_str(statement.get(), column, adapter);
  vo_string_adp_destroy(adapter);
  return received;
}

std::string bytes(const ownedStatement& statement, int column) {
  std::size_t size = 0;
  const char* const first = vo_sqlite_stmt_get_utf8(statement.get(), column, &size);
  EXPECT_EQ(first[size], '\0');
  return {first, size};
}

struct valueRow {
  const char* name;
  std::wstring expression;
  std::string utf8;
  std::wstring wide;
  int number;
  double real;
  int line = __builtin_LINE();
};

const valueRow valueRows[] = {
    valueRow{"NULL is empty text",        L"NULL",                        "",                     L"",             0,    0                                      },
    valueRow{"empty text",                L"''",                          "",                     L"",             0,    0                                      },
    valueRow{"text",                      L"'W-1'",                       "W-1",                  L"W-1",          0,    0                                      },
    valueRow{"text that begins a number", L"'12.5m'",                     "12.5m",                L"12.5m",        12,   12.5                                   },
    valueRow{"an apostrophe",             L"'it''s'",                     "it's",                 L"it's",         0,    0                                      },
    valueRow{"an integer",                L"-42",                         "-42",                  L"-42",          -42,  -42                                    },
    valueRow{"a large integer",           L"4294967297",                  "4294967297",           L"4294967297",   1,    4294967297.0                           },
    valueRow{"a real number",             L"1250.5",                      "1250.5",               L"1250.5",       1250, 1250.5                                 },
    valueRow{"a whole real number",       L"3.0",                         "3.0",                  L"3.0",          3,    3                                      },
    valueRow{"a tiny real number",        L"1e-7",                        "1.0e-07",              L"1.0e-07",      0,    1e-7                                   },
    valueRow{"infinity",                  L"9e999",                       "Inf",                  L"Inf",          -1,   std::numeric_limits<double>::infinity()},
    valueRow{"a blob is its bytes",       L"x'41D096'",                   "A\xD0\x96",            L"A\x0416",      0,    0                                      },
    valueRow{"an empty blob",             L"x''",                         "",                     L"",             0,    0                                      },
    valueRow{"beyond ASCII",              L"'\x0416\x20AC'",              "\xD0\x96\xE2\x82\xAC", L"\x0416\x20AC", 0,    0                                      },
    valueRow{"beyond the BMP",            L"'\U0001F600'",                "\xF0\x9F\x98\x80",     L"\U0001F600",   0,    0                                      },
    valueRow{"adapters stop at a NUL",    L"'a' || char(0) || 'b'",       "a\0b"s,                L"a",            0,    0                                      },
    valueRow{"a NUL first",               L"CAST(x'0041' AS TEXT)",       "\0A"s,                 L"",             0,    0                                      },
    valueRow{"broken UTF-8",              L"CAST(x'41FF42' AS TEXT)",
             "A\xFF"
             "B",                                                                                 L"A\xFFFD"
             L"B",                                                                                0,    0                                      },
    valueRow{"an encoded surrogate",      L"CAST(x'EDA0804142' AS TEXT)",
             "\xED\xA0\x80"
             "AB",                                                                                L"\xFFFD\xFFFD"
             L"AB",                                                                              0,    0                                      },
};

TEST(sqlite, values) {
  const ownedDatabase database = inMemory();
  for (const valueRow& each : valueRows) {
    const testing::ScopedTrace trace(__FILE__, each.line, each.name);
    const ownedStatement statement = query(database, L"SELECT " + each.expression);
    ASSERT_TRUE(vo_sqlite_stmt_next_row(statement.get()));
    EXPECT_EQ(bytes(statement, 0), each.utf8);
    EXPECT_EQ(testSupport::printable(text(statement, 0)), testSupport::printable(each.wide));
    EXPECT_EQ(vo_sqlite_stmt_get_int(statement.get(), 0), each.number);
    EXPECT_EQ(vo_sqlite_stmt_get_dbl(statement.get(), 0), each.real);
  }
}

// A database may keep UTF-16; a blob in it is such text then.
TEST(sqlite, databasesInUtf16) {
  const ownedDatabase database = inMemory();
  ASSERT_TRUE(vo_sqlite_db_execute(database.get(),
                                   L"PRAGMA encoding='UTF-16le'; CREATE TABLE t(a);"
                                   L"INSERT INTO t VALUES('\x0416'),(x'1604')"));
  const ownedStatement statement = query(database, L"SELECT a FROM t");
  for (int row = 0; row < 2; ++row) {
    ASSERT_TRUE(vo_sqlite_stmt_next_row(statement.get()));
    EXPECT_EQ(bytes(statement, 0), "\xD0\x96");
    EXPECT_EQ(text(statement, 0), L"\x0416");
  }
}

// Whatever the bytes, the wide text is what code page 65001 makes of them.
TEST(sqlite, brokenTextIsDecodedAsTheCodePageDoes) {
  const ownedDatabase database = inMemory();
  for (unsigned first = 0x7F; first < 0x100; ++first) {
    for (const unsigned second : {0x41U, 0x80U, 0x9FU, 0xA0U, 0xBFU, 0xC2U}) {
      const std::string raw = {
          'a', static_cast<char>(first), static_cast<char>(second), 'b', 'c', 'd', 'e'};
      wchar_t expected[16] = {};
      platform::decodeCodePage(platform::utf8CodePage, raw.data(), static_cast<int>(raw.size()),
                               expected, 16);
      std::wstring sql = L"SELECT CAST(x'61";
      for (const unsigned byte : {first, second}) {
        sql += L"0123456789ABCDEF"[byte >> 4];
        sql += L"0123456789ABCDEF"[byte & 15];
      }
      const ownedStatement statement = query(database, sql + L"62636465' AS TEXT)");
      ASSERT_TRUE(vo_sqlite_stmt_next_row(statement.get()));
      EXPECT_EQ(bytes(statement, 0), raw);
      EXPECT_EQ(text(statement, 0), expected) << first << ' ' << second;
    }
  }
}

TEST(sqlite, wideTextGoesInAsUtf8) {
  const ownedDatabase database = inMemory();
  const ownedStatement statement = query(
      database,
      L"SELECT hex('\x0416\U0001F600'), hex('\xD800'), \"\x0416\" FROM (SELECT 1 AS \"\x0416\")");
  ASSERT_TRUE(vo_sqlite_stmt_next_row(statement.get()));
  EXPECT_EQ(text(statement, 0), L"D096F09F9880");
  EXPECT_EQ(text(statement, 1), L"EFBFBD");
  EXPECT_EQ(text(statement, 2), L"1");
}

TEST(sqlite, aPairOfSurrogatesIsOneCharacter) {
  const ownedDatabase database = inMemory();
  const std::wstring pair = {L'\xD83D', L'\xDE00'};
  const ownedStatement statement = query(database, L"SELECT hex('" + pair + L"')");
  ASSERT_TRUE(vo_sqlite_stmt_next_row(statement.get()));
  EXPECT_EQ(text(statement, 0), L"F09F9880");
}

TEST(sqlite, valuesOfTenMegabytes) {
  const ownedDatabase database = inMemory();
  const ownedStatement statement =
      query(database, L"SELECT replace(hex(zeroblob(2500000)), '00', 'a\x0416')");
  ASSERT_TRUE(vo_sqlite_stmt_next_row(statement.get()));
  EXPECT_EQ(bytes(statement, 0).size(), 7500000U);
  const std::wstring received = text(statement, 0);
  ASSERT_EQ(received.size(), 5000000U);
  EXPECT_EQ(received.substr(4999998), L"a\x0416");
}

TEST(sqlite, executeRunsEveryStatement) {
  const ownedDatabase database = inMemory();
  EXPECT_TRUE(vo_sqlite_db_execute(
      database.get(),
      L"CREATE TABLE t(a); INSERT INTO t VALUES(1);\n-- x\nINSERT INTO t VALUES(2)"));
  EXPECT_TRUE(vo_sqlite_db_execute(database.get(), L"SELECT a FROM t; INSERT INTO t VALUES(3);"));
  const ownedStatement statement = query(database, L"SELECT count(*) FROM t");
  ASSERT_TRUE(vo_sqlite_stmt_next_row(statement.get()));
  EXPECT_EQ(vo_sqlite_stmt_get_int(statement.get(), 0), 3);
}

TEST(sqlite, executeStopsAtTheFirstFailure) {
  const ownedDatabase database = inMemory();
  EXPECT_FALSE(vo_sqlite_db_execute(database.get(),
                                    L"CREATE TABLE t(a UNIQUE); INSERT INTO t VALUES(1);"
                                    L"INSERT INTO t VALUES(1); INSERT INTO t VALUES(2)"));
  EXPECT_FALSE(vo_sqlite_db_execute(database.get(), L"INSERT INTO t VALUES(3); nonsense"));
  const ownedStatement statement = query(database, L"SELECT a FROM t ORDER BY a");
  ASSERT_TRUE(vo_sqlite_stmt_next_row(statement.get()));
  EXPECT_EQ(text(statement, 0), L"1");
  ASSERT_TRUE(vo_sqlite_stmt_next_row(statement.get()));
  EXPECT_EQ(text(statement, 0), L"3");
  EXPECT_FALSE(vo_sqlite_stmt_next_row(statement.get()));
}

TEST(sqlite, executeOfNothingSucceeds) {
  const ownedDatabase database = inMemory();
  for (const wchar_t* const sql : {L"", L" ", L"-- nothing", L";;", L"/* nothing"})
    EXPECT_TRUE(vo_sqlite_db_execute(database.get(), sql)) << testSupport::printable(sql);
}

TEST(sqlite, aQueryIsTheFirstStatementAlone) {
  const ownedDatabase database = inMemory();
  const ownedStatement statement = query(database, L"SELECT 1, 2; nonsense");
  EXPECT_EQ(vo_sqlite_stmt_get_column_count(statement.get()), 2);
  EXPECT_TRUE(vo_sqlite_stmt_next_row(statement.get()));
  EXPECT_FALSE(vo_sqlite_stmt_next_row(statement.get()));
  for (const wchar_t* const sql : {L"", L" -- nothing", L"nonsense", L"SELECT a FROM missing"})
    EXPECT_EQ(query(database, sql), nullptr) << testSupport::printable(sql);
}

// The engine would begin anew, and insert once more.
TEST(sqlite, aStatementRunsOnce) {
  const ownedDatabase database = inMemory();
  ASSERT_TRUE(vo_sqlite_db_execute(database.get(), L"CREATE TABLE t(a)"));
  const ownedStatement insert = query(database, L"INSERT INTO t VALUES(7) RETURNING a");
  EXPECT_TRUE(vo_sqlite_stmt_next_row(insert.get()));
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(vo_sqlite_stmt_next_row(insert.get()));
  const ownedStatement count = query(database, L"SELECT count(*) FROM t");
  ASSERT_TRUE(vo_sqlite_stmt_next_row(count.get()));
  EXPECT_EQ(vo_sqlite_stmt_get_int(count.get(), 0), 1);
}

TEST(sqlite, columnsThatDoNotExistAreNull) {
  const ownedDatabase database = inMemory();
  const ownedStatement statement = query(database, L"SELECT 5");
  const auto expectNull = [&](int column) {
    EXPECT_EQ(text(statement, column), L"");
    EXPECT_EQ(bytes(statement, column), "");
    EXPECT_EQ(vo_sqlite_stmt_get_int(statement.get(), column), 0);
    EXPECT_EQ(vo_sqlite_stmt_get_dbl(statement.get(), column), 0);
  };
  expectNull(0);  // before the first row
  ASSERT_TRUE(vo_sqlite_stmt_next_row(statement.get()));
  expectNull(1);
  expectNull(-1);
  expectNull(std::numeric_limits<int>::max());
  EXPECT_FALSE(vo_sqlite_stmt_next_row(statement.get()));
  expectNull(0);  // behind the last
}

TEST(sqlite, aFailureIsToldFromTheEndOfTheRows) {
  const ownedDatabase database = inMemory();
  const ownedStatement good = query(database, L"SELECT 1");
  EXPECT_FALSE(vo_sqlite_stmt_has_failed(good.get()));
  EXPECT_TRUE(vo_sqlite_stmt_next_row(good.get()));
  EXPECT_FALSE(vo_sqlite_stmt_next_row(good.get()));
  EXPECT_FALSE(vo_sqlite_stmt_has_failed(good.get()));
  const ownedStatement bad =
      query(database, L"SELECT abs(a) FROM (SELECT 1 AS a UNION ALL SELECT -9223372036854775808)");
  EXPECT_TRUE(vo_sqlite_stmt_next_row(bad.get()));
  EXPECT_FALSE(vo_sqlite_stmt_next_row(bad.get()));
  EXPECT_TRUE(vo_sqlite_stmt_has_failed(bad.get()));
  EXPECT_FALSE(vo_sqlite_stmt_next_row(bad.get()));
}

TEST(sqlite, nullHandlesAreAccepted) {
  EXPECT_EQ(vo_sqlite_db_open(nullptr, 0), nullptr);
  vo_sqlite_db_close(nullptr);
  EXPECT_FALSE(vo_sqlite_db_execute(nullptr, L"SELECT 1"));
  EXPECT_EQ(vo_sqlite_db_query_stmt(nullptr, L"SELECT 1", 1), nullptr);
  EXPECT_FALSE(vo_sqlite_stmt_next_row(nullptr));
  EXPECT_FALSE(vo_sqlite_stmt_has_failed(nullptr));
  EXPECT_EQ(vo_sqlite_stmt_get_column_count(nullptr), 0);
  EXPECT_EQ(vo_sqlite_stmt_get_int(nullptr, 0), 0);
  EXPECT_EQ(vo_sqlite_stmt_get_dbl(nullptr, 0), 0);
  EXPECT_EQ(bytes(nullptr, 0), "");
  EXPECT_NE(vo_sqlite_stmt_get_utf8(nullptr, 0, nullptr), nullptr);
  vo_sqlite_stmt_destroy(nullptr);
  const ownedDatabase database = inMemory();
  EXPECT_FALSE(vo_sqlite_db_execute(database.get(), nullptr));
  EXPECT_EQ(vo_sqlite_db_query_stmt(database.get(), nullptr, 1), nullptr);
  const ownedStatement statement = query(database, L"SELECT 1");
  vo_sqlite_stmt_get_str(statement.get(), 0, nullptr);
  vo_sqlite_stmt_get_str(nullptr, 0, nullptr);
}

TEST(sqlite, statementsOutliveTheirDatabase) {
  ownedDatabase database = inMemory();
  const ownedStatement statement = query(database, L"SELECT 'still there'");
  database.reset();
  ASSERT_TRUE(vo_sqlite_stmt_next_row(statement.get()));
  EXPECT_EQ(text(statement, 0), L"still there");
}

// The engine is one and the same on both targets, with the same options.
// What a table declares stands for the rows that it had when it was asked.
TEST(sqlite, declaredTypesOfATableThatGrows) {
  const ownedDatabase database = inMemory();
  ASSERT_TRUE(vo_sqlite_db_execute(database.get(), L"CREATE TABLE t(a integer)"));
  const ownedStatement columns = query(database, L"PRAGMA table_info(t)");
  ASSERT_NE(columns, nullptr);
  EXPECT_STREQ(vo_sqlite_stmt_get_utf8(columns.get(), 2, nullptr), "") << "before the first row";
  ASSERT_TRUE(vo_sqlite_db_execute(database.get(), L"ALTER TABLE t ADD COLUMN b FLOAT"));
  ASSERT_TRUE(vo_sqlite_stmt_next_row(columns.get()));
  EXPECT_STREQ(vo_sqlite_stmt_get_utf8(columns.get(), 2, nullptr), "integer");
  EXPECT_EQ(text(columns, 2), L"integer");
  ASSERT_TRUE(vo_sqlite_stmt_next_row(columns.get()));
  EXPECT_STREQ(vo_sqlite_stmt_get_utf8(columns.get(), 2, nullptr), "FLOAT");
  EXPECT_FALSE(vo_sqlite_stmt_next_row(columns.get()));
  EXPECT_STREQ(vo_sqlite_stmt_get_utf8(columns.get(), 2, nullptr), "") << "behind the last row";
}

TEST(sqlite, declaredTypesInADatabaseWithAQuoteInItsName) {
  const ownedDatabase database = inMemory();
  ASSERT_TRUE(vo_sqlite_db_execute(
      database.get(), L"ATTACH ':memory:' AS [a\"b]; CREATE TABLE [a\"b].u(x integer)"));
  for (const wchar_t* const sql : {L"PRAGMA table_info(u)", L"PRAGMA [a\"b].table_info(u)"}) {
    const ownedStatement columns = query(database, sql);
    ASSERT_TRUE(vo_sqlite_stmt_next_row(columns.get()));
    EXPECT_EQ(text(columns, 2), L"integer");
  }
  const ownedStatement lost = query(database, L"PRAGMA nobody.table_info(u)");
  EXPECT_FALSE(vo_sqlite_stmt_next_row(lost.get()));
}

TEST(sqlite, whatTheEngineCanDo) {
  const ownedDatabase database = inMemory();
  for (const wchar_t* const sql :
       {L"SELECT sqrt(2), soundex('a')", L"CREATE VIRTUAL TABLE f3 USING fts3(a)",
        L"CREATE VIRTUAL TABLE f4 USING fts4(a)", L"CREATE VIRTUAL TABLE f5 USING fts5(a)",
        L"CREATE VIRTUAL TABLE r USING rtree(i, a, b)", L"SELECT name FROM dbstat",
        L"CREATE TABLE t(a); UPDATE t SET a = 1 ORDER BY a LIMIT 1", L"SELECT json('[1]')"})
    EXPECT_TRUE(vo_sqlite_db_execute(database.get(), sql)) << testSupport::printable(sql);
  EXPECT_FALSE(vo_sqlite_db_execute(database.get(), L"SELECT load_extension('x')"));
}

}  // namespace

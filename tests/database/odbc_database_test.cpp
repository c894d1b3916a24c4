// The connection to a project database, its queries, transactions and counters.
#include "database/odbc_database.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

#include "platform/environment.h"
#include "platform/files.h"
#include "tests/support/environmentSetter.h"
#include "tests/support/sqliteDatabase.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"

// The parts that the class keeps to itself.
struct odbc_database_access {
  static int get_max(odbc_database& database, const wchar_t* table, const wchar_t* column) {
    return database.get_max(table, column);
  }
  static void delete_counter(odbc_database& database, const wchar_t* table) {
    database.delete_counter(table);
  }
  static void set_counter(odbc_database& database, const wchar_t* table, int value) {
    database.set_counter(table, value);
  }
  static void set_base_type(odbc_database& database, int type) {
    database.base_type_ = static_cast<odbc_base_type>(type);
  }
  static std::wstring user_name(const odbc_database& database) { return database.user_name_; }
  static std::wstring path(const odbc_database& database) { return database.database_path_; }
  static int calc_column_count(const odbc_result& result) { return result.calc_column_count(); }
};

namespace {

using access = odbc_database_access;
using testSupport::temporaryFolder;

class odbcDatabase : public testing::Test {
 protected:
  void connect() { ASSERT_TRUE(database_.connect(folder_.file(L"base.well2"))); }

  // The first value of a query; "refused" or "none" when there is none.
  std::wstring answer(const std::wstring& sql) {
    odbc_result* const result = database_.get_query(sql);
    if (result == nullptr) return L"refused";
    const std::wstring value = result->next() ? result->get_as_wstring(0) : L"none";
    database_.close_query(result);
    return value;
  }

  temporaryFolder folder_;
  odbc_database database_;
};

static_assert(std::has_virtual_destructor_v<odbc_database>);
static_assert(std::has_virtual_destructor_v<odbc_result>);
static_assert(sizeof(odbc_base_type) == 4);
static_assert(static_cast<int>(odbc_base_type::sqlite) == 1);
static_assert(static_cast<int>(odbc_base_type::server) == 2);

TEST_F(odbcDatabase, beginsUnconnected) {
  EXPECT_FALSE(database_.is_connected());
  EXPECT_FALSE(database_.is_transacton());
  EXPECT_EQ(database_.identify_base_type(), odbc_base_type::sqlite);
  EXPECT_EQ(access::user_name(database_), L"");
  EXPECT_EQ(access::path(database_), L"");
  EXPECT_EQ(database_.get_log_path(), L"_base\\base.log");
}

TEST_F(odbcDatabase, unconnectedItAnswersNothing) {
  EXPECT_FALSE(database_.execute_sql(L"SELECT 1"));
  EXPECT_EQ(database_.get_query(L"SELECT 1"), nullptr);
  EXPECT_EQ(access::get_max(database_, L"t", L"a"), -1);
  database_.close_query(nullptr);
  database_.begin_transaction();
  EXPECT_TRUE(database_.commit());
}

TEST_F(odbcDatabase, connectCreatesAMissingFile) {
  connect();
  EXPECT_TRUE(database_.is_connected());
  EXPECT_TRUE(database_.execute_sql(L"CREATE TABLE t(a)"));
  EXPECT_TRUE(platform::fileExists(folder_.file(L"base.well2")));
  EXPECT_EQ(access::path(database_), folder_.file(L"base.well2"));
  EXPECT_EQ(access::user_name(database_), platform::userName());
  EXPECT_FALSE(access::user_name(database_).empty());
}

TEST_F(odbcDatabase, aFailedConnectIsNotConnected) {
  connect();
  EXPECT_FALSE(database_.connect(folder_.file(L"missing\\base.well2")));
  EXPECT_FALSE(database_.is_connected());
  EXPECT_EQ(answer(L"SELECT 1"), L"refused");
  EXPECT_FALSE(database_.connect(std::wstring()));
  EXPECT_FALSE(database_.connect(std::string()));
}

TEST_F(odbcDatabase, connectAgainLeavesTheFirst) {
  connect();
  ASSERT_TRUE(database_.execute_sql(L"CREATE TABLE t(a)"));
  ASSERT_TRUE(database_.connect(folder_.file(L"other.well2")));
  EXPECT_EQ(answer(L"SELECT count(*) FROM sqlite_master"), L"0");
  EXPECT_TRUE(platform::removeFile(folder_.file(L"base.well2"))) << "nobody has it open";
}

// A path in the system's code page: the locale's on Linux, which can be set.
TEST_F(odbcDatabase, aNarrowPathIsInTheSystemsCodePage) {
  std::string narrow;
  for (const wchar_t c : folder_.path()) narrow += static_cast<char>(c);
  EXPECT_TRUE(database_.connect(narrow + "narrow.well2"));
  EXPECT_TRUE(database_.execute_sql(L"CREATE TABLE t(a)"));
  EXPECT_TRUE(platform::fileExists(folder_.file(L"narrow.well2")));
  if (testSupport::fixedSystemCodePage()) return;
  const testSupport::environmentSetter locale(L"LC_ALL", L"ru_RU.CP1251");
  EXPECT_TRUE(database_.connect(narrow + "\xC6.well2"));
  EXPECT_TRUE(database_.execute_sql(L"CREATE TABLE t(a)"));
  EXPECT_TRUE(platform::fileExists(folder_.file(L"\x0416.well2")));
}

TEST_F(odbcDatabase, reconnectClosesAndOpens) {
  std::string narrow;
  for (const wchar_t c : folder_.path()) narrow += static_cast<char>(c);
  connect();
  ASSERT_TRUE(database_.execute_sql(L"CREATE TABLE t(a); INSERT INTO t VALUES(5)"));
  EXPECT_TRUE(database_.reconnect(narrow + "base.well2"));
  EXPECT_EQ(answer(L"SELECT a FROM t"), L"5");
  EXPECT_FALSE(database_.reconnect(narrow + "missing/base.well2"));
  EXPECT_FALSE(database_.is_connected());
  EXPECT_TRUE(database_.reconnect(narrow + "base.well2"));
  EXPECT_TRUE(database_.is_connected());
}

TEST_F(odbcDatabase, aConnectionStringOpensWhatExists) {
  const std::wstring path = folder_.file(L"a;b=c.well2");
  const std::wstring text = L"Driver=SQLite3 ODBC Driver;Database=" + path + L";";
  EXPECT_FALSE(database_.connect(text));
  EXPECT_FALSE(platform::fileExists(path));
  testSupport::sqliteDatabase(path).run("CREATE TABLE t(a); INSERT INTO t VALUES(8)");
  EXPECT_TRUE(database_.connect(text));
  EXPECT_EQ(answer(L"SELECT a FROM t"), L"8");
}

TEST_F(odbcDatabase, executeRunsEveryStatement) {
  connect();
  EXPECT_TRUE(database_.execute_sql(L"CREATE TABLE t(a); INSERT INTO t VALUES(1);"));
  EXPECT_EQ(answer(L"SELECT a FROM t"), L"1");
  EXPECT_FALSE(database_.execute_sql(L"INSERT INTO missing VALUES(1)"));
}

TEST_F(odbcDatabase, queries) {
  connect();
  ASSERT_TRUE(database_.execute_sql(
      L"CREATE TABLE t(a, b, c); INSERT INTO t VALUES('\x0416', 7, 2.5),(NULL, "
      L"'x', x'41')"));
  odbc_result* const result = database_.get_query(L"SELECT a, b, c FROM t");
  ASSERT_NE(result, nullptr);
  EXPECT_EQ(result->get_column_count(), 0);
  EXPECT_EQ(access::calc_column_count(*result), 3);
  EXPECT_EQ(result->get_column_count(), 0) << "nothing stores the count";
  ASSERT_TRUE(result->next());
  EXPECT_EQ(result->get_as_wstring(0), L"\x0416");
  EXPECT_EQ(result->get_as_utf8(0), "\xD0\x96");
  EXPECT_EQ(result->get_as_int(1), 7);
  EXPECT_EQ(result->get_as_double(2), 2.5);
  ASSERT_TRUE(result->next());
  EXPECT_EQ(result->get_as_wstring(0), L"");
  EXPECT_EQ(result->get_as_int(1), 0);
  EXPECT_EQ(result->get_as_wstring(2), L"A");
  EXPECT_FALSE(result->next());
  EXPECT_FALSE(result->next());
  EXPECT_FALSE(result->has_failed());
  database_.close_query(result);
  EXPECT_EQ(database_.get_query(L"SELECT nonsense FROM t"), nullptr);
}

TEST_F(odbcDatabase, aResultCanBeAskedAnew) {
  connect();
  std::unique_ptr<odbc_result> result(database_.get_query(L"SELECT 1"));
  ASSERT_TRUE(result->next());
  EXPECT_TRUE(result->get_query(L"SELECT 2"));
  ASSERT_TRUE(result->next());
  EXPECT_EQ(result->get_as_int(0), 2);
  EXPECT_FALSE(result->get_query(L"nonsense"));
  EXPECT_FALSE(result->next());
}

TEST(odbcResult, withoutAQueryThereIsNothing) {
  odbc_result result(nullptr, odbc_base_type::sqlite);
  EXPECT_FALSE(result.next());
  EXPECT_FALSE(result.has_failed());
  EXPECT_EQ(result.get_column_count(), 0);
  EXPECT_EQ(access::calc_column_count(result), 0);
  EXPECT_EQ(result.get_as_wstring(0), L"");
  EXPECT_EQ(result.get_as_utf8(0), "");
  EXPECT_EQ(result.get_as_int(0), 0);
  EXPECT_EQ(result.get_as_double(0), 0);
  EXPECT_FALSE(result.get_query(L"SELECT 1"));
}

TEST_F(odbcDatabase, anAssignedResultSharesTheStatement) {
  connect();
  odbc_result* const first = database_.get_query(L"SELECT 1 UNION ALL SELECT 2");
  odbc_result second(nullptr, odbc_base_type::server);
  second = *first;
  ASSERT_TRUE(first->next());
  EXPECT_EQ(second.get_as_int(0), 1);
  EXPECT_TRUE(second.next());
  EXPECT_EQ(first->get_as_int(0), 2);
  database_.close_query(first);
  EXPECT_EQ(second.get_as_int(0), 2) << "the last of them frees it";
  EXPECT_TRUE(second.get_query(L"SELECT 3")) << "the database was copied too";
}

TEST_F(odbcDatabase, aCopiedResultSharesTheStatement) {
  connect();
  odbc_result* const first = database_.get_query(L"SELECT 1 UNION ALL SELECT 2");
  odbc_result second(*first);
  ASSERT_TRUE(first->next());
  EXPECT_EQ(second.get_as_int(0), 1);
  database_.close_query(first);
  EXPECT_TRUE(second.next());
  EXPECT_EQ(second.get_as_int(0), 2) << "the last of them frees it";
}

TEST_F(odbcDatabase, transactions) {
  connect();
  ASSERT_TRUE(database_.execute_sql(L"CREATE TABLE t(a)"));
  database_.begin_transaction();
  EXPECT_TRUE(database_.is_transacton());
  EXPECT_TRUE(database_.execute_sql(L"INSERT INTO t VALUES(1)"));
  EXPECT_TRUE(database_.rollback());
  EXPECT_FALSE(database_.is_transacton());
  EXPECT_EQ(answer(L"SELECT count(*) FROM t"), L"0");
  database_.begin_transaction();
  EXPECT_TRUE(database_.execute_sql(L"INSERT INTO t VALUES(1)"));
  EXPECT_TRUE(database_.commit());
  EXPECT_FALSE(database_.is_transacton());
  database_.begin_transaction();
  EXPECT_TRUE(database_.execute_sql(L"INSERT INTO t VALUES(2)"));
  database_.end_transaction();
  EXPECT_FALSE(database_.is_transacton());
  EXPECT_TRUE(database_.rollback()) << "nothing is left to be rolled back";
  EXPECT_EQ(answer(L"SELECT count(*) FROM t"), L"2");
}

TEST_F(odbcDatabase, commitAndRollbackWithoutATransactionAnswerTrue) {
  connect();
  EXPECT_TRUE(database_.commit());
  EXPECT_TRUE(database_.rollback());
  database_.end_transaction();
}

// The flag follows the calls, and nobody asks it before a statement runs.
TEST_F(odbcDatabase, theFlagIsOnlyARecord) {
  connect();
  ASSERT_TRUE(database_.execute_sql(L"BEGIN; CREATE TABLE t(a)"));
  EXPECT_FALSE(database_.is_transacton());
  EXPECT_TRUE(database_.rollback());
  EXPECT_EQ(answer(L"SELECT count(*) FROM sqlite_master"), L"0");
  database_.begin_transaction();
  database_.begin_transaction();
  EXPECT_TRUE(database_.is_transacton());
  EXPECT_TRUE(database_.connect(folder_.file(L"other.well2")));
  EXPECT_TRUE(database_.is_transacton()) << "connect leaves it";
}

TEST_F(odbcDatabase, getMax) {
  connect();
  ASSERT_TRUE(database_.execute_sql(L"CREATE TABLE t(a)"));
  EXPECT_EQ(access::get_max(database_, L"t", L"a"), 0) << "one row that holds NULL";
  ASSERT_TRUE(database_.execute_sql(L"INSERT INTO t VALUES(3),(12),(7)"));
  EXPECT_EQ(access::get_max(database_, L"t", L"a"), 12);
  EXPECT_EQ(access::get_max(database_, L"missing", L"a"), -1);
  EXPECT_EQ(access::get_max(database_, L"t", L"missing"), -1);
  EXPECT_EQ(access::get_max(database_, L"t GROUP BY a HAVING a > 99", L"a"), -1) << "no row";
}

TEST_F(odbcDatabase, counters) {
  connect();
  ASSERT_TRUE(database_.execute_sql(L"CREATE TABLE t(a" + database_.primary_key() +
                                    L", b); INSERT INTO t(b) VALUES(1),(2)"));
  const std::wstring counter = L"SELECT seq FROM sqlite_sequence WHERE name = 't'";
  EXPECT_EQ(answer(counter), L"2");
  access::set_counter(database_, L"t", 41);
  EXPECT_EQ(answer(counter), L"41");
  access::set_counter(database_, L"t", -5);
  EXPECT_EQ(answer(counter), L"-5");
  access::delete_counter(database_, L"t");
  EXPECT_EQ(answer(counter), L"0");
  access::set_counter(database_, L"missing", 1);
  EXPECT_EQ(answer(L"SELECT count(*) FROM sqlite_sequence"), L"1");
}

TEST_F(odbcDatabase, aQuoteInATablesNameIsNotEscaped) {
  connect();
  ASSERT_TRUE(database_.execute_sql(
      L"CREATE TABLE t(a INTEGER PRIMARY KEY AUTOINCREMENT); INSERT INTO t VALUES(7);"
      L"CREATE TABLE \"it's\"(a INTEGER PRIMARY KEY AUTOINCREMENT); INSERT INTO \"it's\" "
      L"VALUES(8)"));
  access::set_counter(database_, L"it's", 1);
  EXPECT_EQ(answer(L"SELECT seq FROM sqlite_sequence WHERE name = 'it''s'"), L"8") << "no SQL";
  access::set_counter(database_, L"it''s", 1);
  EXPECT_EQ(answer(L"SELECT seq FROM sqlite_sequence WHERE name = 'it''s'"), L"1");
  access::delete_counter(database_, L"t' OR '1' = '1");
  EXPECT_EQ(answer(L"SELECT sum(seq) FROM sqlite_sequence"), L"0");
}

TEST_F(odbcDatabase, theLogPath) {
  database_.set_file_container_path(L"D:\\proj");
  EXPECT_EQ(database_.get_log_path(), L"D:\\proj\\_base\\base.log");
  database_.set_file_container_path(L"/proj/");
  EXPECT_EQ(database_.get_log_path(), L"/proj/_base\\base.log");
}

struct fragmentRow {
  int baseType;
  const wchar_t* time;
  const wchar_t* key;
};

const fragmentRow fragmentRows[] = {
    {1, L" datetime('now', 'localtime') ", L" INTEGER PRIMARY KEY AUTOINCREMENT "},
    {2, L" LOCALTIMESTAMP(0) ",            L" SERIAL PRIMARY KEY "               },
    {3, L" LOCALTIMESTAMP(0) ",            L" LOCALTIMESTAMP(0) "                },
    {0, L" LOCALTIMESTAMP(0) ",            L" LOCALTIMESTAMP(0) "                },
};

TEST_F(odbcDatabase, fragmentsOfSql) {
  for (const fragmentRow& each : fragmentRows) {
    access::set_base_type(database_, each.baseType);
    EXPECT_EQ(static_cast<int>(database_.identify_base_type()), each.baseType);
    EXPECT_EQ(database_.cur_time(), each.time);
    EXPECT_EQ(database_.primary_key(), each.key);
  }
}

TEST_F(odbcDatabase, theTimeIsSql) {
  connect();
  EXPECT_EQ(answer(L"SELECT length(" + database_.cur_time() + L")"), L"19");
}

}  // namespace

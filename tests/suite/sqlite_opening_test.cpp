// What vo_sqlite_db_open makes of paths and connection strings, and what reading leaves on disk: nothing.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/files.h"
#include "platform/vok_io.h"
#include "suite/io/sqliteConnection.h"
#include "tests/support/fileLocks.h"
#include "tests/support/namedPipe.h"
#include "tests/support/sqliteDatabase.h"
#include "tests/support/tableText.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"

namespace {

using testSupport::sqliteDatabase;
using testSupport::temporaryFolder;

struct closer {
  void operator()(Ivo_sqlite_db* database) const { vo_sqlite_db_close(database); }
};
using ownedDatabase = std::unique_ptr<Ivo_sqlite_db, closer>;

ownedDatabase open(const std::wstring& path) {
  return ownedDatabase(vo_sqlite_db_open(path.c_str(), 0));
}

std::wstring connectionString(const std::wstring& path) {
  return L"Driver=SQLite3 ODBC Driver;Database=" + path + L";";
}

bool isRefused(const std::wstring& path) { return open(path) == nullptr; }

// A number that a query answers; -1 when it is refused or has no row.
int answer(const ownedDatabase& database, const wchar_t* sql = L"SELECT count(*) FROM t") {
  Ivo_sqlite_stmt* const statement = vo_sqlite_db_query_stmt(database.get(), sql, 1);
  const int number = vo_sqlite_stmt_next_row(statement) ? vo_sqlite_stmt_get_int(statement, 0) : -1;
  vo_sqlite_stmt_destroy(statement);
  return number;
}

// All files of a folder with their bytes.
std::map<std::wstring, std::string> filesIn(const temporaryFolder& folder) {
  std::map<std::wstring, std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
    if (entry.is_regular_file())
      files[entry.path().filename().wstring()] =
          testSupport::readFile(entry.path().wstring()).value_or("unreadable");
  return files;
}

// WHY not the library's own files: on Windows they are not to be had beside a writer.
void copyFile(const std::wstring& from, const std::wstring& to) {
  std::filesystem::copy_file(from, to);
}

struct stringRow {
  const char* name;
  std::wstring text;
  std::optional<std::wstring> database;
  int line = __builtin_LINE();
};

// clang-format off
const stringRow stringRows[] = {
    stringRow{"the reader's", L"Driver=SQLite3 ODBC Driver;Database=C:\\d\\a.well2;", L"C:\\d\\a.well2"},
    stringRow{"the key alone", L"Database=a.sqlite;", L"a.sqlite"},
    stringRow{"without the last semicolon", L"Database=a.sqlite", L"a.sqlite"},
    stringRow{"letter case and blanks of keys", L"DRIVER=x; dataBase =a.sqlite;", L"a.sqlite"},
    stringRow{"blanks of the value are its own", L"Database= a ;", L" a "},
    stringRow{"a path with semicolons", L"Driver=x;Database=/d;e/a;b.sqlite;", L"/d;e/a;b.sqlite"},
    stringRow{"a path with equals signs", L"Driver=x;Database=/d=e/Database=a;", L"/d=e/Database=a"},
    stringRow{"a path that ends in a semicolon", L"Driver=x;Database=/d/a;;", L"/d/a;"},
    stringRow{"keys behind the path are cut", L"Database=/d/a;Timeout=5", L"/d/a"},
    stringRow{"quotes are literal", L"Database=\"a\";", L"\"a\""},
    stringRow{"an empty value", L"Driver=x;Database=;", L""},
    stringRow{"an empty driver", L"Driver=;Database=a;", L"a"},
    stringRow{"a plain path", L"C:\\d\\a.well2", std::nullopt},
    stringRow{"a path with the key in a folder", L"/d;Database=e/a", std::nullopt},
    stringRow{"a path with an equals sign", L"/d=e/a", std::nullopt},
    stringRow{"a path with a drive", L"C:Database=a", std::nullopt},
    stringRow{"a bare name", L"Database", std::nullopt},
    stringRow{"a name with an equals sign", L"a=b.sqlite", std::nullopt},
    stringRow{"a name with both signs", L"a=b;c.sqlite", std::nullopt},
    stringRow{"a semicolon before the first equals sign", L"a;Database=b", std::nullopt},
    stringRow{"a key of blanks", L"Driver=x;  =y;Database=a;", L"a"},
    stringRow{"nothing", L"", std::nullopt},
};
// clang-format on

TEST(sqliteOpening, connectionStrings) {
  for (const stringRow& each : stringRows) {
    const testing::ScopedTrace trace(__FILE__, each.line, each.name);
    EXPECT_EQ(suiteIo::databaseOfConnectionString(each.text), each.database);
  }
}

TEST(sqliteOpening, aPlainPathIsCreatedWhenMissing) {
  const temporaryFolder folder;
  const ownedDatabase database = open(folder.file(L"new.sqlite"));
  ASSERT_TRUE(vo_sqlite_db_execute(database.get(), L"CREATE TABLE t(a)"));
  EXPECT_TRUE(platform::fileExists(folder.file(L"new.sqlite")));
  EXPECT_EQ(answer(database), 0);
}

TEST(sqliteOpening, aConnectionStringCreatesNothing) {
  const temporaryFolder folder;
  EXPECT_TRUE(isRefused(connectionString(folder.file(L"missing.sqlite"))));
  EXPECT_TRUE(isRefused(connectionString(folder.file(L"missing/missing.sqlite"))));
  EXPECT_TRUE(isRefused(connectionString(L":memory:")));
  EXPECT_TRUE(filesIn(folder).empty());
}

TEST(sqliteOpening, whatCannotBeOpened) {
  const temporaryFolder folder;
  EXPECT_TRUE(isRefused(L""));
  EXPECT_TRUE(isRefused(connectionString(L"")));
  EXPECT_TRUE(isRefused(folder.path()));
  EXPECT_TRUE(isRefused(connectionString(folder.path())));
  EXPECT_TRUE(isRefused(folder.file(L"missing/new.sqlite")));
}

// Characters that mean something in an URI, in a connection string or to the engine are a file's own.
TEST(sqliteOpening, namesAreLiteral) {
  std::vector<std::wstring> names = {
      L"a b.sqlite",        L"a;b=c.sqlite",      L"100%.sqlite",          L"a%20b.sqlite",
      L"a#b.sqlite",        L"it's.sqlite",       L"a&immutable=1.sqlite", L"\x0416\x044B.sqlite",
      L"\U0001F600.sqlite", L"Database=x;.sqlite"};
  if (!testSupport::onWindows) {
    names.insert(names.end(), {L"a?mode=ro", L"a\"b", L"file:a", L":memory:"});
    names.push_back({L'r', L'a', L'w', L'\xDCFF'});  // the byte FF, which is no UTF-8
  }
  for (const std::wstring& name : names) {
    const temporaryFolder folder;
    const std::wstring path = folder.file(name);
    ASSERT_TRUE(
        vo_sqlite_db_execute(open(path).get(), L"CREATE TABLE t(a); INSERT INTO t VALUES(1)"))
        << testSupport::printable(name);
    EXPECT_TRUE(platform::fileExists(path)) << testSupport::printable(name);
    const std::filesystem::directory_iterator files(folder.path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 1) << testSupport::printable(name);
    EXPECT_EQ(answer(open(connectionString(path))), 1) << testSupport::printable(name);
  }
}

TEST(sqliteOpening, moreThanOneSeparatorAtTheBeginning) {
  if (testSupport::onWindows) GTEST_SKIP() << "they begin the name of another machine";
  const temporaryFolder folder;
  sqliteDatabase(folder.file(L"a.sqlite")).run("CREATE TABLE t(a)");
  EXPECT_EQ(answer(open(connectionString(L"/" + folder.file(L"a.sqlite")))), 0);
  EXPECT_EQ(answer(open(connectionString(L"//" + folder.file(L"a.sqlite")))), 0);
}

TEST(sqliteOpening, aPipeIsNotWaitedFor) {
  const temporaryFolder folder;
  const std::wstring path = folder.file(L"pipe.sqlite");
  if (!testSupport::makeNamedPipe(path)) GTEST_SKIP() << "no file is a pipe here";
  EXPECT_TRUE(isRefused(path));
  EXPECT_TRUE(isRefused(connectionString(path)));
}

TEST(sqliteOpening, theLargestPages) {
  const temporaryFolder folder;
  const std::wstring path = folder.file(L"a.sqlite");
  sqliteDatabase(path).run("PRAGMA page_size=65536; CREATE TABLE t(a); INSERT INTO t VALUES(1)");
  const std::string whole = testSupport::readFile(path).value();
  ASSERT_EQ(whole.size(), 2 * 65536U);
  EXPECT_EQ(answer(open(connectionString(path))), 1);
  folder.write(L"a.sqlite", whole.substr(0, 65536));
  EXPECT_TRUE(isRefused(connectionString(path)));
}

TEST(sqliteOpening, bothSeparatorsSeparate) {
  const temporaryFolder folder;
  platform::createFolder(folder.file(L"d"));
  sqliteDatabase(folder.file(L"d/a.sqlite")).run("CREATE TABLE t(a)");
  EXPECT_EQ(answer(open(connectionString(folder.file(L"d\\a.sqlite")))), 0);
  EXPECT_EQ(answer(open(folder.file(L"d\\a.sqlite"))), 0);
}

TEST(sqliteOpening, aFileThatIsNoDatabaseOpensAndAnswersNothing) {
  const temporaryFolder folder;
  const std::wstring path = folder.write(L"text.sqlite", std::string(2000, 'x'));
  for (const std::wstring& way : {path, connectionString(path)}) {
    const ownedDatabase database = open(way);
    ASSERT_NE(database, nullptr);
    EXPECT_EQ(answer(database, L"SELECT name FROM sqlite_master"), -1);
  }
  EXPECT_EQ(filesIn(folder).at(L"text.sqlite"), std::string(2000, 'x'));
}

TEST(sqliteOpening, anEmptyFileIsADatabaseWithoutTables) {
  const temporaryFolder folder;
  const std::wstring path = folder.write(L"empty.sqlite", "");
  folder.write(L"empty.sqlite-wal", "what is left of another");
  folder.write(L"empty.sqlite-journal", "what is left of another");
  const auto before = filesIn(folder);
  EXPECT_EQ(answer(open(connectionString(path)), L"SELECT count(*) FROM sqlite_master"), 0);
  EXPECT_EQ(filesIn(folder), before);
}

// --- without a trace ------------------------------------------------------------------------------

struct traceRow {
  const char* name;
  const char* settings;
  bool keepLog;
  bool hasIndex;
  int line = __builtin_LINE();
};

const traceRow traceRows[] = {
    traceRow{"a rollback journal",             "",                         false, false},
    traceRow{"write-ahead, closed",            "PRAGMA journal_mode=WAL;", false, false},
    traceRow{"write-ahead, log and index",     "PRAGMA journal_mode=WAL;", true,  true },
    traceRow{"write-ahead, log without index", "PRAGMA journal_mode=WAL;", true,  false},
};

TEST(sqliteOpening, readingLeavesNoTrace) {
  for (const traceRow& each : traceRows) {
    const testing::ScopedTrace trace(__FILE__, each.line, each.name);
    const temporaryFolder folder;
    const std::wstring path = folder.file(L"a.sqlite");
    {
      sqliteDatabase database(path);
      if (each.keepLog) database.keepLog();
      database.run(std::string(each.settings) + "CREATE TABLE t(a); INSERT INTO t VALUES(1),(2)");
      // The log goes with the last that has it open; a copy is a database whose program has ended early.
      if (each.keepLog) {
        for (const wchar_t* const ending : {L"", L"-wal"})
          copyFile(path + ending, folder.file(L"b.sqlite") + ending);
        if (each.hasIndex) folder.write(L"b.sqlite-shm", std::string(32768, '\0'));
      }
    }
    const std::wstring read = each.keepLog ? folder.file(L"b.sqlite") : path;
    auto before = filesIn(folder);
    {
      const ownedDatabase database = open(connectionString(read));
      EXPECT_EQ(answer(database), 2);
      EXPECT_EQ(answer(database), 2);
    }
    auto after = filesIn(folder);
    before.erase(L"b.sqlite-shm");  // marks of readers come and go in the index
    EXPECT_EQ(after.erase(L"b.sqlite-shm"), each.hasIndex ? 1U : 0U);
    EXPECT_EQ(after, before);
  }
}

TEST(sqliteOpening, aJournalThatWaitsIsNotRolledBack) {
  const temporaryFolder folder;
  const std::wstring path = folder.file(L"a.sqlite");
  {
    sqliteDatabase database(path);
    database.run(
        "PRAGMA cache_size=1; CREATE TABLE t(a); INSERT INTO t VALUES(1); BEGIN;"
        "INSERT INTO t SELECT hex(randomblob(2000)) FROM "
        "(WITH n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 50) SELECT i FROM n)");
    copyFile(path, folder.file(L"b.sqlite"));
    copyFile(path + L"-journal", folder.file(L"b.sqlite-journal"));
  }
  const auto before = filesIn(folder);
  EXPECT_EQ(answer(open(connectionString(folder.file(L"b.sqlite")))), -1);
  EXPECT_EQ(filesIn(folder), before);
  EXPECT_EQ(answer(open(folder.file(L"b.sqlite"))), 1) << "a plain path rolls it back";
}

TEST(sqliteOpening, everyQueryLooksAnew) {
  const temporaryFolder folder;
  const std::wstring path = folder.file(L"a.sqlite");
  sqliteDatabase(path).run("PRAGMA journal_mode=WAL; CREATE TABLE t(a)");
  const ownedDatabase reading = open(connectionString(path));
  EXPECT_EQ(answer(reading), 0);
  sqliteDatabase(path).run("INSERT INTO t VALUES(1)");
  EXPECT_EQ(answer(reading), 1);
  {
    sqliteDatabase writer(path);
    writer.run("INSERT INTO t VALUES(2)");
    EXPECT_EQ(answer(reading), 2) << "while another has it open";
  }
  sqliteDatabase(path).run("PRAGMA journal_mode=DELETE; DELETE FROM t");
  EXPECT_EQ(answer(reading), 0);
  EXPECT_EQ(filesIn(folder).size(), 1U);
}

// On POSIX systems closing any descriptor of a file drops all locks that the program holds on it.
TEST(sqliteOpening, readingKeepsTheLocksOfItsOwnProgram) {
  const temporaryFolder folder;
  const std::wstring path = folder.file(L"a.sqlite");
  sqliteDatabase writer(path);
  writer.run(
      "CREATE TABLE t(a); INSERT INTO t VALUES(1); BEGIN IMMEDIATE; INSERT INTO t VALUES(2)");
  EXPECT_EQ(answer(open(connectionString(path))), 1);
  EXPECT_TRUE(testSupport::ownsLockOn(path));
}

// The log is empty, but there: what is read must not change under the reader.
TEST(sqliteOpening, aWriterWithAnEmptyLogDisturbsNoReader) {
  const temporaryFolder folder;
  const std::wstring path = folder.file(L"a.sqlite");
  sqliteDatabase writer(path);
  writer.run(
      "PRAGMA journal_mode=WAL; CREATE TABLE t(a, b);"
      "INSERT INTO t SELECT 1, zeroblob(3000) FROM "
      "(WITH n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 50) SELECT i FROM n);"
      "PRAGMA wal_checkpoint(TRUNCATE)");
  ASSERT_EQ(std::filesystem::file_size(path + L"-wal"), 0U);
  const ownedDatabase reading = open(connectionString(path));
  Ivo_sqlite_stmt* const rows = vo_sqlite_db_query_stmt(reading.get(), L"SELECT a FROM t", 1);
  int sum = vo_sqlite_stmt_next_row(rows) ? vo_sqlite_stmt_get_int(rows, 0) : 0;
  writer.run("UPDATE t SET a = 100; PRAGMA wal_checkpoint");
  while (vo_sqlite_stmt_next_row(rows)) sum += vo_sqlite_stmt_get_int(rows, 0);
  EXPECT_EQ(sum, 50) << "all rows of one state";
  vo_sqlite_stmt_destroy(rows);
  EXPECT_EQ(answer(reading, L"SELECT sum(a) FROM t"), 5000);
}

// Nothing holds the state of a database without its log or its index, so a writer who comes is noticed.
TEST(sqliteOpening, aWriterWhoComesWhileReadingIsNoticed) {
  for (const bool hasLog : {false, true}) {
    const temporaryFolder folder;
    const std::wstring path = folder.file(hasLog ? L"b.sqlite" : L"a.sqlite");
    {
      sqliteDatabase first(folder.file(L"a.sqlite"));
      first.run("PRAGMA journal_mode=WAL; CREATE TABLE t(a); INSERT INTO t VALUES(1)");
      if (hasLog) copyFile(folder.file(L"a.sqlite"), path);
      if (hasLog) copyFile(folder.file(L"a.sqlite-wal"), path + L"-wal");
    }
    const ownedDatabase reading = open(connectionString(path));
    Ivo_sqlite_stmt* const rows = vo_sqlite_db_query_stmt(reading.get(), L"SELECT a FROM t", 1);
    EXPECT_TRUE(vo_sqlite_stmt_next_row(rows));
    EXPECT_FALSE(vo_sqlite_stmt_has_failed(rows));
    sqliteDatabase(path).run("UPDATE t SET a = 2; PRAGMA wal_checkpoint(TRUNCATE)");
    EXPECT_TRUE(vo_sqlite_stmt_has_failed(rows)) << "the writer is gone, but not unnoticed";
    vo_sqlite_stmt_destroy(rows);
    EXPECT_EQ(answer(reading, L"SELECT a FROM t"), 2);
    sqliteDatabase(path).run("UPDATE t SET a = 3");
    EXPECT_FALSE(platform::fileExists(path + L"-wal")) << "nobody is in its way any more";
  }
}

TEST(sqliteOpening, anEmptyLogThatWasLeftIsNobodys) {
  const temporaryFolder folder;
  const std::wstring path = folder.file(L"a.sqlite");
  sqliteDatabase(path).run("PRAGMA journal_mode=WAL; CREATE TABLE t(a); INSERT INTO t VALUES(1)");
  folder.write(L"a.sqlite-wal", "");
  const auto before = filesIn(folder);
  const ownedDatabase reading = open(connectionString(path));
  Ivo_sqlite_stmt* const rows = vo_sqlite_db_query_stmt(reading.get(), L"SELECT a FROM t", 1);
  EXPECT_TRUE(vo_sqlite_stmt_next_row(rows));
  EXPECT_FALSE(vo_sqlite_stmt_next_row(rows));
  EXPECT_FALSE(vo_sqlite_stmt_has_failed(rows));
  vo_sqlite_stmt_destroy(rows);
  EXPECT_EQ(filesIn(folder), before);
}

// It writes without an index on disk, so readers could not agree with it on anything.
TEST(sqliteOpening, aLogWithoutIndexThatSomebodyHasForHimselfIsLocked) {
  const temporaryFolder folder;
  const std::wstring path = folder.file(L"a.sqlite");
  sqliteDatabase(path).run("PRAGMA journal_mode=WAL; CREATE TABLE t(a)");
  sqliteDatabase writer(path);
  writer.run("PRAGMA locking_mode=EXCLUSIVE; INSERT INTO t VALUES(1)");
  ASSERT_FALSE(platform::fileExists(path + L"-shm"));
  EXPECT_EQ(answer(open(connectionString(path))), -1) << "after the busy timeout";
  EXPECT_TRUE(testSupport::ownsLockOn(path));
}

// What stands beside a database stands beside the file that a link leads to.
TEST(sqliteOpening, aLinkLeadsToTheLogToo) {
  const temporaryFolder folder;
  const temporaryFolder elsewhere;
  const std::wstring path = folder.file(L"a.sqlite");
  const std::wstring link = elsewhere.file(L"link.sqlite");
  sqliteDatabase writer(path);
  writer.run("PRAGMA journal_mode=WAL; CREATE TABLE t(a)");
  std::error_code failure;
  std::filesystem::create_symlink(path, link, failure);
  if (failure) GTEST_SKIP() << "links cannot be created here";
  writer.run("INSERT INTO t VALUES(1)");
  EXPECT_EQ(answer(open(connectionString(link))), 1);
  copyFile(path, folder.file(L"b.sqlite"));
  copyFile(path + L"-wal", folder.file(L"b.sqlite-wal"));
  std::filesystem::remove(link);
  std::filesystem::create_symlink(folder.file(L"b.sqlite"), link);
  const auto before = filesIn(folder);
  EXPECT_EQ(answer(open(connectionString(link))), 1);
  EXPECT_EQ(filesIn(folder).size(), before.size());
  EXPECT_EQ(filesIn(elsewhere).size(), 1U);
}

// The log of such a writer is empty until it writes.
TEST(sqliteOpening, aWriterWhoHasEverythingForHimselfAndWritesNothingYet) {
  const temporaryFolder folder;
  const std::wstring path = folder.file(L"a.sqlite");
  sqliteDatabase(path).run("PRAGMA journal_mode=WAL; CREATE TABLE t(a)");
  sqliteDatabase writer(path);
  writer.run("PRAGMA locking_mode=EXCLUSIVE; SELECT count(*) FROM t");
  ASSERT_FALSE(platform::fileExists(path + L"-shm"));
  EXPECT_EQ(answer(open(connectionString(path))), -1) << "after the busy timeout";
  EXPECT_TRUE(testSupport::ownsLockOn(path));
}

// Pages may wait in a log or a journal; those that are nowhere are not made up.
TEST(sqliteOpening, aPageThatIsMissing) {
  const temporaryFolder folder;
  const std::wstring path = folder.file(L"a.sqlite");
  sqliteDatabase(path).run(
      "CREATE TABLE t(a); INSERT INTO t SELECT zeroblob(3000) FROM "
      "(WITH n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 50) SELECT i FROM n)");
  const std::string whole = testSupport::readFile(path).value();
  EXPECT_EQ(answer(open(connectionString(path)), L"SELECT count(a) FROM t"), 50);
  folder.write(L"a.sqlite", whole.substr(0, whole.size() - 4096));
  EXPECT_TRUE(isRefused(connectionString(path)));
  for (const wchar_t* const beside : {L"a.sqlite-wal", L"a.sqlite-journal"}) {
    folder.write(beside, "what is left of another");
    EXPECT_EQ(answer(open(connectionString(path)), L"SELECT count(a) FROM t"), -1)
        << testSupport::printable(beside);
    platform::removeFile(folder.file(beside));
  }
}

// The rest of the last page would come out as zeros, whatever stands beside the database.
TEST(sqliteOpening, aPageThatIsCutIsRefused) {
  const temporaryFolder folder;
  const std::wstring path = folder.file(L"a.sqlite");
  sqliteDatabase(path).run("PRAGMA journal_mode=WAL; CREATE TABLE t(a); INSERT INTO t VALUES(1)");
  const std::string whole = testSupport::readFile(path).value();
  EXPECT_EQ(answer(open(connectionString(path))), 1);
  for (const wchar_t* const beside : {L"unrelated", L"a.sqlite-wal", L"a.sqlite-journal"}) {
    folder.write(beside, "what is left of another");
    for (const std::size_t cut : {1U, 500U, 4095U}) {
      folder.write(L"a.sqlite", whole.substr(0, whole.size() - cut));
      EXPECT_TRUE(isRefused(connectionString(path)))
          << cut << ' ' << testSupport::printable(beside);
    }
    platform::removeFile(folder.file(beside));
  }
}

// A handle of a connection string becomes an ordinary one when something is to be changed.
TEST(sqliteOpening, aConnectionStringCanChangeTheDatabase) {
  const temporaryFolder folder;
  const std::wstring path = folder.file(L"a.sqlite");
  sqliteDatabase(path).run("CREATE TABLE t(a)");
  const ownedDatabase database = open(connectionString(path));
  EXPECT_EQ(answer(database), 0);
  EXPECT_TRUE(vo_sqlite_db_execute(database.get(), L"BEGIN; INSERT INTO t VALUES(1)"));
  EXPECT_EQ(answer(database), 1) << "in its own transaction";
  EXPECT_EQ(answer(open(connectionString(path))), 0) << "not by others yet";
  EXPECT_TRUE(vo_sqlite_db_execute(database.get(), L"COMMIT"));
  EXPECT_EQ(answer(open(connectionString(path))), 1);
  const ownedDatabase another = open(connectionString(path));
  EXPECT_EQ(answer(another, L"INSERT INTO t VALUES(2) RETURNING 77"), 77);
  EXPECT_EQ(answer(open(connectionString(path))), 2);
}

TEST(sqliteOpening, aMissingFileIsNotCreatedLaterEither) {
  const temporaryFolder folder;
  const std::wstring path = folder.file(L"a.sqlite");
  sqliteDatabase(path).run("CREATE TABLE t(a)");
  const ownedDatabase first = open(connectionString(path));
  const ownedDatabase second = open(connectionString(path));
  const ownedDatabase third = open(connectionString(path));
  EXPECT_EQ(answer(first), 0);
  // Windows does not delete what is open.
  if (!platform::removeFile(path)) return;
  EXPECT_EQ(answer(first), -1);
  EXPECT_FALSE(vo_sqlite_db_execute(second.get(), L"CREATE TABLE u(a)"));
  EXPECT_EQ(answer(third, L"INSERT INTO t VALUES(1) RETURNING 1"), -1);
  EXPECT_TRUE(filesIn(folder).empty());
}

}  // namespace

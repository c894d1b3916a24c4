// Damaged and hostile databases: each read answers, in full or with false, and changes nothing on disk.
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>
#include <vector>

#include "table_rw/readers/tableReader_sqlite.h"
#include "tests/support/failingAllocations.h"
#include "tests/support/randomNumbers.h"
#include "tests/support/sqliteDatabase.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using tableRW::tableReader_sqlite;
using testSupport::describe;
using testSupport::sqliteDatabase;
using testSupport::temporaryFolder;

constexpr std::size_t pageSize = 512;
constexpr std::size_t rowsOfSample = 60;

class sqliteDamage : public testing::Test {
 protected:
  sqliteDamage() {
    const std::wstring path = folder_.file(L"sound.sqlite");
    std::string sql = "PRAGMA page_size=512; BEGIN; CREATE TABLE t(a INTEGER, b TEXT)";
    for (std::size_t i = 0; i < rowsOfSample; ++i)
      sql += "; INSERT INTO t VALUES(" + std::to_string(i) + ", '" +
             std::string(10 + i * 30, static_cast<char>('a' + i % 26)) + "')";
    sqliteDatabase(path).run(sql + "; COMMIT");
    sound_ = testSupport::readFile(path).value();
    reader_ = readerOf(path);
    EXPECT_TRUE(reader_->read());
    EXPECT_EQ(reader_->count(), rowsOfSample);
  }

  static std::unique_ptr<tableReader_sqlite> readerOf(const std::wstring& path) {
    tableRW::tableReaderOptions options(path);
    options.table = L"t";
    return std::make_unique<tableReader_sqlite>(options);
  }

  // A file with these bytes is read. What comes is whole rows; true means all that the file says.
  bool readDamaged(const std::string& bytes) {
    const std::wstring path = folder_.write(L"damaged.sqlite", bytes);
    const auto reader = readerOf(path);
    const bool isRead = reader->read();
    std::vector<std::wstring> row;
    for (std::size_t i = 0; i < reader->count(); ++i) {
      reader->getRow(i, row);
      EXPECT_EQ(row.size(), reader->fieldCount());
    }
    rows_ = reader->count();
    EXPECT_EQ(reader->errorCount(), 0U);
    std::vector<std::wstring> list;
    reader->tableList(list);
    reader->readOnlyHeaders();
    EXPECT_EQ(testSupport::readFile(path), bytes) << "changed on disk";
    for (const wchar_t* const ending : {L"-wal", L"-shm", L"-journal"})
      EXPECT_FALSE(testSupport::readFile(path + ending));
    return isRead;
  }

  temporaryFolder folder_;
  std::string sound_;
  std::unique_ptr<tableReader_sqlite> reader_;
  std::size_t rows_ = 0;
};

// Pages are missing: never silently fewer rows.
TEST_F(sqliteDamage, cutAtEveryPage) {
  ASSERT_GT(sound_.size(), 50 * pageSize);
  EXPECT_TRUE(readDamaged(sound_));
  for (std::size_t size = pageSize; size < sound_.size(); size += pageSize)
    EXPECT_FALSE(readDamaged(sound_.substr(0, size))) << "cut at " << size;
}

TEST_F(sqliteDamage, cutInsideItsHeader) {
  for (std::size_t size = 0; size <= 110; ++size) {
    EXPECT_FALSE(readDamaged(sound_.substr(0, size))) << "cut at " << size;
    EXPECT_EQ(rows_, 0U);
  }
}

TEST_F(sqliteDamage, cutAtRandomBytes) {
  testSupport::randomNumbers random(4);
  for (int i = 0; i < 100; ++i) {
    const std::size_t size = random.below(sound_.size() - 1);
    EXPECT_FALSE(readDamaged(sound_.substr(0, size))) << "cut at " << size;
  }
}

TEST_F(sqliteDamage, randomBytesReplaced) {
  testSupport::randomNumbers random(5);
  for (int i = 0; i < 300; ++i) {
    std::string bytes = sound_;
    for (int k = 0; k < 3; ++k)
      bytes[random.below(bytes.size())] = static_cast<char>(random.bits() & 0xFF);
    readDamaged(bytes);  // the engine cannot see each of them; what comes is sound in itself
    EXPECT_LE(rows_, 100 * rowsOfSample);
  }
}

// Of a long value's further pages the engine checks nothing but where they go on.
TEST_F(sqliteDamage, everyPageOverwritten) {
  std::size_t refused = 0;
  for (std::size_t page = 0; page < sound_.size() / pageSize; ++page) {
    std::string bytes = sound_;
    bytes.replace(page * pageSize, pageSize, pageSize, '\xFF');
    const bool isRead = readDamaged(bytes);
    EXPECT_TRUE(isRead ? rows_ == rowsOfSample : rows_ < rowsOfSample) << "page " << page;
    refused += isRead ? 0 : 1;
    EXPECT_FALSE(page == 0 && isRead);
  }
  EXPECT_GT(refused, 20U);
}

TEST_F(sqliteDamage, noDatabases) {
  EXPECT_FALSE(readDamaged(""));
  EXPECT_FALSE(readDamaged("a;b\n1;2\n"));
  EXPECT_FALSE(readDamaged(std::string(5000, 't')));
  EXPECT_FALSE(readDamaged(std::string(5000, '\0')));
  EXPECT_FALSE(readDamaged("SQLite format 3"));
  EXPECT_FALSE(readDamaged(sound_.substr(0, 16) + std::string(5000, '\0')));
}

// A CREATE statement that the engine does not accept, and one that it never made.
TEST_F(sqliteDamage, aSchemaThatIsNoSql) {
  std::string bytes = sound_;
  const std::size_t at = bytes.find("CREATE TABLE");
  ASSERT_NE(at, std::string::npos);
  EXPECT_FALSE(readDamaged(std::string(bytes).replace(at, 6, "CRAETE")));
  EXPECT_FALSE(readDamaged(std::string(bytes).replace(at, 14, "CREATE TABLE t(")));
}

TEST_F(sqliteDamage, lockedByAnother) {
  const std::wstring path = folder_.write(L"locked.sqlite", sound_);
  sqliteDatabase writer(path);
  const auto reader = readerOf(path);
  writer.run("BEGIN EXCLUSIVE");
  EXPECT_FALSE(reader->read()) << "after the busy timeout";
  EXPECT_EQ(reader->count(), 0U);
  writer.run("COMMIT");
  EXPECT_TRUE(reader->read());
  EXPECT_EQ(reader->count(), rowsOfSample);
}

TEST_F(sqliteDamage, aWriterInWriteAheadModeLocksNobodyOut) {
  const std::wstring path = folder_.write(L"wal.sqlite", sound_);
  sqliteDatabase writer(path);
  writer.run("PRAGMA journal_mode=WAL; BEGIN IMMEDIATE; DELETE FROM t");
  const auto reader = readerOf(path);
  EXPECT_TRUE(reader->read());
  EXPECT_EQ(reader->count(), rowsOfSample) << "as it was committed last";
  writer.run("COMMIT");
  EXPECT_TRUE(reader->read());
  EXPECT_EQ(reader->count(), 0U);
}

// Every allocation of ours fails once.
TEST_F(sqliteDamage, readAnswersWithTheStandardExceptionOrInFull) {
  const std::wstring path = folder_.write(L"t.sqlite", sound_);
  const std::string expected = describe(*reader_);
  bool failed = true;
  std::size_t number = 0;
  for (; failed; ++number) {
    ASSERT_LT(number, 10000U);
    const auto reader = readerOf(path);
    bool thrown = false;
    {
      const testSupport::failingAllocation failing(number);
      try {
        reader->read();
      } catch (const std::bad_alloc&) {
        thrown = true;
      }
      failed = failing.hasFailed();
    }
    EXPECT_EQ(thrown, failed) << number;
    ASSERT_EQ(readerOf(path)->read(), true);
    ASSERT_TRUE(reader->read()) << number;
    ASSERT_EQ(reader->count(), rowsOfSample) << number;
  }
  EXPECT_GT(number, 10U);
  EXPECT_EQ(describe(*reader_), expected);
}

}  // namespace

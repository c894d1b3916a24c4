// A database made by the engine itself, for tests of what the library makes of it.
//
//     const std::wstring path = folder.file(L"t.sqlite");
//     sqliteDatabase(path).run("CREATE TABLE t(a); INSERT INTO t VALUES(1)");
#ifndef VOK_TESTS_SUPPORT_SQLITEDATABASE_H
#define VOK_TESTS_SUPPORT_SQLITEDATABASE_H

#include <string>

struct sqlite3;

namespace testSupport {

class sqliteDatabase {
 public:
  /// Opens the database, or creates it.
  explicit sqliteDatabase(const std::wstring& path);
  sqliteDatabase(const sqliteDatabase&) = delete;
  sqliteDatabase& operator=(const sqliteDatabase&) = delete;
  ~sqliteDatabase();

  /// Runs all statements of the text; a failure is a std::runtime_error, which fails the test.
  void run(const std::string& sql);

  /// Leaves the write-ahead log where it is when the database is closed.
  void keepLog();

 private:
  sqlite3* connection_ = nullptr;
};

}  // namespace testSupport

#endif

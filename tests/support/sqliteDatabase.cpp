#include "tests/support/sqliteDatabase.h"

#include <sqlite3.h>

#include <stdexcept>

#include "platform/files.h"

namespace testSupport {

sqliteDatabase::sqliteDatabase(const std::wstring& path) {
  if (sqlite3_open(platform::utf8Path(path).c_str(), &connection_) != SQLITE_OK)
    throw std::runtime_error("the database cannot be opened");
}

sqliteDatabase::~sqliteDatabase() { sqlite3_close(connection_); }

void sqliteDatabase::run(const std::string& sql) {
  if (sqlite3_exec(connection_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
    throw std::runtime_error(sqlite3_errmsg(connection_));
}

void sqliteDatabase::keepLog() {
  sqlite3_db_config(connection_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
}

}  // namespace testSupport

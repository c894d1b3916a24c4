#include "database/odbc_database.h"

#include <memory>
#include <utility>

#include "platform/environment.h"
#include "platform/vok_io.h"
#include "table_rw/core/pathNames.h"
#include "table_rw/text/textConversion.h"

odbc_database::odbc_database() = default;

odbc_database::~odbc_database() { close(); }

void odbc_database::close() {
  connected_ = false;
  vo_sqlite_db_close(std::exchange(database_, nullptr));
}

bool odbc_database::connect(const std::wstring& path) {
  close();
  database_ = vo_sqlite_db_open(path.c_str(), 0);
  if (database_ == nullptr) return false;
  connected_ = true;
  database_path_ = path;
  user_name_ = platform::userName();
  return true;
}

bool odbc_database::connect(const std::string& path) {
  return connect(tableRW::decodeText(path.data(), static_cast<std::int32_t>(path.size()),
                                     tableRW::encodingSystem));
}

bool odbc_database::reconnect(const std::string& path) {
  close();
  return connect(path);
}

bool odbc_database::is_connected() const { return connected_; }

odbc_base_type odbc_database::identify_base_type() const { return base_type_; }

void odbc_database::set_file_container_path(std::wstring path) {
  file_container_path_ = std::move(path);
}

bool odbc_database::execute_sql(const std::wstring& sql) {
  return vo_sqlite_db_execute(database_, sql.c_str());
}

odbc_result* odbc_database::get_query(const std::wstring& sql) {
  auto result = std::make_unique<odbc_result>(database_, base_type_);
  return result->get_query(sql) ? result.release() : nullptr;
}

void odbc_database::close_query(odbc_result* result) { delete result; }

void odbc_database::begin_transaction() {
  execute_sql(L"BEGIN TRANSACTION");
  in_transaction_ = true;
}

bool odbc_database::commit() {
  execute_sql(L"COMMIT TRANSACTION");
  in_transaction_ = false;
  return true;
}

bool odbc_database::rollback() {
  execute_sql(L"ROLLBACK");
  in_transaction_ = false;
  return true;
}

void odbc_database::end_transaction() {
  execute_sql(L"COMMIT TRANSACTION");
  in_transaction_ = false;
}

bool odbc_database::is_transacton() const { return in_transaction_; }

int odbc_database::get_max(std::wstring table, std::wstring column) {
  odbc_result result(database_, base_type_);
  if (!result.get_query(L"SELECT max(" + column + L") FROM " + table) || !result.next()) return -1;
  return result.get_as_int(0);
}

// ODD: the table's name is put into the text as it is; a quote in it is not doubled. Names that come here are
// the program's own.
void odbc_database::delete_counter(std::wstring table) { set_counter(std::move(table), 0); }

void odbc_database::set_counter(std::wstring table, int value) {
  execute_sql(L"UPDATE sqlite_sequence SET seq = " + std::to_wstring(value) + L" WHERE name = '" +
              table + L"'");
}

std::wstring odbc_database::get_log_path() const {
  return tableRW::joinPath({file_container_path_, L"_base", L"base.log"});
}

std::wstring odbc_database::cur_time() const {
  return base_type_ == odbc_base_type::sqlite ? L" datetime('now', 'localtime') "
                                              : L" LOCALTIMESTAMP(0) ";
}

// ODD: a base of neither kind gets the time as its key's type; callers never ask for one.
std::wstring odbc_database::primary_key() const {
  switch (base_type_) {
    case odbc_base_type::sqlite:
      return L" INTEGER PRIMARY KEY AUTOINCREMENT ";
    case odbc_base_type::server:
      return L" SERIAL PRIMARY KEY ";
  }
  return L" LOCALTIMESTAMP(0) ";
}

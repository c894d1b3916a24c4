#include "database/odbc_result.h"

#include "platform/vok_io.h"

odbc_result::odbc_result(Ivo_sqlite_db* database, odbc_base_type type)
    : database_(database), base_type_(type) {}

// ODD: copies share the statement: programs pass results on.
odbc_result::odbc_result(const odbc_result& other) = default;
odbc_result& odbc_result::operator=(const odbc_result& other) = default;
odbc_result::~odbc_result() = default;

bool odbc_result::get_query(const std::wstring& sql) {
  statement_.reset();
  statement_.reset(vo_sqlite_db_query_stmt(database_, sql.c_str(), static_cast<int>(base_type_)),
                   vo_sqlite_stmt_destroy);
  return statement_ != nullptr;
}

bool odbc_result::next() { return vo_sqlite_stmt_next_row(statement_.get()); }

bool odbc_result::has_failed() const { return vo_sqlite_stmt_has_failed(statement_.get()); }

int odbc_result::calc_column_count() const {
  return vo_sqlite_stmt_get_column_count(statement_.get());
}

int odbc_result::get_column_count() const { return column_count_; }

std::wstring odbc_result::get_as_wstring(int column) {
  std::wstring text;
  Tvo_std_wstring_adapter receiver(text);
  const std::unique_ptr<vo_string_adp, decltype(&vo_string_adp_destroy)> adapter(
      vo_string_adp_create(&receiver), &vo_string_adp_destroy);
  vo_sqlite_stmt_get_str(statement_.get(), column, adapter.get());
  return text;
}

int odbc_result::get_as_int(int column) { return vo_sqlite_stmt_get_int(statement_.get(), column); }

double odbc_result::get_as_double(int column) {
  return vo_sqlite_stmt_get_dbl(statement_.get(), column);
}

std::string_view odbc_result::get_as_utf8(int column) {
  return vo_sqlite_stmt_get_utf8(statement_.get(), column, nullptr);
}

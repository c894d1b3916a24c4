// The result of a query on a project database, row by row: see odbc_database.h.
#ifndef VOK_DATABASE_ODBC_RESULT_H
#define VOK_DATABASE_ODBC_RESULT_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/vok_export.h"

struct Ivo_sqlite_db;
struct Ivo_sqlite_stmt;

/// The kind of base behind a database.
enum class odbc_base_type : std::int32_t { sqlite = 1, server = 2 };

/// A query and the row it stands on. Belongs to one thread at a time, with its database.
class VOK_API odbc_result {
 public:
  /// Bound to a database, without a query yet: it has no rows.
  odbc_result(Ivo_sqlite_db* database, odbc_base_type type);
  /// A copy shares the statement: stepping one steps the other. The last of them frees it.
  odbc_result(const odbc_result& other);
  /// Gives its statement up and shares the other's.
  odbc_result& operator=(const odbc_result& other);
  virtual ~odbc_result();

  /// Prepares a query in place of the one before. @return false when it is refused
  bool get_query(const std::wstring& sql);

  /// Steps to the next row. @return true while there is one
  bool next();
  /// True when the rows ended with a failure, such as a damaged or locked database, before the last.
  bool has_failed() const;

  /// ODD: always 0, whatever the query; nothing counts the columns. Hosts ask by index.
  int get_column_count() const;

  /// A column of the current row, counted from 0. NULL, a missing column and a missing row are the empty
  /// text and 0; so is, as a number, text that does not begin with one.
  std::wstring get_as_wstring(int column);
  int get_as_int(int column);        ///< the same as a whole number of 32 bits
  double get_as_double(int column);  ///< the same as a number
  /// The column's text up to its first NUL character in the UTF-8 of the database, which may be broken; it
  /// lives until the next step.
  std::string_view get_as_utf8(int column);

 private:
  friend struct odbc_database_access;  // the tests'

  int calc_column_count() const;

  Ivo_sqlite_db* database_;
  std::shared_ptr<Ivo_sqlite_stmt> statement_;
  std::int32_t column_count_ = 0;
  odbc_base_type base_type_;
};

#endif

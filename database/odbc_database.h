// A project database: a connection, its queries and their results, transactions, and the few fragments of
// SQL that differ between an SQLite base and a server base. Every database made here is an SQLite base.
//
//     odbc_database project;
//     if (!project.connect(std::wstring(L"D:\\proj\\base.well2"))) return;
//     odbc_result* wells = project.get_query(L"SELECT name FROM well_base");
//     while (wells != nullptr && wells->next()) use(wells->get_as_wstring(0));
//     project.close_query(wells);
//
// Errors: false, null or -1; no messages, no exception but allocation failure. An operation on a database that
// is not connected fails. Text of the database ends at its first NUL character.
// Ownership: a result belongs to the caller, who gives it back with close_query, and must not outlive its
// database. Threads: a database and its results belong to one thread at a time.
#ifndef VOK_DATABASE_ODBC_DATABASE_H
#define VOK_DATABASE_ODBC_DATABASE_H

#include <cstdint>
#include <string>

#include "database/odbc_result.h"
#include "platform/vok_export.h"

/// A connection to one project database at a time, none at first.
class VOK_API odbc_database {
 public:
  odbc_database();
  odbc_database(const odbc_database&) = delete;
  odbc_database& operator=(const odbc_database&) = delete;
  virtual ~odbc_database();

  /// Opens a database and reads the user's name. A plain path is created when it is missing; a connection
  /// string, `Driver=SQLite3 ODBC Driver;Database=path;`, opens an existing file, and its queries leave no
  /// trace on disk. A database that is already open here is closed first.
  /// @return false when it cannot be opened; the database is not connected then
  bool connect(const std::wstring& path);
  /// The same for a path in the system's code page.
  bool connect(const std::string& path);
  /// Closes the database and opens another, or the same again.
  bool reconnect(const std::string& path);
  bool is_connected() const;  ///< whether a database is open here

  /// What kind of base it is, connected or not: sqlite.
  odbc_base_type identify_base_type() const;
  /// The folder of the project's files, which the log stands in.
  void set_file_container_path(std::wstring path);

  /// Runs every statement of the text. @return false when one of them fails
  bool execute_sql(const std::wstring& sql);

  /// Prepares a query. @return a result before its first row; null when the query is refused
  odbc_result* get_query(const std::wstring& sql);
  /// Frees a result; null is ignored.
  void close_query(odbc_result* result);

  /// ODD: nobody asks what the database said to these: commit and rollback answer true, and the flag
  /// follows the calls. Programs call them in pairs whether anything is open or not.
  void begin_transaction();
  bool commit();               ///< keeps what was done since the beginning; true always
  bool rollback();             ///< undoes what was done since the beginning; true always
  void end_transaction();      ///< ends it as commit does
  bool is_transacton() const;  ///< whether one was begun and not ended; spelled so

  /// `<file container path>\_base\base.log`.
  std::wstring get_log_path() const;
  /// The current local time in SQL, a blank on each side.
  std::wstring cur_time() const;
  /// The type of a key column that numbers itself, a blank on each side.
  std::wstring primary_key() const;

 private:
  friend struct odbc_database_access;  // the tests'

  void close();
  int get_max(std::wstring table, std::wstring column);
  void delete_counter(std::wstring table);
  void set_counter(std::wstring table, int value);

  bool connected_ = false;
  bool in_transaction_ = false;
  Ivo_sqlite_db* database_ = nullptr;
  std::wstring file_container_path_;
  std::wstring database_path_;
  std::wstring user_name_;
  odbc_base_type base_type_ = odbc_base_type::sqlite;
};

#endif

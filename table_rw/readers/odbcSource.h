// What the two readers of ODBC sources share: a connection, its tables, and the result of one statement.
//
//     odbcSource source;
//     if (!source.connect(connectionString, path) || !source.selectFrom(table, *this)) return false;
//     if (source.describe()) source.addRows(rows, limit);
//
// Text of drivers is narrow, in the system's code page. Everything is closed when the object goes, on
// every path. Errors: false. One object, one thread at a time.
#ifndef VOK_TABLE_RW_READERS_ODBCSOURCE_H
#define VOK_TABLE_RW_READERS_ODBCSOURCE_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/vok_io.h"
#include "table_rw/core/tableReader.h"
#include "table_rw/core/valueTable.h"

namespace tableRW {

/// Narrow text in the system's code page as wide text, and back; null is empty.
std::wstring fromSystem(const char* text);
std::string toSystem(const std::wstring& text);

/// The names of the machine's data sources, in the system's code page.
std::vector<std::string> odbcDataSources();

class odbcSource {
 public:
  odbcSource();

  /// Opens a connection to a file.
  /// @param connectionString  names the file, as it is
  /// @param path  the file's. With a semicolon or NUL in it, or a character that the system's code page
  ///              lacks, the string would name another file, which is not opened; nor is a pipe or device, for
  ///              which a driver may wait for ever, nor an Access database that is cut within a page
  bool connect(const std::string& connectionString, const std::wstring& path);

  /// The names of tables and views; see vo_odbc_connect_get_tables for `sheets`.
  void listTables(std::vector<std::wstring>& names, bool sheets);

  /// Runs "select * from [table]"; the name is put in as it is.
  /// @param lister  asked for its tables when the name is empty: the first one is taken
  /// @return false when the statement is refused, or there is no table
  bool selectFrom(const std::wstring& table, tableReader& lister);

  /// Asks for the columns of the result; there are none before, and none when it fails.
  bool describe();
  std::uint32_t columnCount() const;
  std::wstring columnName(std::uint32_t column) const;
  fldType columnType(std::uint32_t column) const;

  /// Steps to the next row. @return false behind the last one, and when the driver fails
  bool fetch();
  /// Adds the rows that are left, but for those whose values are all empty.
  /// @param limit  rows that the table may hold. ODD: only -1 is no limit; the numbers have 32 bits
  /// @return false when the driver fails on the way; the rows before that are added
  bool addRows(valueTable& rows, std::int32_t limit);

 private:
  struct connectionCloser {
    void operator()(Ivo_odbc_connect* connection) const { vo_odbc_connect_destroy(connection); }
  };
  struct statementCloser {
    Ivo_odbc_connect* connection;
    void operator()(Ivo_odbc_stmt* statement) const {
      vo_odbc_connect_destroy_stmt(connection, statement);
    }
  };
  Ivo_odbc_field* column(std::uint32_t index) const;
  void addRow(valueTable& rows);

  std::unique_ptr<Ivo_odbc_connect, connectionCloser> connection_;
  std::unique_ptr<Ivo_odbc_stmt, statementCloser> statement_;
};

}  // namespace tableRW

#endif

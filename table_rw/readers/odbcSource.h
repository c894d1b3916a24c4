// What the two readers of ODBC sources share: a connection, its tables, and the result of one statement.
//
//     odbcSource source;
//     if (!source.connect(connectionString) || !source.selectFrom(table)) return false;
//     if (source.describe()) while (source.fetch()) source.addRow(rows);
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
#include "table_rw/core/tableReaderOptions.h"
#include "table_rw/core/valueTable.h"

namespace tableRW {

/// Narrow text in the system's code page as wide text, and back; null is empty.
std::wstring fromSystem(const char* text);
std::string toSystem(const std::wstring& text);

/// The names of the machine's data sources, in the system's code page.
std::vector<std::string> odbcDataSources();

/// Whether no more rows are to be added. ODD: only -1 is no limit; the numbers have 32 bits.
bool isLimitReached(const valueTable& rows, std::int32_t limit);

class odbcSource {
 public:
  odbcSource();

  bool connect(const std::string& connectionString);

  /// The names of tables and views; see vo_odbc_connect_get_tables for `sheets`.
  void listTables(std::vector<std::wstring>& names, bool sheets);

  /// Runs "select * from [table]"; the name is put in as it is.
  bool selectFrom(const std::string& table);

  /// Asks for the columns of the result; there are none before, and none when it fails.
  bool describe();
  std::uint32_t columnCount() const;
  std::wstring columnName(std::uint32_t column) const;
  fldType columnType(std::uint32_t column) const;

  /// Steps to the next row. @return false behind the last one, and when the driver fails
  bool fetch();
  /// Adds the current row, unless all of its values are empty or the driver fails to give one.
  void addRow(valueTable& rows);
  /// True when the rows are not all: the driver has failed on the way.
  bool hasFailed() const;

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

  std::unique_ptr<Ivo_odbc_connect, connectionCloser> connection_;
  std::unique_ptr<Ivo_odbc_stmt, statementCloser> statement_;
};

}  // namespace tableRW

#endif

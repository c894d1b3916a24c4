// A table of an SQLite database: its columns are the fields, its rows the rows, NULL is empty text.
//
// The connection is opened by the constructor, for an existing file only, and kept for the reader's life;
// every read looks at the file anew. Reading changes nothing on disk and creates nothing there: see
// platform/vok_io.h. A field is numeric when its column is declared "INTEGER" or "FLOAT", in these letters.
// Values are the engine's text: up to the first NUL, broken UTF-8 decoded as code page 65001 does.
//
// Reads answer false when the file cannot be opened, a query is refused (no such table, no database, locked
// for more than 5 seconds), the table has no columns, or the database is found damaged on the way; the rows
// before the damage stay.
//
// ODD: headers-only and the row limit stay in force for later reads, until readOnlyHeaders or readDemo sets
// them anew. Hosts set a limit once and call read.
// ODD: field types are appended to those of the reads before; fields, rows and names are replaced. Hosts use
// a reader once.
// ODD: the table's name is quoted where the columns are asked for, but bare where the rows are. A name that
// needs quotes has fields but no rows; with quotes of the host's own it has neither.
#ifndef VOK_TABLE_RW_READERS_TABLEREADER_SQLITE_H
#define VOK_TABLE_RW_READERS_TABLEREADER_SQLITE_H

#include <memory>
#include <string>
#include <vector>

#include "database/odbc_database.h"
#include "table_rw/core/tableReader.h"

namespace tableRW {

class tableReader_sqlite : public tableReader {
 public:
  explicit tableReader_sqlite(tableReaderOptions options);
  tableReader_sqlite(const tableReader_sqlite&) = delete;
  tableReader_sqlite& operator=(const tableReader_sqlite&) = delete;
  ~tableReader_sqlite() override;

  /// True also when there is no such table; it has no fields then.
  bool readOnlyHeaders() override;
  /// Reads at most `n` rows; a negative `n` is no limit.
  bool readDemo(int n) override;
  bool read() override;
  void setTable(std::wstring name) override;
  /// Tables, views and whatever else the schema names, each once, in the schema's order.
  void tableList(std::vector<std::wstring>& list) override;
  capability_options get_capabilities() override;

 private:
  bool readFields();
  bool readRows();

  std::unique_ptr<odbc_database> database_;
  bool headersOnly_ = false;
  bool namesAreWhole_ = true;  // no column's name is broken UTF-8
};

}  // namespace tableRW

#endif

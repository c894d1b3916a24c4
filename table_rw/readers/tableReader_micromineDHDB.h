// A table of a Micromine drill-hole database, which is an Access database, through the driver
// "Microsoft Access Driver (*.mdb, *.accdb)" of the machine's ODBC.
//
// Without a table name the first table is read. Values are the driver's text, untrimmed; NULL is empty; rows
// whose values are all empty are left out. A field is numeric when its SQL type is one of numbers. Each call
// connects anew and closes the connection; nothing is written.
//
// Reads answer false when the driver is missing or refuses the file, or its path cannot be told to it (a
// semicolon, a character that the system's code page lacks, a pipe), the database holds no table and none is
// named, the statement fails (no such table), or the driver fails while rows are fetched; the rows before that
// stay. `isOK` tells whether the last connection was made.
//
// ODD: headers-only and the row limit stay in force for later reads, until readOnlyHeaders or readDemo sets
// them anew. Hosts set a limit once and call read.
// ODD: field types are appended to those of the reads before; fields, rows and names are replaced. Hosts use
// a reader once.
// ODD: a limit of -1 is none; other negative limits give no rows. Hosts count down to it.
// ODD: when the columns cannot be had the read is a success without fields. Hosts show an empty table then.
#ifndef VOK_TABLE_RW_READERS_TABLEREADER_MICROMINEDHDB_H
#define VOK_TABLE_RW_READERS_TABLEREADER_MICROMINEDHDB_H

#include <string>
#include <vector>

#include "table_rw/core/tableReader.h"

namespace tableRW {

class odbcSource;

class tableReader_micromineDHDB : public tableReader {
 public:
  explicit tableReader_micromineDHDB(tableReaderOptions options);

  bool readOnlyHeaders() override;
  /// Reads at most `n` rows; -1 is no limit, any other negative `n` gives none.
  bool readDemo(int n) override;
  bool read() override;
  void setTable(std::wstring name) override;
  /// The tables and views of the database; none when it cannot be opened.
  void tableList(std::vector<std::wstring>& list) override;
  capability_options get_capabilities() override;

 private:
  bool connect(odbcSource& source);

  bool headersOnly_ = false;
};

}  // namespace tableRW

#endif

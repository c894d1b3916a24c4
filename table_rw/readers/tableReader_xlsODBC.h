// A sheet of an Excel workbook (.xls, .xlsx) or a table of an Access database (.mdb, .accdb), through an ODBC
// data source of the machine: the first one whose name mentions the kind of file, "excel" or "access" in any
// letter case, and which accepts the file.
//
// Without a table name the first table or sheet is read. Values are the driver's text, untrimmed; NULL is
// empty; rows whose values are all empty are left out and do not count toward the limit. A field is numeric
// when its SQL type is one of numbers. Each call connects anew and closes the connection.
//
// The header position, for workbooks only: 0 takes the driver's column names; below 0 names the fields F0,
// F1 ..., and the driver's names, which are the sheet's first line, become the first row; above 0 that many
// rows are passed over and there are no fields. Rows up to the data position are passed over too.
//
// Reads answer false when no data source accepts the file, or its path cannot be told to one (a semicolon, a
// character that the system's code page lacks, a pipe), there is no table and none is named, the statement
// fails, the sheet ends among the rows that are passed over, or the driver fails while rows are fetched; the
// rows before that stay. `isOK` tells whether the last connection was made.
//
// ODD: the extension is compared with its letters' case. With an extension in capitals, or an unknown one,
// every data source will do, positions are not heeded and there are no fields, only rows. Hosts rely on it
// for data sources of their own.
// ODD: a path without a dot throws std::out_of_range from every read and from tableList; the C interface
// answers false. Hosts that offer their own dialog catch it.
// ODD: field types are appended to those of the reads before; fields, rows and names are replaced.
// ODD: a limit of -1 is none; other negative limits give no rows.
// ODD: when the columns cannot be had the read is a success without fields.
#ifndef VOK_TABLE_RW_READERS_TABLEREADER_XLSODBC_H
#define VOK_TABLE_RW_READERS_TABLEREADER_XLSODBC_H

#include <string>
#include <vector>

#include "table_rw/core/tableReader.h"

namespace tableRW {

class odbcSource;

class tableReader_xlsODBC : public tableReader {
 public:
  explicit tableReader_xlsODBC(tableReaderOptions options);

  bool readOnlyHeaders() override;
  /// Reads at most `n` rows; -1 is no limit, any other negative `n` gives none.
  bool readDemo(int n) override;
  bool read() override;
  void setTable(std::wstring name) override;
  /// The sheets, or the tables and views; none when no data source accepts the file.
  void tableList(std::vector<std::wstring>& out) override;
  capability_options get_capabilities() override;

 private:
  std::string getExtName() const;
  std::string makeDSNstring() const;
  bool connect(odbcSource& source);
  bool OptionRead();
  bool readHeader(odbcSource& source, const std::string& kind);
  bool skipToData(odbcSource& source, const std::string& kind) const;

  bool headersOnly_ = false;
};

}  // namespace tableRW

#endif

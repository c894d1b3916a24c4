// The text tables that Petrel writes: well tops, points, checkshots.
//
//     # Petrel well tops                 the first line names the table
//     VERSION 2                          lines before the header mean nothing here
//     BEGIN HEADER
//     Well                               one field name a line, with whatever blanks it has
//     MD
//     END HEADER
//     "P-108" 1200.50                    one record a line; every value, also the last, ends in a blank
//
// Values are separated by blanks (a TAB is none), text with blanks stands in double quotes, and a value that
// is exactly -999 or "NULL" (with the quotes) is empty. Rows are as long as their lines are, a blank line is
// a row without values, and nothing is ever rejected. All fields are text. Refused is nothing but a file
// that cannot be opened.
//
// ODD: the last value of a line is lost when no blank follows it. Petrel ends its lines in blanks; a file
// made otherwise has to do so too. See docs/formats/petrel.md.
// ODD: the table is always read as Windows-1251; the options' encoding is for the table's name alone.
// ODD: headers-only and the row limit stay in force for later reads, until readOnlyHeaders or readDemo sets
// them anew. Hosts set a limit once and call read.
// ODD: the limit is looked at after a row, so that readDemo(0) gives one.
#ifndef VOK_TABLE_RW_READERS_TABLEREADER_PETREL_H
#define VOK_TABLE_RW_READERS_TABLEREADER_PETREL_H

#include <string>
#include <vector>

#include "table_rw/core/tableReader.h"

namespace tableRW {

struct textFileReader;

class tableReader_petrel : public tableReader {
 public:
  explicit tableReader_petrel(tableReaderOptions options);

  bool readOnlyHeaders() override;
  /// Reads at most `n` rows, but one for 0; a negative `n` is no limit.
  bool readDemo(int n) override;
  bool read() override;
  /// A file holds one table: the name is ignored.
  void setTable(std::wstring name) override;
  /// The one table of the file: what its first line says from its tenth character on when "# Petrel " stands
  /// anywhere in it, else "petrel"; no entry when the file cannot be opened.
  void tableList(std::vector<std::wstring>& list) override;
  capability_options get_capabilities() override;

 private:
  void readHeader(textFileReader& source);
  void readRows(textFileReader& source);
  static void parceString(const std::wstring& line, std::vector<std::wstring>& values);

  bool headersOnly_ = false;
};

}  // namespace tableRW

#endif

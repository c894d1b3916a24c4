// A dBASE or FoxPro table: its field names, a type for each, and every record that is not deleted.
//
// What a DBF file is, vok_file_dbf knows; this reader walks through its fields and records and decodes
// the text. A file holds one table. Text is decoded from the system's code page, whatever the file says of
// its own: vo_options_set_system_code_page chooses another for files that come from elsewhere. Values
// are not trimmed here.
//
// ODD: a limit of 0 or below reads every record: readDemo(0) reads the whole table.
// ODD: a full read does not empty the field types and readOnlyHeaders empties nothing, so they pile up
// over several calls; cells past a row's end are empty text then.
#ifndef VOK_TABLE_RW_READERS_TABLEREADER_DBF_H
#define VOK_TABLE_RW_READERS_TABLEREADER_DBF_H

#include <string>
#include <vector>

#include "table_rw/core/tableReader.h"

struct vo_dbf;

namespace tableRW {

class tableReader_dbf : public tableReader {
 public:
  explicit tableReader_dbf(tableReaderOptions options);

  bool readOnlyHeaders() override;
  /// Reads the first `n` records; all of them when `n` is 0 or below.
  bool readDemo(int n) override;
  bool read() override;
  /// A file holds one table: the name is ignored.
  void setTable(std::wstring name) override;
  /// The one name "dbf"; the file is not opened.
  void tableList(std::vector<std::wstring>& list) override;
  capability_options get_capabilities() override;

 private:
  bool readFile();
  void readFields(vo_dbf* table);
  void readRecords(vo_dbf* table);
};

}  // namespace tableRW

#endif

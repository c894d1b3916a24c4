// A Micromine data file: its variables as fields, a type for each, and every record.
//
// What such a file is, vok_file_micromine knows; this reader walks through its variables and records. A file
// holds one table. Values are trimmed, and a record whose every value is empty is a row all the same.
// Reads answer false for a file that cannot be opened or is no data file.
//
// ODD: after a read of the headers, and of a file without fields, the file stays open and isOK is false
// although the read has answered true. Hosts take isOK for "there are rows to show". The open file goes with
// the next such read or with the reader.
// ODD: field types are appended to those of the reads before; names and rows are replaced. Hosts use a reader
// once.
// ODD: readDemo reads every record. Hosts show their preview from it and keep the reader.
// ODD: headers-only stays in force for later reads until readDemo ends it.
#ifndef VOK_TABLE_RW_READERS_TABLEREADER_MICROMINEDAT_H
#define VOK_TABLE_RW_READERS_TABLEREADER_MICROMINEDAT_H

#include <memory>
#include <string>
#include <vector>

#include "table_rw/core/tableReader.h"

struct vo_mm_tbl_reader;

namespace tableRW {

class tableReader_micromineDat : public tableReader {
 public:
  explicit tableReader_micromineDat(tableReaderOptions options);

  bool readOnlyHeaders() override;
  /// Reads every record; `n` is kept and not heeded.
  bool readDemo(int n) override;
  bool read() override;
  /// A file holds one table: the name is ignored.
  void setTable(std::wstring name) override;
  /// The one name "micromine_dat"; the file is not opened.
  void tableList(std::vector<std::wstring>& list) override;
  capability_options get_capabilities() override;

 private:
  void readFields(const vo_mm_tbl_reader* table);
  void readRecords(vo_mm_tbl_reader* table);

  bool headersOnly_ = false;
  std::shared_ptr<vo_mm_tbl_reader> leftOpen_;  // shared with copies of the reader
};

}  // namespace tableRW

#endif

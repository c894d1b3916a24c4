// A dBASE III table: the fields that the options define, one record a row.
//
// Field names become Latin text of at most 10 bytes, distinct from each other. What the values become is
// told at vo_dbf_set_str_w: text is cut to its field, numbers are rounded to it.
//
// ODD: the length of a field is the low byte of its width: 300 becomes 44. Hosts have stored such widths.
// ODD: an empty row is accepted here, other than in the other formats, and adds a blank record.
// ODD: when the file cannot be created, rows are accepted and go nowhere.
#ifndef VOK_TABLE_RW_WRITERS_TABLEWRITER_DBF_H
#define VOK_TABLE_RW_WRITERS_TABLEWRITER_DBF_H

#include <cstdint>
#include <string>
#include <vector>

#include "table_rw/writers/tableWriter.h"

struct vo_dbf;

namespace tableRW {

class tableWriter_dbf : public tableWriter {
 public:
  /// Creates the file.
  explicit tableWriter_dbf(tableWriterOptions options);
  /// A copy shares the open file: exactly one of the two may be closed.
  tableWriter_dbf(const tableWriter_dbf&) = default;
  tableWriter_dbf& operator=(const tableWriter_dbf& other) = default;
  ~tableWriter_dbf() override;

  /// Writes one record. @return false for a row of more values than there are fields; nothing is written
  bool addRow(const std::vector<std::wstring>& row) override;

 private:
  vo_dbf* table_ = nullptr;  // null when the file could not be created
  tableWriterOptions options_;
  std::int32_t record_ = 0;  // the next to fill
};

}  // namespace tableRW

#endif

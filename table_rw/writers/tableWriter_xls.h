// Spreadsheets: an XLSX workbook with one sheet, called List1, whose first row holds the field names.
//
// Rows are written to a temporary folder while they arrive (see xlsx/workbook.h); the target appears when the
// writer is closed. Every value is text, except one that begins with "=", which becomes a formula.
//
// ODD: of each of the five characters & < > blank " only the first in a value is escaped; the first blank
// becomes a non-breaking one, and a quotation mark gains a blank. A second & or < goes into the XML as it is,
// and a spreadsheet program refuses the workbook; `vok_table convert` warns of such values.
// ODD: .xls gets an XLSX package too.
// ODD: a failure is not reported; there is no file then.
#ifndef VOK_TABLE_RW_WRITERS_TABLEWRITER_XLS_H
#define VOK_TABLE_RW_WRITERS_TABLEWRITER_XLS_H

#include <cstdint>
#include <string>
#include <vector>

#include "table_rw/writers/tableWriter.h"
#include "table_rw/writers/xlsx/workbook.h"

namespace tableRW {

class tableWriter_xls : public tableWriter {
 public:
  /// Writes the field names as the first row; without fields there is none.
  explicit tableWriter_xls(tableWriterOptions options);

  /// Copies the workbook as a whole. Both writers save to the same path; the last one to be closed wins.
  tableWriter_xls(const tableWriter_xls& other);
  /// Discards the rows of this one.
  tableWriter_xls& operator=(const tableWriter_xls& other);

  /// Saves the workbook. Failures are not reported.
  ~tableWriter_xls() override;

  /// Writes one row; the number of values is not compared with the number of fields.
  /// @return false for an empty row
  bool addRow(const std::vector<std::wstring>& row) override;

 private:
  tableWriterOptions options_;
  std::int32_t sheetCount_ = 0;              // 0 or 1
  SimpleXlsx::CWorksheet* sheet_ = nullptr;  // of workbook_; null until the first row
  SimpleXlsx::CWorkbook workbook_;
  std::vector<SimpleXlsx::CellDataStr> cells_;  // reused from row to row
};

}  // namespace tableRW

#endif

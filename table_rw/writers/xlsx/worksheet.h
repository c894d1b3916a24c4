// A worksheet part, xl/worksheets/sheet<n>.xml, written row by row while the rows arrive.
//
// Cell texts are XML already: nothing is escaped here. A text that begins with "=" becomes a formula, any
// other goes into the workbook's shared strings.
//
// ODD: `spans` of a row ends one column behind its last cell.
// One object belongs to one thread at a time.
#ifndef VOK_TABLE_RW_WRITERS_XLSX_WORKSHEET_H
#define VOK_TABLE_RW_WRITERS_XLSX_WORKSHEET_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "table_rw/writers/xlsx/sharedStrings.h"
#include "table_rw/writers/xlsx/xmlPart.h"

namespace SimpleXlsx {

/// A cell of text.
struct CellDataStr {
  std::wstring value;       ///< XML already
  std::uint32_t style = 0;  ///< index of the cell's style; 0: the default one
};

class CWorksheet {
 public:
  /// A sheet without a file; `open` or `copyFrom` comes next.
  /// @param strings  of the workbook; outlives the sheet
  CWorksheet(std::wstring title, packageDisk& disk, sharedStrings& strings);
  CWorksheet(const CWorksheet&) = delete;
  CWorksheet& operator=(const CWorksheet&) = delete;

  /// Creates the part and writes what comes before the rows. A failure shows when the sheet is closed.
  void open(const std::wstring& path);

  /// Makes this sheet, which was not opened, one with the same rows in a file of its own.
  void copyFrom(CWorksheet& other, const std::wstring& path);

  /// Writes the next row.
  /// @throws std::bad_alloc; the sheet may end in the midst of the row then, and `close` says so
  void AddRow(const std::vector<CellDataStr>& cells);

  /// Writes what comes after the rows and closes the part. @return false when it is not whole
  bool close();

  const std::wstring& title() const { return title_; }

 private:
  struct columnName {
    std::array<char, 14> letters;
    std::uint8_t size;
  };

  void nameColumns(std::size_t count);
  void putCell(std::size_t column, std::string_view rowNumber, const CellDataStr& cell);
  std::string dimension() const;

  std::wstring title_;
  xmlPart part_;
  sharedStrings& strings_;
  tableRW::growingArray<char> formula_;  // reused from cell to cell
  std::vector<columnName> columns_;      // as many as the widest row has had
  std::uint64_t rows_ = 0;
  bool isWhole_ = true;            // false behind a row that ran out of memory in its midst
  std::uint64_t dimensionAt_ = 0;  // where the room for the dimension stands in the part
};

}  // namespace SimpleXlsx

#endif

// A workbook, whatever its file format: its sheets by name, and the cells of a sheet as a stream.
//
// A cell arrives as the text that stands for it in a table: numbers as the shortest text that reads back to
// the same number, dates and times by their number format as ISO 8601, booleans as TRUE and FALSE, errors as
// the sheet shows them, formulas by their cached value. Line breaks, tabs and the delimiter are replaced (see
// lineText.h), so the text fits into one value of one line. Empty cells do not arrive.
//
// Cells come in the order of the file: nearly always row by row from left to right, but nothing promises it,
// and a cell may come twice (the last counts). Memory does not grow with a sheet; only the texts that cells
// share are held.
#ifndef VOK_CONVERTER_WORKBOOK_WORKBOOK_H
#define VOK_CONVERTER_WORKBOOK_WORKBOOK_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace converter {

/// Rows and columns count from 0.
constexpr std::uint32_t mostRows = 1048576;
constexpr std::uint32_t mostColumns = 16384;

struct cellRange {
  std::uint32_t firstRow = 0;
  std::uint32_t lastRow = 0;
  std::uint32_t firstColumn = 0;
  std::uint32_t lastColumn = 0;
};

/// Receives a sheet. Places lie within mostRows and mostColumns.
class sheetReceiver {
 public:
  sheetReceiver() = default;
  sheetReceiver(const sheetReceiver&) = delete;
  sheetReceiver& operator=(const sheetReceiver&) = delete;
  virtual ~sheetReceiver() = default;

  virtual void cell(std::uint32_t row, std::uint32_t column, std::string_view text) = 0;
  /// Cells that are shown as one: the first's.
  virtual void mergedCells(const cellRange& range) = 0;
  /// A reason to stop, asked for now and then; empty: go on.
  virtual std::string stopReason() = 0;
};

struct sheetEntry {
  std::string name;  ///< UTF-8
  bool isVisible = true;
  bool hasCells = true;     ///< false for charts and the like, which are no tables
  std::uint64_t place = 0;  ///< where the sheet begins, for the format's own use
  std::string part;         ///< the same for packages
};

class workbook {
 public:
  workbook() = default;
  workbook(const workbook&) = delete;
  workbook& operator=(const workbook&) = delete;
  virtual ~workbook() = default;

  /// All sheets in the order of their tabs.
  const std::vector<sheetEntry>& sheets() const { return sheets_; }

  /// Reads a sheet. Answers false with a reason in `problem` when it is damaged; what has arrived until then
  /// is not the sheet.
  virtual bool readSheet(const sheetEntry& sheet, sheetReceiver& receiver,
                         std::string& problem) = 0;

 protected:
  std::vector<sheetEntry> sheets_;
};

/// Opens a workbook; the file's first bytes tell which format it has, its name does not matter.
/// @param file       must live as long as the workbook
/// @param delimiter  what must not stand in a cell's text
/// @param problem    receives the reason when the answer is null
std::unique_ptr<workbook> openWorkbook(platform::binaryFile& file, char delimiter,
                                       std::string& problem);

}  // namespace converter

#endif

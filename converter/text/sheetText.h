// A sheet as a text file: one line for each row from the first one on, empty rows included, and every line
// with as many values as the sheet's last used column wants. The last line is that of the last used row;
// used are cells that hold a value.
//
// How many columns a sheet has, and which cells are merged, is known only at its end. So lines are written
// as the cells come, padded to the first line's width, into a file beside the target; when it turns out that
// all of them have the width of the widest and nothing is merged, that file takes the target's name.
// Otherwise it is read once more, line by line, and written anew. Cells that come out of order, which a few
// programs do, are kept in memory until then; nothing else grows with the sheet.
//
// Merged cells: the first cell's value stands in every cell of the range. Of ranges that overlap, which only
// damaged workbooks have, the first from above and from the left counts.
// Refused: a sheet of more than 2^30 places of which less than a hundredth holds a value: a single cell in
// the last corner of a sheet would make 17 GB of delimiters. A text longer than it may be. And what would
// take hundreds of megabytes of memory: rows above 64 MiB, millions of merged ranges, many millions of cells
// that come out of order.
#ifndef VOK_CONVERTER_TEXT_SHEETTEXT_H
#define VOK_CONVERTER_TEXT_SHEETTEXT_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "converter/text/outputFile.h"
#include "converter/workbook/workbook.h"

namespace converter {

struct sheetTextOptions {
  char delimiter = '$';
  bool copyMerged = false;
  std::optional<std::uint32_t> onlyRow;  ///< nothing but the line of this row is written

  // What is beyond these is refused.
  std::uint64_t mostBytes = std::uint64_t{1} << 30;  ///< of the text
  std::uint64_t mostLineBytes = std::uint64_t{64} << 20;
  std::size_t mostMerges = std::size_t{4} << 20;
  std::size_t mostLateCells = std::size_t{4} << 20;  ///< that come out of order
  std::size_t mostLateBytes = std::size_t{256} << 20;
};

class sheetText final : public sheetReceiver {
 public:
  sheetText(std::wstring target, const sheetTextOptions& options);

  /// Creates the file beside the target. @return false when that fails
  bool open() { return lines_.open(); }

  void cell(std::uint32_t row, std::uint32_t column, std::string_view text) override;
  void mergedCells(const cellRange& range) override;
  std::string stopReason() override { return stopReasonOf(lines_); }

  /// Ends the sheet and gives the file its name. Without it nothing is left.
  /// @param problem  receives the reason when the answer is false
  bool finish(std::string& problem);

 private:
  struct lateCell {
    std::uint32_t row;
    std::uint32_t column;
    std::size_t textBegin;
    std::size_t textSize;
  };
  // A range of merged cells that the row at hand crosses.
  struct activeMerge {
    std::uint32_t lastColumn;
    std::uint32_t lastRow;
    std::string text;
  };
  class lineSource;

  void endLine();
  bool isSparse(std::uint64_t rows, std::uint64_t columns, std::uint64_t beyond) const;
  bool isTooSparse(std::uint64_t rows, std::uint64_t columns) const;
  bool measureMerges();
  bool writeAnew(std::string& problem);
  void splitLine(std::string_view line);
  void applyLateCells(std::uint32_t row);
  void applyMerges(std::uint32_t row);
  void startMerge(const cellRange& range);
  void writeLine(std::string& out, std::string_view line) const;
  bool writeCells(std::string& out);
  std::string stopReasonOf(const outputFile& file) const;
  std::string sparseProblem() const;

  std::wstring target_;
  sheetTextOptions options_;
  outputFile lines_;

  std::uint32_t row_ = 0;      // of the open line
  std::uint32_t columns_ = 0;  // values in the open line
  std::uint32_t rows_ = 0;     // used rows
  std::uint32_t width_ = 0;    // used columns
  std::uint32_t padding_ = 0;  // columns that every line is padded to, once one is known
  std::uint32_t narrowest_ = mostColumns;
  std::uint64_t cellCount_ = 0;
  std::uint64_t lineBegin_ = 0;  // of the open line in the file
  std::uint64_t longestLine_ = 0;

  std::vector<lateCell> lateCells_;
  std::string lateTexts_;
  std::vector<cellRange> merges_;

  // While the lines are written anew:
  std::vector<std::string_view> cells_;
  std::size_t nextLate_ = 0;
  std::size_t nextMerge_ = 0;
  std::map<std::uint32_t, activeMerge> active_;  // by first column
};

}  // namespace converter

#endif

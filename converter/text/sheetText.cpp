#include "converter/text/sheetText.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace converter {
namespace {

constexpr std::uint64_t placesThatAreNeverTooMany = std::uint64_t{1} << 30;
constexpr std::uint64_t placesPaddedAtOnce = std::uint64_t{1} << 24;
constexpr std::uint64_t mostPlacesOfACell = 100;
constexpr const char* writingProblem = "the text file could not be written";
constexpr std::size_t blockSize = std::size_t{256} * 1024;

}  // namespace

// The lines of the file that was written first.
class sheetText::lineSource {
 public:
  bool open(const std::wstring& path) { return file_.openForReading(path); }

  bool hasFailed() const { return file_.hasFailed(); }

  /// The next line without its end; empty behind the last. It lives until the next call.
  std::string_view next() {
    for (;;) {
      const void* const end = std::memchr(block_.data() + from_, '\n', block_.size() - from_);
      if (end != nullptr) {
        const std::size_t begin = std::exchange(
            next_, static_cast<std::size_t>(static_cast<const char*>(end) - block_.data()) + 1);
        from_ = next_;
        return {block_.data() + begin, next_ - 1 - begin};
      }
      block_.erase(0, std::exchange(next_, 0));
      const std::size_t kept = from_ = block_.size();
      block_.resize(kept + blockSize);
      const std::size_t count = file_.read(block_.data() + kept, blockSize);
      block_.resize(kept + count);
      if (count == 0) return {};
    }
  }

 private:
  platform::binaryFile file_;
  std::string block_;
  std::size_t next_ = 0;  // first byte that was not handed out
  std::size_t from_ = 0;  // where the search for the line's end goes on
};

sheetText::sheetText(std::wstring target, const sheetTextOptions& options)
    : target_(std::move(target)), options_(options), lines_(target_ + L".lines") {}

void sheetText::cell(std::uint32_t row, std::uint32_t column, std::string_view text) {
  if (lines_.size() > options_.mostBytes) return;  // refused when it is asked for the next time
  ++cellCount_;
  width_ = std::max(width_, column + 1);
  rows_ = std::max(rows_, row + 1);
  if (row < row_ || (row == row_ && column < columns_)) {
    lateCells_.push_back({row, column, lateTexts_.size(), text.size()});
    lateTexts_ += text;
    return;
  }
  while (row_ < row) endLine();
  std::string& line = lines_.buffer();
  const std::uint32_t delimiters = columns_ == 0 ? 0 : columns_ - 1;
  line.append(column - delimiters, options_.delimiter);
  line += text;
  columns_ = column + 1;
  lines_.flushWhenFull();
}

void sheetText::endLine() {
  if (padding_ == 0) padding_ = columns_;
  // WHY: the padding of a sheet that may be refused is not even written.
  if (isSparse(row_ + std::uint64_t{1}, padding_, placesPaddedAtOnce)) padding_ = 1;
  const std::uint32_t columns = std::max({columns_, padding_, 1u});
  lines_.buffer().append(columns - std::max(columns_, 1u), options_.delimiter);
  lines_.buffer() += '\n';
  lines_.flushWhenFull();
  longestLine_ = std::max(longestLine_, lines_.size() - lineBegin_);
  lineBegin_ = lines_.size();
  narrowest_ = std::min(narrowest_, columns);
  ++row_;
  columns_ = 0;
}

void sheetText::mergedCells(const cellRange& range) {
  if (options_.copyMerged) merges_.push_back(range);
}

bool sheetText::isSparse(std::uint64_t rows, std::uint64_t columns, std::uint64_t beyond) const {
  const std::uint64_t places = rows * columns;
  return places > beyond && places / mostPlacesOfACell > cellCount_;
}

bool sheetText::isTooSparse(std::uint64_t rows, std::uint64_t columns) const {
  return isSparse(rows, columns, placesThatAreNeverTooMany);
}

std::string sheetText::sparseProblem() const {
  return "the sheet has " + std::to_string(rows_) + " rows and " + std::to_string(width_) +
         " columns, but only " + std::to_string(cellCount_) + " cells with a value: it is no table";
}

std::string sheetText::stopReasonOf(const outputFile& file) const {
  if (file.hasFailed()) return writingProblem;
  if (file.size() > options_.mostBytes && isTooSparse(rows_, width_)) return sparseProblem();
  if (file.size() > options_.mostBytes)
    return "the sheet is refused: its text would be longer than " +
           std::to_string(options_.mostBytes) + " bytes, far more than its workbook";
  if (longestLine_ > options_.mostLineBytes)
    return "the sheet is refused: it has a row that is too long";
  if (merges_.size() > options_.mostMerges)
    return "the sheet is refused: it has too many merged ranges";
  if (lateCells_.size() > options_.mostLateCells || lateTexts_.size() > options_.mostLateBytes)
    return "the sheet is refused: too many of its cells come out of order";
  return {};
}

bool sheetText::finish(std::string& problem) {
  if (columns_ > 0) endLine();
  const bool isFinal =
      narrowest_ >= width_ && lateCells_.empty() && merges_.empty() && !options_.onlyRow;
  problem = stopReason();
  if (!problem.empty()) return false;
  problem = writingProblem;
  if (isFinal) return lines_.finishAs(target_);
  if (!lines_.close()) return false;
  std::stable_sort(lateCells_.begin(), lateCells_.end(), [](const lateCell& a, const lateCell& b) {
    return a.row != b.row ? a.row < b.row : a.column < b.column;
  });
  std::stable_sort(merges_.begin(), merges_.end(), [](const cellRange& a, const cellRange& b) {
    return a.firstRow != b.firstRow ? a.firstRow < b.firstRow : a.firstColumn < b.firstColumn;
  });
  // WHY twice: measuring a sheet that is too sparse already would take minutes.
  if (!isTooSparse(rows_, width_) && !measureMerges()) return false;
  if (isTooSparse(rows_, width_)) {
    problem = sparseProblem();
    return false;
  }
  return writeAnew(problem);
}

// A range whose first cell has a value makes the cells used that it covers.
bool sheetText::measureMerges() {
  const bool reachesOut =
      std::any_of(merges_.begin(), merges_.end(), [this](const cellRange& range) {
        return range.lastColumn >= width_ || range.lastRow >= rows_;
      });
  if (!reachesOut) return true;
  lineSource lines;
  if (!lines.open(lines_.path())) return false;
  std::uint32_t width = width_;
  std::uint32_t rows = rows_;
  for (std::uint32_t row = 0; row < rows_ && nextMerge_ < merges_.size(); ++row) {
    const std::string_view line = lines.next();
    const bool isWanted = merges_[nextMerge_].firstRow == row;
    if (isWanted) splitLine(line);
    applyLateCells(row);
    for (; nextMerge_ < merges_.size() && merges_[nextMerge_].firstRow == row; ++nextMerge_) {
      const cellRange& range = merges_[nextMerge_];
      if (range.firstColumn >= width_ || cells_[range.firstColumn].empty()) continue;
      width = std::max(width, range.lastColumn + 1);
      rows = std::max(rows, range.lastRow + 1);
    }
  }
  width_ = width;
  rows_ = rows;
  nextLate_ = nextMerge_ = 0;
  return !lines.hasFailed();
}

bool sheetText::writeAnew(std::string& problem) {
  lineSource lines;
  outputFile anew(target_ + L".part");
  if (!lines.open(lines_.path()) || !anew.open()) return false;
  for (std::uint32_t row = 0; row < rows_ && !anew.hasFailed(); ++row) {
    const std::string_view line = row < row_ ? lines.next() : std::string_view();
    const bool isWanted = !options_.onlyRow || row == *options_.onlyRow;
    const bool isChanged = !active_.empty() ||
                           (nextMerge_ < merges_.size() && merges_[nextMerge_].firstRow == row) ||
                           (nextLate_ < lateCells_.size() && lateCells_[nextLate_].row == row);
    if (isChanged) {
      splitLine(line);
      applyLateCells(row);
      applyMerges(row);
      if (isWanted && !writeCells(anew.buffer())) {
        problem = stopReason();
        return false;
      }
      std::erase_if(active_, [row](const auto& each) { return each.second.lastRow <= row; });
    } else if (isWanted) {
      writeLine(anew.buffer(), line);
    }
    anew.flushWhenFull();
    if (options_.onlyRow && isWanted) break;
    if (anew.size() > options_.mostBytes) {
      problem = stopReasonOf(anew);
      return false;
    }
  }
  if (lines.hasFailed() || !anew.finishAs(target_)) return false;
  problem.clear();
  return true;
}

void sheetText::splitLine(std::string_view line) {
  cells_.assign(width_, {});
  for (std::string_view& cell : cells_) {
    const std::size_t end = std::min(line.find(options_.delimiter), line.size());
    cell = line.substr(0, end);
    if (end == line.size()) return;
    line.remove_prefix(end + 1);
  }
}

void sheetText::applyLateCells(std::uint32_t row) {
  for (; nextLate_ < lateCells_.size() && lateCells_[nextLate_].row == row; ++nextLate_) {
    const lateCell& late = lateCells_[nextLate_];
    if (late.column < cells_.size())  // a row that is only passed by is not split
      cells_[late.column] = std::string_view(lateTexts_).substr(late.textBegin, late.textSize);
  }
}

void sheetText::applyMerges(std::uint32_t row) {
  for (; nextMerge_ < merges_.size() && merges_[nextMerge_].firstRow == row; ++nextMerge_)
    startMerge(merges_[nextMerge_]);
  for (const auto& [firstColumn, merge] : active_)
    for (std::uint32_t column = firstColumn; column <= merge.lastColumn && column < width_;
         ++column)
      cells_[column] = merge.text;
}

void sheetText::startMerge(const cellRange& range) {
  if (range.firstColumn >= width_) return;
  const auto behind = active_.upper_bound(range.lastColumn);
  if (behind != active_.begin() && std::prev(behind)->second.lastColumn >= range.firstColumn)
    return;
  active_.emplace(range.firstColumn, activeMerge{range.lastColumn, range.lastRow,
                                                 std::string(cells_[range.firstColumn])});
}

void sheetText::writeLine(std::string& out, std::string_view line) const {
  const auto delimiters =
      static_cast<std::size_t>(std::count(line.begin(), line.end(), options_.delimiter));
  out += line;
  if (width_ > delimiters + 1) out.append(width_ - 1 - delimiters, options_.delimiter);
  out += '\n';
}

bool sheetText::writeCells(std::string& out) {
  std::uint64_t size = cells_.size();
  for (const std::string_view cell : cells_) size += cell.size();
  longestLine_ = std::max(longestLine_, size);
  if (longestLine_ > options_.mostLineBytes) return false;
  for (std::size_t column = 0; column < cells_.size(); ++column) {
    if (column > 0) out += options_.delimiter;
    out += cells_[column];
  }
  out += '\n';
  return true;
}

}  // namespace converter

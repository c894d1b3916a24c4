#include "fuzz/workbookChecks.h"

#include <algorithm>
#include <optional>

#include "converter/conversion.h"
#include "converter/workbook/lineText.h"
#include "converter/workbook/workbook.h"
#include "fuzz/fuzzing.h"
#include "platform/files.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace fuzzing {
namespace {

constexpr char delimiter = '$';
constexpr std::uint64_t mostPlaces = 1 << 16;  // of a sheet that is converted

class cellCollector final : public converter::sheetReceiver {
 public:
  void cell(std::uint32_t row, std::uint32_t column, std::string_view text) override {
    demand(row < converter::mostRows && column < converter::mostColumns, "a cell outside a sheet");
    demand(converter::lineText(delimiter).isPlain(text), "a text that cannot stand in a line");
    demand(!text.empty(), "an empty cell arrives");
    cells[{row, column}] = text;
    reach(row, column);
  }
  void mergedCells(const converter::cellRange& range) override {
    demand(range.lastRow < converter::mostRows && range.lastColumn < converter::mostColumns,
           "merged cells outside a sheet");
    demand(range.firstRow <= range.lastRow && range.firstColumn <= range.lastColumn,
           "merged cells end before they begin");
    reach(range.lastRow, range.lastColumn);
  }
  std::string stopReason() override { return {}; }

  bool isSmall() const { return rows_ * columns_ <= mostPlaces; }

  sheetCells cells;

 private:
  void reach(std::uint64_t row, std::uint64_t column) {
    rows_ = std::max(rows_, row + 1);
    columns_ = std::max(columns_, column + 1);
  }

  std::uint64_t rows_ = 0;  // merged ones included
  std::uint64_t columns_ = 0;
};

struct conversionResult {
  std::optional<std::string> text;
  std::string problem;

  bool operator==(const conversionResult&) const = default;
};

conversionResult converted(const converter::conversionRequest& request) {
  conversionResult result;
  const bool isDone = converter::convert(request, result.problem);
  const std::wstring target = converter::targetPath(request);
  result.text = testSupport::readFile(target);
  platform::removeFile(target);
  demand(isDone == result.text.has_value(), "a file in spite of a failure, or none without one");
  demand(isDone || !result.problem.empty(), "a workbook is refused without a reason");
  demand(!platform::fileExists(target + L".lines") && !platform::fileExists(target + L".part"),
         "something is left beside the text file");
  return result;
}

// The same number of delimiters in every line, and a line's end behind the last.
void demandEvenLines(const std::string& text) {
  demand(text.empty() || text.back() == '\n', "a line without its end");
  std::optional<std::ptrdiff_t> expected;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = text.find('\n', at);
    const auto begin = text.begin() + static_cast<std::ptrdiff_t>(at);
    const auto count =
        std::count(begin, text.begin() + static_cast<std::ptrdiff_t>(end), delimiter);
    demand(expected.value_or(count) == count, "lines of different width");
    expected = count;
    at = end + 1;
  }
}

// Reads the default sheet. @return false when it, or the workbook, is refused
bool collect(const std::wstring& path, cellCollector& cells, std::size_t& sheets) {
  platform::binaryFile file;
  demand(file.openForReading(path), "the input cannot be opened");
  std::string problem;
  const auto book = converter::openWorkbook(file, delimiter, problem);
  demand(book != nullptr || !problem.empty(), "a workbook is refused without a reason");
  if (book == nullptr) return false;
  const auto& all = book->sheets();
  sheets = all.size();
  auto sheet = std::find_if(all.begin(), all.end(),
                            [](const auto& each) { return each.hasCells && each.isVisible; });
  if (sheet == all.end())
    sheet = std::find_if(all.begin(), all.end(), [](const auto& each) { return each.hasCells; });
  if (sheet == all.end()) return false;
  const bool isRead = book->readSheet(*sheet, cells, problem);
  demand(isRead || !problem.empty(), "a sheet is refused without a reason");
  return isRead;
}

}  // namespace

std::string sheetTextOf(const sheetCells& cells) {
  if (cells.empty()) return {};
  const std::uint32_t rows = cells.rbegin()->first.first + 1;
  std::uint32_t columns = 0;
  for (const auto& [place, text] : cells) columns = std::max(columns, place.second + 1);
  std::string all;
  auto next = cells.begin();
  for (std::uint32_t row = 0; row < rows; ++row) {
    for (std::uint32_t column = 0; column < columns; ++column) {
      if (column > 0) all += delimiter;
      if (next != cells.end() && next->first == std::pair(row, column)) all += (next++)->second;
    }
    all += '\n';
  }
  return all;
}

std::string checkedWorkbook(std::string_view bytes) {
  converter::conversionRequest request;
  request.source = writeInput(L"input.book", bytes);
  request.folder = inputPath(L"");
  cellCollector cells;
  std::size_t sheets = 0;
  if (!collect(request.source, cells, sheets)) {
    demand(!converted(request).text, "a sheet that is refused is converted");
    return "refused";
  }
  if (cells.isSmall()) {
    const conversionResult whole = converted(request);
    const std::string expected = sheetTextOf(cells.cells);
    demand(whole.text == expected,
           "the text is " + whole.text.value_or(whole.problem) + " and not " + expected);
    request.copyMerged = true;
    const conversionResult merged = converted(request);
    demand(merged.text.has_value(), "merged cells cannot be copied");
    demandEvenLines(*merged.text);
    request.copyMerged = false;
    request.headerPosition = 0;
    demand(converted(request).text == expected.substr(0, expected.find('\n') + 1),
           "the first line alone is another one");
  }
  request.listsTables = true;
  const conversionResult list = converted(request);
  demand(list.text.has_value(), "the sheets cannot be listed");
  demand(static_cast<std::size_t>(std::count(list.text->begin(), list.text->end(), delimiter)) <
             std::max<std::size_t>(sheets, 1),
         "more names than sheets");
  constexpr std::size_t fewCells = 8;
  std::string outcome = std::to_string(sheets) + " sheets, ";
  if (cells.cells.size() > fewCells) return outcome + std::to_string(cells.cells.size()) + " cells";
  for (const auto& [place, cell] : cells.cells)
    outcome += "[" + std::to_string(place.first) + " " + std::to_string(place.second) + " " +
               testSupport::shortened(cell) + "]";
  return outcome;
}

}  // namespace fuzzing

#include "converter/conversion.h"

#include <algorithm>

#include "converter/text/sheetText.h"
#include "converter/wideText.h"
#include "converter/workbook/lineText.h"
#include "converter/workbook/workbook.h"
#include "platform/files.h"

namespace converter {
namespace {

// A text file may be so many times as long as its workbook, or what is never too much if that is more: cells
// that share one long text, merged or by number, could fill any disk.
constexpr std::uint64_t largestGrowth = 1000;

bool endsInSeparator(const std::wstring& folder) {
  return folder.back() == L'/' || folder.back() == L'\\';
}

std::wstring stemOf(const std::wstring& path) {
  const std::size_t separator = path.find_last_of(L"/\\");
  const std::wstring name = separator == std::wstring::npos ? path : path.substr(separator + 1);
  const std::size_t dot = name.rfind(L'.');
  return dot == std::wstring::npos || dot == 0 ? name : name.substr(0, dot);
}

// The name of a sheet as the list of tables shows it.
std::string listedName(const sheetEntry& sheet, const lineText& replacements) {
  std::string name;
  replacements.append(name, sheet.name);
  return name;
}

std::string withoutQuotes(std::string name) {
  std::erase(name, '"');
  return name;
}

// By its name, or by what becomes of the name on the way: in the list of tables, or on a command line, which
// cannot hold a quote.
const sheetEntry* findSheet(const workbook& book, const std::string& name,
                            const lineText& replacements) {
  const auto& sheets = book.sheets();
  const auto find = [&](auto nameOf) {
    const auto found = std::find_if(sheets.begin(), sheets.end(),
                                    [&](const sheetEntry& each) { return nameOf(each) == name; });
    return found == sheets.end() ? nullptr : &*found;
  };
  const sheetEntry* sheet = find([](const sheetEntry& each) { return each.name; });
  if (sheet == nullptr)
    sheet = find([&](const sheetEntry& each) { return listedName(each, replacements); });
  if (sheet == nullptr)
    sheet =
        find([&](const sheetEntry& each) { return withoutQuotes(listedName(each, replacements)); });
  return sheet;
}

const sheetEntry* defaultSheet(const workbook& book) {
  const sheetEntry* first = nullptr;
  for (const sheetEntry& each : book.sheets()) {
    if (!each.hasCells) continue;
    if (each.isVisible) return &each;
    if (first == nullptr) first = &each;
  }
  return first;
}

const sheetEntry* chooseSheet(const workbook& book, const conversionRequest& request,
                              std::string& problem) {
  if (!request.table) {
    const sheetEntry* const sheet = defaultSheet(book);
    if (sheet == nullptr) problem = "the workbook has no sheet";
    return sheet;
  }
  const std::string name = toUtf8(*request.table);
  const sheetEntry* const sheet = findSheet(book, name, lineText(request.delimiter));
  if (sheet == nullptr) {
    problem = "the workbook has no sheet \"" + name + "\"";
    return nullptr;
  }
  if (sheet->hasCells) return sheet;
  problem = "the sheet \"" + name + "\" has no cells: it is a chart or a macro";
  return nullptr;
}

bool writeList(const workbook& book, const conversionRequest& request, const std::wstring& target,
               std::string& problem) {
  const lineText replacements(request.delimiter);
  outputFile list(target + L".part");
  if (list.open()) {
    std::string& line = list.buffer();
    for (const sheetEntry& each : book.sheets()) {
      if (!each.hasCells) continue;
      if (!line.empty()) line += request.delimiter;
      line += listedName(each, replacements);
    }
    line += '\n';
    if (list.finishAs(target)) return true;
  }
  problem = "the list of sheets could not be written: " + toUtf8(target);
  return false;
}

bool writeSheet(workbook& book, const conversionRequest& request, const std::wstring& target,
                const platform::binaryFile& file, std::string& problem) {
  const sheetEntry* const sheet = chooseSheet(book, request, problem);
  if (sheet == nullptr) return false;
  sheetTextOptions options;
  options.delimiter = request.delimiter;
  options.copyMerged = request.copyMerged;
  options.mostBytes = std::max(sheetTextOptions().mostBytes, file.size() * largestGrowth);
  if (request.headerPosition)
    options.onlyRow = static_cast<std::uint32_t>(std::max(*request.headerPosition, 0));
  sheetText text(target, options);
  if (!text.open()) {
    problem = "the text file could not be written: " + toUtf8(target);
    return false;
  }
  // Asked before the text gets its name: a workbook that was not read to its end may look like a shorter one.
  return book.readSheet(*sheet, text, problem) && !file.hasFailed() && text.finish(problem);
}

bool convertInto(const conversionRequest& request, const std::wstring& target,
                 std::string& problem) {
  platform::binaryFile file;
  if (!file.openForReading(request.source)) {
    problem = "it cannot be opened";
    return false;
  }
  const auto book = openWorkbook(file, request.delimiter, problem);
  const bool isWritten = book != nullptr && !file.hasFailed() &&
                         (request.listsTables ? writeList(*book, request, target, problem)
                                              : writeSheet(*book, request, target, file, problem));
  if (file.hasFailed()) problem = "it could not be read to its end: the disk or the network failed";
  return isWritten;
}

// What a damaged workbook says of itself may be megabytes long. Characters stay whole.
void shorten(std::string& problem) {
  constexpr std::size_t longest = 400;
  if (problem.size() <= longest) return;
  std::size_t size = longest;
  while ((static_cast<unsigned char>(problem[size]) & 0xC0) == 0x80) --size;
  problem.resize(size);
  problem += "...";
}

}  // namespace

std::wstring targetPath(const conversionRequest& request) {
  std::wstring path = request.folder;
  if (!path.empty() && !endsInSeparator(path)) path += L'/';
  path += stemOf(request.source);
  path += request.listsTables ? L"_tabList.csv" : L".csv";
  return path;
}

bool convert(const conversionRequest& request, std::string& problem) {
  const std::wstring target = targetPath(request);
  if (platform::isSameFile(request.source, target)) {
    problem = "its text file would take its own place: give another -destFolder";
    return false;
  }
  problem.clear();
  // WHY before: whatever ends this run, what stands there behind it must be its own.
  platform::removeFile(target);
  if (convertInto(request, target, problem)) return true;
  shorten(problem);
  return false;
}

}  // namespace converter

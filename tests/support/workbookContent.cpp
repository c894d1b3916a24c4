#include "tests/support/workbookContent.h"

#include "tests/support/temporaryFolder.h"

namespace testSupport {
namespace {

std::string cellText(const std::string& cell, const std::vector<std::string>& texts) {
  for (const std::string& formula : allBetween(cell, "<f>", "</f>")) return "=" + formula;
  for (const std::string& index : allBetween(cell, "t=\"s\"><v>", "</v>"))
    return texts.at(std::stoul(index));
  return "(" + cell + ")";
}

}  // namespace

zipContent readPackage(const std::wstring& path) {
  const std::optional<std::string> bytes = readFile(path);
  return bytes ? readZip(*bytes) : zipContent{"no file", {}};
}

std::vector<std::string> allBetween(const std::string& xml, const std::string& begin,
                                    const std::string& end) {
  std::vector<std::string> pieces;
  for (std::size_t at = xml.find(begin); at != std::string::npos; at = xml.find(begin, at)) {
    at += begin.size();
    const std::size_t stop = xml.find(end, at);
    if (stop == std::string::npos) break;
    pieces.push_back(xml.substr(at, stop - at));
    at = stop;
  }
  return pieces;
}

std::size_t countOf(const std::string& xml, const std::string& text) {
  std::size_t count = 0;
  for (std::size_t at = xml.find(text); at != std::string::npos; at = xml.find(text, at + 1))
    ++count;
  return count;
}

std::string cellsOf(const zipContent& package) {
  if (!package.problem.empty()) return package.problem;
  std::vector<std::string> texts;
  for (const std::string& item :
       allBetween(package.of("xl/sharedStrings.xml"), "<si><t", "</t></si>"))
    texts.push_back(item.substr(item.find('>') + 1));
  std::string cells;
  int rowNumber = 0;
  for (const std::string& row :
       allBetween(package.of("xl/worksheets/sheet1.xml"), "<row ", "</row>")) {
    if (++rowNumber > 1) cells += "/";
    std::string separator;
    char column = 'A';
    for (const std::string& cell : allBetween(row, "<c r=\"", "</c>")) {
      const std::string reference = cell.substr(0, cell.find('"'));
      cells += separator;
      if (reference != column + std::to_string(rowNumber)) cells += reference + ":";
      cells += cellText(cell, texts);
      separator = "|";
      ++column;
    }
  }
  return cells;
}

}  // namespace testSupport

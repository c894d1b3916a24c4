#include "table_rw/writers/xlsx/relationships.h"

#include "table_rw/writers/xlsx/partNames.h"

namespace SimpleXlsx {
namespace {

constexpr const wchar_t* package = L"http://schemas.openxmlformats.org/package/2006/relationships";
constexpr const wchar_t* coreProperties =
    L"http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties";

std::wstring officeDocument(const wchar_t* what) {
  return std::wstring(L"http://schemas.openxmlformats.org/officeDocument/2006/relationships/") +
         what;
}

constexpr std::size_t relationshipsBeforeSheets = 2;  // styles and theme
constexpr std::size_t workbookFolderSize = 3;  // "xl/", left out of targets beside the workbook

std::wstring identifier(std::size_t number) { return L"rId" + std::to_wstring(number); }

// The relationships of one part, numbered from 1.
class relationshipList {
 public:
  explicit relationshipList(xmlPart& part) : part_(part) {
    part_.start("Relationships").attribute("xmlns", std::wstring_view(package));
  }

  void add(const std::wstring& type, const std::wstring& target) {
    part_.start("Relationship")
        .attribute("Id", identifier(++count_))
        .attribute("Type", type)
        .attribute("Target", target)
        .end();
  }

  void end() { part_.end(); }

 private:
  xmlPart& part_;
  std::size_t count_ = 0;
};

std::wstring besideWorkbook(const std::wstring& partName) {
  return partName.substr(workbookFolderSize);
}

}  // namespace

void writePackageRelationships(xmlPart& part) {
  relationshipList list(part);
  list.add(officeDocument(L"officeDocument"), workbookPartName);
  list.add(coreProperties, corePropertiesPartName);
  list.add(officeDocument(L"extended-properties"), appPropertiesPartName);
  list.end();
}

void writeWorkbookRelationships(xmlPart& part, std::size_t sheets, bool hasSharedStrings) {
  relationshipList list(part);
  list.add(officeDocument(L"styles"), besideWorkbook(stylesPartName));
  list.add(officeDocument(L"theme"), besideWorkbook(themePartName));
  for (std::size_t number = 1; number <= sheets; ++number)
    list.add(officeDocument(L"worksheet"), besideWorkbook(worksheetPartName(number)));
  if (hasSharedStrings)
    list.add(officeDocument(L"sharedStrings"), besideWorkbook(sharedStringsPartName));
  list.end();
}

std::wstring worksheetRelationship(std::size_t number) {
  return identifier(relationshipsBeforeSheets + number);
}

}  // namespace SimpleXlsx

#include "table_rw/writers/xlsx/contentTypes.h"

#include <string>

#include "table_rw/writers/xlsx/partNames.h"

namespace SimpleXlsx {
namespace {

std::wstring spreadsheet(const wchar_t* what) {
  return std::wstring(L"application/vnd.openxmlformats-officedocument.spreadsheetml.") + what;
}

std::wstring package(const wchar_t* what) {
  return std::wstring(L"application/vnd.openxmlformats-package.") + what;
}

}  // namespace

void writeContentTypes(xmlPart& part, std::size_t sheets, bool hasSharedStrings) {
  const auto byExtension = [&](const char* extension, const std::wstring& type) {
    part.start("Default").attribute("Extension", extension).attribute("ContentType", type).end();
  };
  const auto byName = [&](const std::wstring& name, const std::wstring& type) {
    part.start("Override").attribute("PartName", L'/' + name).attribute("ContentType", type).end();
  };
  part.start("Types").attribute("xmlns",
                                "http://schemas.openxmlformats.org/package/2006/content-types");
  byExtension("rels", package(L"relationships+xml"));
  byExtension("xml", L"application/xml");
  byName(workbookPartName, spreadsheet(L"sheet.main+xml"));
  byName(themePartName, L"application/vnd.openxmlformats-officedocument.theme+xml");
  byName(stylesPartName, spreadsheet(L"styles+xml"));
  byName(corePropertiesPartName, package(L"core-properties+xml"));
  byName(appPropertiesPartName,
         L"application/vnd.openxmlformats-officedocument.extended-properties+xml");
  if (hasSharedStrings) byName(sharedStringsPartName, spreadsheet(L"sharedStrings+xml"));
  for (std::size_t number = 1; number <= sheets; ++number)
    byName(worksheetPartName(number), spreadsheet(L"worksheet+xml"));
  part.end();
}

}  // namespace SimpleXlsx

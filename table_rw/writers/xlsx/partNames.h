// The names of the package's parts.
#ifndef VOK_TABLE_RW_WRITERS_XLSX_PARTNAMES_H
#define VOK_TABLE_RW_WRITERS_XLSX_PARTNAMES_H

#include <cstddef>
#include <string>

namespace SimpleXlsx {

inline constexpr const wchar_t* contentTypesPartName = L"[Content_Types].xml";
inline constexpr const wchar_t* packageRelationshipsPartName = L"_rels/.rels";
inline constexpr const wchar_t* corePropertiesPartName = L"docProps/core.xml";
inline constexpr const wchar_t* appPropertiesPartName = L"docProps/app.xml";
inline constexpr const wchar_t* workbookPartName = L"xl/workbook.xml";
inline constexpr const wchar_t* stylesPartName = L"xl/styles.xml";
inline constexpr const wchar_t* workbookRelationshipsPartName = L"xl/_rels/workbook.xml.rels";
inline constexpr const wchar_t* themePartName = L"xl/theme/theme1.xml";
inline constexpr const wchar_t* sharedStringsPartName = L"xl/sharedStrings.xml";

/// @param number  of the worksheet, from 1
inline std::wstring worksheetPartName(std::size_t number) {
  return L"xl/worksheets/sheet" + std::to_wstring(number) + L".xml";
}

}  // namespace SimpleXlsx

#endif

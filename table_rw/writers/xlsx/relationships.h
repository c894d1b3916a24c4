// The relationship parts: which part leads to which others, and as what.
//
//   _rels/.rels                   from the package to the workbook and the properties
//   xl/_rels/workbook.xml.rels    from the workbook to styles, theme, sheets and shared strings
#ifndef VOK_TABLE_RW_WRITERS_XLSX_RELATIONSHIPS_H
#define VOK_TABLE_RW_WRITERS_XLSX_RELATIONSHIPS_H

#include <cstddef>
#include <string>

#include "table_rw/writers/xlsx/xmlPart.h"

namespace SimpleXlsx {

void writePackageRelationships(xmlPart& part);

/// @param sheets  number of worksheets
/// @param hasSharedStrings  whether the package holds the shared-strings part
void writeWorkbookRelationships(xmlPart& part, std::size_t sheets, bool hasSharedStrings);

/// The identifier by which the workbook names a worksheet. @param number  of the worksheet, from 1
std::wstring worksheetRelationship(std::size_t number);

}  // namespace SimpleXlsx

#endif

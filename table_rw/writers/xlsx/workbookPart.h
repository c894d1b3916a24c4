// The part xl/workbook.xml: the list of the sheets.
#ifndef VOK_TABLE_RW_WRITERS_XLSX_WORKBOOKPART_H
#define VOK_TABLE_RW_WRITERS_XLSX_WORKBOOKPART_H

#include <string>
#include <vector>

#include "table_rw/writers/xlsx/xmlPart.h"

namespace SimpleXlsx {

/// @param titles  of the worksheets, in order
void writeWorkbook(xmlPart& part, const std::vector<std::wstring>& titles);

}  // namespace SimpleXlsx

#endif

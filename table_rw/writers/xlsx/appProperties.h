// The part docProps/app.xml: the program, and the titles of the sheets.
#ifndef VOK_TABLE_RW_WRITERS_XLSX_APPPROPERTIES_H
#define VOK_TABLE_RW_WRITERS_XLSX_APPPROPERTIES_H

#include <string>
#include <vector>

#include "table_rw/writers/xlsx/xmlPart.h"

namespace SimpleXlsx {

/// @param titles  of the worksheets, in order
void writeAppProperties(xmlPart& part, const std::vector<std::wstring>& titles);

}  // namespace SimpleXlsx

#endif

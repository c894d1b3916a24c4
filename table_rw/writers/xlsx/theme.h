// The part xl/theme/theme1.xml: the theme "Office", the same in every workbook.
#ifndef VOK_TABLE_RW_WRITERS_XLSX_THEME_H
#define VOK_TABLE_RW_WRITERS_XLSX_THEME_H

#include "table_rw/writers/xlsx/xmlPart.h"

namespace SimpleXlsx {

void writeTheme(xmlPart& part);

}  // namespace SimpleXlsx

#endif

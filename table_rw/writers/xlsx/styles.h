// The part xl/styles.xml: the workbook's two default styles and the names of its default looks.
#ifndef VOK_TABLE_RW_WRITERS_XLSX_STYLES_H
#define VOK_TABLE_RW_WRITERS_XLSX_STYLES_H

#include "table_rw/writers/xlsx/xmlPart.h"

namespace SimpleXlsx {

void writeStyles(xmlPart& part);

}  // namespace SimpleXlsx

#endif

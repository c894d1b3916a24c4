// The part [Content_Types].xml: what each part of the package is.
#ifndef VOK_TABLE_RW_WRITERS_XLSX_CONTENTTYPES_H
#define VOK_TABLE_RW_WRITERS_XLSX_CONTENTTYPES_H

#include <cstddef>

#include "table_rw/writers/xlsx/xmlPart.h"

namespace SimpleXlsx {

/// @param sheets  number of worksheets
/// @param hasSharedStrings  whether the package holds the shared-strings part
void writeContentTypes(xmlPart& part, std::size_t sheets, bool hasSharedStrings);

}  // namespace SimpleXlsx

#endif

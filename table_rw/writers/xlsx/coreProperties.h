// The part docProps/core.xml: who made the workbook, and when.
//
// The author is the user whom the variable USERNAME names, "Unknown" when it is not set.
// ODD: the time is local time, marked as UTC ("Z"): programs that show it show the clock of the author.
#ifndef VOK_TABLE_RW_WRITERS_XLSX_COREPROPERTIES_H
#define VOK_TABLE_RW_WRITERS_XLSX_COREPROPERTIES_H

#include "platform/calendar.h"
#include "table_rw/writers/xlsx/xmlPart.h"

namespace SimpleXlsx {

/// @param saved  the time of saving
void writeCoreProperties(xmlPart& part, const platform::calendarTime& saved);

}  // namespace SimpleXlsx

#endif

// The bytes of a field as text: the one place that knows how each kind of field is stored.
//
// Text and digits are handed out where they stand in the record, without a copy; what has to be computed
// goes into a string of the caller. No state; any thread.
#ifndef VOK_SUITE_FILE_DBF_DBFVALUES_H
#define VOK_SUITE_FILE_DBF_DBFVALUES_H

#include <string>

#include "platform/vok_file_dbf.h"
#include "suite/file_dbf/dbfHeader.h"
#include "suite/file_dbf/dbfMemo.h"

namespace fileDbf {

/// The value of a field.
/// @param record    bytes of the record; recordSource::padding more may be read
/// @param memos     the table's memo file; null when it has none
/// @param computed  holds the text of values that do not stand in the record as they are
/// @return bytes that are null when there is no value
vo_dbf_value readValue(const tableHeader& header, const tableField& field, const char* record,
                       memoFile* memos, std::string& computed);

}  // namespace fileDbf

#endif

// Questions to a project database: does a query find anything, one value, one number, one column, where
// the folders of a well and of its field are.
//
// The SQL is the caller's, used as it is; only the two paths are asked for here, of the table `well_base`
// (`w_id`, `name`, `field`, `work_object`). Text of the database ends at its first NUL character.
//
// Errors: false, -1, 0, empty text, an empty list; no messages, no exception but allocation failure. A null
// database has no answers. Threads: as the database, one at a time.
#ifndef VOK_DATABASE_WELL_QUERIES_H
#define VOK_DATABASE_WELL_QUERIES_H

#include <cstdint>
#include <string>
#include <vector>

#include "database/odbc_database.h"
#include "platform/vok_export.h"

/// True when the query has a first row.
VOK_API bool STRATA_isExist(const std::wstring& sql, odbc_database* db);

/// Inserts a record, then asks for its code.
/// @param codeSql  gives the code in its first row and column, such as `SELECT last_insert_rowid()`
/// @return the code, of which 32 bits are read.
///         ODD: -1 when the insert fails or the code query has no row, but 0 when it is refused; programs
///         tell the two apart.
VOK_API std::int64_t STRATA_insertWithCode(const std::wstring& insertSql,
                                           const std::wstring& codeSql, odbc_database* db);

/// The first column of every row, in order; `out` is emptied first, whatever happens.
VOK_API void STRATA_getDBList(const std::wstring& sql, odbc_database* db,
                              std::vector<std::wstring>& out);

/// The first column of the first row; empty when there is none.
VOK_API std::wstring STRATA_getDBValue(const std::wstring& sql, odbc_database* db);

/// That value as a whole number, in decimal, blanks before it allowed.
/// @param ok  may be null; true when the whole text is a number that fits
/// @return the number that the text begins with, whatever `ok` says: 0 for none, the nearest one that fits
///         for one that is too large
VOK_API std::int32_t STRATA_getDBNumValue(const std::wstring& sql, odbc_database* db, bool* ok);

/// The same with 64 bits.
VOK_API std::int64_t STRATA_getDBCounter(const std::wstring& sql, odbc_database* db, bool* ok);

/// The folder of a well: work object, field and name, joined with backslashes on every system; an
/// absolute part replaces what is before it. Empty when there is no such well.
/// @param wellId  as text: the operand of SQL's `w_id =`, put there as it is, so text needs its quotes
VOK_API std::wstring STRATA_getWellPath(odbc_database* db, int wellId);
/// The same for a number in text.
VOK_API std::wstring STRATA_getWellPath(odbc_database* db, std::wstring wellId);

/// The folder of a well's field: work object and field.
VOK_API std::wstring STRATA_getFieldPath(odbc_database* db, std::wstring wellId);

/// Makes sure that the folder `part` in the folder `path` exists, and every folder above it. The slash and
/// the backslash separate, on every system. An empty path does nothing; what cannot be created is missing afterwards.
VOK_API void STRATA_makeObjectPath(std::wstring path, std::wstring part);

#endif

/* vok_io, SQLite: a database, its statements, their rows. Plain C.
 *
 *     Ivo_sqlite_db* database = vo_sqlite_db_open(L"project.well2", 0);
 *     Ivo_sqlite_stmt* wells = vo_sqlite_db_query_stmt(database, L"SELECT name FROM well_base", 1);
 *     while (vo_sqlite_stmt_next_row(wells)) vo_sqlite_stmt_get_str(wells, 0, adapter);
 *     vo_sqlite_stmt_destroy(wells);
 *     vo_sqlite_db_close(database);
 *
 * Text: wide strings end at their NUL; a lone surrogate reaches the engine as U+FFFD. Text of the
 * database is UTF-8 (the engine brings UTF-16 databases to it); what is broken in it comes out as code
 * page 65001 decodes it: see codePages.h. A string adapter takes text up to its first NUL.
 * Errors: null, false and 0; no messages. Every function accepts a null handle.
 * Threads: a database and its statements belong to one thread; nothing is locked inside.
 * Nothing throws but allocation failure. */
#ifndef VOK_PLATFORM_VOK_IO_H
#define VOK_PLATFORM_VOK_IO_H

#include <stdbool.h>
#include <stddef.h>
#include <wchar.h>

#include "platform/vok_basic.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct Ivo_sqlite_db Ivo_sqlite_db;
typedef struct Ivo_sqlite_stmt Ivo_sqlite_stmt;

/* ---- databases ---- */

/* Opens a database: for a plain path read-write (read-only where no more is allowed), the file being
 * created when it is missing; `:memory:` is a database of its own without a file.
 *
 * A connection string, `Driver=SQLite3 ODBC Driver;Database=C:\a;b.well2;`, opens an existing file and
 * creates none. Keys are separated by `;`, letter case does not count, keys before `Database` are ignored.
 * The value of `Database` is literal, without quoting: it goes up to the last `;` of the string, or to
 * its end, so that every path can be named. A text whose first key holds `\`, `/` or `:`, or which has no `=`
 * before its first `;`, is a plain path. Queries of such a database leave no trace on disk: they read
 * without locking others out, roll nothing back, and create none of the files that the engine keeps
 * beside a database; each looks at the file anew. The first vo_sqlite_db_execute, or the first query
 * that changes something, turns the handle into an ordinary one that reads and writes.
 *
 * A file that is no database opens; its queries fail. A connection string refuses one that has been cut short. Statements wait 5 seconds for other connections.
 * @param flags  none are defined; 0
 * @return null when the path is null or empty, names a folder or a device, or cannot be opened */
Ivo_sqlite_db* vo_sqlite_db_open(const wchar_t* path, int flags);

/* Closes a database. Statements that are left of it are valid until they are destroyed. */
void vo_sqlite_db_close(Ivo_sqlite_db* database);

/* Runs every statement of the text, in order, until one fails; what ran before it stays done. Rows that
 * come of it are thrown away.
 * @return true when all of them ran; also for a text without a statement */
bool vo_sqlite_db_execute(Ivo_sqlite_db* database, const wchar_t* sql);

/* Prepares the first statement of the text; what follows it is ignored.
 *
 * The type column of `PRAGMA table_info` holds the declared spelling, letter case included: engines since
 * 3.37 give the standard names in capitals, so it is taken from the table's CREATE statement. Where that
 * cannot be matched with the engine's answer, and for views and virtual tables, the engine's text stays.
 * @param base_type  the kind of base the caller works with (1: SQLite); it changes nothing here
 * @return a statement before its first row, for vo_sqlite_stmt_destroy; null when there is none in the
 *         text or the engine refuses it */
Ivo_sqlite_stmt* vo_sqlite_db_query_stmt(Ivo_sqlite_db* database, const wchar_t* sql,
                                         int base_type);

/* ---- statements ---- */

/* Steps to the next row.
 * @return true while there is one. After the last row, and after a failure, it stays false: a statement
 *         runs once */
bool vo_sqlite_stmt_next_row(Ivo_sqlite_stmt* statement);

/* True when the last step ended with a failure (a damaged or locked database) and not behind the last
 * row; also when the rows may be of two states of the database, as somebody has opened it for writing since
 * the query began, and the query could not hold its state fast: it can be repeated then. */
bool vo_sqlite_stmt_has_failed(const Ivo_sqlite_stmt* statement);

/* Number of columns of a row; 0 for statements without rows. */
int vo_sqlite_stmt_get_column_count(const Ivo_sqlite_stmt* statement);

/* The values of the current row. Columns count from 0; a column that does not exist, and every column
 * when there is no row, is NULL. */

/* Feeds the column as text, once. NULL is the empty text; numbers and blobs are what the engine makes of
 * them when it is asked for text. */
void vo_sqlite_stmt_get_str(Ivo_sqlite_stmt* statement, int column, vo_string_adp* adapter);

/* The bytes of the same text as the database holds it, NUL characters and broken UTF-8 included, for a caller
 * that has no use for a wide string. They are followed by a NUL and live until the next step.
 * @param size  receives their number; null for a caller that reads up to the first NUL
 * @return never null */
const char* vo_sqlite_stmt_get_utf8(Ivo_sqlite_stmt* statement, int column, size_t* size);

/* The column as a number. NULL and text that does not begin with a number are 0; of an integer that does
 * not fit the lower 32 bits are taken. */
int vo_sqlite_stmt_get_int(Ivo_sqlite_stmt* statement, int column);
double vo_sqlite_stmt_get_dbl(Ivo_sqlite_stmt* statement, int column);

void vo_sqlite_stmt_destroy(Ivo_sqlite_stmt* statement);

#ifdef __cplusplus
}
#endif

#endif

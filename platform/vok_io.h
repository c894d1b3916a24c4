/* vok_io: databases through SQLite's engine, and through the machine's ODBC drivers. Plain C.
 *
 *     Ivo_sqlite_db* database = vo_sqlite_db_open(L"project.well2", 0);
 *     Ivo_sqlite_stmt* wells = vo_sqlite_db_query_stmt(database, L"SELECT name FROM well_base", 1);
 *     while (vo_sqlite_stmt_next_row(wells)) vo_sqlite_stmt_get_str(wells, 0, adapter);
 *     vo_sqlite_stmt_destroy(wells);
 *     vo_sqlite_db_close(database);
 *
 * SQLite's text: wide strings end at their NUL; a lone surrogate reaches the engine as U+FFFD. Text of the
 * database is UTF-8 (the engine brings UTF-16 databases to it); what is broken in it comes out as code
 * page 65001 decodes it: see codePages.h. A string adapter takes text up to its first NUL.
 * ODBC's text: narrow strings in the system's code page, up to their NUL.
 * Errors: null, false, 0 and empty text; the driver's own words where a function says so. Every function
 * accepts a null handle.
 * Threads: a database or a connection and its statements belong to one thread; nothing is locked inside.
 * Nothing throws but allocation failure. */
#ifndef VOK_PLATFORM_VOK_IO_H
#define VOK_PLATFORM_VOK_IO_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <wchar.h>

#include "platform/vok_basic.h"
#include "platform/vok_export.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct Ivo_sqlite_db Ivo_sqlite_db;
typedef struct Ivo_sqlite_stmt Ivo_sqlite_stmt;

/* ---- SQLite: databases ---- */

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

/* ---- SQLite: statements ---- */

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

/* ---- ODBC: what the machine has ----
 *
 * Access databases, spreadsheets and the like, through the driver manager of the system (unixODBC, odbc32)
 * and its narrow functions.
 *
 *     Ivo_odbc_connect* base = vo_odbc_connect_create();
 *     if (vo_odbc_connect_open_driver(base, 0, "DSN=MS Access Database;DBQ=C:\\base.mdb;")) {
 *       Ivo_odbc_stmt* wells = vo_odbc_connect_create_stmt(base);
 *       vo_odbc_stmt_set_sql(wells, "select * from [wells]");
 *       if (vo_odbc_stmt_exec_direct(wells) && vo_odbc_stmt_get_fields_desc(wells)) {
 *         Ivo_odbc_field* name = vo_odbc_fields_get_field(vo_odbc_stmt_get_fields(wells), 0);
 *         while (vo_odbc_stmt_fetch(wells)) puts(vo_odbc_field_get_as_string(name));
 *       }
 *       vo_odbc_connect_destroy_stmt(base, wells);
 *     }
 *     vo_odbc_connect_destroy(base);
 *
 * Drivers on Linux speak UTF-8; where the system's code page is another one, their text is converted to it
 * and back. What certain drivers do otherwise than the rest is evened out here: see docs/odbc.md. */

typedef struct Ivo_odbc_connect Ivo_odbc_connect;
typedef struct Ivo_odbc_stmt Ivo_odbc_stmt;
typedef struct Ivo_odbc_fields Ivo_odbc_fields;
typedef struct Ivo_odbc_field Ivo_odbc_field;

/* Appends the names of the data sources, the user's and the system's, in the driver manager's order. */
VOK_API void vo_odbc_get_data_sources(vo_strings* list);

/* Appends the names of the installed drivers, in the driver manager's order. */
VOK_API void vo_odbc_get_drivers(vo_strings* list);

/* The driver manager's name and the version of ODBC that it implements: "unixODBC 03.52". Appends nothing
 * when it does not work at all. */
VOK_API void vo_odbc_get_manager(vo_strings* list);

/* ---- ODBC: connections ---- */

/* A connection that is not open yet, for vo_odbc_connect_destroy. */
VOK_API Ivo_odbc_connect* vo_odbc_connect_create(void);

/* Opens the connection with a connection string. What was open before is closed.
 * @param window  where a driver may ask the user for what is missing; none is ever asked, so 0
 * @return false when the driver manager or the driver refuses; vo_odbc_connect_get_message says why */
VOK_API bool vo_odbc_connect_open_driver(Ivo_odbc_connect* connection, void* window,
                                         const char* text);

/* What the driver manager and the driver said about the last failure on this connection or one of its
 * statements, one line each; empty when nothing has failed or nothing was said. Never null; it lives until
 * the next call on this connection. */
VOK_API const char* vo_odbc_connect_get_message(const Ivo_odbc_connect* connection);

/* Appends the names of the tables and views, in the driver's order. A database's own system tables are left
 * out, and so are saved queries where the driver cannot read them (mdbtools).
 * @param sheets  appends also what spreadsheet drivers report as system tables when the name ends in
 *                `$` or `$'`: the sheets
 * A failure leaves the list as far as it came. */
VOK_API void vo_odbc_connect_get_tables(Ivo_odbc_connect* connection, vo_strings* list,
                                        bool sheets);

/* A statement of an open connection, without SQL yet, for vo_odbc_connect_destroy_stmt.
 * @return null when the connection is not open or the driver refuses */
Ivo_odbc_stmt* vo_odbc_connect_create_stmt(Ivo_odbc_connect* connection);
void vo_odbc_connect_destroy_stmt(Ivo_odbc_connect* connection, Ivo_odbc_stmt* statement);

/* Closes and frees the connection. Statements that are left of it keep it open until they are destroyed. */
VOK_API void vo_odbc_connect_destroy(Ivo_odbc_connect* connection);

/* ---- ODBC: statements ---- */

/* The SQL for the next vo_odbc_stmt_exec_direct; null is the empty text. */
void vo_odbc_stmt_set_sql(Ivo_odbc_stmt* statement, const char* sql);

/* Runs the SQL; what ran before on this statement is closed, its fields are forgotten. */
bool vo_odbc_stmt_exec_direct(Ivo_odbc_stmt* statement);

/* Asks for the columns of the result. @return false when the driver fails; there are no fields then */
bool vo_odbc_stmt_get_fields_desc(Ivo_odbc_stmt* statement);

/* The columns that were asked for; they live as long as the statement, until it runs again. */
Ivo_odbc_fields* vo_odbc_stmt_get_fields(Ivo_odbc_stmt* statement);
uint32_t vo_odbc_fields_get_size(const Ivo_odbc_fields* fields);
/* @return null when there is no such column */
Ivo_odbc_field* vo_odbc_fields_get_field(Ivo_odbc_fields* fields, uint32_t index);

const char* vo_odbc_field_get_name(const Ivo_odbc_field* field);
/* The ODBC SQL type: 4 INTEGER, 8 DOUBLE, 12 VARCHAR, -1 LONGVARCHAR ... */
int16_t vo_odbc_field_get_type(const Ivo_odbc_field* field);

/* Steps to the next row. @return false behind the last one and when the driver fails, then for good */
bool vo_odbc_stmt_fetch(Ivo_odbc_stmt* statement);

/* The column's value in the current row as the driver's text, whole whatever its length; bytes of pictures
 * and the like as hexadecimal digits. NULL, a value that the driver fails to give, and a value while there
 * is no row are empty. Any order of columns will do; never null; it lives until the next row. */
const char* vo_odbc_field_get_as_string(Ivo_odbc_field* field);

/* True when the driver failed to give a row or a value since the SQL ran: what was read is not all. */
bool vo_odbc_stmt_has_failed(const Ivo_odbc_stmt* statement);

#ifdef __cplusplus
}
#endif

#endif

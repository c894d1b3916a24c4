/* vok_file_dbf: tables of dBASE and FoxPro, read and written, as plain C.
 *
 * Read are dBASE II, III, IV, 5 and 7, FoxPro and Visual FoxPro, with their memo files; written is
 * dBASE III, which everybody reads. A file of some other kind, or one whose header contradicts itself,
 * does not open. Field names and values are bytes in the file's own code page, which a DBF file often
 * does not tell: they are handed out as they are, names decoded as text of the system.
 *
 * Deleted records are neither counted nor delivered. How many records there are is what the file holds,
 * whatever its header says; a file that grows meanwhile is read as it was when it was opened.
 *
 * Handles: every function accepts a null handle and then does nothing (answers 0, null or "").
 * Indices count from 0; one that does not exist is no error, there is just nothing.
 * Memory: blocks of 256 KiB and the memo text asked for last, whatever the size of the file.
 * Threads: one handle belongs to one thread at a time. Nothing here throws but allocation failure. */
#ifndef VOK_PLATFORM_VOK_FILE_DBF_H
#define VOK_PLATFORM_VOK_FILE_DBF_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <wchar.h>

#include "platform/vok_basic.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct vo_dbf vo_dbf;

/* A field of a table to be created: 14 bytes. */
typedef struct dbfFieldDef {
  char name[11];          /* at most 10 bytes, padded with zero bytes */
  char type;              /* a letter that vo_dbftype2char answers */
  unsigned char length;   /* bytes that a value takes in a record */
  unsigned char decimals; /* digits behind the point */
} dbfFieldDef;

/* ---- the types of fields ----
 * code   1 C  2 N  3 D  4 L  5 M  6 F  7 I and +  8 B, O and Y  9 T and @  0 anything else */

/* The letter of a type code; C, which holds everything, for a code that has none. */
char vo_dbftype2char(int code);

/* ---- reading ---- */

/* Opens a table. `mode` is 1 for reading; no other is known. `reserved` is 0.
 * Returns null for a file that cannot be opened or is no table. To be closed with vo_dbf_close. */
vo_dbf* vo_dbf_open_w(const wchar_t* path, int mode, int reserved);

/* Number of fields. The null flags of Visual FoxPro are no field. */
uint32_t vo_dbf_get_nf(const vo_dbf* table);

/* Number of records that are not deleted, at most 2^31 - 1. The whole file is read for it once. */
int32_t vo_dbf_get_nr(vo_dbf* table);

/* Hands a field's name to the receiver. */
void vo_dbf_get_field_name_w(const vo_dbf* table, uint32_t field, vo_string_adp* receiver);

/* The type code of a field. */
int vo_dbf_get_field_type(const vo_dbf* table, uint32_t field);

/* A value as text in the file's code page: character values without their padding on the right, numbers
 * without blanks, dates as YYYY-MM-DD, times as YYYY-MM-DD HH:MM:SS, logicals as T and F, memos as they
 * stand in their file. A value ends at its first NUL.
 * `has_value` becomes 1 when there is a value and 0 when there is none: blanks, asterisks instead of a
 * number, an undecided logical, a null, a memo that cannot be found. It may be null.
 * Never null; the text lives until the next call with this handle. */
const char* vo_dbf_get_str(vo_dbf* table, uint32_t field, int32_t record, unsigned char* has_value);

/* A value of vo_dbf_get_record. Behind the bytes stand vo_dbf_padding more that may be read. */
typedef struct vo_dbf_value {
  const char* bytes; /* not terminated; null when there is no value */
  size_t length;
} vo_dbf_value;
enum { vo_dbf_padding = 16 };

/* House addition, for reading whole tables: all values of a record, in field order, with the bytes that
 * vo_dbf_get_str answers. Records that are asked for one after the other are found without counting
 * them first. In one pass over ascending records memo texts end behind sixteen times their file (and 1 MiB):
 * records that all name one long text would fill any memory else.
 * Returns null when there is no such record; the values live until the next call with this handle. */
const vo_dbf_value* vo_dbf_get_record(vo_dbf* table, int32_t record);

/* House addition: whether the disk has failed while records or memo texts were read, or a memo file is there that
 * cannot be opened. Records that seem to be missing, and values that seem to be none, may then be in the files. */
bool vo_dbf_has_failed(const vo_dbf* table);

/* ---- writing ---- */

/* Rewrites the names so that they are valid and distinct: letters, digits and "_", not beginning with a
 * digit, at most 10 bytes, distinct without regard to case. An empty name becomes FIELD1, FIELD2... after
 * its position. Of equal names the first stays, the others get a number. */
void vo_dbf_make_correct_names(dbfFieldDef* fields, uint32_t count);

/* Creates a table. The types C, N, F, D and L can be written; a date always has 8 bytes and a logical 1.
 * Text is encoded in the system's code page, which the header names, or a .cpg file beside the table for
 * a page that the header cannot name (UTF-8).
 * `kind` is 0, a dBASE III table. An existing file is replaced when `replace` is not 0.
 * Returns null when the file cannot be created, for another type, and for more fields or longer records
 * than a header can tell (2,046 fields, 65,535 bytes); nothing is created then. */
vo_dbf* vo_dbf_create_w(const wchar_t* path, uint32_t count, int kind, const dbfFieldDef* fields,
                        unsigned char replace);

/* Appends blank records. Returns 1, or 0 for a negative number, more than 2^31 - 1 records in all, or
 * when a record could not be written; what the file holds then are whole records. */
int vo_dbf_add_records(vo_dbf* table, int32_t count);

/* Stores the text as a value, as the field's type needs it:
 *   C     encoded, cut at a whole character, padded with blanks
 *   N, F  right-aligned, rounded to the field's decimals (half away from zero); asterisks when it does not
 *         fit. A number is written with a point or a comma, with or without an exponent
 *   D     YYYYMMDD, YYYY-MM-DD or DD.MM.YYYY
 *   L     T, Y, 1, TRUE, YES and F, N, 0, FALSE, NO, in small letters too
 * Text that is no number, no date or no logical leaves the field blank, and so does a null.
 * Returns 1, or 0 when there is no such record or field. */
int vo_dbf_set_str_w(vo_dbf* table, uint32_t field, int32_t record, const wchar_t* text);

/* Writes what is still in memory, completes the header, closes the file and frees the handle. */
void vo_dbf_close(vo_dbf* table);

#ifdef __cplusplus
}
#endif

#endif

/* vok_file_micromine: data files of Micromine, read as plain C.
 *
 * Read are both flavours: the extended one, which begins with a magic text and a page of metadata, and the
 * standard one without them. A file that is neither, or whose header contradicts itself or the records
 * behind it, does not open. A property is what Micromine calls a variable: a column of the table.
 *
 * Text is in the code page that the file's metadata names, else in the system's; it is handed out as wide text.
 *
 * Handles: every function accepts a null handle and then does nothing (answers 0 or null).
 * Indices count from 0; one that does not exist is no error, there is just nothing.
 * Memory: the header and blocks of 256 KiB (or one record, when it is longer), whatever the size of the file.
 * Threads: one handle belongs to one thread at a time. Nothing here throws but allocation failure. */
#ifndef VOK_PLATFORM_VOK_FILE_MICROMINE_H
#define VOK_PLATFORM_VOK_FILE_MICROMINE_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <wchar.h>

#include "platform/vok_basic.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct vo_mm_tbl_reader vo_mm_tbl_reader;

/* Opens a file for reading; the path ends at its NUL.
 * Returns null for a file that cannot be opened or is no Micromine data file. To be closed with
 * vo_mm_tbl_reader_close. */
vo_mm_tbl_reader* vo_mm_tbl_reader_open(const wchar_t* path);

/* Number of properties. */
int32_t vo_mm_tbl_reader_get_prp_count(const vo_mm_tbl_reader* table);

/* Hands a property's name to the receiver: the long name where the file has one. */
void vo_mm_tbl_reader_get_prp_name(const vo_mm_tbl_reader* table, int32_t property,
                                   vo_string_adp* receiver);

/* The type code of a property: 2 for numbers of every kind, 1 for text, 0 when there is no such property. */
int32_t vo_mm_tbl_reader_get_prp_type(const vo_mm_tbl_reader* table, int32_t property);

/* Number of records that lie in the file whole. */
int64_t vo_mm_tbl_reader_get_row_count(const vo_mm_tbl_reader* table);

/* Makes a record current. Where there is no such record, none is. */
void vo_mm_tbl_reader_read_row(vo_mm_tbl_reader* table, int64_t row);

/* Hands a value of the current record to the receiver: text without its padding, numbers without blanks,
 * binary numbers as the shortest text that reads back to the same number. Empty text for no value, for a
 * number that is none (NaN, infinity), for a record whose line end is missing, and when no record is current. */
void vo_mm_tbl_reader_read_str(vo_mm_tbl_reader* table, int32_t property, vo_string_adp* receiver);

/* A value of vo_mm_tbl_reader_get_values. Behind the bytes stand vo_mm_padding more that may be read. */
typedef struct vo_mm_value {
  const char* bytes; /* not terminated; not null */
  size_t length;     /* 0 for no value */
} vo_mm_value;
enum { vo_mm_padding = 16 };

/* House addition, for reading whole tables: makes a record current and answers all its values, in the order
 * of the properties, as bytes of the code page below; decoded they are what vo_mm_tbl_reader_read_str hands
 * over. Returns null when there is no such record; the values live until the next call with this handle. */
const vo_mm_value* vo_mm_tbl_reader_get_values(vo_mm_tbl_reader* table, int64_t row);

/* House addition: whether the disk has failed while records were counted or read, so that some seem to be missing. */
bool vo_mm_tbl_reader_has_failed(const vo_mm_tbl_reader* table);

/* House addition: number of the code page in which the file's text is, never 0. */
unsigned vo_mm_tbl_reader_get_code_page(const vo_mm_tbl_reader* table);

/* Closes the file and frees the handle. */
void vo_mm_tbl_reader_close(vo_mm_tbl_reader* table);

#ifdef __cplusplus
}
#endif

#endif

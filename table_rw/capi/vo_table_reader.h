/* Reading tables from C (C99) and from every language that can call C.
 *
 *     vo_table_reader_options* options = vo_table_reader_options_create(L"wells.csv");
 *     vo_table_reader_options_set_encoding(options, 8);                  // CP1251
 *     vo_table_reader* reader = vo_table_reader_open(options);
 *     vo_table_reader_options_close(options);
 *     if (vo_table_reader_read(reader))
 *       for (row = 0; row < vo_table_reader_count(reader); ++row)
 *         vo_table_reader_value_name(reader, L"WELL", row, adapter);
 *     vo_table_reader_close(reader);
 *
 * Strings go in as NUL-terminated wide strings, which are never null and are copied. Strings come out
 * through a string adapter of vok_basic.h, one feed per string, in order; nothing but the two handles
 * has to be freed.
 *
 * Only the two close functions accept a null handle; every other function needs a valid one. Failures
 * show as false results and empty strings; there are no messages. Lines (rows, records) count from 0.
 *
 * Threads: one handle belongs to one thread at a time; different handles are independent, but for two workbooks of one
 * name, which must not be read at the same time (vo_options_set_temp_wpath tells why). */
#ifndef VOK_TABLE_RW_CAPI_VO_TABLE_READER_H
#define VOK_TABLE_RW_CAPI_VO_TABLE_READER_H

#include <stdbool.h>
#include <stdint.h>
#include <wchar.h>

#include "platform/vok_basic.h"
#include "platform/vok_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* What to read and how. */
typedef struct vo_table_reader_options vo_table_reader_options;
/* A reader and the results of its last read. */
typedef struct vo_table_reader vo_table_reader;

/* ---- options ---- */

/* New options for a path, everything else at its default: header in line 0, data from line 1, delimiter
 * ";", quote "\"", encoding 0 (UTF-8), file type chosen automatically. */
VOK_API vo_table_reader_options* vo_table_reader_options_create(const wchar_t* path);

/* Frees the options; null is ignored. */
VOK_API void vo_table_reader_options_close(vo_table_reader_options* options);

/* The path of the source. */
VOK_API void vo_table_reader_options_set_path(vo_table_reader_options* options,
                                              const wchar_t* path);

/* Line of the field names; -1: there is none, and the fields are called field_0, field_1... */
VOK_API void vo_table_reader_options_set_header_position(vo_table_reader_options* options,
                                                         int32_t position);

/* First line that may hold data; it moves behind the header when it does not lie there. */
VOK_API void vo_table_reader_options_set_data_position(vo_table_reader_options* options,
                                                       uint64_t position);

/* 0: one record a line; 1: records run across columns. Any other value is ignored. */
VOK_API void vo_table_reader_options_set_direction(vo_table_reader_options* options,
                                                   int32_t direction);

/* 0: automatic, 1: delimited text, 2: spreadsheet through the converter, 3 and 4: spreadsheet or
 * database through ODBC, 5: DBF. Any other value is ignored; the automatic choice reaches the rest. */
VOK_API void vo_table_reader_options_set_file_type(vo_table_reader_options* options,
                                                   int32_t file_type);

/* The one character between values; 0: none, every line is one value. */
VOK_API void vo_table_reader_options_set_delimiter(vo_table_reader_options* options,
                                                   wchar_t delimiter);

/* Index of the encoding, 0 to 18: 0 UTF-8, 8 CP1251, 16 CP866, 18 the system's code page. */
VOK_API void vo_table_reader_options_set_encoding(vo_table_reader_options* options,
                                                  int32_t encoding);

/* The table or sheet to read, where the source holds several. */
VOK_API void vo_table_reader_options_set_table(vo_table_reader_options* options,
                                               const wchar_t* name);

/* ---- reader ---- */

/* Chooses and builds a reader; nothing is read yet. Never null: what fits nothing becomes a reader
 * whose reads answer false. The options are copied and may be closed at once. */
VOK_API vo_table_reader* vo_table_reader_open(vo_table_reader_options* options);

/* Frees a reader; null is ignored. */
VOK_API void vo_table_reader_close(vo_table_reader* reader);

/* Reads names and types of the fields, no rows. false: the source cannot be read. */
VOK_API bool vo_table_reader_read_only_headers(vo_table_reader* reader);

/* Reads with a limit of n rows, where the format heeds one (delimited text does not). */
VOK_API bool vo_table_reader_read_demo(vo_table_reader* reader, int32_t n);

/* Reads the whole table into memory. */
VOK_API bool vo_table_reader_read(vo_table_reader* reader);

/* Chooses the table for the next read. */
VOK_API void vo_table_reader_set_table(vo_table_reader* reader, const wchar_t* name);

/* Feeds the name of every table in the source. */
VOK_API void vo_table_reader_table_list(vo_table_reader* reader, vo_string_adp* adapter);

/* Feeds every field name. */
VOK_API void vo_table_reader_field_list(vo_table_reader* reader, vo_string_adp* adapter);

/* Index of the first field of this name; -1 when there is none. */
VOK_API int32_t vo_table_reader_field_num(vo_table_reader* reader, const wchar_t* name);

/* Number of fields. */
VOK_API uint64_t vo_table_reader_field_count(vo_table_reader* reader);

/* Number of rows. */
VOK_API uint64_t vo_table_reader_count(vo_table_reader* reader);

/* Feeds one value: always exactly one feed, the empty string when there is no such value. */
VOK_API void vo_table_reader_value_index(vo_table_reader* reader, uint64_t index, uint64_t row,
                                         vo_string_adp* adapter);
/* The same, by the field's name. */
VOK_API void vo_table_reader_value_name(vo_table_reader* reader, const wchar_t* name, uint64_t row,
                                        vo_string_adp* adapter);

/* Feeds every value of a row, in field order; nothing when the row does not exist. */
VOK_API void vo_table_reader_row(vo_table_reader* reader, uint64_t row, vo_string_adp* adapter);

/* Whether the last read could open the source. */
VOK_API bool vo_table_reader_is_ok(vo_table_reader* reader);

/* Number of lines (records) that were rejected. */
VOK_API uint64_t vo_table_reader_error_count(vo_table_reader* reader);

/* Number, from 0, of a rejected line; 2^64 - 1 when i is out of range.
 * ODD: despite its name it answers a number, and hosts bind it so. */
VOK_API uint64_t vo_table_reader_error_string(vo_table_reader* reader, uint64_t i);

#ifdef __cplusplus
}
#endif

#endif

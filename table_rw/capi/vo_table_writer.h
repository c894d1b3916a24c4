/* Writing tables from C and from every language that can call C, with text in UTF-8 or UTF-16.
 *
 *     vo_table_writer_options* options = vo_table_writer_options_create_u8("wells.xlsx");
 *     vo_table_writer_options_add_field_u8(options, "WELL", 0, 0, 0);
 *     vo_table_writer_options_add_field_u8(options, "DEPTH", 1, 10, 2);
 *     vo_table_writer* writer = vo_table_writer_open(options);
 *     vo_table_writer_options_close(options);
 *     vo_table_writer_add_row_u8(writer, values, 2);
 *     vo_table_writer_close(writer);                     // finishes the file
 *
 * The extension of the path selects the format, without regard to letter case: .xls and .xlsx make a
 * workbook, .dbf a dBASE III table, everything else delimited text in Windows-1251. What a format cannot hold
 * becomes what table_rw/writers says: values are cut, rounded or substituted, not refused.
 *
 * Text: NUL-terminated and copied; a null pointer is the empty text. UTF-8 that is not valid is refused, the
 * function answers false and nothing changes. UTF-16 is taken as it is, a lone surrogate too.
 *
 * Errors: false and null are the only answers: for a null handle, refused text or short memory. A file that
 * cannot be created, or a disk that is full, is NOT reported: a host that must know looks at the file after
 * the close. No exception leaves any of these functions. Null handles are accepted everywhere.
 * Threads: one handle belongs to one thread at a time; different handles are independent. */
#ifndef VOK_TABLE_RW_CAPI_VO_TABLE_WRITER_H
#define VOK_TABLE_RW_CAPI_VO_TABLE_WRITER_H

#include <stdbool.h>
#include <stdint.h>

#include "platform/vok_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* What to write and where. */
typedef struct vo_table_writer_options vo_table_writer_options;
/* A table being written. */
typedef struct vo_table_writer vo_table_writer;

/* New options for a path, without fields, delimiter ";". Null: the path is not valid UTF-8, or memory is
 * short. To be freed with vo_table_writer_options_close. */
VOK_API vo_table_writer_options* vo_table_writer_options_create_u8(const char* path);
/* The same in UTF-16. */
VOK_API vo_table_writer_options* vo_table_writer_options_create_u16(const uint16_t* path);

/* Frees the options; null is ignored. */
VOK_API void vo_table_writer_options_close(vo_table_writer_options* options);

/* The text between values of delimited text; the other formats have none. */
VOK_API bool vo_table_writer_options_set_delimiter_u8(vo_table_writer_options* options,
                                                      const char* delimiter);
/* The same in UTF-16. */
VOK_API bool vo_table_writer_options_set_delimiter_u16(vo_table_writer_options* options,
                                                       const uint16_t* delimiter);

/* Adds a field behind those that are there.
 * type      0: text, 1: numbers; used by DBF alone, as are the next two
 * width     length in characters, of which DBF takes the low byte: 1 to 254
 * decimals  digits behind the point, 0 to 255
 * false, and nothing is added, also for another type, a negative width or decimals out of that range. */
VOK_API bool vo_table_writer_options_add_field_u8(vo_table_writer_options* options,
                                                  const char* name, int32_t type, int32_t width,
                                                  int32_t decimals);
/* The same in UTF-16. */
VOK_API bool vo_table_writer_options_add_field_u16(vo_table_writer_options* options,
                                                   const uint16_t* name, int32_t type,
                                                   int32_t width, int32_t decimals);

/* Opens a writer; the target is created or emptied at once, a workbook appears at the close. The options are
 * copied and may be closed at once. Null: null options, an empty path, or short memory. */
VOK_API vo_table_writer* vo_table_writer_open(const vo_table_writer_options* options);

/* Appends a row of `count` values, in field order. false, and nothing is written, also for a null array with
 * a count that is not 0, and for a row without values, which only DBF takes. */
VOK_API bool vo_table_writer_add_row_u8(vo_table_writer* writer, const char* const* values,
                                        uint64_t count);
/* The same in UTF-16. */
VOK_API bool vo_table_writer_add_row_u16(vo_table_writer* writer, const uint16_t* const* values,
                                         uint64_t count);

/* Finishes the file and frees the writer; null is ignored. */
VOK_API void vo_table_writer_close(vo_table_writer* writer);

#ifdef __cplusplus
}
#endif

#endif

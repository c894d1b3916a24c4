/* The C reader interface in UTF-8 and UTF-16, for languages whose text is not wchar_t.
 *
 * A wide string has 32-bit elements on Linux and 16-bit ones on Windows, so C#, Python, Java or Delphi cannot
 * call vo_table_reader.h in one way on both. Here every function of it that takes or gives text has two
 * companions of the same meaning, ..._u8 with UTF-8 and ..._u16 with UTF-16 units, the same on both systems.
 * The handles are the same; functions without text are called as they are.
 *
 *     vo_table_reader_options* options = vo_table_reader_options_create_u8("wells.csv");
 *     vo_table_reader_options_set_encoding(options, 8);  // CP1251
 *     vo_table_reader* reader = vo_table_reader_open(options);
 *     vo_table_reader_options_close(options);
 *     vo_text_list* list = vo_text_list_create();
 *     if (vo_table_reader_read(reader)) vo_table_reader_column_u8(reader, 0, list);
 *     ...
 *     vo_text_list_close(list);
 *     vo_table_reader_close(reader);
 *
 * Text in: NUL-terminated and copied; a null pointer is the empty text. UTF-8 that is not valid is refused:
 * the function answers false (null, -1) and changes nothing. UTF-16 is taken as it is, a lone surrogate too,
 * as file names of Windows may hold one.
 * Text out: into a list of vo_text_list.h, whose content is replaced.
 *
 * Errors: every function answers whether it did its work: false for a null handle, a null list, refused text
 * or short memory (a given list is empty then). What the table does not have is no error: as in
 * vo_table_reader.h an unknown field has the empty value, a row that does not exist no values.
 * No exception leaves any of these functions. Null handles are accepted everywhere.
 * Threads: one handle belongs to one thread at a time; different handles are independent. */
#ifndef VOK_TABLE_RW_CAPI_VO_TABLE_READER_UTF_H
#define VOK_TABLE_RW_CAPI_VO_TABLE_READER_UTF_H

#include "table_rw/capi/vo_table_reader.h"
#include "table_rw/capi/vo_text_list.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- the suite ---- */

/* vo_options_set_main_module_path of vok_basic.h: the converter that reads workbooks is looked for beside
 * this path. For a host that is an interpreter: the interpreter's folder does not hold it. */
VOK_API bool vo_options_set_main_module_path_u8(const char* path);
/* The same in UTF-16. */
VOK_API bool vo_options_set_main_module_path_u16(const uint16_t* path);

/* ---- options ---- */

/* New options for a path, everything else at its default, to be freed with vo_table_reader_options_close.
 * Null: the path is not valid UTF-8, or memory is short. */
VOK_API vo_table_reader_options* vo_table_reader_options_create_u8(const char* path);
/* The same in UTF-16. */
VOK_API vo_table_reader_options* vo_table_reader_options_create_u16(const uint16_t* path);

/* Replaces the path. */
VOK_API bool vo_table_reader_options_set_path_u8(vo_table_reader_options* options,
                                                 const char* path);
/* The same in UTF-16. */
VOK_API bool vo_table_reader_options_set_path_u16(vo_table_reader_options* options,
                                                  const uint16_t* path);

/* The text between values; it may have several characters. Empty: none, every line is one value. */
VOK_API bool vo_table_reader_options_set_delimiter_u8(vo_table_reader_options* options,
                                                      const char* delimiter);
/* The same in UTF-16. */
VOK_API bool vo_table_reader_options_set_delimiter_u16(vo_table_reader_options* options,
                                                       const uint16_t* delimiter);

/* The text around values that hold the delimiter. Empty: no value is quoted. */
VOK_API bool vo_table_reader_options_set_quote_u8(vo_table_reader_options* options,
                                                  const char* quote);
/* The same in UTF-16. */
VOK_API bool vo_table_reader_options_set_quote_u16(vo_table_reader_options* options,
                                                   const uint16_t* quote);

/* The table or sheet to read, where the source holds several. */
VOK_API bool vo_table_reader_options_set_table_u8(vo_table_reader_options* options,
                                                  const char* name);
/* The same in UTF-16. */
VOK_API bool vo_table_reader_options_set_table_u16(vo_table_reader_options* options,
                                                   const uint16_t* name);

/* The file type, any of them: as vo_table_reader_options_set_file_type, and 6: SQLite, 7: Micromine data
 * file, 8: Micromine drill-hole database, 9: Petrel table. false, and nothing changes, for other numbers. */
VOK_API bool vo_table_reader_options_set_any_file_type(vo_table_reader_options* options,
                                                       int32_t file_type);

/* ---- reader ---- */

/* Chooses the table for the next read. */
VOK_API bool vo_table_reader_set_table_u8(vo_table_reader* reader, const char* name);
/* The same in UTF-16. */
VOK_API bool vo_table_reader_set_table_u16(vo_table_reader* reader, const uint16_t* name);

/* The name of every table in the source. */
VOK_API bool vo_table_reader_table_list_u8(vo_table_reader* reader, vo_text_list* list);
/* The same in UTF-16. */
VOK_API bool vo_table_reader_table_list_u16(vo_table_reader* reader, vo_text_list* list);

/* Whether the last read or list of tables has met the end of its source. false: the disk or the network failed in
 * between, and what is there is only what was read before. vo_table_reader_read answers true then all the same for
 * text, as it does for every file that opens; a host that must not take a part for the whole asks here. true before
 * the first read; false for null. */
VOK_API bool vo_table_reader_is_whole(vo_table_reader* reader);

/* Every field name. */
VOK_API bool vo_table_reader_field_list_u8(vo_table_reader* reader, vo_text_list* list);
/* The same in UTF-16. */
VOK_API bool vo_table_reader_field_list_u16(vo_table_reader* reader, vo_text_list* list);

/* Index of the first field of this name; -1 when there is none. */
VOK_API int32_t vo_table_reader_field_num_u8(vo_table_reader* reader, const char* name);
/* The same in UTF-16. */
VOK_API int32_t vo_table_reader_field_num_u16(vo_table_reader* reader, const uint16_t* name);

/* 1: the source declares the field as numbers; 0: text, or nothing is declared, as in delimited text;
 * -1: there is no such field. */
VOK_API int32_t vo_table_reader_field_type(vo_table_reader* reader, uint64_t index);

/* One value: a list of one text, empty when there is no such value. */
VOK_API bool vo_table_reader_value_index_u8(vo_table_reader* reader, uint64_t index, uint64_t row,
                                            vo_text_list* list);
/* The same in UTF-16. */
VOK_API bool vo_table_reader_value_index_u16(vo_table_reader* reader, uint64_t index, uint64_t row,
                                             vo_text_list* list);
/* The same by the field's name, the first of it. */
VOK_API bool vo_table_reader_value_name_u8(vo_table_reader* reader, const char* name, uint64_t row,
                                           vo_text_list* list);
/* The same in UTF-16. */
VOK_API bool vo_table_reader_value_name_u16(vo_table_reader* reader, const uint16_t* name,
                                            uint64_t row, vo_text_list* list);

/* The values of a row, in field order; no text when the row does not exist. Rows of some formats have fewer
 * or more values than there are fields. */
VOK_API bool vo_table_reader_row_u8(vo_table_reader* reader, uint64_t row, vo_text_list* list);
/* The same in UTF-16. */
VOK_API bool vo_table_reader_row_u16(vo_table_reader* reader, uint64_t row, vo_text_list* list);

/* A whole column in one call, one text for every row, in row order; the empty text for a row that is too
 * short. No text for a field that does not exist. Costs about as much as copying the column once; a million
 * values of ten bytes make a list of 11 MB and 8 MB of offsets. */
VOK_API bool vo_table_reader_column_u8(vo_table_reader* reader, uint64_t index, vo_text_list* list);
/* The same in UTF-16. */
VOK_API bool vo_table_reader_column_u16(vo_table_reader* reader, uint64_t index,
                                        vo_text_list* list);

/* The value of the field `result` in every row that has all the wanted values, in row order, duplicates
 * kept. Condition i wants the text values[i] in the field columns[i]; texts are compared exactly. Without
 * conditions every row fits. No text for an unknown result field or when a condition's field does not exist.
 * false also for null arrays with a count that is not 0. */
VOK_API bool vo_table_reader_search_u8(vo_table_reader* reader, const char* result,
                                       const uint64_t* columns, const char* const* values,
                                       uint64_t count, vo_text_list* list);
/* The same in UTF-16. */
VOK_API bool vo_table_reader_search_u16(vo_table_reader* reader, const uint16_t* result,
                                        const uint64_t* columns, const uint16_t* const* values,
                                        uint64_t count, vo_text_list* list);

/* The raw text of the rejected lines, in the order of vo_table_reader_error_string, the first `most` of
 * them: the source is read once more. false when it cannot be read or its format rejects no lines. */
VOK_API bool vo_table_reader_rejected_u8(vo_table_reader* reader, uint64_t most,
                                         vo_text_list* list);
/* The same in UTF-16. */
VOK_API bool vo_table_reader_rejected_u16(vo_table_reader* reader, uint64_t most,
                                          vo_text_list* list);

#ifdef __cplusplus
}
#endif

#endif

/* The companions of the C interface in UTF-8 and UTF-16 as a C program uses them: public headers, C99, and
 * nothing else.
 *
 * usage: capi_utf_test EXAMPLES_FOLDER
 *
 * Prints every check that failed and answers 1 if there was any. It reads the example tables and writes one
 * table into the folder that vo_options_get_temp_wpath names; both paths must be ASCII. */
#include <stdbool.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <time.h>
#include <wchar.h>

#include "platform/vok_basic.h"
#include "table_rw/capi/vo_table_reader_utf.h"
#include "table_rw/capi/vo_table_writer.h"

static int checks = 0;
static int failures = 0;

static void check(bool passed, const char* text, int line) {
  ++checks;
  if (passed) return;
  ++failures;
  printf("capi_utf_test.c:%d: failed: %s\n", line, text);
}

#define CHECK(condition) check((condition), #condition, __LINE__)

enum { path_capacity = 500 };

/* Text i of a list of bytes. */
static const char* text_at(const vo_text_list* list, uint64_t i) {
  return vo_text_list_data_u8(list) + vo_text_list_offsets(list)[i];
}

/* Whether a list of units holds ASCII text at i. */
static bool units_are(const vo_text_list* list, uint64_t i, const char* text) {
  const uint64_t* offsets = vo_text_list_offsets(list);
  const uint16_t* units = vo_text_list_data_u16(list) + offsets[i];
  uint64_t length = offsets[i + 1] - offsets[i] - 1;
  uint64_t j;
  if (length != strlen(text)) return false;
  for (j = 0; j < length; ++j)
    if (units[j] != (unsigned char)text[j]) return false;
  return units[length] == 0;
}

/* examples/wells_cp1251.csv: Cyrillic names and values, one rejected line. */
static void reads_the_example(const char* folder, vo_text_list* list) {
  static const char name[] = "\xD0\x9E\xD0\xBF\xD0\xB5\xD1\x80\xD0\xB0\xD1\x82\xD0\xBE\xD1\x80";
  static const uint16_t well[] = {0x0421, 0x043A, 0x0432, 0x0430, 0x0436,
                                  0x0438, 0x043D, 0x0430, 0};
  static const uint64_t year[] = {2};
  static const char* const wanted[] = {"2016"};
  char path[path_capacity];
  vo_table_reader_options* options;
  vo_table_reader* reader;

  sprintf(path, "%s/wells_cp1251.csv", folder);
  options = vo_table_reader_options_create_u8("gone.csv");
  CHECK(options != NULL);
  CHECK(vo_table_reader_options_set_path_u8(options, path));
  CHECK(vo_table_reader_options_set_delimiter_u8(options, ";"));
  CHECK(vo_table_reader_options_set_quote_u8(options, "\""));
  CHECK(vo_table_reader_options_set_table_u8(options, ""));
  CHECK(vo_table_reader_options_set_any_file_type(options, 1));
  vo_table_reader_options_set_encoding(options, 8);
  reader = vo_table_reader_open(options);
  vo_table_reader_options_close(options);
  CHECK(vo_table_reader_read(reader));

  CHECK(vo_table_reader_table_list_u8(reader, list));
  CHECK(vo_text_list_count(list) == 1 && strcmp(text_at(list, 0), "csv") == 0);
  CHECK(vo_table_reader_field_list_u8(reader, list));
  CHECK(vo_text_list_count(list) == 6 && strcmp(text_at(list, 5), name) == 0);
  CHECK(vo_table_reader_field_num_u8(reader, name) == 5);
  CHECK(vo_table_reader_field_num_u16(reader, well) == 0);
  CHECK(vo_table_reader_field_type(reader, 0) == 0);
  CHECK(vo_table_reader_is_whole(reader));

  CHECK(vo_table_reader_column_u8(reader, 2, list));
  CHECK(vo_text_list_count(list) == 5);
  CHECK(strcmp(text_at(list, 0), "2016") == 0 && strcmp(text_at(list, 4), "2020") == 0);
  CHECK(vo_text_list_offsets(list)[5] == 25);
  CHECK(vo_table_reader_column_u16(reader, 3, list));
  CHECK(vo_text_list_data_u8(list) == NULL);
  CHECK(vo_text_list_count(list) == 5 && units_are(list, 0, "1845") && units_are(list, 4, "1812"));
  CHECK(vo_table_reader_row_u8(reader, 2, list));
  CHECK(vo_text_list_count(list) == 6 && strcmp(text_at(list, 4), "") == 0);
  CHECK(vo_table_reader_value_index_u16(reader, 3, 1, list));
  CHECK(vo_text_list_count(list) == 1 && units_are(list, 0, "1851"));
  CHECK(vo_table_reader_value_name_u16(reader, well, 99, list));
  CHECK(vo_text_list_count(list) == 1 && units_are(list, 0, ""));
  CHECK(vo_table_reader_search_u8(reader, name, year, wanted, 1, list));
  CHECK(vo_text_list_count(list) == 2);
  CHECK(vo_table_reader_rejected_u8(reader, UINT64_MAX, list));
  CHECK(vo_text_list_count(list) == 1 && strstr(text_at(list, 0), ";5") != NULL);
  CHECK(vo_table_reader_set_table_u16(reader, well)); /* delimited text has one table */
  vo_table_reader_close(reader);
}

static void null_handles(vo_text_list* list) {
  static const char* const values[] = {"x"};
  static const uint16_t wide[] = {'x', 0};
  static const uint16_t* const wide_values[] = {wide};
  static const uint64_t columns[] = {0};

  CHECK(!vo_table_reader_options_set_path_u8(NULL, "x"));
  CHECK(!vo_table_reader_options_set_path_u16(NULL, wide));
  CHECK(!vo_table_reader_options_set_delimiter_u8(NULL, "x"));
  CHECK(!vo_table_reader_options_set_delimiter_u16(NULL, wide));
  CHECK(!vo_table_reader_options_set_quote_u8(NULL, "x"));
  CHECK(!vo_table_reader_options_set_quote_u16(NULL, wide));
  CHECK(!vo_table_reader_options_set_table_u8(NULL, "x"));
  CHECK(!vo_table_reader_options_set_table_u16(NULL, wide));
  CHECK(!vo_table_reader_options_set_any_file_type(NULL, 1));

  CHECK(!vo_table_reader_set_table_u8(NULL, "x"));
  CHECK(!vo_table_reader_set_table_u16(NULL, wide));
  CHECK(!vo_table_reader_table_list_u8(NULL, list));
  CHECK(!vo_table_reader_table_list_u16(NULL, NULL));
  CHECK(!vo_table_reader_field_list_u8(NULL, NULL));
  CHECK(!vo_table_reader_field_list_u16(NULL, list));
  CHECK(vo_table_reader_field_num_u8(NULL, "x") == -1);
  CHECK(vo_table_reader_field_num_u16(NULL, wide) == -1);
  CHECK(vo_table_reader_field_type(NULL, 0) == -1);
  CHECK(!vo_table_reader_is_whole(NULL));
  CHECK(!vo_table_reader_value_index_u8(NULL, 0, 0, list));
  CHECK(!vo_table_reader_value_index_u16(NULL, 0, 0, list));
  CHECK(!vo_table_reader_value_name_u8(NULL, "x", 0, list));
  CHECK(!vo_table_reader_value_name_u16(NULL, wide, 0, list));
  CHECK(!vo_table_reader_row_u8(NULL, 0, list));
  CHECK(!vo_table_reader_row_u16(NULL, 0, list));
  CHECK(!vo_table_reader_column_u8(NULL, 0, list));
  CHECK(!vo_table_reader_column_u16(NULL, 0, list));
  CHECK(!vo_table_reader_search_u8(NULL, "x", columns, values, 1, list));
  CHECK(!vo_table_reader_search_u16(NULL, wide, columns, wide_values, 1, list));
  CHECK(!vo_table_reader_rejected_u8(NULL, 1, list));
  CHECK(!vo_table_reader_rejected_u16(NULL, 1, list));
  CHECK(vo_text_list_count(list) == 0);

  CHECK(vo_text_list_count(NULL) == 0);
  CHECK(vo_text_list_offsets(NULL) == NULL);
  CHECK(vo_text_list_data_u8(NULL) == NULL);
  CHECK(vo_text_list_data_u16(NULL) == NULL);
  vo_text_list_close(NULL);

  CHECK(!vo_table_writer_options_set_delimiter_u8(NULL, "x"));
  CHECK(!vo_table_writer_options_set_delimiter_u16(NULL, wide));
  CHECK(!vo_table_writer_options_add_field_u8(NULL, "x", 0, 0, 0));
  CHECK(!vo_table_writer_options_add_field_u16(NULL, wide, 0, 0, 0));
  CHECK(vo_table_writer_open(NULL) == NULL);
  CHECK(!vo_table_writer_add_row_u8(NULL, values, 1));
  CHECK(!vo_table_writer_add_row_u16(NULL, wide_values, 1));
  vo_table_writer_close(NULL);
  vo_table_writer_options_close(NULL);
}

/* Even with a reader at hand, a missing list is answered with false. */
static void null_lists(void) {
  static const uint16_t path[] = {'g', 'o', 'n', 'e', '.', 'c', 's', 'v', 0};
  vo_table_reader_options* options = vo_table_reader_options_create_u16(path);
  vo_table_reader* reader = vo_table_reader_open(options);
  CHECK(!vo_table_reader_table_list_u8(reader, NULL));
  CHECK(!vo_table_reader_field_list_u16(reader, NULL));
  CHECK(!vo_table_reader_row_u8(reader, 0, NULL));
  CHECK(!vo_table_reader_column_u8(reader, 0, NULL));
  CHECK(!vo_table_reader_value_name_u8(reader, "x", 0, NULL));
  CHECK(!vo_table_reader_search_u8(reader, "x", NULL, NULL, 0, NULL));
  CHECK(!vo_table_reader_rejected_u8(reader, 1, NULL));
  vo_table_reader_close(reader);
  vo_table_reader_options_close(options);
}

static void main_module(void) {
  static const uint16_t units[] = {'/', 'o', 'p', 't', '/', 0x0421, 0};
  CHECK(vo_options_set_main_module_path_u8("/opt/suite/main"));
  CHECK(wcscmp(vo_options_get_main_module_path(), L"/opt/suite/main") == 0);
  CHECK(!vo_options_set_main_module_path_u8("\xFF"));
  CHECK(wcscmp(vo_options_get_main_module_path(), L"/opt/suite/main") == 0);
  CHECK(vo_options_set_main_module_path_u16(units));
  CHECK(wcscmp(vo_options_get_main_module_path(), L"/opt/\x0421") == 0);
  CHECK(vo_options_set_main_module_path_u8(NULL)); /* the running executable again */
  CHECK(wcscmp(vo_options_get_main_module_path(), L"/opt/\x0421") != 0);
}

/* Writes a table and reads it back. */
static void writes(vo_text_list* list) {
  static const uint16_t depth[] = {'D', 'E', 'P', 'T', 'H', 0};
  static const uint16_t number[] = {'9', '8', '0', 0};
  static const char* const first[] = {"W-1", "1250.5"};
  static const uint16_t* const second[] = {number, number};
  const wchar_t* folder = vo_options_get_temp_wpath();
  char path[path_capacity];
  vo_table_writer_options* options;
  vo_table_writer* writer;
  vo_table_reader_options* reading;
  vo_table_reader* reader;
  size_t i;

  CHECK(wcslen(folder) + 100 < path_capacity);
  for (i = 0; folder[i] != 0; ++i) path[i] = (char)folder[i];
  sprintf(path + i, "vok_capi_utf_test_%llx.csv",
          (unsigned long long)((uint64_t)time(NULL) * 1000003U + (uint64_t)(uintptr_t)&path +
                               (uint64_t)clock()));
  options = vo_table_writer_options_create_u8(path);
  CHECK(vo_table_writer_options_set_delimiter_u8(options, ";"));
  CHECK(vo_table_writer_options_add_field_u8(options, "WELL", 0, 10, 0));
  CHECK(vo_table_writer_options_add_field_u16(options, depth, 1, 10, 2));
  writer = vo_table_writer_open(options);
  CHECK(writer != NULL);
  vo_table_writer_options_close(options);
  CHECK(vo_table_writer_add_row_u8(writer, first, 2));
  CHECK(vo_table_writer_add_row_u16(writer, second, 2));
  CHECK(!vo_table_writer_add_row_u16(writer, NULL, 2));
  vo_table_writer_close(writer);

  reading = vo_table_reader_options_create_u8(path);
  reader = vo_table_reader_open(reading);
  vo_table_reader_options_close(reading);
  CHECK(vo_table_reader_read(reader));
  CHECK(vo_table_reader_column_u8(reader, 1, list));
  CHECK(vo_text_list_count(list) == 2 && strcmp(text_at(list, 0), "1250.5") == 0 &&
        strcmp(text_at(list, 1), "980") == 0);
  vo_table_reader_close(reader);
  CHECK(remove(path) == 0);
}

int main(int count, char** arguments) {
  vo_text_list* list;
  if (count != 2 || strlen(arguments[1]) + 50 >= path_capacity) {
    printf("usage: capi_utf_test EXAMPLES_FOLDER\n");
    return 2;
  }
  list = vo_text_list_create();
  CHECK(list != NULL);
  reads_the_example(arguments[1], list);
  null_handles(list);
  null_lists();
  main_module();
  writes(list);
  vo_text_list_close(list);
  printf("%d checks, %d failed\n", checks, failures);
  return failures == 0 ? 0 : 1;
}

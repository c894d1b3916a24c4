/* The C interface as a C program uses it: public headers, C99, and nothing else.
 *
 * usage: capi_test EXAMPLES_FOLDER
 *
 * Prints every check that failed and answers 1 if there was any. The program writes its small files
 * into the folder that vo_options_get_temp_wpath names and removes them; the folder's path must be
 * ASCII, since plain C opens files by narrow names. */
#include <stdbool.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <time.h>
#include <wchar.h>

#include "platform/vok_basic.h"
#include "table_rw/capi/vo_table_reader.h"

static int checks = 0;
static int failures = 0;

static void check(bool passed, const char* text, int line) {
  ++checks;
  if (passed) return;
  ++failures;
  printf("capi_test.c:%d: failed: %s\n", line, text);
}

#define CHECK(condition) check((condition), #condition, __LINE__)

/* ---- what an adapter was fed ---------------------------------------------------------------- */

enum { heard_capacity = 1000 };

struct heard {
  wchar_t text[heard_capacity]; /* every string with a bar behind it */
  int count;
};

static void hear(void* user, const wchar_t* text) {
  struct heard* heard = user;
  if (wcslen(heard->text) + wcslen(text) + 2 > heard_capacity) return;
  wcscat(heard->text, text);
  wcscat(heard->text, L"|");
  ++heard->count;
}

static bool heard_is(struct heard* heard, const wchar_t* text) {
  const bool same = wcscmp(heard->text, text) == 0;
  heard->text[0] = 0;
  heard->count = 0;
  return same;
}

/* ---- files ---------------------------------------------------------------------------------- */

enum { path_capacity = 500 };

static wchar_t temporary[path_capacity]; /* a name in the temporary folder that nobody else has */

static bool choose_temporary_name(void) {
  static const wchar_t digits[] = L"0123456789abcdef";
  const wchar_t* folder = vo_options_get_temp_wpath();
  uint64_t number = (uint64_t)time(NULL) * 1000003U + (uint64_t)clock();
  size_t length = wcslen(folder);
  int i;
  number ^= (uint64_t)(uintptr_t)&number; /* differs from process to process */
  if (length == 0 || length + 100 > path_capacity) return false;
  wcscpy(temporary, folder);
  wcscat(temporary, L"vok_capi_test_");
  length = wcslen(temporary);
  for (i = 0; i < 16; ++i) temporary[length++] = digits[(number >> (4 * i)) & 15];
  temporary[length] = 0;
  return true;
}

static bool narrow(const wchar_t* path, char* out) {
  size_t i;
  for (i = 0; path[i] != 0; ++i) {
    if (path[i] < 0x20 || path[i] > 0x7E || i + 1 >= path_capacity) return false;
    out[i] = (char)path[i];
  }
  out[i] = 0;
  return true;
}

/* Writes a file; its path stands in `path` then. */
static bool write_file(const wchar_t* ending, const char* bytes, size_t size, wchar_t* path) {
  char name[path_capacity];
  FILE* file;
  bool written;
  wcscpy(path, temporary);
  wcscat(path, ending);
  if (!narrow(path, name)) return false;
  file = fopen(name, "wb");
  if (file == NULL) return false;
  written = fwrite(bytes, 1, size, file) == size;
  return fclose(file) == 0 && written;
}

static void remove_file(const wchar_t* path) {
  char name[path_capacity];
  CHECK(narrow(path, name) && remove(name) == 0);
}

/* ---- the checks ----------------------------------------------------------------------------- */

/* From the options to the last close, as a host does it. */
static void typical_request(vo_string_adp* adapter, struct heard* heard) {
  static const char bytes[] =
      "WELL;DEPTH;ROCK\r\n"
      "W-1;1250.5;\xE3\xEB\xE8\xED\xE0\r\n"
      "W-2;980\r\n"
      "\r\n"
      "\"W;3\"; 7 ;x\r\n";
  wchar_t path[path_capacity];
  vo_table_reader_options* options;
  vo_table_reader* reader;

  CHECK(write_file(L"_wells.csv", bytes, sizeof bytes - 1, path));
  options = vo_table_reader_options_create(path);
  CHECK(options != NULL);
  vo_table_reader_options_set_header_position(options, 0);
  vo_table_reader_options_set_encoding(options, 8);
  reader = vo_table_reader_open(options);
  CHECK(reader != NULL);
  CHECK(!vo_table_reader_is_ok(reader));
  CHECK(vo_table_reader_count(reader) == 0);

  CHECK(vo_table_reader_read(reader));
  CHECK(vo_table_reader_is_ok(reader));
  CHECK(vo_table_reader_field_count(reader) == 3);
  CHECK(vo_table_reader_count(reader) == 2);
  vo_table_reader_value_name(reader, L"WELL", 0, adapter);
  vo_table_reader_value_name(reader, L"ROCK", 0, adapter);
  vo_table_reader_value_name(reader, L"WELL", 1, adapter);
  vo_table_reader_value_name(reader, L"DEPTH", 1, adapter);
  CHECK(heard->count == 4);
  CHECK(heard_is(heard, L"W-1|\x0433\x043B\x0438\x043D\x0430|W;3|7|"));
  CHECK(vo_table_reader_error_count(reader) == 1);
  CHECK(vo_table_reader_error_string(reader, 0) == 2);
  CHECK(vo_table_reader_error_string(reader, 1) == 18446744073709551615U);

  vo_table_reader_close(reader);
  vo_table_reader_options_close(options);
  remove_file(path);
}

static void results(vo_string_adp* adapter, struct heard* heard) {
  static const char bytes[] = "a;b;a\n1;2;3\n4;;6\n";
  wchar_t path[path_capacity];
  vo_table_reader_options* options;
  vo_table_reader* reader;

  CHECK(write_file(L"_results.csv", bytes, sizeof bytes - 1, path));
  options = vo_table_reader_options_create(path);
  reader = vo_table_reader_open(options);
  vo_table_reader_options_close(options); /* the reader has its copy */
  CHECK(vo_table_reader_read(reader));

  vo_table_reader_field_list(reader, adapter);
  CHECK(heard->count == 3);
  CHECK(heard_is(heard, L"a|b|a|"));
  CHECK(vo_table_reader_field_num(reader, L"a") == 0);
  CHECK(vo_table_reader_field_num(reader, L"b") == 1);
  CHECK(vo_table_reader_field_num(reader, L"B") == -1);
  CHECK(vo_table_reader_field_num(reader, L"") == -1);

  vo_table_reader_value_index(reader, 2, 0, adapter);
  CHECK(heard_is(heard, L"3|"));
  vo_table_reader_value_index(reader, 1, 1, adapter);
  CHECK(heard_is(heard, L"|"));
  vo_table_reader_value_index(reader, 0, 2, adapter);
  CHECK(heard->count == 1);
  CHECK(heard_is(heard, L"|"));
  vo_table_reader_value_index(reader, 3, 0, adapter);
  CHECK(heard_is(heard, L"|"));
  vo_table_reader_value_index(reader, UINT64_MAX, UINT64_MAX, adapter);
  CHECK(heard_is(heard, L"|"));
  vo_table_reader_value_name(reader, L"a", 1, adapter);
  CHECK(heard_is(heard, L"4|"));
  vo_table_reader_value_name(reader, L"A", 1, adapter);
  CHECK(heard_is(heard, L"|"));
  vo_table_reader_value_name(reader, L"a", 2, adapter);
  CHECK(heard_is(heard, L"|"));

  vo_table_reader_row(reader, 1, adapter);
  CHECK(heard_is(heard, L"4||6|"));
  vo_table_reader_row(reader, 2, adapter);
  CHECK(heard->count == 0);
  CHECK(heard_is(heard, L""));

  vo_table_reader_table_list(reader, adapter);
  CHECK(heard_is(heard, L"csv|"));
  vo_table_reader_set_table(reader, L"Sheet1"); /* delimited text has one table and ignores it */
  CHECK(vo_table_reader_read(reader));
  CHECK(vo_table_reader_count(reader) == 2);
  CHECK(vo_table_reader_error_count(reader) == 0);
  CHECK(vo_table_reader_error_string(reader, vo_table_reader_error_count(reader)) == UINT64_MAX);

  CHECK(vo_table_reader_read_only_headers(reader));
  CHECK(vo_table_reader_field_count(reader) == 3);
  CHECK(vo_table_reader_count(reader) == 0);
  CHECK(vo_table_reader_read_demo(reader, 1));
  CHECK(vo_table_reader_count(reader) == 2); /* delimited text has no previews */
  vo_table_reader_close(reader);
  remove_file(path);
}

/* Opens, reads, feeds the field names and the first row, and closes. */
static bool read_with(vo_table_reader_options* options, vo_string_adp* adapter) {
  vo_table_reader* reader = vo_table_reader_open(options);
  const bool answer = vo_table_reader_read(reader);
  CHECK(vo_table_reader_is_ok(reader) || !answer);
  vo_table_reader_field_list(reader, adapter);
  vo_table_reader_row(reader, 0, adapter);
  vo_table_reader_close(reader);
  return answer;
}

static void text_options(vo_string_adp* adapter, struct heard* heard) {
  static const char bytes[] = "a\tb;x\n1\t2;3\n4\t5;6\n";
  wchar_t path[path_capacity];
  vo_table_reader_options* options;

  CHECK(write_file(L"_options.csv", bytes, sizeof bytes - 1, path));
  options = vo_table_reader_options_create(L"gone.csv");
  CHECK(!read_with(options, adapter));
  CHECK(heard_is(heard, L""));
  vo_table_reader_options_set_path(options, path);
  CHECK(read_with(options, adapter));
  CHECK(heard_is(heard, L"a\tb|x|1\t2|3|"));
  vo_table_reader_options_set_delimiter(options, L'\t');
  CHECK(read_with(options, adapter));
  CHECK(heard_is(heard, L"a|b;x|1|2;3|"));
  vo_table_reader_options_set_delimiter(options, 0);
  CHECK(read_with(options, adapter));
  CHECK(heard_is(heard, L"a\tb;x|1\t2;3|"));
  vo_table_reader_options_set_delimiter(options, L';');

  vo_table_reader_options_set_data_position(options, 2);
  CHECK(read_with(options, adapter));
  CHECK(heard_is(heard, L"a\tb|x|4\t5|6|"));
  vo_table_reader_options_set_header_position(options, 1);
  vo_table_reader_options_set_data_position(options, 0);
  CHECK(read_with(options, adapter));
  CHECK(heard_is(heard, L"1\t2|3|4\t5|6|"));
  vo_table_reader_options_set_header_position(options, -1);
  vo_table_reader_options_set_data_position(options, 2);
  CHECK(read_with(options, adapter));
  CHECK(heard_is(heard, L"field_0|field_1|a\tb|x|"));
  vo_table_reader_options_set_header_position(options, 0);

  vo_table_reader_options_set_table(options, L"any"); /* delimited text has no tables */
  CHECK(read_with(options, adapter));
  CHECK(heard_is(heard, L"a\tb|x|4\t5|6|"));
  vo_table_reader_options_close(options);
  remove_file(path);
}

static void ignored_values(vo_string_adp* adapter, struct heard* heard) {
  static const char bytes[] = "a;b\n1;2\n";
  static const int32_t directions[] = {2, -1, 100};
  static const int32_t types[] = {6, 7, 8, 9, 10, 12, -1};
  wchar_t path[path_capacity];
  vo_table_reader_options* options;
  size_t i;

  /* The extension asks for another reader; the type that is set here is delimited text. */
  CHECK(write_file(L"_ignored.sqlite", bytes, sizeof bytes - 1, path));
  options = vo_table_reader_options_create(path);
  vo_table_reader_options_set_file_type(options, 1);
  CHECK(read_with(options, adapter));
  CHECK(heard_is(heard, L"a|b|1|2|"));
  for (i = 0; i < sizeof types / sizeof types[0]; ++i) {
    vo_table_reader_options_set_file_type(options, types[i]);
    CHECK(read_with(options, adapter));
    CHECK(heard_is(heard, L"a|b|1|2|"));
  }

  vo_table_reader_options_set_direction(options, 1); /* delimited text refuses it */
  CHECK(!read_with(options, adapter));
  for (i = 0; i < sizeof directions / sizeof directions[0]; ++i) {
    vo_table_reader_options_set_direction(options, directions[i]);
    CHECK(!read_with(options, adapter));
  }
  CHECK(heard_is(heard, L""));
  vo_table_reader_options_set_direction(options, 0);
  for (i = 0; i < sizeof directions / sizeof directions[0]; ++i) {
    vo_table_reader_options_set_direction(options, directions[i]);
    CHECK(read_with(options, adapter));
    CHECK(heard_is(heard, L"a|b|1|2|"));
  }

  vo_table_reader_options_set_file_type(options, 0); /* the extension decides again */
  CHECK(!read_with(options, adapter) || wcscmp(heard->text, L"a|b|1|2|") != 0);
  heard_is(heard, L"");
  vo_table_reader_options_close(options);
  remove_file(path);
}

static void no_source(const wchar_t* folder, vo_string_adp* adapter, struct heard* heard) {
  wchar_t missing[path_capacity];
  vo_table_reader_options* options;
  vo_table_reader* reader;

  wcscpy(missing, temporary);
  wcscat(missing, L"_gone");
  options = vo_table_reader_options_create(missing);
  reader = vo_table_reader_open(options); /* fits nothing, and is a reader all the same */
  CHECK(reader != NULL);
  CHECK(!vo_table_reader_read(reader));
  CHECK(!vo_table_reader_read_demo(reader, 5));
  CHECK(!vo_table_reader_read_only_headers(reader));
  CHECK(!vo_table_reader_is_ok(reader));
  CHECK(vo_table_reader_field_count(reader) == 0);
  CHECK(vo_table_reader_count(reader) == 0);
  CHECK(vo_table_reader_error_count(reader) == 0);
  vo_table_reader_set_table(reader, L"T");
  vo_table_reader_table_list(reader, adapter);
  vo_table_reader_field_list(reader, adapter);
  vo_table_reader_row(reader, 0, adapter);
  CHECK(heard_is(heard, L""));
  vo_table_reader_value_index(reader, 0, 0, adapter);
  CHECK(heard_is(heard, L"|"));
  vo_table_reader_close(reader);

  vo_table_reader_options_set_path(options, folder); /* a folder is no table */
  vo_table_reader_options_set_file_type(options, 1);
  CHECK(!read_with(options, adapter));
  CHECK(heard_is(heard, L""));
  vo_table_reader_options_close(options);

  vo_table_reader_close(NULL);
  vo_table_reader_options_close(NULL);
}

static void two_readers(vo_string_adp* adapter, struct heard* heard) {
  wchar_t first_path[path_capacity];
  wchar_t second_path[path_capacity];
  vo_table_reader_options* options;
  vo_table_reader* first;
  vo_table_reader* second;

  CHECK(write_file(L"_first.csv", "a\n1\n", 4, first_path));
  CHECK(write_file(L"_second.csv", "b\n2\n", 4, second_path));
  options = vo_table_reader_options_create(first_path);
  first = vo_table_reader_open(options);
  vo_table_reader_options_set_path(options, second_path);
  second = vo_table_reader_open(options);
  CHECK(vo_table_reader_read(second));
  CHECK(vo_table_reader_read(first));
  vo_table_reader_value_index(first, 0, 0, adapter);
  vo_table_reader_close(first);
  vo_table_reader_value_index(second, 0, 0, adapter);
  CHECK(heard_is(heard, L"1|2|"));
  vo_table_reader_close(second);
  vo_table_reader_options_close(options);
  remove_file(first_path);
  remove_file(second_path);
}

static void basic_library(vo_string_adp* adapter, struct heard* heard) {
  vo_strings* list = vo_strings_create();
  wchar_t executable[path_capacity];
  const wchar_t* path;
  size_t length;

  vo_string_adp_feed(adapter, L"one");
  vo_string_adp_feed_narrow(adapter, "two");
  vo_string_adp_feed(adapter, NULL);
  vo_string_adp_feed_narrow(adapter, NULL);
  CHECK(heard_is(heard, L"one|two|||"));
  CHECK(vo_string_adp_create(NULL) == NULL);
  CHECK(vo_string_adp_create_callback(NULL, heard) == NULL);
  vo_string_adp_feed(NULL, L"x");
  vo_string_adp_feed_narrow(NULL, "x");
  vo_string_adp_destroy(NULL);

  vo_strings_add(list, "b");
  vo_strings_add(list, NULL);
  CHECK(vo_strings_get_size(list) == 2);
  CHECK(strcmp(vo_strings_get_str(list, 0), "b") == 0);
  CHECK(strcmp(vo_strings_get_str(list, 1), "") == 0);
  CHECK(vo_strings_get_str(list, 2) == NULL);
  vo_strings_destroy(list);
  CHECK(vo_strings_get_size(NULL) == 0);
  CHECK(vo_strings_get_str(NULL, 0) == NULL);
  vo_strings_add(NULL, "x");
  vo_strings_destroy(NULL);

  path = vo_options_get_temp_wpath();
  length = wcslen(path);
  CHECK(length > 1 && (path[length - 1] == L'/' || path[length - 1] == L'\\'));
  path = vo_options_get_main_module_path();
  CHECK(wcslen(path) > 0 && wcslen(path) < path_capacity);
  wcsncpy(executable, path, path_capacity - 1);
  executable[path_capacity - 1] = 0;
  vo_options_set_main_module_path(L"/opt/suite/main");
  CHECK(wcscmp(vo_options_get_main_module_path(), L"/opt/suite/main") == 0);
  vo_options_set_main_module_path(NULL);
  CHECK(wcscmp(vo_options_get_main_module_path(), executable) == 0);
}

int main(int count, char** arguments) {
  static struct heard heard;
  wchar_t folder[path_capacity];
  vo_string_adp* adapter;
  size_t i;

  if (count != 2 || strlen(arguments[1]) >= path_capacity) {
    printf("usage: capi_test EXAMPLES_FOLDER\n");
    return 2;
  }
  for (i = 0; arguments[1][i] != 0; ++i) folder[i] = (wchar_t)(unsigned char)arguments[1][i];
  folder[i] = 0;
  if (!choose_temporary_name()) {
    printf("capi_test: no name for the temporary files\n");
    return 2;
  }

  adapter = vo_string_adp_create_callback(hear, &heard);
  CHECK(adapter != NULL);
  typical_request(adapter, &heard);
  results(adapter, &heard);
  text_options(adapter, &heard);
  ignored_values(adapter, &heard);
  no_source(folder, adapter, &heard);
  two_readers(adapter, &heard);
  basic_library(adapter, &heard);
  vo_string_adp_destroy(adapter);
  printf("%d checks, %d failed\n", checks, failures);
  return failures == 0 ? 0 : 1;
}

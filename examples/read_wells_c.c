/* Reads examples/wells_cp1251.csv through the C interface and prints a short report.
 *
 *     read_wells_c [folder]      the folder that holds wells_cp1251.csv; "examples" when not given
 *
 * Shown here: options, opening and reading, strings that come back through an adapter made of a
 * function, a loop over the rows, the list of rejected lines, closing. Plain C99. */
#include <inttypes.h>
#include <locale.h>
#include <stdio.h>
#include <stdlib.h>
#include <wchar.h>

#include "table_rw/capi/vo_table_reader.h"

/* Prints one character as UTF-8. */
static void print_character(uint32_t character) {
  if (character < 0x80) {
    putchar((int)character);
    return;
  }
  if (character < 0x800) {
    putchar((int)(0xC0 | (character >> 6)));
  } else {
    if (character < 0x10000) {
      putchar((int)(0xE0 | (character >> 12)));
    } else {
      putchar((int)(0xF0 | (character >> 18)));
      putchar((int)(0x80 | ((character >> 12) & 0x3F)));
    }
    putchar((int)(0x80 | ((character >> 6) & 0x3F)));
  }
  putchar((int)(0x80 | (character & 0x3F)));
}

/* Prints wide text as UTF-8. Where wchar_t has 16 bits, characters beyond U+FFFF are two units. */
static void print_text(const wchar_t* text) {
  for (; *text != L'\0'; ++text) {
    uint32_t character = (uint32_t)*text;
    if (character >= 0xD800 && character < 0xDC00 && (uint32_t)text[1] >= 0xDC00 &&
        (uint32_t)text[1] < 0xE000) {
      ++text;
      character = 0x10000 + ((character - 0xD800) << 10) + ((uint32_t)*text - 0xDC00);
    }
    print_character(character);
  }
}

/* What the adapter calls for every string that the library hands over. */
static void receive(void* user, const wchar_t* text) {
  int* received = user;
  if (*received > 0) printf(" | ");
  print_text(text);
  ++*received;
}

static wchar_t* path_of(const char* folder, const wchar_t* name) {
  const size_t length = mbstowcs(NULL, folder, 0);
  wchar_t* path = NULL;
  if (length == (size_t)-1) return NULL;
  path = malloc((length + 1 + wcslen(name) + 1) * sizeof *path);
  if (path == NULL) return NULL;
  mbstowcs(path, folder, length + 1);
  wcscat(path, L"/");
  wcscat(path, name);
  return path;
}

static void report(vo_table_reader* reader) {
  int received = 0;
  uint64_t row = 0;
  uint64_t i = 0;
  vo_string_adp* const adapter = vo_string_adp_create_callback(receive, &received);

  printf("%" PRIu64 " fields: ", vo_table_reader_field_count(reader));
  vo_table_reader_field_list(reader, adapter);
  printf("\n%" PRIu64 " rows\n", vo_table_reader_count(reader));
  for (row = 0; row < vo_table_reader_count(reader); ++row) {
    received = 0;
    printf("  ");
    vo_table_reader_row(reader, row, adapter);
    printf("\n");
  }
  received = 0;
  printf("operator in the last row: ");
  vo_table_reader_value_name(reader, L"Оператор", vo_table_reader_count(reader) - 1, adapter);
  printf("\n%" PRIu64 " rejected lines\n", vo_table_reader_error_count(reader));
  for (i = 0; i < vo_table_reader_error_count(reader); ++i)
    printf("  line %" PRIu64 "\n", vo_table_reader_error_string(reader, i) + 1);
  vo_string_adp_destroy(adapter);
}

int main(int count, char** arguments) {
  vo_table_reader_options* options = NULL;
  vo_table_reader* reader = NULL;
  wchar_t* path = NULL;
  int result = 1;

  setlocale(LC_CTYPE, ""); /* for mbstowcs; the library does not need it */
  path = path_of(count > 1 ? arguments[1] : "examples", L"wells_cp1251.csv");
  if (path == NULL) {
    fprintf(stderr, "this folder's name cannot be converted\n");
    return 1;
  }
  options = vo_table_reader_options_create(path);
  vo_table_reader_options_set_header_position(options, 0);
  vo_table_reader_options_set_delimiter(options, L';');
  vo_table_reader_options_set_encoding(options, 8); /* CP1251 */
  reader = vo_table_reader_open(options);
  vo_table_reader_options_close(options);
  free(path);

  if (vo_table_reader_read(reader)) {
    report(reader);
    result = 0;
  } else {
    fprintf(stderr, "cannot read wells_cp1251.csv in this folder\n");
  }
  vo_table_reader_close(reader);
  return result;
}

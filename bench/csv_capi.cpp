// This library's C interface over a table of delimited text: csv_capi FILE ENCODING
// Takes every value out, one by one and row by row, through a callback adapter.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <filesystem>
#include <string>

#include "platform/vok_basic.h"
#include "report.h"
#include "table_rw/capi/vo_table_reader.h"

namespace {

struct received {
  std::uint64_t values = 0;
  std::uint64_t characters = 0;
};

void receive(void* user, const wchar_t* text) {
  received& total = *static_cast<received*>(user);
  ++total.values;
  total.characters += std::wcslen(text);
}

vo_table_reader* readTable(const char* path, int encoding) {
  vo_table_reader_options* const options =
      vo_table_reader_options_create(std::filesystem::path(path).wstring().c_str());
  vo_table_reader_options_set_file_type(options, 1);
  vo_table_reader_options_set_encoding(options, encoding);
  vo_table_reader* const reader = vo_table_reader_open(options);
  vo_table_reader_options_close(options);
  if (!vo_table_reader_read(reader)) bench::fail("cannot be read", path);
  return reader;
}

/// Measures a way of taking all values out of the table.
template <class Take>
void measure(const char* name, Take take) {
  received total;
  vo_string_adp* const adapter = vo_string_adp_create_callback(receive, &total);
  const bench::stopwatch watch;
  take(adapter);
  bench::report(name, watch.seconds(),
                {
                    {"values",     total.values    },
                    {"characters", total.characters}
  });
  vo_string_adp_destroy(adapter);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: csv_capi FILE ENCODING\n");
    return 2;
  }
  vo_table_reader* const reader = readTable(argv[1], std::atoi(argv[2]));
  const std::uint64_t columns = vo_table_reader_field_count(reader);
  const std::uint64_t rows = vo_table_reader_count(reader);
  measure("c-value", [=](vo_string_adp* adapter) {
    for (std::uint64_t row = 0; row < rows; ++row)
      for (std::uint64_t column = 0; column < columns; ++column)
        vo_table_reader_value_index(reader, column, row, adapter);
  });
  measure("c-row", [=](vo_string_adp* adapter) {
    for (std::uint64_t row = 0; row < rows; ++row) vo_table_reader_row(reader, row, adapter);
  });
  vo_table_reader_close(reader);
  return 0;
}

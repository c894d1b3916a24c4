// The library libcsv on the same file: csv_libcsv FILE
// It only parses; its values are kept the cheapest way, in one arena with an end offset each.
#include <csv.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "blockFile.h"
#include "report.h"

namespace {

struct table {
  std::vector<char> text;
  std::vector<std::uint32_t> ends;
  std::uint64_t rows = 0;
};

void keepValue(void* value, std::size_t size, void* user) {
  table& target = *static_cast<table*>(user);
  const char* const bytes = static_cast<const char*>(value);
  target.text.insert(target.text.end(), bytes, bytes + size);
  target.ends.push_back(static_cast<std::uint32_t>(target.text.size()));
}

void countRow(int, void* user) {
  table& target = *static_cast<table*>(user);
  if (target.rows++ > 0) return;
  target.text.clear();  // the header
  target.ends.clear();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: csv_libcsv FILE\n");
    return 2;
  }
  const std::size_t size = std::filesystem::file_size(argv[1]);
  const bench::stopwatch watch;
  bench::blockFile file(argv[1]);
  csv_parser parser;
  if (csv_init(&parser, 0) != 0) bench::fail("cannot be set up", "libcsv");
  csv_set_delim(&parser, ';');
  table found;
  found.text.reserve(size);
  found.ends.reserve(size / 8);
  std::vector<char> block(bench::blockSize);
  while (const std::size_t count = file.next(block.data()))
    if (csv_parse(&parser, block.data(), count, keepValue, countRow, &found) != count)
      bench::fail(csv_strerror(csv_error(&parser)), argv[1]);
  csv_fini(&parser, keepValue, countRow, &found);
  bench::report(
      "libcsv", watch.seconds(),
      {
          {"rows",   found.rows - 1   },
          {"values", found.ends.size()},
          {"bytes",  found.text.size()}
  });
  bench::leave();
}

// This library reading the table of an SQLite database through its classes: sqlite_table FILE
#include <cstdint>
#include <filesystem>

#include "report.h"
#include "table_rw/core/tableReader.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: sqlite_table FILE\n");
    return 2;
  }
  const bench::stopwatch watch;
  tableRW::tableReaderOptions options(std::filesystem::path(argv[1]).wstring());
  options.file_type = tableRW::fileTypeSqlite;
  options.table = L"wells";
  tableRW::tableReader* const reader = tableRW::tableReader::open(options);
  if (!reader->read()) bench::fail("cannot be read", argv[1]);
  const std::uint64_t rows = reader->count();
  bench::report("read", watch.seconds(),
                {
                    {"rows",   rows                       },
                    {"values", rows * reader->fieldCount()}
  });
  bench::leave();
}

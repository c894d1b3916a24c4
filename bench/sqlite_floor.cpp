// The yardstick of reading an SQLite table: sqlite_floor FILE
//
// The engine's plain C interface with its default flags; every value is asked for as text and its bytes kept
// one behind the other, with one 32-bit end offset each. Nothing is checked or decoded.
#include <sqlite3.h>

#include <cstdint>
#include <cstring>

#include "report.h"
#include "table_rw/text/growingArray.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: sqlite_floor FILE\n");
    return 2;
  }
  const bench::stopwatch watch;
  sqlite3* database = nullptr;
  sqlite3_stmt* all = nullptr;
  if (sqlite3_open_v2(argv[1], &database, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK ||
      sqlite3_prepare_v2(database, "SELECT * FROM wells", -1, &all, nullptr) != SQLITE_OK)
    bench::fail("cannot be read", argv[1]);
  const int columns = sqlite3_column_count(all);
  tableRW::growingArray<char> arena;
  tableRW::growingArray<std::uint32_t> ends;
  std::uint64_t rows = 0;
  for (; sqlite3_step(all) == SQLITE_ROW; ++rows) {
    for (int i = 0; i < columns; ++i) {
      const void* const text = sqlite3_column_text(all, i);
      const auto size = static_cast<std::size_t>(sqlite3_column_bytes(all, i));
      arena.append(static_cast<const char*>(text), size);
      ends.push(static_cast<std::uint32_t>(arena.size()));
    }
  }
  bench::report("b", watch.seconds(),
                {
                    {"rows",   rows        },
                    {"values", ends.size() },
                    {"bytes",  arena.size()}
  });
  bench::leave();
}

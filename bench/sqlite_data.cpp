// Puts ten columns of the wells table (see wells.h) into an SQLite database:
//
//   sqlite_data text|mixed WELLS.csv ROWS FILE
//
// The table `wells`; of `mixed` the columns of numbers are INTEGER and REAL, of `text` all are TEXT. The same
// arguments give the same rows. Reports what a reader should find: rows, values, and the bytes of all values
// as the engine's text.
#include <sqlite3.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "report.h"
#include "wells.h"

namespace {

// WELL, N, DEPTH, FIELD, GR, NPHI, RHOB, CODE, LITH, PERM
constexpr std::size_t columnsTaken[] = {0, 1, 2, 3, 4, 5, 6, 8, 9, 10};

constexpr const char* createMixed =
    "CREATE TABLE wells(well TEXT, n INTEGER, depth REAL, field TEXT, gr REAL, nphi REAL, rhob "
    "REAL,"
    " code INTEGER, lith TEXT, perm REAL)";
constexpr const char* createText =
    "CREATE TABLE wells(well TEXT, n TEXT, depth TEXT, field TEXT, gr TEXT, nphi TEXT, rhob TEXT,"
    " code TEXT, lith TEXT, perm TEXT)";

void run(sqlite3* database, const char* sql) {
  if (sqlite3_exec(database, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
    bench::fail(sqlite3_errmsg(database), sql);
}

std::uint64_t fill(sqlite3* database, const char* source, std::uint64_t rows) {
  sqlite3_stmt* insert = nullptr;
  sqlite3_prepare_v2(database, "INSERT INTO wells VALUES(?,?,?,?,?,?,?,?,?,?)", -1, &insert,
                     nullptr);
  std::ifstream file(source);
  std::string line;
  std::getline(file, line);  // the header
  std::uint64_t done = 0;
  for (; done < rows && std::getline(file, line); ++done) {
    std::string_view values[bench::wellsColumns];
    std::string_view rest = line;
    for (std::string_view& value : values) {
      const std::size_t end = rest.find(';');
      value = rest.substr(0, end);
      rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    int parameter = 0;
    for (const std::size_t column : columnsTaken)
      sqlite3_bind_text(insert, ++parameter, values[column].data(),
                        static_cast<int>(values[column].size()), SQLITE_STATIC);
    sqlite3_step(insert);
    sqlite3_reset(insert);
  }
  sqlite3_finalize(insert);
  return done;
}

std::uint64_t bytesOfValues(sqlite3* database) {
  std::uint64_t bytes = 0;
  sqlite3_stmt* all = nullptr;
  sqlite3_prepare_v2(database, "SELECT * FROM wells", -1, &all, nullptr);
  while (sqlite3_step(all) == SQLITE_ROW) {
    for (int i = 0; i < sqlite3_column_count(all); ++i) {
      sqlite3_column_text(all, i);
      bytes += static_cast<std::uint64_t>(sqlite3_column_bytes(all, i));
    }
  }
  sqlite3_finalize(all);
  return bytes;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) {
    std::fprintf(stderr, "usage: sqlite_data text|mixed WELLS.csv ROWS FILE\n");
    return 2;
  }
  const bool mixed = std::string_view(argv[1]) == "mixed";
  std::remove(argv[4]);
  sqlite3* database = nullptr;
  if (sqlite3_open(argv[4], &database) != SQLITE_OK) bench::fail("cannot be created", argv[4]);
  const bench::stopwatch watch;
  run(database, "PRAGMA journal_mode=off; PRAGMA synchronous=off; BEGIN");
  run(database, mixed ? createMixed : createText);
  const std::uint64_t rows = fill(database, argv[2], std::strtoull(argv[3], nullptr, 10));
  run(database, "COMMIT");
  const std::uint64_t bytes = bytesOfValues(database);
  sqlite3_close(database);
  bench::report(argv[1], watch.seconds(),
                {
                    {"rows",   rows                          },
                    {"values", rows * std::size(columnsTaken)},
                    {"bytes",  bytes                         }
  });
  return 0;
}

// The first rows of the wells table as UTF-8, for programs that write tables: cut at `;` and LF, nothing else.
// The bytes are held whole; every value ends in a NUL, so that C libraries can take it as it lies there.
#ifndef VOK_BENCH_ROWSFILE_H
#define VOK_BENCH_ROWSFILE_H

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

#include "report.h"
#include "wells.h"

namespace bench {

inline constexpr std::size_t writtenRows = 200000;

struct rowsFile {
  std::string bytes;
  std::vector<const char*> cells;  // of the header and writtenRows rows, wellsColumns each

  explicit rowsFile(const char* path) {
    std::FILE* const file = std::fopen(path, "rb");
    if (file == nullptr) fail("cannot be opened", path);
    std::vector<char> block(std::size_t{1} << 20);
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), file))
      bytes.append(block.data(), count);
    std::fclose(file);
    constexpr std::size_t wanted = (1 + writtenRows) * wellsColumns;
    cells.reserve(wanted);
    char* begin = bytes.data();
    for (char& byte : bytes) {
      if (byte != ';' && byte != '\n') continue;
      byte = '\0';
      cells.push_back(begin);
      begin = &byte + 1;
      if (cells.size() == wanted) return;
    }
    fail("holds too few rows", path);
  }
};

}  // namespace bench

#endif

// A file read in blocks straight into the caller's buffer, one system call a block: the stream's
// own buffer is switched off.
#ifndef VOK_BENCH_BLOCKFILE_H
#define VOK_BENCH_BLOCKFILE_H

#include <cstddef>
#include <cstdio>

#include "report.h"

namespace bench {

inline constexpr std::size_t blockSize = 256 * 1024;

class blockFile {
 public:
  explicit blockFile(const char* path) : file_(std::fopen(path, "rb")) {
    if (file_ == nullptr) fail("cannot be opened", path);
    std::setvbuf(file_, nullptr, _IONBF, 0);
  }
  blockFile(const blockFile&) = delete;
  blockFile& operator=(const blockFile&) = delete;
  ~blockFile() { std::fclose(file_); }

  /// Fills the buffer with the next block. @return its size, 0 at the end of the file
  std::size_t next(void* buffer) { return std::fread(buffer, 1, blockSize, file_); }

 private:
  std::FILE* file_;
};

}  // namespace bench

#endif

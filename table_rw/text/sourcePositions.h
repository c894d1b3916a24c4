// Where the bytes that textModeInput hands out stand in the file itself.
//
// Folding makes a text shorter than its file: a CR before an LF is taken, and not handed out. Whoever counts
// the bytes that were handed out asks here for the byte of the file that the next one comes from. The file is
// read a second time for that, forward only and in blocks, so the way into a text costs one read of it.
//
// The file has to be the one that was read, unchanged; of another one the answers mean nothing, but they
// never lie behind its end. One object belongs to one thread at a time.
#ifndef VOK_TABLE_RW_TEXT_SOURCEPOSITIONS_H
#define VOK_TABLE_RW_TEXT_SOURCEPOSITIONS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/files.h"

namespace tableRW {

class sourcePositions {
 public:
  /// @param blockSize  bytes asked of the file at a time; tests choose small ones
  explicit sourcePositions(std::size_t blockSize = std::size_t{256} * 1024) : block_(blockSize) {}

  bool open(const std::wstring& path) { return file_.openForReading(path); }

  /// Whether a read has failed, so that the offsets behind it are wrong.
  bool hasFailed() const { return file_.hasFailed(); }

  /// The offset in the file at which `folded` bytes have been handed out, before a CR that is taken there.
  /// @param folded  not less than in the call before
  std::uint64_t of(std::uint64_t folded);

 private:
  bool nextIsLineFeed(std::size_t at);

  platform::binaryFile file_;
  std::vector<char> block_;
  std::size_t size_ = 0;          // of what is in the block
  std::size_t next_ = 0;          // first byte of it that is not passed yet
  std::uint64_t blockStart_ = 0;  // its place in the file
  std::uint64_t folded_ = 0;      // bytes handed out for what is passed
};

}  // namespace tableRW

#endif

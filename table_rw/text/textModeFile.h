// Files in text mode, as the Windows C runtime reads and writes them, on both targets.
//
// Reading: CR LF becomes LF; a CR before anything else stays, also at the end of the file; the byte 0x1A
// ends the file wherever it stands. Read errors look like the end of the file; hasFailed tells them apart.
// Writing: every LF becomes CR LF, so text that already holds CR LF gets CR CR LF.
//
// One object belongs to one thread at a time.
#ifndef VOK_TABLE_RW_TEXT_TEXTMODEFILE_H
#define VOK_TABLE_RW_TEXT_TEXTMODEFILE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/files.h"
#include "table_rw/text/growingArray.h"

namespace tableRW {

/// A file that is read in text mode, in blocks.
class textModeInput {
 public:
  /// @param blockSize  bytes asked of the file at a time; tests choose small ones
  explicit textModeInput(std::size_t blockSize = std::size_t{256} * 1024) : blockSize_(blockSize) {}

  /// Opens a file at its start; one already open here is closed first.
  bool open(const std::wstring& path);
  bool isOpen() const { return file_.isOpen(); }
  void close();

  /// Reads up to and including the next LF, `capacity` bytes at most, NUL bytes like any other: what
  /// the C function fgets reads into a buffer of `capacity` + 1 bytes.
  /// @return bytes read; 0 at the end of the file
  std::size_t getChunk(char* buffer, std::size_t capacity);

  /// The bytes that lie ready, line ends folded. At least `readAhead` bytes behind them may be read too;
  /// they are zero or the file's. Valid until the next call of anything else here.
  std::string_view buffered() const { return {block_.data() + next_, block_.size() - next_}; }
  static constexpr std::size_t readAhead = 64;

  /// Adds the next block of the file behind the bytes that lie ready.
  /// @return false at the end of the file
  bool fillMore();

  /// Takes `count` of the bytes that lie ready.
  void skip(std::size_t count) {
    next_ += count;
    taken_ += count;
  }

  /// Bytes taken since the file was opened, line ends folded; see sourcePositions.h for their places.
  std::uint64_t taken() const { return taken_; }

  /// Whether a read has met the end of the file, as the C function feof tells it: after a last line
  /// that ends in LF only the next read does.
  bool atEnd() const { return atEnd_; }

  /// Whether a read of the file last opened has failed, so that its end may not be what was met.
  bool hasFailed() const { return file_.hasFailed(); }

 private:
  std::size_t blockSize_;
  platform::binaryFile file_;
  growingArray<char> block_;  // folded bytes
  std::size_t next_ = 0;      // first byte not yet handed out
  std::uint64_t taken_ = 0;   // bytes handed out since the file was opened
  bool carriedCr_ = false;    // the last byte read was a CR, whose next byte is not known yet
  bool exhausted_ = false;    // nothing more is to be read from the file
  bool atEnd_ = false;
};

/// A file that is written in text mode, through a buffer; closed with its owner.
class textModeOutput {
 public:
  textModeOutput() = default;
  textModeOutput(const textModeOutput&) = delete;
  textModeOutput& operator=(const textModeOutput&) = delete;
  ~textModeOutput();

  /// Creates or empties a file; one already open here is closed first.
  bool open(const std::wstring& path);
  bool isOpen() const { return file_.isOpen(); }

  void write(std::string_view text);

  /// Room in the buffer for `size` bytes, for text without an LF that is made in place; valid until the
  /// next call of anything here. What is in it counts when it is handed to writeLine.
  char* room(std::size_t size) { return buffer_.room(size + 2); }

  /// Writes a line, whose first `size` bytes, made in the room, hold no LF, and its line end.
  void writeLine(std::size_t size);

  /// @return false when any byte written since `open` was lost
  bool close();

 private:
  void addLineEnd();
  void flushWhenFull();
  void flush();

  platform::binaryFile file_;
  growingArray<char> buffer_;
  bool failed_ = false;
};

}  // namespace tableRW

#endif

// A file that appears under its name only when it is whole: written beside it, renamed at the end.
#ifndef VOK_CONVERTER_TEXT_OUTPUTFILE_H
#define VOK_CONVERTER_TEXT_OUTPUTFILE_H

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/files.h"

namespace converter {

/// What was written goes away with its owner unless it was finished before.
class outputFile {
 public:
  /// @param path  of the temporary file
  explicit outputFile(std::wstring path);
  outputFile(const outputFile&) = delete;
  outputFile& operator=(const outputFile&) = delete;
  ~outputFile();

  bool open() { return isOpen_ = file_.openForWriting(path_); }

  /// What is added here is written when there is enough of it.
  std::string& buffer() { return buffer_; }
  void flushWhenFull() {
    if (buffer_.size() >= fullSize) flush();
  }

  /// @return false when anything was lost since `open`
  bool close();

  /// Closes the file and gives it its name; what had it before is replaced.
  bool finishAs(const std::wstring& target);

  bool hasFailed() const { return hasFailed_; }
  /// Bytes so far.
  std::uint64_t size() const { return flushed_ + buffer_.size(); }
  const std::wstring& path() const { return path_; }

 private:
  static constexpr std::size_t fullSize = std::size_t{256} * 1024;
  void flush();

  std::wstring path_;
  platform::binaryFile file_;
  std::string buffer_;
  std::uint64_t flushed_ = 0;
  bool isOpen_ = false;
  bool hasFailed_ = false;
};

}  // namespace converter

#endif

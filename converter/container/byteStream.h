// A sequence of bytes that can be read from any place: a file, or a stream inside a compound file.
#ifndef VOK_CONVERTER_CONTAINER_BYTESTREAM_H
#define VOK_CONVERTER_CONTAINER_BYTESTREAM_H

#include <cstddef>
#include <cstdint>
#include <optional>

#include "platform/files.h"

namespace converter {

class byteStream {
 public:
  byteStream() = default;
  byteStream(const byteStream&) = delete;
  byteStream& operator=(const byteStream&) = delete;
  virtual ~byteStream() = default;

  /// Reads up to `size` bytes, fewer only at the end of the stream. @return the number of bytes read
  virtual std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t size) = 0;

  /// How long the stream is said to be; it may end before that. Nothing when nobody says.
  virtual std::optional<std::uint64_t> statedSize() const { return std::nullopt; }
};

/// A whole file as a stream. The file must live as long.
class fileStream final : public byteStream {
 public:
  explicit fileStream(platform::binaryFile& file) : file_(&file) {}
  std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t size) override {
    return file_->readAt(offset, buffer, size);
  }

 private:
  platform::binaryFile* file_;
};

}  // namespace converter

#endif

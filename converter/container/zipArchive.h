// ZIP archives: the members that the central directory lists, each read as a stream.
//
// Names are compared with `/` for `\`, without a leading `/`, and, where none is equal, without regard to
// ASCII letter case, as the programs that write workbooks differ in all three; of several members of one name
// the last counts. A name is only ever compared, never a path of the disk, so `..` in it does nothing.
//
// Read are members that are stored or deflated, ZIP64 included. Refused, with a message: an archive without
// its directory, encrypted members, other methods of compression, a member whose bytes, size or checksum are
// not what the directory says, and one that inflates past 1 GiB to more than a hundred times its size.
//
// FORMAT: the local headers' sizes may be zero (bit 3 of the flags), so sizes come from the directory alone.
// One object belongs to one thread at a time.
#ifndef VOK_CONVERTER_CONTAINER_ZIPARCHIVE_H
#define VOK_CONVERTER_CONTAINER_ZIPARCHIVE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/files.h"

struct z_stream_s;  // of zlib

namespace converter {

struct zipMember {
  std::uint64_t headerOffset = 0;
  std::uint64_t compressedSize = 0;
  std::uint64_t size = 0;
  std::uint32_t checksum = 0;
  std::uint16_t method = 0;
  std::uint16_t flags = 0;
};

class zipArchive {
 public:
  /// Reads the directory. The file must live as long as the archive.
  /// @param problem  receives the reason when the answer is false
  bool open(platform::binaryFile& file, std::string& problem);

  /// Null when there is none.
  const zipMember* find(std::string_view name) const;

  platform::binaryFile& file() const { return *file_; }

 private:
  struct directoryPlace {
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    std::uint64_t entries = 0;
  };
  bool findDirectory(directoryPlace& place);
  bool readDirectory(const directoryPlace& place);

  platform::binaryFile* file_ = nullptr;
  std::unordered_map<std::string, zipMember> members_;
  std::unordered_map<std::string, zipMember> lowerCaseMembers_;
};

/// The bytes of one member, inflated as they are read.
class zipMemberReader {
 public:
  zipMemberReader();
  zipMemberReader(const zipMemberReader&) = delete;
  zipMemberReader& operator=(const zipMemberReader&) = delete;
  ~zipMemberReader();

  /// Goes to the beginning of a member. The archive must live as long as the reader.
  bool open(const zipArchive& archive, const zipMember& member, std::string& problem);

  /// Reads the next bytes.
  /// @return their number, 0 at the end of the member, whose checksum was right then; negative after a
  ///         failure, whose reason is in `problem`
  std::ptrdiff_t read(void* buffer, std::size_t size, std::string& problem);

  /// Limits of the refusal of members that inflate too much; tests lower the first.
  static constexpr std::uint64_t sizeThatIsNeverTooMuch = std::uint64_t{1} << 30;
  static constexpr std::uint64_t largestRatio = 100;
  void setSizeThatIsNeverTooMuch(std::uint64_t size) { neverTooMuch_ = size; }

 private:
  bool refill();
  std::ptrdiff_t readStored(void* buffer, std::size_t size, std::string& problem);
  std::ptrdiff_t readDeflated(void* buffer, std::size_t size, std::string& problem);
  std::ptrdiff_t finish(std::string& problem);

  platform::binaryFile* file_ = nullptr;
  zipMember member_;
  std::uint64_t place_ = 0;     // of the next compressed byte in the file
  std::uint64_t unread_ = 0;    // compressed bytes that are still in the file
  std::uint64_t produced_ = 0;  // bytes handed out
  unsigned long checksum_ = 0;
  bool isAtEnd_ = false;
  std::uint64_t neverTooMuch_ = sizeThatIsNeverTooMuch;
  std::vector<unsigned char> input_;
  std::unique_ptr<z_stream_s> inflater_;
  bool isInflating_ = false;
};

}  // namespace converter

#endif

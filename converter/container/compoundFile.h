// Compound files (OLE2): a small file system in a file, in which .xls workbooks and encrypted .xlsx packages
// stand.
//
//     header, then sectors of 512 or 4096 bytes
//     FAT          for each sector the next one of its stream
//     directory    names and first sectors of the streams
//     mini stream  holds the streams below 4096 bytes in sectors of 64, with a FAT of its own
//
// Streams are found by name without regard to ASCII letter case, over all entries of the directory: some
// writers leave its tree wrong. A chain of sectors that loops, or leads out of the file, ends there, and behind
// a sector that is cut short; the stream is as long as its chain, whatever its entry says. Memory: the FAT, four bytes a sector.
//
// FORMAT: the last sector may be cut short, and the file's length need not be a multiple of a sector.
// One object belongs to one thread at a time.
#ifndef VOK_CONVERTER_CONTAINER_COMPOUNDFILE_H
#define VOK_CONVERTER_CONTAINER_COMPOUNDFILE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "converter/container/byteStream.h"

namespace converter {

class compoundFile {
 public:
  /// Whether a file begins like a compound file. @param bytes  its first `size` bytes
  static bool isCompoundFile(const unsigned char* bytes, std::size_t size);

  /// Reads FAT and directory. The file must live as long.
  /// @param problem  receives the reason when the answer is false
  bool open(platform::binaryFile& file, std::string& problem);

  /// A stream by its name (ASCII); null when there is none. It must not outlive the compound file.
  std::unique_ptr<byteStream> stream(std::string_view name);

 private:
  struct entry {
    std::string name;
    std::uint8_t type = 0;
    std::uint32_t start = 0;
    std::uint64_t size = 0;
  };

  std::vector<std::uint32_t> sectorsOf(std::uint32_t first) const;
  bool readTable(const unsigned char* header);
  void appendTableSector(std::uint32_t sector);
  void readDirectory(std::uint32_t first);
  bool readSector(std::uint32_t sector, std::vector<unsigned char>& bytes);

  platform::binaryFile* file_ = nullptr;
  std::size_t sectorSize_ = 0;
  std::uint64_t sectorBytes_ = 0;  // of the file, behind the sector of its header
  std::uint64_t sectorCount_ = 0;
  std::uint32_t miniCutoff_ = 0;
  std::vector<std::uint32_t> table_;
  std::vector<std::uint32_t> miniTable_;
  std::vector<entry> entries_;
  std::unique_ptr<byteStream> miniStream_;
  std::uint64_t miniBytes_ = 0;
};

}  // namespace converter

#endif

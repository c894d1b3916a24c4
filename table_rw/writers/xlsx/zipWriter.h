// A ZIP archive being written: files are added one by one, deflated in a stream.
//
// Every member has a local header with its sizes and checksum in it (no data descriptors, which some
// programs refuse), so the archive must be a file with positions; the header is completed when the member
// is written. Behind the members stand the central directory and its end record.
//
// Limits: the format without its 64-bit extension, which spreadsheet programs do not all read: 65,535
// members, none of them above 4 GiB less one byte, and no offset above that. What goes beyond is refused.
//
// FORMAT: PKWARE's APPNOTE. ODD: dates and times are those of the file in UTC; programs show them as local.
// Memory: two buffers and zlib's own. One object belongs to one thread at a time.
#ifndef VOK_TABLE_RW_WRITERS_XLSX_ZIPWRITER_H
#define VOK_TABLE_RW_WRITERS_XLSX_ZIPWRITER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "table_rw/writers/xlsx/packageDisk.h"

namespace SimpleXlsx {

/// What the format can hold; tests choose less.
struct zipLimits {
  std::size_t members = 0xFFFF;
  std::uint64_t memberSize = 0xFFFFFFFF;   // bytes, before and after compression
  std::uint64_t archiveSize = 0xFFFFFFFF;  // bytes up to the end record
};

class zipWriter {
 public:
  explicit zipWriter(packageDisk& disk, const zipLimits& limits = {})
      : disk_(disk), limits_(limits) {}
  zipWriter(const zipWriter&) = delete;
  zipWriter& operator=(const zipWriter&) = delete;

  /// Creates the archive; a file that is there is replaced.
  bool create(const std::wstring& path);

  /// Adds a file as the next member. Names that end as those of archives do are stored, all others deflated.
  /// @param name  in the archive, with `/` between folders
  /// @return false when the file cannot be read, a byte of it cannot be written, or a limit is passed; the
  ///         archive is of no use then
  bool add(const std::wstring& name, const std::wstring& path);

  /// Writes the directory and closes the file. @return false when any of it was lost
  bool finish();

 private:
  struct member {
    std::string name;  // UTF-8
    std::uint16_t method = 0;
    std::uint16_t time = 0;
    std::uint16_t date = 0;
    std::uint32_t checksum = 0;
    std::uint64_t packedSize = 0;
    std::uint64_t size = 0;
    std::uint64_t offset = 0;  // of the local header
  };

  bool put(std::string_view bytes);
  bool putData(platform::binaryFile& source, member& added);
  bool completeHeader(const member& added);
  bool fits(const member& added) const;

  packageDisk& disk_;
  zipLimits limits_;
  platform::binaryFile file_;
  std::uint64_t written_ = 0;
  std::uint64_t directorySize_ = 0;
  std::vector<member> members_;
};

}  // namespace SimpleXlsx

#endif

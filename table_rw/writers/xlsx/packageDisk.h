// The writing side of the disk, as the package needs it. Everything that can run out of room goes through
// here, so that a test can put a disk in its place that fills at the n-th write.
//
// No state; any thread.
#ifndef VOK_TABLE_RW_WRITERS_XLSX_PACKAGEDISK_H
#define VOK_TABLE_RW_WRITERS_XLSX_PACKAGEDISK_H

#include <cstddef>
#include <string>

#include "platform/files.h"

namespace SimpleXlsx {

class packageDisk {
 public:
  packageDisk() = default;
  packageDisk(const packageDisk&) = delete;
  packageDisk& operator=(const packageDisk&) = delete;
  virtual ~packageDisk();

  /// The operations of platform/files.h of the same names. @return false when the disk refuses
  virtual bool createFolder(const std::wstring& path);
  virtual bool openForWriting(platform::binaryFile& file, const std::wstring& path);
  virtual bool write(platform::binaryFile& file, const void* bytes, std::size_t size);
  virtual bool close(platform::binaryFile& file);

  /// The disk of this machine.
  static packageDisk& real();
};

}  // namespace SimpleXlsx

#endif

// A disk that refuses the n-th operation of the XLSX package and every later one, as a full disk does.
#ifndef VOK_TESTS_SUPPORT_FAILINGDISK_H
#define VOK_TESTS_SUPPORT_FAILINGDISK_H

#include <cstddef>
#include <limits>
#include <string>

#include "table_rw/writers/xlsx/packageDisk.h"

namespace testSupport {

class failingDisk : public SimpleXlsx::packageDisk {
 public:
  /// @param good  operations that succeed
  explicit failingDisk(std::size_t good = std::numeric_limits<std::size_t>::max()) : good_(good) {}

  bool createFolder(const std::wstring& path) override {
    return works() && packageDisk::createFolder(path);
  }
  bool openForWriting(platform::binaryFile& file, const std::wstring& path) override {
    return works() && packageDisk::openForWriting(file, path);
  }
  bool write(platform::binaryFile& file, const void* bytes, std::size_t size) override {
    return works() && packageDisk::write(file, bytes, size);
  }
  bool close(platform::binaryFile& file) override {
    const bool isGood = works();
    return packageDisk::close(file) && isGood;
  }

  std::size_t operations() const { return operations_; }
  bool hasFailed() const { return operations_ > good_; }

 private:
  bool works() { return operations_++ < good_; }

  std::size_t good_;
  std::size_t operations_ = 0;
};

}  // namespace testSupport

#endif

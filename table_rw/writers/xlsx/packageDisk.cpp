#include "table_rw/writers/xlsx/packageDisk.h"

namespace SimpleXlsx {

packageDisk::~packageDisk() = default;

bool packageDisk::createFolder(const std::wstring& path) { return platform::createFolder(path); }

bool packageDisk::openForWriting(platform::binaryFile& file, const std::wstring& path) {
  return file.openForWriting(path);
}

bool packageDisk::write(platform::binaryFile& file, const void* bytes, std::size_t size) {
  return file.write(bytes, size);
}

bool packageDisk::close(platform::binaryFile& file) { return file.close(); }

packageDisk& packageDisk::real() {
  static packageDisk disk;  // holds nothing that could change
  return disk;
}

}  // namespace SimpleXlsx

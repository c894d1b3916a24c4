// The part of an open file that is the same on both targets: whoever owns it closes it.
#include "platform/files.h"

#include <utility>

namespace platform {

binaryFile::binaryFile(binaryFile&& other) noexcept
    : handle_(std::exchange(other.handle_, closedHandle)), hasFailed_(other.hasFailed_) {}

binaryFile& binaryFile::operator=(binaryFile&& other) noexcept {
  if (this != &other) {
    close();
    handle_ = std::exchange(other.handle_, closedHandle);
    hasFailed_ = other.hasFailed_;
  }
  return *this;
}

binaryFile::~binaryFile() { close(); }

}  // namespace platform

#include "tests/support/fileLocks.h"

#include <fcntl.h>
#include <unistd.h>

#include "platform/files.h"

namespace testSupport {

bool ownsLockOn(const std::wstring& path) {
  const int file = ::open(platform::utf8Path(path).c_str(), O_RDWR | O_CLOEXEC);
  if (file < 0) return false;
  // A lock of an open file description meets those of its own process too.
  struct flock wanted = {};
  wanted.l_type = F_WRLCK;
  wanted.l_whence = SEEK_SET;
  const bool answered = ::fcntl(file, F_OFD_GETLK, &wanted) == 0;
  ::close(file);
  return answered && wanted.l_type != F_UNLCK;
}

}  // namespace testSupport

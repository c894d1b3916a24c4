#include "tests/support/lostFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include "platform/files.h"

namespace testSupport {

bool loseFile(const std::wstring& path) {
  struct stat wanted = {};
  if (::stat(platform::utf8Path(path).c_str(), &wanted) != 0) return false;
  constexpr int mostDescriptors = 1024;
  for (int descriptor = STDERR_FILENO + 1; descriptor < mostDescriptors; ++descriptor) {
    struct stat found = {};
    if (::fstat(descriptor, &found) == 0 && found.st_dev == wanted.st_dev &&
        found.st_ino == wanted.st_ino)
      return ::close(descriptor) == 0;
  }
  return false;
}

}  // namespace testSupport

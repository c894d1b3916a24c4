#include "tests/support/namedPipe.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files.h"

namespace testSupport {

bool makeNamedPipe(const std::wstring& path) {
  return ::mkfifo(platform::utf8Path(path).c_str(), 0600) == 0;
}

bool releaseWriter(const std::wstring& path) {
  const int pipe = ::open(platform::utf8Path(path).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (pipe < 0) return false;
  // The system tells of a hang-up as soon as a writer has come and gone.
  pollfd waiting{pipe, POLLIN, 0};
  constexpr int patience = 100;  // milliseconds
  const bool hadWriter = ::poll(&waiting, 1, patience) > 0;
  ::close(pipe);
  return hadWriter;
}

}  // namespace testSupport

#include "tests/support/streamRedirection.h"

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>

#include "platform/posix/nativePath.h"

namespace testSupport {
namespace {

int descriptorOf(platform::standardStream stream) {
  return stream == platform::standardStream::output ? STDOUT_FILENO : STDERR_FILENO;
}

// Takes the place of the stream and closes the descriptor it came from.
bool moveDescriptor(int from, platform::standardStream to) {
  if (from < 0) return false;
  const bool moved = ::dup2(from, descriptorOf(to)) >= 0;
  ::close(from);
  return moved;
}

}  // namespace

streamRedirection::streamRedirection(platform::standardStream stream) : stream_(stream) {
  std::fflush(nullptr);
  original_ = ::dup(descriptorOf(stream));
}

streamRedirection::~streamRedirection() {
  moveDescriptor(static_cast<int>(original_), stream_);
  if (otherEnd_ >= 0) ::close(static_cast<int>(otherEnd_));
}

bool streamRedirection::toFile(const std::wstring& path) {
  return moveDescriptor(
      ::open(platform::nativePath(path).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666), stream_);
}

bool streamRedirection::toClosedPipe() {
  int ends[2];
  if (::pipe(ends) != 0) return false;
  ::close(ends[0]);
  ::signal(SIGPIPE, SIG_IGN);  // as the program that uses the console service does
  return moveDescriptor(ends[1], stream_);
}

bool streamRedirection::toTerminal(int columns) {
  otherEnd_ = ::posix_openpt(O_RDWR | O_NOCTTY);
  const int terminal = static_cast<int>(otherEnd_);
  if (terminal < 0 || ::grantpt(terminal) != 0 || ::unlockpt(terminal) != 0) return false;
  winsize size{};
  size.ws_row = 25;
  size.ws_col = static_cast<unsigned short>(columns);
  if (::ioctl(terminal, TIOCSWINSZ, &size) != 0) return false;
  const char* const name = ::ptsname(terminal);
  return name != nullptr && moveDescriptor(::open(name, O_WRONLY | O_NOCTTY), stream_);
}

}  // namespace testSupport

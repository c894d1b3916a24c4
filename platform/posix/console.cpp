#include "platform/console.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/posix/nativePath.h"

namespace platform {
namespace {

constexpr std::size_t bufferSize = 64 * 1024;
constexpr int defaultWidth = 80;

int descriptorOf(standardStream stream) {
  return stream == standardStream::output ? STDOUT_FILENO : STDERR_FILENO;
}

bool writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
      // Whoever shares the pipe made it non-blocking; to us it is a pipe that is full for a while.
      pollfd ready{descriptor, POLLOUT, 0};
      if (::poll(&ready, 1, -1) < 0 && errno != EINTR) return false;
    } else if (count == 0 || errno != EINTR) {
      return false;
    }
  }
  return true;
}

class bufferedStream {
 public:
  explicit bufferedStream(int descriptor) : descriptor_(descriptor) {}

  bool write(std::wstring_view text) {
    pending_ += nativeBytes(text);
    if (pending_.size() >= bufferSize) handOver();
    return !failed_;
  }

  bool flush() {
    handOver();
    return !std::exchange(failed_, false);
  }

 private:
  void handOver() {
    if (!failed_ && !writeAll(descriptor_, pending_)) failed_ = true;
    pending_.clear();
  }

  int descriptor_;
  std::string pending_;
  bool failed_ = false;  // since the last flush
};

bufferedStream& bufferOf(standardStream stream) {
  static bufferedStream output(STDOUT_FILENO);
  static bufferedStream error(STDERR_FILENO);
  return stream == standardStream::output ? output : error;
}

}  // namespace

std::vector<std::wstring> commandLineArguments(int count, char** values) {
  std::vector<std::wstring> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(wideText(values[i]));
  return arguments;
}

bool isTerminal(standardStream stream) { return ::isatty(descriptorOf(stream)) == 1; }

int terminalWidth(standardStream stream) {
  winsize size{};
  if (::ioctl(descriptorOf(stream), TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
    return defaultWidth;
  return size.ws_col;
}

bool writeText(standardStream stream, std::wstring_view text) {
  return bufferOf(stream).write(text);
}

void writeLastWord(standardStream stream, std::string_view ascii) noexcept {
  writeAll(descriptorOf(stream), ascii);
}

bool flushText(standardStream stream) { return bufferOf(stream).flush(); }

}  // namespace platform

#include "platform/console.h"

#include <windows.h>
#include <shellapi.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <utility>

#include "platform/codePages.h"

namespace platform {
namespace {

constexpr std::size_t bufferSize = 64 * 1024 / sizeof(wchar_t);
constexpr std::size_t largestConsoleWrite = 8 * 1024;  // older consoles refuse more than 64 KiB
constexpr int defaultWidth = 80;

// Asked for each time: a program may redirect its own streams.
HANDLE handleOf(standardStream stream) {
  return GetStdHandle(stream == standardStream::output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

bool isConsole(HANDLE handle) {
  DWORD mode = 0;
  return GetConsoleMode(handle, &mode) != 0;
}

bool isHighSurrogate(wchar_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

bool writeToConsole(HANDLE console, std::wstring_view text) {
  while (!text.empty()) {
    std::size_t count = std::min(text.size(), largestConsoleWrite);
    if (count < text.size() && isHighSurrogate(text[count - 1])) --count;
    DWORD written = 0;
    if (WriteConsoleW(console, text.data(), static_cast<DWORD>(count), &written, nullptr) == 0 ||
        written == 0)
      return false;
    text.remove_prefix(written);
  }
  return true;
}

bool writeBytes(HANDLE handle, std::string_view bytes) {
  while (!bytes.empty()) {
    DWORD written = 0;
    if (WriteFile(handle, bytes.data(),
                  static_cast<DWORD>(std::min(bytes.size(), std::size_t{1} << 30)), &written,
                  nullptr) == 0) {
      const DWORD error = GetLastError();
      if (error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA) errno = EPIPE;
      return false;
    }
    if (written == 0) return false;
    bytes.remove_prefix(written);
  }
  return true;
}

bool writeAsUtf8(HANDLE handle, std::wstring_view text) {
  constexpr std::size_t step = std::size_t{1} << 20;
  while (!text.empty()) {
    std::size_t count = std::min(text.size(), step);
    if (count < text.size() && isHighSurrogate(text[count - 1])) --count;
    std::string bytes(3 * count, '\0');  // a unit takes at most three
    const int length = encodeCodePage(utf8CodePage, text.data(), static_cast<int>(count),
                                      bytes.data(), static_cast<int>(bytes.size()));
    if (!writeBytes(handle, std::string_view(bytes).substr(0, static_cast<std::size_t>(length))))
      return false;
    text.remove_prefix(count);
  }
  return true;
}

class bufferedStream {
 public:
  explicit bufferedStream(standardStream stream) : stream_(stream) {}

  bool write(std::wstring_view text) {
    pending_ += text;
    // The second half of a surrogate pair may be on its way.
    const bool isCut = !pending_.empty() && isHighSurrogate(pending_.back());
    if (pending_.size() >= bufferSize && !isCut) handOver();
    return !failed_;
  }

  bool flush() {
    handOver();
    return !std::exchange(failed_, false);
  }

 private:
  void handOver() {
    const HANDLE handle = handleOf(stream_);
    if (!failed_ && !pending_.empty())
      failed_ =
          !(isConsole(handle) ? writeToConsole(handle, pending_) : writeAsUtf8(handle, pending_));
    pending_.clear();
  }

  standardStream stream_;
  std::wstring pending_;
  bool failed_ = false;  // since the last flush
};

bufferedStream& bufferOf(standardStream stream) {
  static bufferedStream output(standardStream::output);
  static bufferedStream error(standardStream::error);
  return stream == standardStream::output ? output : error;
}

}  // namespace

std::vector<std::wstring> commandLineArguments(int, char**) {
  struct localMemory {
    void operator()(wchar_t** memory) const { LocalFree(memory); }
  };
  int count = 0;
  const std::unique_ptr<wchar_t*, localMemory> values(
      CommandLineToArgvW(GetCommandLineW(), &count));
  std::vector<std::wstring> arguments;
  for (int i = 1; values != nullptr && i < count; ++i) arguments.emplace_back(values.get()[i]);
  return arguments;
}

bool isTerminal(standardStream stream) { return isConsole(handleOf(stream)); }

int terminalWidth(standardStream stream) {
  CONSOLE_SCREEN_BUFFER_INFO info;
  if (GetConsoleScreenBufferInfo(handleOf(stream), &info) == 0) return defaultWidth;
  const int width = info.srWindow.Right - info.srWindow.Left + 1;
  return width > 0 ? width : defaultWidth;
}

bool writeText(standardStream stream, std::wstring_view text) {
  return bufferOf(stream).write(text);
}

void writeLastWord(standardStream stream, std::string_view ascii) noexcept {
  DWORD written = 0;
  WriteFile(handleOf(stream), ascii.data(), static_cast<DWORD>(ascii.size()), &written, nullptr);
}

bool flushText(standardStream stream) { return bufferOf(stream).flush(); }

}  // namespace platform

#include "tools/output.h"

#include <cerrno>

#include "platform/console.h"

namespace vokTable {
namespace {

constexpr std::size_t bufferLength = 16 * 1024;

}  // namespace

dataOutput dataOutput::forStandardOutput() {
  return dataOutput(platform::isTerminal(platform::standardStream::output) ? destination::terminal
                                                                           : destination::pipe);
}

void dataOutput::text(std::wstring_view text) {
  if (!isOpen()) return;
  buffer_ += text;
  if (buffer_.size() >= bufferLength) sendBuffer();
}

void dataOutput::line(std::wstring_view text) {
  this->text(text);
  this->text(L"\n");
}

void dataOutput::value(std::wstring_view value) {
  std::wstring shown;
  appendShown(shown, value, where_);
  line(shown);
}

void dataOutput::flush() {
  if (isOpen()) sendBuffer();
  if (!isOpen()) return;
  errno = 0;
  note(platform::flushText(platform::standardStream::output));
}

exitCode dataOutput::finish(const messageWriter& messages, exitCode outcome) {
  flush();
  if (state_ != state::failed) return outcome;
  messages.error("standard output did not take everything: is the disk full?");
  return exitCode::writeFailed;
}

void dataOutput::sendBuffer() {
  errno = 0;
  note(platform::writeText(platform::standardStream::output, buffer_));
  buffer_.clear();
}

void dataOutput::note(bool taken) {
  // The console service leaves the system's error number behind: EPIPE is a reader that went away.
  if (!taken) state_ = errno == EPIPE ? state::readerGone : state::failed;
}

}  // namespace vokTable

#include "table_rw/text/textModeFile.h"

#include <cstring>

namespace tableRW {
namespace {

constexpr std::size_t outputBufferSize = std::size_t{256} * 1024;
constexpr char carriageReturn = '\r';
constexpr char lineFeed = '\n';
// ODD: it ends the file: DOS programs padded files behind it.
constexpr char controlZ = '\x1A';

// Folds CR LF into LF in place. A CR at the very end stays: the caller knows whether more follows.
std::size_t foldLineEnds(char* bytes, std::size_t size) {
  char* const end = bytes + size;
  char* from = static_cast<char*>(std::memchr(bytes, carriageReturn, size));
  if (from == nullptr) return size;
  char* to = from;
  while (from != end) {
    if (from + 1 != end && from[1] == lineFeed) ++from;  // here *from is a CR, dropped before an LF
    *to++ = *from++;
    const auto left = static_cast<std::size_t>(end - from);
    const auto* found = static_cast<const char*>(std::memchr(from, carriageReturn, left));
    const std::size_t run = found == nullptr ? left : static_cast<std::size_t>(found - from);
    std::memmove(to, from, run);
    to += run;
    from += run;
  }
  return static_cast<std::size_t>(to - bytes);
}

}  // namespace

bool textModeInput::open(const std::wstring& path) {
  close();
  return file_.openForReading(path);
}

void textModeInput::close() {
  file_.close();
  growingArray<char>().swap(block_);
  next_ = 0;
  taken_ = 0;
  carriedCr_ = exhausted_ = atEnd_ = false;
}

bool textModeInput::fillMore() {
  block_.dropFront(next_);
  next_ = 0;
  const std::size_t before = block_.size();
  while (block_.size() == before && !exhausted_ && file_.isOpen()) {
    char* const start = block_.room(1 + blockSize_ + readAhead);
    std::size_t size = 0;
    if (carriedCr_) start[size++] = carriageReturn;
    carriedCr_ = false;
    const std::size_t got = file_.read(start + size, blockSize_);
    if (got == 0) exhausted_ = true;
    size += got;
    if (const void* stop = std::memchr(start, controlZ, size)) {
      size = static_cast<std::size_t>(static_cast<const char*>(stop) - start);
      exhausted_ = true;
    }
    if (!exhausted_ && start[size - 1] == carriageReturn) {
      carriedCr_ = true;
      --size;
    }
    block_.advance(foldLineEnds(start, size));
  }
  std::memset(block_.room(readAhead), 0, readAhead);
  return block_.size() > before;
}

std::size_t textModeInput::getChunk(char* buffer, std::size_t capacity) {
  std::size_t got = 0;
  while (got < capacity) {
    if (next_ == block_.size() && !fillMore()) {
      atEnd_ = true;
      break;
    }
    const std::string_view ready = buffered().substr(0, capacity - got);
    const std::size_t found = ready.find(lineFeed);
    const std::size_t size = found == std::string_view::npos ? ready.size() : found + 1;
    std::memcpy(buffer + got, ready.data(), size);
    got += size;
    skip(size);
    if (found != std::string_view::npos) break;
  }
  return got;
}

textModeOutput::~textModeOutput() { close(); }

bool textModeOutput::open(const std::wstring& path) {
  close();
  failed_ = false;
  return file_.openForWriting(path);
}

void textModeOutput::write(std::string_view text) {
  if (!isOpen()) return;
  // WHY: the room for all of it first, so that an allocation failure leaves no half line behind.
  buffer_.room(2 * text.size());
  std::size_t start = 0;
  for (std::size_t found = text.find(lineFeed); found != std::string_view::npos;
       found = text.find(lineFeed, start)) {
    buffer_.append(text.data() + start, found - start);
    addLineEnd();
    start = found + 1;
  }
  buffer_.append(text.data() + start, text.size() - start);
  flushWhenFull();
}

void textModeOutput::writeLine(std::size_t size) {
  if (!isOpen()) return;
  buffer_.advance(size);
  addLineEnd();
  flushWhenFull();
}

void textModeOutput::addLineEnd() {
  buffer_.push(carriageReturn);
  buffer_.push(lineFeed);
}

void textModeOutput::flushWhenFull() {
  if (buffer_.size() >= outputBufferSize) flush();
}

void textModeOutput::flush() {
  if (buffer_.size() > 0 && !file_.write(buffer_.data(), buffer_.size())) failed_ = true;
  buffer_.shrinkTo(0);
}

bool textModeOutput::close() {
  if (!isOpen()) return !failed_;
  flush();
  if (!file_.close()) failed_ = true;
  return !failed_;
}

}  // namespace tableRW

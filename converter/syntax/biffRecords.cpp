#include "converter/syntax/biffRecords.h"

#include <algorithm>
#include <cstring>

#include "converter/syntax/utf8.h"

namespace converter {
namespace {

constexpr std::size_t windowSize = std::size_t{256} * 1024;
constexpr std::size_t headerSize = 4;

}  // namespace

// One byte more than is ever filled: the data of an empty record may lie at the very end.
recordReader::recordReader(byteStream& stream) : stream_(&stream), window_(windowSize + 1) {}

void recordReader::seek(std::uint64_t place) {
  windowPlace_ = place;
  filled_ = at_ = dataAt_ = 0;
  id_ = 0;
  size_ = 0;
}

// Brings bytes from `at_` on into the window; the data of the current record stays in it.
bool recordReader::have(std::size_t count) {
  if (filled_ - at_ >= count) return true;
  const std::size_t kept = std::min(dataAt_, at_);
  std::memmove(window_.data(), &window_[kept], filled_ - kept);
  windowPlace_ += kept;
  filled_ -= kept;
  at_ -= kept;
  dataAt_ -= kept;
  filled_ += stream_->readAt(windowPlace_ + filled_, &window_[filled_], windowSize - filled_);
  return filled_ - at_ >= count;
}

bool recordReader::next() {
  dataAt_ = at_;
  if (!have(headerSize)) return false;
  id_ = read16(&window_[at_]);
  size_ = read16(&window_[at_ + 2]);
  if (!have(headerSize + size_)) return false;
  dataAt_ = at_ + headerSize;
  at_ = dataAt_ + size_;
  return true;
}

bool recordReader::isWhole() const { return stream_->statedSize() == windowPlace_ + at_; }

bool recordReader::nextIs(std::uint16_t id) {
  return have(headerSize) && read16(&window_[at_]) == id;
}

bool continuedReader::advance() {
  if (!records_->nextIs(biff::continued) || !records_->next()) return false;
  used_ = 0;
  return true;
}

bool continuedReader::hasMore() {
  while (left() == 0)
    if (!advance()) return false;
  return true;
}

bool continuedReader::skip(std::size_t count) {
  while (count > 0) {
    if (!hasMore()) return false;
    const std::size_t step = std::min(count, left());
    used_ += step;
    count -= step;
  }
  return true;
}

bool continuedReader::read8(unsigned& value) {
  if (!hasMore()) return false;
  value = records_->data()[used_++];
  return true;
}

bool continuedReader::read16(unsigned& value) {
  unsigned low = 0;
  unsigned high = 0;
  if (!read8(low) || !read8(high)) return false;
  value = low | high << 8;
  return true;
}

bool continuedReader::read32(std::uint32_t& value) {
  unsigned low = 0;
  unsigned high = 0;
  if (!read16(low) || !read16(high)) return false;
  value = low | high << 16;
  return true;
}

bool continuedReader::appendCharacters(std::string& text, std::size_t count, bool isWide) {
  utf16Appender units(text);
  while (count > 0) {
    if (left() == 0) {
      if (!advance()) return false;
      if (left() == 0) continue;
      isWide = (records_->data()[used_++] & 1) != 0;
      continue;
    }
    const unsigned char* const bytes = records_->data() + used_;
    const std::size_t width = isWide ? 2 : 1;
    const std::size_t step = std::min(count, left() / width);
    if (step == 0) return false;  // half a character
    for (std::size_t i = 0; i < step; ++i)
      units.append(isWide ? static_cast<char16_t>(converter::read16(bytes + 2 * i))
                          : static_cast<char16_t>(bytes[i]));
    used_ += step * width;
    count -= step;
  }
  return true;
}

}  // namespace converter

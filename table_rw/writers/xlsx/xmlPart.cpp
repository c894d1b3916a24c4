#include "table_rw/writers/xlsx/xmlPart.h"

#include <array>

#include "platform/narrowPath.h"
#include "table_rw/writers/xlsx/xmlText.h"

namespace SimpleXlsx {
namespace {

constexpr std::string_view declaration =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";

}  // namespace

bool xmlPart::open(const std::wstring& path) {
  path_ = path;
  failed_ = !platform::hasNarrowPath(path) || !disk_.openForWriting(file_, path);
  raw(declaration);
  return !failed_;
}

xmlPart& xmlPart::start(const char* name) {
  closeStartTag();
  elements_.push_back(name);
  raw("<").raw(name);
  isInStartTag_ = true;
  return *this;
}

xmlPart& xmlPart::attribute(const char* name, std::wstring_view value) {
  put(" ");
  put(name);
  put("=\"");
  appendEscaped(value, buffer_);
  put("\"");
  return *this;
}

xmlPart& xmlPart::attribute(const char* name, const char* value) {
  put(" ");
  put(name);
  put("=\"");
  put(value);
  put("\"");
  return *this;
}

xmlPart& xmlPart::attribute(const char* name, std::uint64_t value) {
  std::array<char, mostDigits + 1> digits{};
  putNumber(value, digits.data());
  return attribute(name, digits.data());
}

xmlPart& xmlPart::text(std::wstring_view text) {
  closeStartTag();
  appendEscaped(text, buffer_);
  return *this;
}

xmlPart& xmlPart::text(std::uint64_t number) {
  std::array<char, mostDigits + 1> digits{};
  putNumber(number, digits.data());
  return raw(digits.data());
}

xmlPart& xmlPart::end() {
  if (isInStartTag_) {
    isInStartTag_ = false;
    raw("/>");
  } else {
    raw("</").raw(elements_.back()).raw(">");
  }
  elements_.pop_back();
  return *this;
}

xmlPart& xmlPart::raw(std::string_view bytes) {
  closeStartTag();
  put(bytes);
  if (buffer_.size() >= largestBuffer) flush();
  return *this;
}

void xmlPart::put(std::string_view bytes) { buffer_.append(bytes.data(), bytes.size()); }

void xmlPart::closeStartTag() {
  if (!isInStartTag_) return;
  isInStartTag_ = false;
  buffer_.push('>');
}

std::uint64_t xmlPart::position() {
  closeStartTag();
  return flushed_ + buffer_.size();
}

void xmlPart::rewrite(std::uint64_t position, std::string_view bytes) {
  flush();
  if (!file_.seek(position) || !disk_.write(file_, bytes.data(), bytes.size()) ||
      !file_.seek(flushed_))
    failed_ = true;
}

void xmlPart::copyTo(xmlPart& copy, const std::wstring& path) {
  constexpr std::size_t blockSize = std::size_t{64} * 1024;
  flush();
  copy.path_ = path;
  copy.failed_ = failed_ || !platform::hasNarrowPath(path);
  copy.elements_ = elements_;
  // WHY closed meanwhile: Windows lets nobody read a file that is open for writing.
  if (!disk_.close(file_)) failed_ = true;
  platform::binaryFile source;
  if (!copy.failed_ && source.openForReading(path_) &&
      copy.disk_.openForWriting(copy.file_, path)) {
    std::string block(blockSize, '\0');
    while (const std::size_t size = source.read(block.data(), block.size())) {
      if (!copy.disk_.write(copy.file_, block.data(), size)) copy.failed_ = true;
      copy.flushed_ += size;
    }
  }
  source.close();
  if (copy.flushed_ != flushed_) copy.failed_ = true;
  if (!failed_ && !file_.openForAppending(path_)) failed_ = true;
}

void xmlPart::flush() {
  closeStartTag();
  if (!failed_ && !disk_.write(file_, buffer_.data(), buffer_.size())) failed_ = true;
  flushed_ += buffer_.size();
  buffer_.shrinkTo(0);
}

bool xmlPart::close() {
  flush();
  tableRW::growingArray<char>().swap(buffer_);
  if (!disk_.close(file_)) failed_ = true;
  return !failed_;
}

}  // namespace SimpleXlsx

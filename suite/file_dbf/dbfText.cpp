#include "suite/file_dbf/dbfText.h"

#include <algorithm>
#include <string_view>

#include "platform/codePages.h"

namespace fileDbf {
namespace {

constexpr int longestCharacter = 8;  // bytes, in any page

bool hasOnlySingleBytes(unsigned codePage) {
  return (codePage >= 1250 && codePage <= 1258) || codePage == 866 || codePage == 20127;
}

bool isPair(const wchar_t* text) {
  return text[0] >= 0xD800 && text[0] <= 0xDBFF && text[1] >= 0xDC00 && text[1] <= 0xDFFF;
}

std::size_t lengthUpTo(const wchar_t* text, std::size_t most) {
  std::size_t length = 0;
  while (length < most && text[length] != L'\0') ++length;
  return length;
}

}  // namespace

textField::textField(unsigned codePage) : codePage_(codePage) {
  if (hasOnlySingleBytes(codePage)) single_.emplace(codePage);
}

void textField::write(const wchar_t* text, char* to, std::size_t width) {
  char* const end = to + width;
  while (to != end && *text > 0 && *text < 0x80) *to++ = static_cast<char>(*text++);
  if (to != end && *text != L'\0') {
    const std::size_t size = encode(text, static_cast<std::size_t>(end - to));
    to = std::copy_n(bytes_.data(), size, to);
  }
  std::fill(to, end, ' ');
}

// The bytes of as many characters as `width` has room for, in bytes_. @return their number
std::size_t textField::encode(const wchar_t* text, std::size_t width) {
  const std::size_t length = lengthUpTo(text, width);  // no character takes less than a byte
  if (single_) {
    bytes_.resize(length * platform::singleByteEncoder::mostBytes);
    const char* const end = single_->encode(std::wstring_view(text, length), bytes_.data()).end;
    return std::min(static_cast<std::size_t>(end - bytes_.data()), width);
  }
  bytes_.resize(width + longestCharacter);
  std::size_t size = 0;
  for (std::size_t at = 0; at < length && size < width;) {
    const std::size_t elements = isPair(text + at) ? 2 : 1;
    const int count = platform::encodeCodePage(codePage_, text + at, static_cast<int>(elements),
                                               bytes_.data() + size, longestCharacter);
    if (size + static_cast<std::size_t>(count) > width) break;
    size += static_cast<std::size_t>(count);
    at += elements;
  }
  return size;
}

}  // namespace fileDbf

#include "platform/singleByteEncoder.h"

#include <cstdint>
#include <utility>

#include "platform/codePages.h"

namespace platform {
namespace {

constexpr std::uint32_t elementBits = sizeof(wchar_t) == 2 ? 0xFFFF : 0xFFFFFFFF;
constexpr std::size_t asciiStep = 4;

// Moves ASCII from the front of the text, in steps first; in every such page it is the same bytes.
char* moveAscii(std::wstring_view& text, char* to) {
  while (text.size() >= asciiStep) {
    std::uint32_t all = 0;
    for (std::size_t i = 0; i < asciiStep; ++i) all |= static_cast<std::uint32_t>(text[i]);
    if ((all & elementBits) >= 0x80) break;
    for (std::size_t i = 0; i < asciiStep; ++i) to[i] = static_cast<char>(text[i]);
    to += asciiStep;
    text.remove_prefix(asciiStep);
  }
  while (!text.empty() && (static_cast<std::uint32_t>(text.front()) & elementBits) < 0x80) {
    *to++ = static_cast<char>(text.front());
    text.remove_prefix(1);
  }
  return to;
}

}  // namespace

const singleByteEncoder::page& singleByteEncoder::makePage(unsigned number) {
  auto made = std::make_unique<page>();
  for (unsigned i = 0; i < pageSize; ++i) {
    const auto unit = static_cast<wchar_t>(number * pageSize + i);
    char byte = '?';
    encodeCodePage(codePage_, &unit, 1, &byte, 1);
    (*made)[i] = byte;
  }
  pages_[number] = std::move(made);
  return *pages_[number];
}

char* singleByteEncoder::encode(std::wstring_view text, char* to) {
  to = moveAscii(text, to);
  if (text.empty()) return to;
  unsigned current = 0;
  const page* known = &pageOf(0);
  for (const wchar_t element : text) {
    const auto code = static_cast<std::uint32_t>(element) & elementBits;
    if (code / pageSize != current) {
      if (code > 0xFFFF) {
        *to++ = '?';
        if (code <= 0x10FFFF) *to++ = '?';
        continue;
      }
      current = code / pageSize;
      known = &pageOf(current);
    }
    *to++ = (*known)[code % pageSize];
  }
  return to;
}

}  // namespace platform

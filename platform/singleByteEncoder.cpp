#include "platform/singleByteEncoder.h"

#include <cstddef>
#include <cstdint>
#include <utility>

#include "platform/asciiSteps.h"
#include "platform/codePages.h"

namespace platform {
namespace {

constexpr std::uint32_t elementBits = sizeof(wchar_t) == 2 ? 0xFFFF : 0xFFFFFFFF;
constexpr std::ptrdiff_t step = 4;

void store(char* to, std::uint32_t bytes) {
  for (int i = 0; i < step; ++i) to[i] = static_cast<char>(bytes >> (8 * i) & 0xFF);
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

encodedText singleByteEncoder::encode(std::wstring_view text, char* to) {
  const wchar_t* from = text.data();
  const wchar_t* const end = from + text.size();
  bool control = false;
  while (end - from >= step) {
    const fourBytes four = narrowFour(from);
    if (!four.ascii) return encodeByTable(from, end, to, control);
    store(to, four.bytes);
    control = control || hasControl(four.bytes);
    from += step;
    to += step;
  }
  // The rest of ASCII text goes with the last four characters, some of them for the second time.
  if (from != end && text.size() >= static_cast<std::size_t>(step)) {
    const fourBytes four = narrowFour(end - step);
    if (!four.ascii) return encodeByTable(from, end, to, control);
    to += end - from;
    store(to - step, four.bytes);
    return {to, !control && !hasControl(four.bytes)};
  }
  return encodeByTable(from, end, to, control);
}

encodedText singleByteEncoder::encodeByTable(const wchar_t* from, const wchar_t* end, char* to,
                                             bool control) {
  unsigned current = 0;
  const page* known = &pageOf(0);
  for (; from != end; ++from) {
    const auto code = static_cast<std::uint32_t>(*from) & elementBits;
    if (code / pageSize != current) {
      if (code > 0xFFFF) {
        *to++ = '?';
        if (code <= 0x10FFFF) *to++ = '?';
        continue;
      }
      current = code / pageSize;
      known = &pageOf(current);
    }
    const char byte = (*known)[code % pageSize];
    control = control || static_cast<unsigned char>(byte) < ' ';
    *to++ = byte;
  }
  return {to, !control};
}

}  // namespace platform

#include "table_rw/text/utf8.h"

#include <cstdint>

namespace tableRW {
namespace {

constexpr unsigned char outsideUnicode = 0xFF;  // never a byte of UTF-8
constexpr bool wideIsUtf16 = sizeof(wchar_t) == 2;

constexpr std::uint32_t unitAt(std::wstring_view text, std::size_t index) {
  return static_cast<std::uint32_t>(text[index]) & (wideIsUtf16 ? 0xFFFFU : 0xFFFFFFFFU);
}

constexpr bool isHighSurrogate(std::uint32_t unit) { return (unit & 0xFFFFFC00U) == 0xD800; }
constexpr bool isLowSurrogate(std::uint32_t unit) { return (unit & 0xFFFFFC00U) == 0xDC00; }

char* put(char* output, std::uint32_t byte) {
  *output = static_cast<char>(static_cast<unsigned char>(byte));
  return output + 1;
}

char* putTail(char* output, std::uint32_t code, int count) {
  for (int shift = 6 * (count - 1); shift >= 0; shift -= 6)
    output = put(output, 0x80 | ((code >> shift) & 0x3F));
  return output;
}

char* putCode(char* output, std::uint32_t code) {
  if (code < 0x80) return put(output, code);
  if (code < 0x800) return putTail(put(output, 0xC0 | (code >> 6)), code, 1);
  if (code < 0x10000) return putTail(put(output, 0xE0 | (code >> 12)), code, 2);
  if (code < 0x110000) return putTail(put(output, 0xF0 | (code >> 18)), code, 3);
  return putTail(put(output, outsideUnicode), code, 6);
}

// How many bytes follow a lead byte, and which of the lead's bits belong to the code.
struct leadByte {
  int followers;
  std::uint32_t bits;
};

leadByte readLead(unsigned char lead) {
  if (lead < 0xE0) return {1, lead & 0x1FU};
  if (lead < 0xF0) return {2, lead & 0x0FU};
  if (lead < 0xF8) return {3, lead & 0x07U};
  return {6, 0};
}

}  // namespace

char* narrowToUtf8(std::wstring_view text, char* output) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::uint32_t code = unitAt(text, i);
    if (wideIsUtf16 && isHighSurrogate(code) && i + 1 < text.size() &&
        isLowSurrogate(unitAt(text, i + 1))) {
      code = 0x10000 + ((code & 0x3FF) << 10) + (unitAt(text, i + 1) & 0x3FF);
      ++i;
    }
    output = putCode(output, code);
  }
  return output;
}

std::string utf8FromWide(std::wstring_view text) {
  std::string bytes(text.size() * longestUtf8Element, '\0');
  const char* const end = narrowToUtf8(text, bytes.data());
  bytes.resize(static_cast<std::size_t>(end - bytes.data()));
  return bytes;
}

std::wstring wideFromUtf8(std::string_view bytes) {
  std::wstring text;
  text.reserve(bytes.size());
  std::size_t next = 0;
  while (next < bytes.size()) {
    const auto byte = static_cast<unsigned char>(bytes[next++]);
    if (byte < 0x80) {
      text.push_back(static_cast<wchar_t>(byte));
      continue;
    }
    const leadByte lead = readLead(byte);
    std::uint32_t code = lead.bits;
    for (int i = 0; i < lead.followers && next < bytes.size(); ++i)
      code = (code << 6) | (static_cast<unsigned char>(bytes[next++]) & 0x3FU);
    if (wideIsUtf16 && code > 0xFFFF) {
      code -= 0x10000;
      text.push_back(static_cast<wchar_t>(0xD800 | (code >> 10)));
      code = 0xDC00 | (code & 0x3FF);
    }
    text.push_back(static_cast<wchar_t>(code));
  }
  return text;
}

}  // namespace tableRW

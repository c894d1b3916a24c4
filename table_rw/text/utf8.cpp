#include "table_rw/text/utf8.h"

#include <cstdint>
#include <cstring>

#include "platform/asciiSteps.h"

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

constexpr std::size_t asciiStep = 8;
constexpr std::size_t shortText = 64;  // bytes; widened on the stack, copied once into its string

// The first bytes of a little-endian word.
constexpr std::uint64_t firstBytes[] = {0,
                                        0xFF,
                                        0xFFFF,
                                        0xFFFFFF,
                                        0xFFFFFFFF,
                                        0xFFFFFFFFFF,
                                        0xFFFFFFFFFFFF,
                                        0xFFFFFFFFFFFFFF,
                                        0xFFFFFFFFFFFFFFFF};

bool isAscii(std::uint64_t word) { return (word & 0x8080808080808080U) == 0; }

// How many bytes follow a lead byte, and which of the lead's bits belong to the code.
struct leadByte {
  int followers;
  std::uint32_t bits;
};

leadByte readLead(unsigned lead) {
  if (lead < 0xE0) return {1, lead & 0x1FU};
  if (lead < 0xF0) return {2, lead & 0x0FU};
  if (lead < 0xF8) return {3, lead & 0x07U};
  return {6, 0};
}

// Elements of the wide string: one for every byte that is no continuation, and where wide text is UTF-16
// one more for a character of four bytes.
std::size_t wideLength(std::string_view bytes) {
  std::size_t length = 0;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    length += (byte & 0xC0U) != 0x80 ? 1 : 0;
    if (wideIsUtf16) length += byte >= 0xF0 ? 1 : 0;
  }
  return length;
}

// The character whose lead byte has just been taken. @return behind its last byte
const unsigned char* widenLong(unsigned byte, const unsigned char* next, const unsigned char* end,
                               wchar_t*& to) {
  const leadByte lead = readLead(byte);
  std::uint32_t code = lead.bits;
  for (int i = 0; i < lead.followers && next != end; ++i) code = code << 6 | (*next++ & 0x3FU);
  if (wideIsUtf16 && code > 0xFFFF) {
    code -= 0x10000;
    *to++ = static_cast<wchar_t>(0xD800 | (code >> 10));
    code = 0xDC00 | (code & 0x3FF);
  }
  *to++ = static_cast<wchar_t>(code);
  return next;
}

std::uint64_t loadStep(const unsigned char* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

// Widens into room for as many elements as the bytes make. @return behind the last element
wchar_t* widen(std::string_view bytes, wchar_t* to) {
  const auto* next = reinterpret_cast<const unsigned char*>(bytes.data());
  const auto* const end = next + bytes.size();
  while (next != end) {
    if (static_cast<std::size_t>(end - next) >= asciiStep && isAscii(loadStep(next))) {
      for (std::size_t i = 0; i < asciiStep; ++i) to[i] = static_cast<wchar_t>(next[i]);
      to += asciiStep;
      next += asciiStep;
      continue;
    }
    const unsigned byte = *next++;
    if (byte < 0x80)
      *to++ = static_cast<wchar_t>(byte);
    else if (byte < 0xE0 && next != end)
      *to++ = static_cast<wchar_t>((byte & 0x1FU) << 6 | (*next++ & 0x3FU));
    else
      next = widenLong(byte, next, end, to);
  }
  return to;
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

bool isValidUtf8(std::string_view bytes) {
  const auto* next = reinterpret_cast<const unsigned char*>(bytes.data());
  const auto* const end = next + bytes.size();
  while (next != end) {
    const unsigned lead = *next++;
    if (lead < 0x80) continue;
    if (lead < 0xC2 || lead > 0xF4) return false;
    const std::ptrdiff_t followers = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    if (end - next < followers) return false;
    const unsigned second = *next;
    if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
        (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F))
      return false;
    for (std::ptrdiff_t i = 0; i < followers; ++i)
      if ((*next++ & 0xC0U) != 0x80) return false;
  }
  return true;
}

std::wstring wideFromUtf8(std::string_view bytes) {
  if (bytes.size() <= shortText) {
    wchar_t buffer[shortText];
    return {buffer, widen(bytes, buffer)};
  }
  std::wstring text(wideLength(bytes), L'\0');
  widen(bytes, text.data());
  return text;
}

std::wstring wideFromPaddedUtf8(std::string_view bytes) {
  static_assert(utf8Padding >= 2 * asciiStep);
  if (bytes.empty()) return {};  // perhaps of no memory at all
  if (bytes.size() > 2 * asciiStep) return wideFromUtf8(bytes);
  const auto* const first = reinterpret_cast<const unsigned char*>(bytes.data());
  const std::size_t head = bytes.size() < asciiStep ? bytes.size() : asciiStep;
  const std::size_t tail = bytes.size() - head;
  const std::uint64_t words =
      (loadStep(first) & firstBytes[head]) | (loadStep(first + asciiStep) & firstBytes[tail]);
  if (!isAscii(words)) return wideFromUtf8(bytes);
  wchar_t buffer[2 * asciiStep];
  platform::widenSixteen(first, buffer);
  return {buffer, bytes.size()};
}

}  // namespace tableRW

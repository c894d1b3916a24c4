// ASCII between bytes and wide text, several characters at a time.
//
// There are two versions of each function: SSE2, and portable code that the tests compare with it. No state; any thread.
#ifndef VOK_PLATFORM_ASCIISTEPS_H
#define VOK_PLATFORM_ASCIISTEPS_H

#include <cstddef>
#include <cstdint>

#include "platform/sse2.h"

namespace platform {

/// Four wide characters that became four bytes, the first one in the lowest bits.
struct fourBytes {
  std::uint32_t bytes;
  bool ascii;  ///< otherwise the bytes are of no use
};

/// Whether a control character (00 to 1F) is among four bytes of ASCII.
inline bool hasControl(std::uint32_t bytes) {
  return ((bytes - 0x20202020U) & ~bytes & 0x80808080U) != 0;
}

namespace portable {

inline fourBytes narrowFour(const wchar_t* text) {
  fourBytes result = {0, true};
  for (int i = 0; i < 4; ++i) {
    const std::uint32_t ascii = static_cast<std::uint32_t>(text[i]) & 0x7F;
    result.ascii = result.ascii && static_cast<wchar_t>(ascii) == text[i];
    result.bytes |= ascii << (8 * i);
  }
  return result;
}

inline void widenSixteen(const unsigned char* bytes, wchar_t* text) {
  for (int i = 0; i < 16; ++i) text[i] = static_cast<wchar_t>(bytes[i]);
}

}  // namespace portable

#if VOK_HAS_SSE2
namespace sse2 {

using block = __m128i;

/// Reads four elements of 32 or of 16 bits.
inline block loadFour(const wchar_t* text) {
  const auto* const from = static_cast<const block*>(static_cast<const void*>(text));
  return sizeof(wchar_t) == 4 ? _mm_loadu_si128(from) : _mm_loadl_epi64(from);
}

inline fourBytes narrowFour(const wchar_t* text) {
  const block zero = _mm_setzero_si128();
  block elements = loadFour(text);
  fourBytes result = {};
  if constexpr (sizeof(wchar_t) == 4) {
    const block high = _mm_and_si128(elements, _mm_set1_epi32(~0x7F));
    result.ascii = _mm_movemask_epi8(_mm_cmpeq_epi32(high, zero)) == 0xFFFF;
    elements = _mm_packs_epi32(elements, elements);
  } else {
    const block high = _mm_and_si128(elements, _mm_set1_epi16(~0x7F));
    result.ascii = _mm_movemask_epi8(_mm_cmpeq_epi16(high, zero)) == 0xFFFF;
  }
  elements = _mm_packus_epi16(elements, elements);
  result.bytes = static_cast<std::uint32_t>(_mm_cvtsi128_si32(elements));
  return result;
}

inline void widenSixteen(const unsigned char* bytes, wchar_t* text) {
  const block zero = _mm_setzero_si128();
  const block from = _mm_loadu_si128(static_cast<const block*>(static_cast<const void*>(bytes)));
  const block halves[] = {_mm_unpacklo_epi8(from, zero), _mm_unpackhi_epi8(from, zero)};
  auto* to = static_cast<block*>(static_cast<void*>(text));
  for (const block& half : halves) {
    if constexpr (sizeof(wchar_t) == 4) {
      _mm_storeu_si128(to++, _mm_unpacklo_epi16(half, zero));
      _mm_storeu_si128(to++, _mm_unpackhi_epi16(half, zero));
    } else {
      _mm_storeu_si128(to++, half);
    }
  }
}

}  // namespace sse2

using sse2::narrowFour;
using sse2::widenSixteen;
#else
using portable::narrowFour;
using portable::widenSixteen;
#endif

}  // namespace platform

#endif

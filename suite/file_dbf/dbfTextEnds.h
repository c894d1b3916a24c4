// Where the text in a field begins and ends: blanks around it do not count, and a NUL ends it.
//
// Sixteen bytes at a time, since most fields have no more. Two versions: SSE2, which every x86-64
// processor has, and portable code for others, which the tests compare with it.
// No state; any thread.
#ifndef VOK_SUITE_FILE_DBF_DBFTEXTENDS_H
#define VOK_SUITE_FILE_DBF_DBFTEXTENDS_H

#include <bit>
#include <cstddef>
#include <cstdint>

#include "platform/sse2.h"

namespace fileDbf {

/// Offsets of the first byte that is no blank and behind the last one; equal when there is none.
struct textEnds {
  std::size_t begin;
  std::size_t end;
};

namespace portable {

inline textEnds findTextEnds(const char* bytes, std::size_t length) {
  std::size_t end = 0;
  while (end < length && bytes[end] != '\0') ++end;
  while (end > 0 && bytes[end - 1] == ' ') --end;
  std::size_t begin = 0;
  while (begin < end && bytes[begin] == ' ') ++begin;
  return {begin, end};
}

}  // namespace portable

#if VOK_HAS_SSE2
/// @param bytes  15 more than `length` may be read
inline textEnds findTextEnds(const char* bytes, std::size_t length) {
  constexpr std::size_t step = sizeof(__m128i);
  const __m128i blanks = _mm_set1_epi8(' ');
  textEnds ends = {0, 0};
  for (std::size_t at = 0; at < length; at += step) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + at));
    const auto maskOf = [block](__m128i what) {
      return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(block, what)));
    };
    const std::size_t left = length - at;
    std::uint32_t valid = left < step ? (1U << left) - 1 : 0xFFFFU;
    const std::uint32_t nuls = maskOf(_mm_setzero_si128()) & valid;
    if (nuls != 0) valid &= (nuls & (~nuls + 1)) - 1;
    const std::uint32_t text = ~maskOf(blanks) & valid;
    if (text != 0) {
      if (ends.end == 0) ends.begin = at + static_cast<std::size_t>(std::countr_zero(text));
      ends.end = at + static_cast<std::size_t>(std::bit_width(text));
    }
    if (nuls != 0) break;
  }
  return ends;
}
#else
using portable::findTextEnds;
#endif

}  // namespace fileDbf

#endif

// Where the bytes that matter stand in 64 bytes of text, as bit masks: bit i speaks of byte i.
//
// Two versions of the same functions: SSE2, which every x86-64 processor has, and portable code, which
// other processors use and which the tests compare with it.
// No state; any thread.
#ifndef VOK_TABLE_RW_TEXT_BYTEMASKS_H
#define VOK_TABLE_RW_TEXT_BYTEMASKS_H

#include <cstddef>
#include <cstdint>

#include "platform/sse2.h"

namespace tableRW {

inline constexpr std::size_t maskedBytes = 64;

/// What is looked for in delimited text.
struct textMarks {
  unsigned char delimiter;
  unsigned char quote;
  bool hasQuote;
};

/// What stands where.
struct textMasks {
  std::uint64_t delimiters;
  std::uint64_t lineEnds;  ///< LF
  std::uint64_t quotes;
  std::uint64_t nuls;
  std::uint64_t nonAscii;  ///< 80 to FF
};

/// The kinds of bytes in UTF-8 beyond ASCII, for a check without decoding.
struct utf8Masks {
  std::uint64_t continuations;  ///< 80 to BF
  std::uint64_t leadsOfTwo;     ///< C2 to DF
  std::uint64_t leadsOfThree;   ///< E1 to EC, EE, EF: three bytes, any second byte
};

namespace portable {

template <class Test>
std::uint64_t maskWhere(const unsigned char* bytes, Test test) {
  std::uint64_t mask = 0;
  for (std::size_t i = 0; i < maskedBytes; ++i)
    mask |= static_cast<std::uint64_t>(test(bytes[i]) ? 1 : 0) << i;
  return mask;
}

inline textMasks findMarks(const unsigned char* bytes, const textMarks& marks) {
  textMasks masks = {};
  masks.delimiters = maskWhere(bytes, [&](unsigned byte) { return byte == marks.delimiter; });
  masks.lineEnds = maskWhere(bytes, [](unsigned byte) { return byte == '\n'; });
  masks.nuls = maskWhere(bytes, [](unsigned byte) { return byte == 0; });
  masks.nonAscii = maskWhere(bytes, [](unsigned byte) { return byte >= 0x80; });
  if (marks.hasQuote)
    masks.quotes = maskWhere(bytes, [&](unsigned byte) { return byte == marks.quote; });
  return masks;
}

inline utf8Masks findUtf8Kinds(const unsigned char* bytes) {
  utf8Masks masks = {};
  masks.continuations = maskWhere(bytes, [](unsigned b) { return b >= 0x80 && b <= 0xBF; });
  masks.leadsOfTwo = maskWhere(bytes, [](unsigned b) { return b >= 0xC2 && b <= 0xDF; });
  masks.leadsOfThree =
      maskWhere(bytes, [](unsigned b) { return b >= 0xE1 && b <= 0xEF && b != 0xED; });
  return masks;
}

}  // namespace portable

#if VOK_HAS_SSE2
namespace sse2 {

using block = __m128i;

struct fourBlocks {
  block part[4];
  explicit fourBlocks(const unsigned char* bytes) {
    for (int i = 0; i < 4; ++i)
      part[i] = _mm_loadu_si128(static_cast<const block*>(static_cast<const void*>(bytes)) + i);
  }
};

/// One mask of the four blocks; `test` makes a block of FF where it holds.
template <class Test>
inline std::uint64_t maskWhere(const fourBlocks& blocks, Test test) {
  std::uint64_t mask = 0;
  for (int i = 0; i < 4; ++i)
    mask |= static_cast<std::uint64_t>(
                static_cast<std::uint32_t>(_mm_movemask_epi8(test(blocks.part[i]))))
            << (16 * i);
  return mask;
}

inline block repeated(unsigned char byte) { return _mm_set1_epi8(static_cast<char>(byte)); }

inline textMasks findMarks(const unsigned char* bytes, const textMarks& marks) {
  const fourBlocks blocks(bytes);
  const block delimiter = repeated(marks.delimiter);
  const block lineEnd = repeated('\n');
  const block quote = repeated(marks.hasQuote ? marks.quote : 0);
  const block nul = _mm_setzero_si128();
  textMasks masks = {};
  masks.delimiters = maskWhere(blocks, [&](block b) { return _mm_cmpeq_epi8(b, delimiter); });
  masks.lineEnds = maskWhere(blocks, [&](block b) { return _mm_cmpeq_epi8(b, lineEnd); });
  masks.nonAscii = maskWhere(blocks, [](block b) { return b; });
  // WHY together first: both are rare, and one look tells that neither is there.
  const std::uint64_t rare = maskWhere(blocks, [&](block b) {
    return _mm_or_si128(_mm_cmpeq_epi8(b, quote), _mm_cmpeq_epi8(b, nul));
  });
  if (rare != 0) {
    masks.nuls = maskWhere(blocks, [&](block b) { return _mm_cmpeq_epi8(b, nul); });
    masks.quotes = rare & ~masks.nuls;
  }
  return masks;
}

inline utf8Masks findUtf8Kinds(const unsigned char* bytes) {
  const fourBlocks blocks(bytes);
  // Bytes compare as signed numbers: 80 is the smallest.
  const auto from = [&](unsigned char least) {
    return maskWhere(blocks, [limit = repeated(static_cast<unsigned char>(least - 1))](block b) {
      return _mm_cmpgt_epi8(b, limit);
    });
  };
  const std::uint64_t nonAscii = maskWhere(blocks, [](block b) { return b; });
  const std::uint64_t fromC0 = from(0xC0);
  const std::uint64_t fromC2 = from(0xC2);
  const std::uint64_t fromE0 = from(0xE0);
  const std::uint64_t fromE1 = from(0xE1);
  const std::uint64_t fromF0 = from(0xF0);
  const std::uint64_t ed =
      maskWhere(blocks, [limit = repeated(0xED)](block b) { return _mm_cmpeq_epi8(b, limit); });
  utf8Masks masks = {};
  masks.continuations = nonAscii & ~fromC0;
  masks.leadsOfTwo = nonAscii & fromC2 & ~fromE0;
  masks.leadsOfThree = nonAscii & fromE1 & ~fromF0 & ~ed;
  return masks;
}

}  // namespace sse2

inline textMasks findMarks(const unsigned char* bytes, const textMarks& marks) {
  return sse2::findMarks(bytes, marks);
}
inline utf8Masks findUtf8Kinds(const unsigned char* bytes) { return sse2::findUtf8Kinds(bytes); }
#else
inline textMasks findMarks(const unsigned char* bytes, const textMarks& marks) {
  return portable::findMarks(bytes, marks);
}
inline utf8Masks findUtf8Kinds(const unsigned char* bytes) {
  return portable::findUtf8Kinds(bytes);
}
#endif

}  // namespace tableRW

#endif

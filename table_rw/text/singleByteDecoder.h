// Bytes of a single-byte code page to the table's UTF-8 by table, for readers that move values straight
// into the table: what decodeBytes answers, sixteen ASCII bytes or one look-up at a time.
//
// Reading and writing go up to textStep bytes beyond what was asked for, so that short values need no
// call. No state after `make`; any thread.
#ifndef VOK_TABLE_RW_TEXT_SINGLEBYTEDECODER_H
#define VOK_TABLE_RW_TEXT_SINGLEBYTEDECODER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tableRW {

inline constexpr std::size_t textStep = 16;

/// Copies bytes; reads and writes up to a step more than it has to.
inline char* copyText(const char* from, std::size_t size, char* to) {
  if (size <= textStep) {
    std::memcpy(to, from, textStep);
  } else if (size <= 2 * textStep) {
    std::memcpy(to, from, textStep);
    std::memcpy(to + textStep, from + textStep, textStep);
  } else {
    std::memcpy(to, from, size);
  }
  return to + size;
}

/// True when the next textStep bytes are ASCII.
inline bool isAsciiStep(const char* bytes) {
  std::uint64_t words[2];
  std::memcpy(words, bytes, textStep);
  return ((words[0] | words[1]) & 0x8080808080808080U) == 0;
}

class singleByteDecoder {
 public:
  /// UTF-8 bytes that one byte makes at most.
  static constexpr std::size_t mostBytes = 3;

  /// Makes the table. @return false for a page whose bytes are not ASCII and single characters
  bool make(unsigned codePage);

  /// Writes the UTF-8 of `size` bytes. @return behind the last byte written
  char* convert(const char* from, std::size_t size, char* to) const {
    const char* const end = from + size;
    while (from < end) {
      const auto left = static_cast<std::size_t>(end - from);
      const std::size_t step = left < textStep ? left : textStep;
      if (isAsciiStep(from)) {
        std::memcpy(to, from, textStep);
        to += step;
        from += step;
        continue;
      }
      for (const char* const stop = from + step; from < stop; ++from) {
        const utf8OfByte& bytes = toUtf8_[static_cast<unsigned char>(*from)];
        std::memcpy(to, bytes.data(), bytes.size());
        to += bytes.back();
      }
    }
    return to;
  }

 private:
  /// The UTF-8 bytes of one byte, and their number in the last.
  using utf8OfByte = std::array<char, mostBytes + 1>;

  std::array<utf8OfByte, 256> toUtf8_ = {};
};

}  // namespace tableRW

#endif

// Values in the bytes of a code page to the table's UTF-8, without a wide string in between where that
// gives the same: ASCII and valid UTF-8 as they are, single-byte pages by table, everything else through
// decodeBytes.
//
// One object belongs to one thread at a time. Nothing fails but allocation.
#ifndef VOK_TABLE_RW_TEXT_VALUEDECODER_H
#define VOK_TABLE_RW_TEXT_VALUEDECODER_H

#include <cstddef>

#include "table_rw/text/singleByteDecoder.h"

namespace tableRW {

class valueDecoder {
 public:
  /// @param codePage  resolved: not the system's 0
  explicit valueDecoder(unsigned codePage)
      : codePage_(codePage), single_(decoder_.make(codePage)) {}

  /// UTF-8 bytes that one byte makes at most.
  static constexpr std::size_t mostBytes = singleByteDecoder::mostBytes;

  /// Writes the UTF-8 of a value; reads and writes up to textStep bytes more.
  /// @return behind the last byte written
  char* decode(const char* bytes, std::size_t size, char* to) const {
    if (size <= textStep && isAsciiStep(bytes)) {
      std::memcpy(to, bytes, textStep);
      return to + size;
    }
    return single_ ? decoder_.convert(bytes, size, to) : decodeOther(bytes, size, to);
  }

 private:
  char* decodeOther(const char* bytes, std::size_t size, char* to) const;

  unsigned codePage_;
  singleByteDecoder decoder_;
  bool single_;
};

}  // namespace tableRW

#endif

// The single-byte code pages as data, for the POSIX converters. Letter case is in lowerCaseTable.h.
//
// The data stand in codePageTables.cpp, which generate_code_pages.py writes. Bytes 00 to 7F are
// ASCII in every page, in both directions.
//
// Encoding looks a unit up in two steps: the page names a block for every run of 64 units, and the
// block holds their bytes, `?` included for what the page lacks. Equal blocks are stored once,
// which keeps all pages together at 21 KB and needs no search; most blocks of most pages are the
// one of question marks.
#ifndef VOK_PLATFORM_POSIX_CODEPAGETABLES_H
#define VOK_PLATFORM_POSIX_CODEPAGETABLES_H

#include <cstddef>
#include <cstdint>

namespace platform {

constexpr std::size_t encodeBlockSize = 64;

struct singleByteCodePage {
  unsigned number;
  const char16_t* upperHalf;    // units of the bytes 80 to FF
  const std::uint8_t* blockOf;  // for each run of encodeBlockSize units of the BMP, its block
};

extern const singleByteCodePage singleByteCodePages[];
extern const std::size_t singleByteCodePageCount;
extern const std::uint8_t encodeBlocks[][encodeBlockSize];

/// The byte of a unit of the BMP: exact, else best fit, else `?`.
inline std::uint8_t encodedUnit(const singleByteCodePage& page, char16_t unit) {
  return encodeBlocks[page.blockOf[unit / encodeBlockSize]][unit % encodeBlockSize];
}

}  // namespace platform

#endif

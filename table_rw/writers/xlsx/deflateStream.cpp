#include "table_rw/writers/xlsx/deflateStream.h"

#include <new>

namespace SimpleXlsx {
namespace {

// Chosen by measurement: see docs/performance.md. The rows of a sheet resemble each other so much that looking at
// the last few places where three bytes occurred finds nearly all that there is to find, when zlib may still
// prefer the next byte's match to this one's (level 4 and above).
constexpr int compressionLevel = 4;
constexpr int goodLength = 8;   // of a match; beyond, the search is cut to a quarter
constexpr int lazyLength = 16;  // beyond, the next byte is not tried
constexpr int niceLength = 64;  // beyond, the search ends
constexpr int longestChain =
    4;  // WHY not less: a quarter of it must be left, zlib counts down from there to 0
constexpr int rawWindow = -15;  // 32 KiB, without zlib's own header
constexpr int memoryLevel = 8;

constexpr std::size_t outputSize = std::size_t{64} * 1024;

}  // namespace

deflateStream::deflateStream() : output_(outputSize) {
  if (deflateInit2(&stream_, compressionLevel, Z_DEFLATED, rawWindow, memoryLevel,
                   Z_DEFAULT_STRATEGY) != Z_OK)
    throw std::bad_alloc();
  deflateTune(&stream_, goodLength, lazyLength, niceLength, longestChain);
}

deflateStream::~deflateStream() { deflateEnd(&stream_); }

void deflateStream::begin(std::string_view bytes) {
  // zlib's input is not const for old callers; it does not write there.
  stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream_.avail_in = static_cast<uInt>(bytes.size());
}

// The next piece; one that is not full is the last for these bytes.
std::string_view deflateStream::next(bool isLast) {
  stream_.next_out = reinterpret_cast<Bytef*>(output_.data());
  stream_.avail_out = static_cast<uInt>(output_.size());
  deflate(&stream_, isLast ? Z_FINISH : Z_NO_FLUSH);
  return {output_.data(), output_.size() - stream_.avail_out};
}

}  // namespace SimpleXlsx

#include "table_rw/text/textFileReader.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>

#include "platform/codePages.h"
#include "table_rw/text/textConversion.h"

namespace tableRW {
namespace {

constexpr std::size_t chunkSize = 1023;
constexpr std::size_t longestLine = std::numeric_limits<std::int32_t>::max();

// One chunk, measured up to its first NUL byte.
struct chunk {
  std::array<char, chunkSize> bytes;
  std::size_t size = 0;

  bool read(textModeInput& file) {
    const std::size_t got = file.getChunk(bytes.data(), bytes.size());
    const void* const nul = std::memchr(bytes.data(), 0, got);
    size = nul == nullptr ? got
                          : static_cast<std::size_t>(static_cast<const char*>(nul) - bytes.data());
    return got > 0;
  }

  bool endsLine() const { return size > 0 && bytes[size - 1] == '\n'; }
};

// ODD: one CR alone: of CR CR LF the first stays.
void removeLineEnd(std::wstring& line) {
  if (!line.empty() && line.back() == L'\n') line.pop_back();
  if (!line.empty() && line.back() == L'\r') line.pop_back();
}

// A line that did not fit into its first chunk, that a NUL byte cut, or that ends with the file.
std::string gatherLine(textModeInput& file, chunk& piece) {
  std::string bytes(piece.bytes.data(), piece.size);
  while (piece.read(file)) {
    // WHY one byte beyond the longest line: it marks the line as too long and bounds the memory.
    if (bytes.size() <= longestLine) bytes.append(piece.bytes.data(), piece.size);
    if (piece.endsLine()) break;
  }
  return bytes;
}

}  // namespace

bool textFileReader::open(const std::wstring& path, textEncoding encodingOfFile) {
  encoding = encodingOfFile;
  codePage = platform::resolveCodePage(codePageOf(encodingOfFile));
  return file.open(path);
}

bool readTextLine(textFileReader& reader, std::wstring& line) {
  line.clear();
  chunk piece;
  if (!piece.read(reader.file)) return false;
  if (piece.endsLine()) {
    line = decodeBytes(piece.bytes.data(), static_cast<std::int32_t>(piece.size), reader.codePage);
  } else {
    const std::string bytes = gatherLine(reader.file, piece);
    if (bytes.empty()) return false;
    if (bytes.size() <= longestLine)
      line = decodeBytes(bytes.data(), static_cast<std::int32_t>(bytes.size()), reader.codePage);
  }
  removeLineEnd(line);
  return true;
}

}  // namespace tableRW

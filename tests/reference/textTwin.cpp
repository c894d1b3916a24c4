#include "tests/reference/textTwin.h"

#include <cstdint>

#include "table_rw/text/textConversion.h"

namespace reference {
namespace {

bool isBlank(wchar_t character) {
  return character == L' ' || character == L'\t' || character == L'\n' || character == L'\r' ||
         character == L'\v' || character == L'\f';
}

bool standsAt(const std::wstring& text, std::size_t position, const std::wstring& wanted) {
  if (position + wanted.size() > text.size()) return false;
  for (std::size_t i = 0; i < wanted.size(); ++i)
    if (text[position + i] != wanted[i]) return false;
  return true;
}

}  // namespace

std::string foldTextMode(std::string_view fileBytes) {
  std::string folded;
  for (std::size_t i = 0; i < fileBytes.size(); ++i) {
    if (fileBytes[i] == '\x1A') break;
    const bool isBeforeLf = i + 1 < fileBytes.size() && fileBytes[i + 1] == '\n';
    if (fileBytes[i] == '\r' && isBeforeLf) continue;
    folded += fileBytes[i];
  }
  return folded;
}

bool textStream::fgets(std::string& chunk, std::size_t bufferSize) {
  chunk.clear();
  while (chunk.size() + 1 < bufferSize) {
    if (next_ == bytes_.size()) {
      endWasMet_ = true;
      break;
    }
    chunk += bytes_[next_++];
    if (chunk.back() == '\n') break;
  }
  return !chunk.empty();
}

bool readLineBytes(textStream& stream, std::string& line) {
  constexpr std::size_t bufferSize = 1024;
  line.clear();
  std::string chunk;
  if (!stream.fgets(chunk, bufferSize)) return false;
  do {
    for (const char byte : chunk) {
      if (byte == '\0') break;
      line += byte;
    }
    if (!line.empty() && line.back() == '\n') return true;
  } while (stream.fgets(chunk, bufferSize));
  return !line.empty();
}

bool readTextLine(textStream& stream, int encoding, std::wstring& line) {
  line.clear();
  std::string bytes;
  if (!readLineBytes(stream, bytes)) return false;
  line = tableRW::decodeText(bytes.data(), static_cast<std::int32_t>(bytes.size()), encoding);
  if (!line.empty() && line.back() == L'\n') line.pop_back();
  if (!line.empty() && line.back() == L'\r') line.pop_back();
  return true;
}

std::vector<std::wstring> splitText(const std::wstring& text, const std::wstring& delimiter,
                                    bool skipEmpty) {
  std::vector<std::wstring> all(1);
  for (std::size_t i = 0; i < text.size();) {
    if (!delimiter.empty() && standsAt(text, i, delimiter)) {
      all.emplace_back();
      i += delimiter.size();
    } else {
      all.back() += text[i++];
    }
  }
  std::vector<std::wstring> pieces;
  for (const std::wstring& piece : all)
    if (!skipEmpty || !piece.empty()) pieces.push_back(piece);
  return pieces;
}

std::wstring trimText(const std::wstring& text) {
  std::wstring trimmed = text;
  while (!trimmed.empty() && isBlank(trimmed.back())) trimmed.pop_back();
  while (!trimmed.empty() && isBlank(trimmed.front())) trimmed.erase(0, 1);
  return trimmed;
}

}  // namespace reference

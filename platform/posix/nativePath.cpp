#include "platform/posix/nativePath.h"

#include <algorithm>

#include "platform/posix/utf8.h"

namespace platform {
namespace {

constexpr char32_t firstRawByte = 0xDC80;
constexpr char32_t lastRawByte = 0xDCFF;

}  // namespace

std::string nativeBytes(std::wstring_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const textStep step = readWideStep(text.data() + i, text.size() - i);
    const auto element = static_cast<char32_t>(text[i]);
    i += step.length;
    if (!step.valid && element >= firstRawByte && element <= lastRawByte) {
      bytes += static_cast<char>(element & 0xFF);
      continue;
    }
    char sequence[4];
    bytes.append(sequence, encodeUtf8Step(step.character, sequence));
  }
  return bytes;
}

std::wstring wideText(std::string_view bytes) {
  std::wstring text;
  text.reserve(bytes.size());
  const auto* source = reinterpret_cast<const unsigned char*>(bytes.data());
  for (std::size_t i = 0; i < bytes.size();) {
    const textStep step = decodeUtf8Step(source + i, bytes.size() - i);
    // WHY: one byte at a time: the rest of a broken sequence may begin a good one.
    text += static_cast<wchar_t>(step.valid ? step.character : 0xDC00u + source[i]);
    i += step.valid ? step.length : 1;
  }
  return text;
}

std::string nativePath(std::wstring_view path) {
  std::string bytes = nativeBytes(path.substr(0, path.find(L'\0')));
  std::replace(bytes.begin(), bytes.end(), '\\', '/');
  return bytes;
}

}  // namespace platform

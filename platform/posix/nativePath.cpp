#include "platform/posix/nativePath.h"

#include <algorithm>

#include "platform/posix/utf8.h"

namespace platform {
namespace {

constexpr char32_t firstRawByte = 0xDC80;
constexpr char32_t lastRawByte = 0xDCFF;

constexpr std::size_t longestStep = 4;

// The bytes of the text's characters, one after the other.
template <class Receive>
void encodeSteps(std::wstring_view text, Receive receive) {
  for (std::size_t i = 0; i < text.size();) {
    const textStep step = readWideStep(text.data() + i, text.size() - i);
    const auto element = static_cast<char32_t>(text[i]);
    i += step.length;
    char sequence[longestStep];
    if (!step.valid && element >= firstRawByte && element <= lastRawByte) {
      sequence[0] = static_cast<char>(element & 0xFF);
      receive(std::string_view(sequence, 1));
    } else {
      receive(std::string_view(sequence, encodeUtf8Step(step.character, sequence)));
    }
  }
}

std::wstring_view upToNul(std::wstring_view path) { return path.substr(0, path.find(L'\0')); }

}  // namespace

std::string nativeBytes(std::wstring_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  encodeSteps(text, [&bytes](std::string_view step) { bytes += step; });
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
  std::string bytes = nativeBytes(upToNul(path));
  std::replace(bytes.begin(), bytes.end(), '\\', '/');
  return bytes;
}

smallNativePath::smallNativePath(std::wstring_view path) {
  std::size_t size = 0;
  bool fits = true;
  encodeSteps(upToNul(path), [&](std::string_view step) {
    fits = fits && step.size() < sizeof bytes_ - size;
    if (fits) size += step.copy(bytes_ + size, step.size());
  });
  if (!fits) size = 0;
  std::replace(bytes_, bytes_ + size, '\\', '/');
  bytes_[size] = '\0';
}

}  // namespace platform

#include "converter/wideText.h"

#include "platform/codePages.h"

namespace converter {

std::string toUtf8(std::wstring_view text) {
  std::string bytes(4 * text.size(), '\0');  // an element takes at most four
  const int length =
      platform::encodeCodePage(platform::utf8CodePage, text.data(), static_cast<int>(text.size()),
                               bytes.data(), static_cast<int>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(length));
  return bytes;
}

std::wstring toWide(std::string_view utf8) {
  std::wstring text(utf8.size(), L'\0');  // a byte is at most one element
  const int length =
      platform::decodeCodePage(platform::utf8CodePage, utf8.data(), static_cast<int>(utf8.size()),
                               text.data(), static_cast<int>(text.size()));
  text.resize(static_cast<std::size_t>(length));
  return text;
}

}  // namespace converter

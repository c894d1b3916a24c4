#include "table_rw/text/textConversion.h"

#include "platform/codePages.h"

namespace tableRW {

std::wstring decodeBytes(const char* bytes, std::int32_t length, unsigned codePage) {
  std::wstring text;
  if (bytes == nullptr) return text;
  const int needed = platform::decodeCodePage(codePage, bytes, length, nullptr, 0);
  if (needed <= 0) return text;
  text.resize(static_cast<std::size_t>(needed));
  if (platform::decodeCodePage(codePage, bytes, length, text.data(), needed) != needed)
    text.clear();
  return text;
}

std::wstring decodeText(const char* bytes, std::int32_t length, textEncoding encoding) {
  return decodeBytes(bytes, length, codePageOf(encoding));
}

std::string encodeText(const wchar_t* text, std::int32_t length, textEncoding encoding) {
  std::string bytes;
  if (text == nullptr) return bytes;
  const unsigned codePage = codePageOf(encoding);
  const int needed = platform::encodeCodePage(codePage, text, length, nullptr, 0);
  if (needed <= 0) return bytes;
  bytes.resize(static_cast<std::size_t>(needed));
  if (platform::encodeCodePage(codePage, text, length, bytes.data(), needed) != needed)
    bytes.clear();
  return bytes;
}

}  // namespace tableRW

#include "tools/codePageLimits.h"

#include <fmt/core.h>

#include <array>

#include "platform/codePages.h"
#include "tools/text.h"

namespace vokTable {
namespace {

constexpr unsigned asciiCodePage = 20127;

}  // namespace

codePageLimits::codePageLimits(unsigned codePage) : codePage_(codePage) {
  if (codePage == platform::utf8CodePage) return;
  std::array<char, 256> bytes;
  for (std::size_t byte = 0; byte < bytes.size(); ++byte) bytes[byte] = static_cast<char>(byte);
  std::array<wchar_t, 256> characters{};
  const int count = platform::decodeCodePage(codePage, bytes.data(), 256, characters.data(), 256);
  const std::wstring_view decoded(characters.data(), static_cast<std::size_t>(count));
  for (std::size_t at = 0; at < decoded.size();) encodable_.set(nextCharacter(decoded, at));
}

bool codePageLimits::holds(char32_t character) const {
  if (codePage_ == platform::utf8CodePage) return !isSurrogate(character) && character <= 0x10FFFF;
  return character <= 0xFFFF && encodable_[character];
}

std::size_t codePageLimits::sizeOf(std::wstring_view text) const {
  const auto length = static_cast<int>(text.size());
  return static_cast<std::size_t>(
      platform::encodeCodePage(codePage_, text.data(), length, nullptr, 0));
}

std::string codePageLimits::name() const {
  if (codePage_ == platform::utf8CodePage) return "UTF-8";
  if (codePage_ == asciiCodePage) return "ASCII";
  return fmt::format("{}{}", codePage_ < 1250 ? "CP" : "Windows-", codePage_);
}

}  // namespace vokTable

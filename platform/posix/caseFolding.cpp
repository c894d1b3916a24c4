#include "platform/caseFolding.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/codePages.h"
#include "platform/posix/lowerCaseTable.h"

namespace platform {
namespace {

wchar_t lowerCaseOf(wchar_t character) {
  if (character >= L'A' && character <= L'Z') return static_cast<wchar_t>(character - L'A' + L'a');
  if (character < 0x80 || character > 0xFFFF) return character;
  const auto unit = static_cast<char16_t>(character);
  const lowerCasePair* const end = lowerCasePairs + lowerCasePairCount;
  const lowerCasePair* const found = std::lower_bound(
      lowerCasePairs, end, unit,
      [](const lowerCasePair& pair, char16_t wanted) { return pair.capital < wanted; });
  return found != end && found->capital == unit ? static_cast<wchar_t>(found->small) : character;
}

}  // namespace

std::wstring lowerCase(std::wstring text) {
  std::transform(text.begin(), text.end(), text.begin(), lowerCaseOf);
  return text;
}

std::string lowerCaseNarrow(std::string text) {
  // The converters count in int; no name or extension is longer.
  if (text.empty() || text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
    return text;
  const unsigned codePage = resolveCodePage(systemCodePage);
  const int length = static_cast<int>(text.size());
  const int wideLength = decodeCodePage(codePage, text.data(), length, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(wideLength), L'\0');
  decodeCodePage(codePage, text.data(), length, wide.data(), wideLength);
  wide = lowerCase(std::move(wide));
  const int narrowLength = encodeCodePage(codePage, wide.data(), wideLength, nullptr, 0);
  if (narrowLength == 0) return text;  // broken bytes grow, and here past what an int counts
  text.resize(static_cast<std::size_t>(narrowLength));
  encodeCodePage(codePage, wide.data(), wideLength, text.data(), narrowLength);
  return text;
}

}  // namespace platform

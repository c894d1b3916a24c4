#include "table_rw/writers/xlsx/xmlText.h"

#include <charconv>
#include <cstddef>
#include <string>

#include "table_rw/text/utf8.h"

namespace SimpleXlsx {
namespace {

constexpr bool wideIsUtf16 = sizeof(wchar_t) == 2;
constexpr wchar_t replacement = L'\xFFFD';
constexpr std::uint32_t firstSurrogate = 0xD800;
constexpr std::uint32_t surrogates = 0x800;
constexpr std::uint32_t lastCharacter = 0x10FFFF;

bool isSurrogate(wchar_t element) {
  return static_cast<std::uint32_t>(element) - firstSurrogate < surrogates;
}

// True when every element is a character by itself: then nothing has to be replaced.
bool isPlain(std::wstring_view text) {
  bool isOdd = false;
  for (const wchar_t element : text)
    isOdd |= isSurrogate(element) || static_cast<std::uint32_t>(element) > lastCharacter;
  return !isOdd;
}

bool isPair(std::wstring_view text, std::size_t at) {
  return wideIsUtf16 && at + 1 < text.size() && (text[at] & 0xFC00) == 0xD800 &&
         (text[at + 1] & 0xFC00) == 0xDC00;
}

std::wstring withoutOddElements(std::wstring_view text) {
  std::wstring cleaned(text);
  for (std::size_t i = 0; i < cleaned.size(); ++i) {
    if (isPair(cleaned, i))
      ++i;
    else if (!isPlain(std::wstring_view(&cleaned[i], 1)))
      cleaned[i] = replacement;
  }
  return cleaned;
}

void appendPlain(std::wstring_view text, tableRW::growingArray<char>& bytes) {
  char* const begin = bytes.room(text.size() * tableRW::longestUtf8Element);
  char* const end = tableRW::narrowToUtf8(text, begin);
  bytes.advance(static_cast<std::size_t>(end - begin));
}

bool isForbidden(wchar_t element) {
  constexpr std::uint32_t firstPrintable = 0x20;
  const bool isControl = static_cast<std::uint32_t>(element) < firstPrintable;
  return (isControl && element != L'\t' && element != L'\n' && element != L'\r') ||
         element == L'\xFFFE' || element == L'\xFFFF';
}

// What stands in escaped text instead of a character; empty for those that stand as they are.
std::string_view replacementOf(wchar_t element) {
  switch (element) {
    case L'&':
      return "&amp;";
    case L'<':
      return "&lt;";
    case L'>':
      return "&gt;";
    case L'"':
      return "&quot;";
    default:
      return isForbidden(element) ? "\xEF\xBF\xBD" : std::string_view();
  }
}

}  // namespace

void appendUtf8(std::wstring_view text, tableRW::growingArray<char>& bytes) {
  if (isPlain(text))
    appendPlain(text, bytes);
  else
    appendPlain(withoutOddElements(text), bytes);
}

void appendEscaped(std::wstring_view text, tableRW::growingArray<char>& bytes) {
  std::size_t begin = 0;  // of what stands as it is
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::string_view instead = replacementOf(text[at]);
    if (instead.empty()) continue;
    appendUtf8(text.substr(begin, at - begin), bytes);
    bytes.append(instead.data(), instead.size());
    begin = at + 1;
  }
  appendUtf8(text.substr(begin), bytes);
}

char* putNumber(std::uint64_t number, char* output) {
  return std::to_chars(output, output + mostDigits, number).ptr;
}

}  // namespace SimpleXlsx

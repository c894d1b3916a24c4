#include "converter/syntax/utf8.h"
#include "converter/workbook/xlsWorkbook.h"
#include "platform/codePages.h"

namespace converter {
namespace {

// Mac OS Roman, 80 to FF; no Windows converter knows it on every machine.
constexpr char16_t macRoman[] =
    u"\u00C4\u00C5\u00C7\u00C9\u00D1\u00D6\u00DC\u00E1\u00E0\u00E2\u00E4\u00E3\u00E5\u00E7\u00E9"
    u"\u00E8"
    u"\u00EA\u00EB\u00ED\u00EC\u00EE\u00EF\u00F1\u00F3\u00F2\u00F4\u00F6\u00F5\u00FA\u00F9\u00FB"
    u"\u00FC"
    u"\u2020\u00B0\u00A2\u00A3\u00A7\u2022\u00B6\u00DF\u00AE\u00A9\u2122\u00B4\u00A8\u2260\u00C6"
    u"\u00D8"
    u"\u221E\u00B1\u2264\u2265\u00A5\u00B5\u2202\u2211\u220F\u03C0\u222B\u00AA\u00BA\u03A9\u00E6"
    u"\u00F8"
    u"\u00BF\u00A1\u00AC\u221A\u0192\u2248\u2206\u00AB\u00BB\u2026\u00A0\u00C0\u00C3\u00D5\u0152"
    u"\u0153"
    u"\u2013\u2014\u201C\u201D\u2018\u2019\u00F7\u25CA\u00FF\u0178\u2044\u20AC\u2039\u203A\uFB01"
    u"\uFB02"
    u"\u2021\u00B7\u201A\u201E\u2030\u00C2\u00CA\u00C1\u00CB\u00C8\u00CD\u00CE\u00CF\u00CC\u00D3"
    u"\u00D4"
    u"\uF8FF\u00D2\u00DA\u00DB\u00D9\u0131\u02C6\u02DC\u00AF\u02D8\u02D9\u02DA\u00B8\u02DD\u02DB"
    u"\u02C7";

constexpr unsigned macRomanPage = 10000;
constexpr unsigned macRomanOfBiff = 32768;
constexpr unsigned windows1252OfBiff = 32769;
constexpr unsigned defaultPage = 1252;

bool isSingleByteWindowsPage(unsigned page) {
  return (page >= 1250 && page <= 1258) || page == 866;
}

}  // namespace

byteText::byteText() { choose(defaultPage); }

void byteText::choose(unsigned number) {
  if (number == windows1252OfBiff) number = defaultPage;
  for (unsigned byte = 0; byte < characters_.size(); ++byte) {
    char32_t character = byte < 0x80 ? byte : replacementCharacter;
    if (byte >= 0x80 && (number == macRomanPage || number == macRomanOfBiff)) {
      character = macRoman[byte - 0x80];
    } else if (byte >= 0x80 && isSingleByteWindowsPage(number)) {
      const char narrow = static_cast<char>(byte);
      wchar_t wide = 0;
      if (platform::decodeCodePage(number, &narrow, 1, &wide, 1) == 1)
        character = static_cast<char32_t>(wide);
    }
    characters_[byte] = character;
  }
}

void byteText::append(std::string& text, unsigned byte) const {
  appendUtf8(text, characters_[byte & 0xFF]);
}

}  // namespace converter

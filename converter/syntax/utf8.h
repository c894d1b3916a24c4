// Characters as UTF-8.
#ifndef VOK_CONVERTER_SYNTAX_UTF8_H
#define VOK_CONVERTER_SYNTAX_UTF8_H

#include <string>

namespace converter {

constexpr char32_t replacementCharacter = 0xFFFD;

/// Appends a character; what is none (a surrogate, a number above U+10FFFF) becomes U+FFFD.
inline void appendUtf8(std::string& text, char32_t character) {
  if (character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF))
    character = replacementCharacter;
  if (character < 0x80) {
    text += static_cast<char>(character);
    return;
  }
  const int following = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
  const unsigned mark = following == 1 ? 0xC0 : following == 2 ? 0xE0 : 0xF0;
  text += static_cast<char>(mark | character >> (6 * following));
  for (int i = following - 1; i >= 0; --i)
    text += static_cast<char>(0x80 | ((character >> (6 * i)) & 0x3F));
}

/// Appends UTF-16, unit by unit: the halves of a pair may come in two calls.
class utf16Appender {
 public:
  explicit utf16Appender(std::string& text) : text_(&text) {}
  utf16Appender(const utf16Appender&) = delete;
  utf16Appender& operator=(const utf16Appender&) = delete;
  ~utf16Appender() { endPair(); }

  void append(char16_t unit) {
    const bool isLow = unit >= 0xDC00 && unit <= 0xDFFF;
    if (high_ != 0 && isLow) {
      appendUtf8(*text_, 0x10000 + ((char32_t{high_} - 0xD800) << 10) + (unit - 0xDC00u));
      high_ = 0;
      return;
    }
    endPair();
    if (unit >= 0xD800 && unit <= 0xDBFF)
      high_ = unit;
    else
      appendUtf8(*text_, unit);
  }

 private:
  void endPair() {
    if (high_ != 0) appendUtf8(*text_, replacementCharacter);
    high_ = 0;
  }

  std::string* text_;
  char16_t high_ = 0;
};

}  // namespace converter

#endif

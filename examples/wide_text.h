// The wide text of the library, to and from what a program of the command line has.
#ifndef VOK_EXAMPLES_WIDE_TEXT_H
#define VOK_EXAMPLES_WIDE_TEXT_H

#include <clocale>
#include <cstddef>
#include <cstdlib>
#include <string>

inline void append(std::string& out, char32_t character) {
  const auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
  if (character < 0x80) return put(character);
  if (character < 0x800) {
    put(0xC0 | (character >> 6));
  } else {
    if (character < 0x10000) {
      put(0xE0 | (character >> 12));
    } else {
      put(0xF0 | (character >> 18));
      put(0x80 | ((character >> 12) & 0x3F));
    }
    put(0x80 | ((character >> 6) & 0x3F));
  }
  put(0x80 | (character & 0x3F));
}

// Where wchar_t has 16 bits, characters beyond U+FFFF are two units.
inline std::string utf8(const std::wstring& text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    auto character = static_cast<char32_t>(text[i]);
    if (character >= 0xD800 && character < 0xDC00 && i + 1 < text.size()) {
      const auto second = static_cast<char32_t>(text[++i]);
      character = 0x10000 + ((character - 0xD800) << 10) + (second - 0xDC00);
    }
    append(out, character);
  }
  return out;
}

// A path as the command line gives it; empty when it cannot be converted.
inline std::wstring wide(const char* path) {
  std::setlocale(LC_CTYPE, "");  // for mbstowcs; the library does not need it
  const std::size_t length = std::mbstowcs(nullptr, path, 0);
  if (length == static_cast<std::size_t>(-1)) return {};
  std::wstring out(length, L'\0');
  std::mbstowcs(out.data(), path, length);
  return out;
}

#endif

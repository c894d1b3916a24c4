// UTF-8 one character at a time, for the POSIX services: the step that the code page converters and
// the names of files share. What each of them does about broken text is theirs.
#ifndef VOK_PLATFORM_POSIX_UTF8_H
#define VOK_PLATFORM_POSIX_UTF8_H

#include <cstddef>
#include <cstdint>

namespace platform {

constexpr char32_t replacementCharacter = 0xFFFD;
constexpr char32_t lastCharacter = 0x10FFFF;

/// One step through a text: the character and how many bytes or elements it took.
struct textStep {
  char32_t character;  // replacementCharacter when not valid
  std::size_t length;
  bool valid;
};

constexpr bool isHighSurrogate(char32_t element) { return element >= 0xD800 && element <= 0xDBFF; }
constexpr bool isLowSurrogate(char32_t element) { return element >= 0xDC00 && element <= 0xDFFF; }

/// Decodes the character at `bytes`; `available` is at least 1. A broken sequence takes the bytes
/// that Windows replaces by one U+FFFD: it ends before the first byte that is no continuation, but
/// a first continuation byte that is out of the lead byte's range still belongs to it.
inline textStep decodeUtf8Step(const unsigned char* bytes, std::size_t available) {
  const unsigned lead = bytes[0];
  if (lead < 0x80) return {lead, 1, true};
  const unsigned following = lead >= 0xC2 && lead <= 0xDF   ? 1
                             : lead >= 0xE0 && lead <= 0xEF ? 2
                             : lead >= 0xF0 && lead <= 0xF4 ? 3
                                                            : 0;
  if (following == 0) return {replacementCharacter, 1, false};
  char32_t character = lead & (0x7Fu >> (following + 1));
  for (std::size_t i = 1; i <= following; ++i) {
    if (i == available || (bytes[i] & 0xC0u) != 0x80) return {replacementCharacter, i, false};
    character = character << 6 | (bytes[i] & 0x3Fu);
    if (i != 1) continue;
    const unsigned second = bytes[1];
    if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
        (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F))
      return {replacementCharacter, 2, false};
  }
  return {character, following + 1, true};
}

/// Reads the character at `text`; `available` is at least 1. Two elements that are a surrogate pair
/// are one character. A lone surrogate and an element above U+10FFFF are not valid.
inline textStep readWideStep(const wchar_t* text, std::size_t available) {
  const auto element = static_cast<char32_t>(text[0]);
  if (element < 0xD800 || (element > 0xDFFF && element <= lastCharacter)) return {element, 1, true};
  if (isHighSurrogate(element) && available > 1) {
    const auto next = static_cast<char32_t>(text[1]);
    if (isLowSurrogate(next))
      return {0x10000 + ((element - 0xD800) << 10) + (next - 0xDC00), 2, true};
  }
  return {replacementCharacter, 1, false};
}

/// Writes the UTF-8 bytes of a character into `output`, which has room for four.
/// @return their number
inline std::size_t encodeUtf8Step(char32_t character, char* output) {
  if (character < 0x80) {
    output[0] = static_cast<char>(character);
    return 1;
  }
  const std::size_t length = character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
  for (std::size_t i = length - 1; i > 0; --i) {
    output[i] = static_cast<char>(0x80 | (character & 0x3F));
    character >>= 6;
  }
  const unsigned leadMark = length == 2 ? 0xC0 : length == 3 ? 0xE0 : 0xF0;
  output[0] = static_cast<char>(leadMark | character);
  return length;
}

}  // namespace platform

#endif

// The table's own text form: UTF-8 that holds every wide string, so that values survive storage exactly.
//
// A lone surrogate takes its three-byte form. Where wide text is UTF-16 (Windows) a pair of surrogates
// becomes the four bytes of its character and comes back as the pair; where an element is a code point
// (Linux) every element is stored by itself, surrogates included. Elements that are no code point
// (above U+10FFFF) are kept too, behind the byte FF.
//
// Equal strings have equal bytes and different strings different ones, so comparing bytes compares text.
// No state; any thread.
#ifndef VOK_TABLE_RW_TEXT_UTF8_H
#define VOK_TABLE_RW_TEXT_UTF8_H

#include <cstddef>
#include <string>
#include <string_view>

namespace tableRW {

/// Upper bound of the bytes that one element of a wide string takes.
inline constexpr std::size_t longestUtf8Element = sizeof(wchar_t) == 2 ? 3 : 7;

/// Writes the bytes of `text`, at most longestUtf8Element for each element.
/// @return behind the last byte written
char* narrowToUtf8(std::wstring_view text, char* output);

/// The bytes of a wide string.
std::string utf8FromWide(std::wstring_view text);

/// True for UTF-8 as the standard has it: no surrogates, no overlong forms, nothing above U+10FFFF.
bool isValidUtf8(std::string_view bytes);

/// The wide string of bytes that narrowToUtf8 or a valid UTF-8 source made.
std::wstring wideFromUtf8(std::string_view bytes);

/// The same, faster, for bytes behind which utf8Padding more may be read, whatever they hold.
std::wstring wideFromPaddedUtf8(std::string_view bytes);
inline constexpr std::size_t utf8Padding = 16;

}  // namespace tableRW

#endif

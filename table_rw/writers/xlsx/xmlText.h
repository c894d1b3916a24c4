// Wide text as the bytes of an XML part.
//
// No state; any thread. Nothing fails but allocation.
#ifndef VOK_TABLE_RW_WRITERS_XLSX_XMLTEXT_H
#define VOK_TABLE_RW_WRITERS_XLSX_XMLTEXT_H

#include <cstdint>
#include <string_view>

#include "table_rw/text/growingArray.h"

namespace SimpleXlsx {

/// Appends text as UTF-8 and escapes nothing. The bytes are valid UTF-8 whatever the text holds: what is
/// no character (a lone surrogate, an element above U+10FFFF) becomes U+FFFD.
void appendUtf8(std::wstring_view text, tableRW::growingArray<char>& bytes);

/// Appends text with `&`, `<`, `>` and `"` as entities; a character that XML 1.0 forbids becomes U+FFFD.
void appendEscaped(std::wstring_view text, tableRW::growingArray<char>& bytes);

/// Decimal digits of a 64-bit number at most.
inline constexpr std::size_t mostDigits = 20;

/// Writes a number in decimal. @return behind the last digit
char* putNumber(std::uint64_t number, char* output);

}  // namespace SimpleXlsx

#endif

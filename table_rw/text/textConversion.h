// Narrow text to wide text and back, in one of the encodings of the table.
//
// A failed conversion gives an empty string, never an error. Broken UTF-8 and bytes that a page does not
// define come out as the platform substitutes them; characters that a page lacks become their best fit
// or "?". See platform/codePages.h.
//
// No state; any thread.
#ifndef VOK_TABLE_RW_TEXT_TEXTCONVERSION_H
#define VOK_TABLE_RW_TEXT_TEXTCONVERSION_H

#include <cstdint>
#include <string>

#include "table_rw/text/textEncoding.h"

namespace tableRW {

/// Decodes `length` bytes. Null, nothing to decode or an unsupported code page: the empty string.
std::wstring decodeText(const char* bytes, std::int32_t length, textEncoding encoding);

/// Encodes `length` characters of wide text. Null, nothing to encode: the empty string.
std::string encodeText(const wchar_t* text, std::int32_t length, textEncoding encoding);

/// decodeText for a code page that is already known, so that a file's page is looked up only once.
std::wstring decodeBytes(const char* bytes, std::int32_t length, unsigned codePage);

}  // namespace tableRW

#endif

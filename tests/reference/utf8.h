// Slow and obvious twins of the UTF-8 converters: what Windows answers, written down rule by rule.
#ifndef VOK_TESTS_REFERENCE_UTF8_H
#define VOK_TESTS_REFERENCE_UTF8_H

#include <string>

namespace reference {

/// Decodes bytes to UTF-16 with one U+FFFD for each broken sequence, cut as Windows cuts them.
std::u16string decodeUtf8(const std::string& bytes);

/// Encodes UTF-16; a lone surrogate becomes the bytes of U+FFFD.
std::string encodeUtf8(const std::u16string& units);

}  // namespace reference

#endif

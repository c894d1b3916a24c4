// Conversion between narrow text in a Windows code page and wide text.
//
// Windows answers through its own converters with flags 0. POSIX answers the same from tables: for
// every byte and every wide character of 1250 to 1258, 866 and 20127, and for broken UTF-8 (65001).
// Best fit and the substitution characters are those of Windows.
//
// Wide text is UTF-16 on Windows. On POSIX an element holds a code point; two neighbouring elements
// that are a surrogate pair are read as the one character they name, and a character beyond the BMP
// counts as two units where a page has no such character ("??").
//
// No state but the host's choice of the system's code page; any thread.
#ifndef VOK_PLATFORM_CODEPAGES_H
#define VOK_PLATFORM_CODEPAGES_H

namespace platform {

constexpr unsigned systemCodePage = 0;
constexpr unsigned utf8CodePage = 65001;

/// The number of the code page that 0 stands for at this moment; any other number comes back as it
/// is. It is the page that was chosen last, if any; else on Windows the system's, on POSIX the character set of the locale that LC_ALL, LC_CTYPE or LANG names (the
/// first that is set and not empty); C, POSIX, and what is unknown or unsupported mean UTF-8.
unsigned resolveCodePage(unsigned codePage);

/// Chooses the page that 0 stands for in this process from now on; 0 leaves it to the system again.
/// @return false, and nothing changes, for a page that is not supported
bool chooseSystemCodePage(unsigned codePage);

/// The page that was chosen; 0 when none was.
unsigned chosenSystemCodePage();

/// Decodes narrow text.
/// @param length    number of bytes; negative: up to and including the first NUL byte
/// @param output    receives the wide text, not terminated; may be null when `capacity` is 0
/// @param capacity  elements that `output` can hold; 0 asks for the length alone
/// @return elements written (or needed, when `capacity` is 0); 0 when there is nothing to convert,
///         the page is not supported or the output does not fit
int decodeCodePage(unsigned codePage, const char* bytes, int length, wchar_t* output, int capacity);

/// Encodes wide text; the same rules in the other direction. What the page lacks becomes its best
/// fit or else `?`; in UTF-8 a lone surrogate becomes U+FFFD.
int encodeCodePage(unsigned codePage, const wchar_t* text, int length, char* output, int capacity);

}  // namespace platform

#endif

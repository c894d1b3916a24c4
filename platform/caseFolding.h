// Lower case as Windows' CharLowerW and CharLowerA give it: one character at a time, without regard
// to the locale (the Turkish capital I becomes i), mappings that do not round-trip left out.
//
// Windows answers itself; POSIX answers the same from a table of all characters of the BMP. Letters
// beyond the BMP are left alone on POSIX; versions of Windows differ about them. Text may hold NUL
// characters. No state; any thread.
#ifndef VOK_PLATFORM_CASEFOLDING_H
#define VOK_PLATFORM_CASEFOLDING_H

#include <string>

namespace platform {

/// The text with every capital letter replaced by its small one, as CharLowerW does it.
std::wstring lowerCase(std::wstring text);

/// The same for narrow text in the system's code page, as CharLowerA does it. The length may change
/// where that page is UTF-8.
std::string lowerCaseNarrow(std::string text);

}  // namespace platform

#endif

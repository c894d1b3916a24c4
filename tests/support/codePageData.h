// The recorded answers of Windows' converters (tests/data/codepages), for the tests of code pages
// and case folding. Its README.md says what the files hold.
#ifndef VOK_TESTS_SUPPORT_CODEPAGEDATA_H
#define VOK_TESTS_SUPPORT_CODEPAGEDATA_H

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace testSupport {

constexpr unsigned singleByteCodePages[] = {1250, 1251, 1252, 1253, 1254, 1255,
                                            1256, 1257, 1258, 866,  20127};

/// The lines of a file of recorded answers, cut at each TAB; comment lines are left out.
std::vector<std::vector<std::string>> recordedRows(const std::string& fileName);

/// The unit of every byte of a code page.
std::array<char16_t, 256> recordedDecoding(unsigned codePage);

/// The byte of every unit in a single-byte code page.
std::vector<unsigned char> recordedEncoding(unsigned codePage);

/// The small letter of every unit; a unit that has none stands for itself.
std::vector<char16_t> recordedLowerCase();

/// Reads "D83D 0041" or "D83DDE00" with digits in groups of four, and "C3 A9" or "C3A9" in groups
/// of two.
std::u16string unitsOf(std::string_view digits);
std::string bytesOf(std::string_view digits);

/// Wide text from units, each in an element of its own.
std::wstring wideOf(std::u16string_view units);

/// Wide text from units as the platform itself makes it: a surrogate pair is one element where an
/// element is a code point.
std::wstring joinedWideOf(std::u16string_view units);

/// Text as "0041 D83D" or "41 C3", for messages.
std::string digitsOf(std::wstring_view text);
std::string digitsOf(std::string_view bytes);

}  // namespace testSupport

#endif

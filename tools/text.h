// Text of the tool: UTF-8 inside, because fmt measures and CLI11 parses it, and wide text at the
// borders (arguments, the library, standard output).
//
// A lone surrogate travels through UTF-8 in its three-byte form, so an argument that names a file
// with an impossible name comes back as it was. Data that is shown never holds one: see
// appendShown.
//
// No state; any thread.
#ifndef VOK_TOOLS_TEXT_H
#define VOK_TOOLS_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vokTable {

/// Wide text as UTF-8; pairs of surrogates become one character, lone ones keep their three-byte
/// form.
std::string toUtf8(std::wstring_view text);

/// The way back. A byte that belongs to no character becomes U+FFFD.
std::wstring toWide(std::string_view utf8);

/// The character at `at`, which moves behind it. A pair of surrogates is one character; a lone one
/// is answered as it is.
char32_t nextCharacter(std::wstring_view text, std::size_t& at);

constexpr char32_t replacementCharacter = 0xFFFD;
constexpr char32_t byteOrderMark = 0xFEFF;
constexpr bool isSurrogate(char32_t character) {
  return character >= 0xD800 && character <= 0xDFFF;
}

/// Characters that move the cursor, colour the terminal, or reorder what stands beside them: control characters
/// and the marks of writing direction.
bool drivesTerminal(char32_t character);

/// Where text will be seen.
enum class destination { pipe, terminal };

/// Appends a value so that it stays on its line and in its column: TAB, LF and CR become \t \n \r,
/// a backslash stays, so the way back is not always clear; a lone surrogate becomes U+FFFD. For a terminal, so do all characters that could drive it or
/// disorder the line.
void appendShown(std::wstring& out, std::wstring_view value, destination where);

/// Columns that the text takes on a terminal: 2 for a wide character, else 1.
std::size_t displayWidth(const std::string& utf8);

/// True for text that reads as one number: sign, digits with a point or a comma, exponent.
bool looksNumeric(std::wstring_view value);

/// A count for people: digits in groups of three, set apart by blanks.
std::string grouped(std::uint64_t count);

/// A count and what is counted, in the plural where it belongs: "1 value", "2 values".
std::string counted(std::uint64_t count, std::string_view what);

/// Text in double quotes, as messages show names and values.
std::string inQuotes(std::string_view text);

}  // namespace vokTable

#endif

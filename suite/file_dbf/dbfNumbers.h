// Numbers as a record holds them: digits, right-aligned, with a fixed number of decimals. All of it is
// done on the digits as they are written, so no number loses precision on the way.
// No state; any thread.
#ifndef VOK_SUITE_FILE_DBF_DBFNUMBERS_H
#define VOK_SUITE_FILE_DBF_DBFNUMBERS_H

#include <cstddef>
#include <string_view>

namespace fileDbf {

/// Fills a field of `width` bytes: the number rounded (half away from zero) to `decimals` digits, the
/// field's asterisks when it does not fit, blanks for text that is no number.
void writeNumber(const wchar_t* text, std::size_t decimals, char* to, std::size_t width);

/// The text without blanks around it.
std::wstring_view withoutBlanks(std::wstring_view text);

}  // namespace fileDbf

#endif

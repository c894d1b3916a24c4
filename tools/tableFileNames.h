// File names for the tables of a source: what every system takes, and no two alike.
//
// What Windows does not take in a name ( < > : " / \ | ? * ), control characters, marks of writing direction and
// lone surrogates become "_"; so does a dot or a blank at either end, a minus in front, and a name that Windows
// keeps for devices (CON, NUL, COM1...) gets one in front. A name takes 200 bytes of UTF-8 at most. Where two
// tables would have one name without regard to letter case, the later one gets _2, _3 and so on behind it.
//
// Functions of their arguments; any thread.
#ifndef VOK_TOOLS_TABLEFILENAMES_H
#define VOK_TOOLS_TABLEFILENAMES_H

#include <string>
#include <string_view>
#include <vector>

namespace vokTable {

/// A name, without an extension, for each table, in their order.
std::vector<std::wstring> fileNamesOf(const std::vector<std::wstring>& tables);

/// A table's name as a file may bear it.
std::wstring safeFileName(std::wstring_view table);

}  // namespace vokTable

#endif

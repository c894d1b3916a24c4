// The parts of a path's text. Both `\` and `/` separate, on every target; nothing is asked of the disk.
#ifndef VOK_TABLE_RW_CORE_PATHNAMES_H
#define VOK_TABLE_RW_CORE_PATHNAMES_H

#include <string>
#include <string_view>

namespace tableRW {

/// The path up to and including its last separator; empty when it has none.
std::wstring folderOf(std::wstring_view path);

/// The path after its last separator; the whole path when it has none.
std::wstring fileNameOf(std::wstring_view path);

/// The extension of the file name, from its last dot, dot included, in lower case; empty without a dot.
std::wstring extensionOf(std::wstring_view path);

}  // namespace tableRW

#endif

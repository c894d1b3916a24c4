// The parts of a path's text. Both `\` and `/` separate, on every target; nothing is asked of the disk.
#ifndef VOK_TABLE_RW_CORE_PATHNAMES_H
#define VOK_TABLE_RW_CORE_PATHNAMES_H

#include <initializer_list>
#include <string>
#include <string_view>

namespace tableRW {

/// The path up to and including its last separator; empty when it has none.
std::wstring folderOf(std::wstring_view path);

/// The path after its last separator; the whole path when it has none.
std::wstring fileNameOf(std::wstring_view path);

/// The extension of the file name, from its last dot, dot included, in lower case; empty without a dot.
std::wstring extensionOf(std::wstring_view path);

/// Joins parts of a path, in order, with `\` on every target. Empty parts are skipped; an absolute part,
/// which begins with a separator or has a colon in second place, replaces what is before it; no `\` follows
/// a separator.
std::wstring joinPath(std::initializer_list<std::wstring_view> parts);

}  // namespace tableRW

#endif

// Paths as the narrow functions of the C runtime take them: bytes in the process's current locale.
//
// For code whose callers count on files being opened that way, with the limits that it has.
// The locale must not be changed by another thread meanwhile.
#ifndef VOK_PLATFORM_NARROWPATH_H
#define VOK_PLATFORM_NARROWPATH_H

#include <cstddef>
#include <string>

namespace platform {

/// Bytes of the longest narrow path, its terminator included.
inline constexpr std::size_t longestNarrowPath = 260;

/// True when `wcstombs` makes a narrow path of this one, of at most `longestNarrowPath` bytes, and opening
/// that path would lead to the same file. In the locale "C", which a program has that never called
/// `setlocale`, a path with Cyrillic letters has none.
bool hasNarrowPath(const std::wstring& path);

}  // namespace platform

#endif

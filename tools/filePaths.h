// Questions about paths that the file service of the platform does not answer.
//
// A path that the standard library cannot hold is answered with no.
#ifndef VOK_TOOLS_FILEPATHS_H
#define VOK_TOOLS_FILEPATHS_H

#include <string>

namespace vokTable {

/// True when both paths lead to one file, by the same name or another.
bool isSameFile(const std::wstring& first, const std::wstring& second);

/// True for a pipe or a device: its bytes can be read once, and opening it again may wait for ever.
bool isPipeOrDevice(const std::wstring& path);

/// True for a symbolic link, wherever it leads.
bool isLink(const std::wstring& path);

}  // namespace vokTable

#endif

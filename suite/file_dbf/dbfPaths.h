// The files that stand beside a table. No state; any thread.
#ifndef VOK_SUITE_FILE_DBF_DBFPATHS_H
#define VOK_SUITE_FILE_DBF_DBFPATHS_H

#include <cstddef>
#include <string>

namespace fileDbf {

/// The path with another extension, which begins with its dot. A dot in a folder's name begins none.
inline std::wstring withExtension(const std::wstring& path, const wchar_t* extension) {
  const std::size_t name = path.find_last_of(L"/\\") + 1;  // 0 when there is neither
  const std::size_t dot = path.rfind(L'.');
  const bool hasExtension = dot != std::wstring::npos && dot >= name;
  return path.substr(0, hasExtension ? dot : path.size()) + extension;
}

}  // namespace fileDbf

#endif

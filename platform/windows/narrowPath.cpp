#include "platform/narrowPath.h"

#include <windows.h>

#include <array>
#include <cstdlib>

namespace platform {

bool hasNarrowPath(const std::wstring& path) {
  std::array<char, longestNarrowPath> narrow;
  const std::size_t size = std::wcstombs(narrow.data(), path.c_str(), narrow.size());
  // A full buffer has no room for the terminator; a conversion that fails answers a larger number yet.
  if (size >= narrow.size()) return false;
  // The runtime's locale makes the bytes, the system's code page gives them their meaning back.
  std::array<wchar_t, longestNarrowPath> wide;
  const int count = MultiByteToWideChar(CP_ACP, 0, narrow.data(), static_cast<int>(size),
                                        wide.data(), static_cast<int>(wide.size()));
  return path.substr(0, path.find(L'\0')) ==
         std::wstring(wide.data(), static_cast<std::size_t>(count));
}

}  // namespace platform

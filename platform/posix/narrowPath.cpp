#include "platform/narrowPath.h"

#include <array>
#include <cstdlib>
#include <string_view>

#include "platform/posix/nativePath.h"

namespace platform {

bool hasNarrowPath(const std::wstring& path) {
  std::array<char, longestNarrowPath> narrow;
  const std::size_t size = std::wcstombs(narrow.data(), path.c_str(), narrow.size());
  // A full buffer has no room for the terminator; a conversion that fails answers a larger number yet.
  return size < narrow.size() &&
         std::string_view(narrow.data(), size) == nativeBytes(path.substr(0, path.find(L'\0')));
}

}  // namespace platform

#include "table_rw/core/pathNames.h"

#include "platform/caseFolding.h"

namespace tableRW {
namespace {

std::size_t folderLength(std::wstring_view path) {
  const std::size_t separator = path.find_last_of(L"\\/");
  return separator == std::wstring_view::npos ? 0 : separator + 1;
}

bool isSeparator(wchar_t character) { return character == L'\\' || character == L'/'; }

bool isAbsolute(std::wstring_view part) {
  return isSeparator(part.front()) || (part.size() > 1 && part[1] == L':');
}

}  // namespace

std::wstring folderOf(std::wstring_view path) {
  return std::wstring(path.substr(0, folderLength(path)));
}

std::wstring fileNameOf(std::wstring_view path) {
  return std::wstring(path.substr(folderLength(path)));
}

std::wstring extensionOf(std::wstring_view path) {
  const std::wstring_view name = path.substr(folderLength(path));
  const std::size_t dot = name.rfind(L'.');
  return dot == std::wstring_view::npos ? std::wstring()
                                        : platform::lowerCase(std::wstring(name.substr(dot)));
}

// ODD: with `\` on every target: project files hold such paths.
std::wstring joinPath(std::initializer_list<std::wstring_view> parts) {
  std::wstring path;
  for (const std::wstring_view part : parts) {
    if (part.empty()) continue;
    if (isAbsolute(part)) path.clear();
    if (!path.empty() && !isSeparator(path.back())) path += L'\\';
    path += part;
  }
  return path;
}

}  // namespace tableRW

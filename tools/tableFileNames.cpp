#include "tools/tableFileNames.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "platform/caseFolding.h"
#include "tools/text.h"

namespace vokTable {
namespace {

constexpr std::size_t mostBytes = 200;

/// Names that Windows keeps for devices, whatever stands behind a dot after them.
bool isDevice(const std::wstring& name) {
  std::wstring stem = platform::lowerCase(name.substr(0, name.find(L'.')));
  stem.erase(stem.find_last_not_of(L' ') + 1);
  for (const wchar_t* const device : {L"con", L"prn", L"aux", L"nul", L"conin$", L"conout$"})
    if (stem == device) return true;
  // The small raised digits count as digits there.
  return stem.size() == 4 && (stem.starts_with(L"com") || stem.starts_with(L"lpt")) &&
         std::wstring_view(L"0123456789\u00B9\u00B2\u00B3").find(stem[3]) !=
             std::wstring_view::npos;
}

/// As many whole characters as fit.
std::wstring cut(const std::wstring& name) {
  std::size_t end = 0;
  for (std::size_t at = 0; at < name.size(); end = at) {
    nextCharacter(name, at);
    if (toUtf8(std::wstring_view(name).substr(0, at)).size() > mostBytes) break;
  }
  return name.substr(0, end);
}

}  // namespace

std::wstring safeFileName(std::wstring_view table) {
  std::wstring name;
  for (std::size_t at = 0; at < table.size();) {
    const std::size_t begin = at;
    const char32_t character = nextCharacter(table, at);
    if (drivesTerminal(character) || isSurrogate(character) ||
        std::u32string_view(U"<>:\"/\\|?*").find(character) != std::u32string_view::npos)
      name += L'_';
    else
      name.append(table, begin, at - begin);
  }
  name = cut(name);
  if (name.empty()) return L"_";
  if (std::wstring_view(L". -").find(name.front()) != std::wstring_view::npos) name.front() = L'_';
  if (std::wstring_view(L". ").find(name.back()) != std::wstring_view::npos) name.back() = L'_';
  return isDevice(name) ? L"_" + name : name;
}

std::vector<std::wstring> fileNamesOf(const std::vector<std::wstring>& tables) {
  // Names that need no number come first, so that none of them is taken by one that does.
  std::vector<std::wstring> names;
  std::transform(tables.begin(), tables.end(), std::back_inserter(names), safeFileName);
  std::set<std::wstring> taken;
  std::vector<std::size_t> later;
  for (std::size_t i = 0; i < names.size(); ++i)
    if (!taken.insert(platform::lowerCase(names[i])).second) later.push_back(i);
  for (const std::size_t i : later) {
    std::wstring numbered;
    int number = 2;
    do {
      numbered = names[i] + L"_" + std::to_wstring(number++);
    } while (!taken.insert(platform::lowerCase(numbered)).second);
    names[i] = numbered;
  }
  return names;
}

}  // namespace vokTable

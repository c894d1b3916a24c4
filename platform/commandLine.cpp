// Cutting a command line into arguments, as the start-up code of the Windows C runtime does it. The
// same on both targets: what Windows programs find in their arguments, programs started on POSIX
// find too.
#include "platform/process.h"

namespace platform {
namespace {

constexpr bool isBlank(wchar_t character) { return character == L' ' || character == L'\t'; }

// Argument zero: no backslash rules, since a path may end in one. `next` moves behind it.
std::wstring programName(const std::wstring& line, std::size_t& next) {
  std::wstring name;
  bool inQuotes = false;
  for (; next < line.size() && (inQuotes || !isBlank(line[next])); ++next) {
    if (line[next] == L'"')
      inQuotes = !inQuotes;
    else
      name += line[next];
  }
  return name;
}

std::wstring argument(const std::wstring& line, std::size_t& next) {
  std::wstring value;
  bool inQuotes = false;
  while (next < line.size() && (inQuotes || !isBlank(line[next]))) {
    std::size_t backslashes = 0;
    while (next < line.size() && line[next] == L'\\') ++backslashes, ++next;
    if (next == line.size() || line[next] != L'"') {
      value.append(backslashes, L'\\');
      if (next < line.size() && (inQuotes || !isBlank(line[next]))) value += line[next++];
      continue;
    }
    value.append(backslashes / 2, L'\\');
    ++next;  // the quote
    if (backslashes % 2 != 0) {
      value += L'"';
    } else if (inQuotes && next < line.size() && line[next] == L'"') {
      value += L'"';
      ++next;
    } else {
      inQuotes = !inQuotes;
    }
  }
  return value;
}

}  // namespace

std::vector<std::wstring> splitCommandLine(const std::wstring& commandLine) {
  const std::wstring line = commandLine.substr(0, commandLine.find(L'\0'));
  std::size_t next = 0;
  std::vector<std::wstring> arguments{programName(line, next)};
  while (true) {
    while (next < line.size() && isBlank(line[next])) ++next;
    if (next == line.size()) return arguments;
    arguments.push_back(argument(line, next));
  }
}

}  // namespace platform

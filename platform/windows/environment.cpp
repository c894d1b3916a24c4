#include "platform/environment.h"

#include <windows.h>

#include <ctime>

namespace platform {
namespace {

// Asks for a text of unknown length: `fill` gets a buffer and its size and answers, as most calls
// of Windows do, the length written, or a number not below the size when the buffer is too small.
template <class Fill>
std::wstring textOfUnknownLength(Fill fill) {
  std::wstring text(MAX_PATH, L'\0');
  while (true) {
    const DWORD length = fill(text.data(), static_cast<DWORD>(text.size()));
    if (length < text.size()) {
      text.resize(length);
      return text;
    }
    text.resize(2 * text.size());
  }
}

}  // namespace

std::optional<std::wstring> environmentVariable(const std::wstring& name) {
  bool isSet = true;
  std::wstring value = textOfUnknownLength([&](wchar_t* buffer, DWORD size) {
    SetLastError(ERROR_SUCCESS);  // an empty value and a missing one both answer 0
    const DWORD length = GetEnvironmentVariableW(name.c_str(), buffer, size);
    isSet = length != 0 || GetLastError() == ERROR_SUCCESS;
    return length;
  });
  if (!isSet) return std::nullopt;
  return value;
}

std::wstring userName() {
  DWORD size = 0;  // counts the terminator
  GetUserNameW(nullptr, &size);
  std::wstring name(size, L'\0');
  if (size == 0 || GetUserNameW(name.data(), &size) == 0) return {};
  name.resize(size - 1);
  return name;
}

std::wstring executablePath() {
  return textOfUnknownLength(
      [](wchar_t* buffer, DWORD size) { return GetModuleFileNameW(nullptr, buffer, size); });
}

std::wstring temporaryFolder() {
  return textOfUnknownLength(
      [](wchar_t* buffer, DWORD size) { return GetTempPathW(size, buffer); });
}

std::uint32_t currentThreadId() { return GetCurrentThreadId(); }

long clockCount() { return std::clock(); }

}  // namespace platform

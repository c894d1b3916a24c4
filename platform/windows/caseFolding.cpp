#include "platform/caseFolding.h"

#include <windows.h>

namespace platform {

// The Buff functions take a length, so text may hold NUL characters.

std::wstring lowerCase(std::wstring text) {
  CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
  return text;
}

std::string lowerCaseNarrow(std::string text) {
  CharLowerBuffA(text.data(), static_cast<DWORD>(text.size()));
  return text;
}

}  // namespace platform

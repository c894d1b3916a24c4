#include "platform/codePages.h"

#include <windows.h>

namespace platform {

unsigned resolveCodePage(unsigned codePage) {
  if (codePage != systemCodePage) return codePage;
  const unsigned chosen = chosenSystemCodePage();
  return chosen != systemCodePage ? chosen : GetACP();
}

// WHY -1: Windows knows no other negative length.

int decodeCodePage(unsigned codePage, const char* bytes, int length, wchar_t* output,
                   int capacity) {
  return MultiByteToWideChar(resolveCodePage(codePage), 0, bytes, length < 0 ? -1 : length, output,
                             capacity);
}

int encodeCodePage(unsigned codePage, const wchar_t* text, int length, char* output, int capacity) {
  return WideCharToMultiByte(resolveCodePage(codePage), 0, text, length < 0 ? -1 : length, output,
                             capacity, nullptr, nullptr);
}

}  // namespace platform

#include "tests/support/streamRedirection.h"

#include <windows.h>

#include <cstdio>

namespace testSupport {
namespace {

DWORD numberOf(platform::standardStream stream) {
  return stream == platform::standardStream::output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE;
}

HANDLE asHandle(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

}  // namespace

streamRedirection::streamRedirection(platform::standardStream stream) : stream_(stream) {
  std::fflush(nullptr);
  original_ = reinterpret_cast<std::intptr_t>(GetStdHandle(numberOf(stream)));
}

streamRedirection::~streamRedirection() {
  const HANDLE target = GetStdHandle(numberOf(stream_));
  SetStdHandle(numberOf(stream_), asHandle(original_));
  if (target != asHandle(original_)) CloseHandle(target);
}

bool streamRedirection::toFile(const std::wstring& path) {
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  return file != INVALID_HANDLE_VALUE && SetStdHandle(numberOf(stream_), file) != 0;
}

bool streamRedirection::toClosedPipe() {
  HANDLE readEnd = nullptr;
  HANDLE writeEnd = nullptr;
  if (CreatePipe(&readEnd, &writeEnd, nullptr, 0) == 0) return false;
  CloseHandle(readEnd);
  return SetStdHandle(numberOf(stream_), writeEnd) != 0;
}

bool streamRedirection::toTerminal(int columns) {
  AllocConsole();  // fails when there is one
  const HANDLE console =
      CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                nullptr, CONSOLE_TEXTMODE_BUFFER, nullptr);
  if (console == INVALID_HANDLE_VALUE) return false;
  const SMALL_RECT smallest{0, 0, 0, 0};
  const COORD size{static_cast<SHORT>(columns), 25};
  const SMALL_RECT window{0, 0, static_cast<SHORT>(columns - 1), 24};
  if (SetConsoleWindowInfo(console, TRUE, &smallest) == 0 ||
      SetConsoleScreenBufferSize(console, size) == 0 ||
      SetConsoleWindowInfo(console, TRUE, &window) == 0 ||
      SetStdHandle(numberOf(stream_), console) == 0) {
    CloseHandle(console);
    return false;
  }
  return true;
}

}  // namespace testSupport

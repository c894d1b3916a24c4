#include "platform/process.h"

#include <windows.h>

namespace platform {
namespace {

struct startedProcess : PROCESS_INFORMATION {
  startedProcess() : PROCESS_INFORMATION{} {}
  startedProcess(const startedProcess&) = delete;
  startedProcess& operator=(const startedProcess&) = delete;
  ~startedProcess() {
    if (hThread != nullptr) CloseHandle(hThread);
    if (hProcess != nullptr) CloseHandle(hProcess);
  }
};

}  // namespace

std::optional<int> runProcess(const std::wstring& program, const std::wstring& commandLine) {
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESHOWWINDOW;
  startup.wShowWindow = SW_SHOW;
  std::wstring line = commandLine;  // the call may write into it
  startedProcess process;
  if (CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW,
                     nullptr, nullptr, &startup, &process) == 0)
    return std::nullopt;
  WaitForInputIdle(process.hProcess, INFINITE);
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD exitCode = 0;
  if (GetExitCodeProcess(process.hProcess, &exitCode) == 0) return -1;
  return static_cast<int>(exitCode);
}

}  // namespace platform

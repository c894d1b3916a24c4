#include "platform/process.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "platform/posix/nativePath.h"

namespace platform {

std::optional<int> runProcess(const std::wstring& program, const std::wstring& commandLine) {
  std::vector<std::string> arguments;
  for (const std::wstring& argument : splitCommandLine(commandLine))
    arguments.push_back(nativeBytes(argument));
  std::vector<char*> pointers;
  pointers.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);

  pid_t child = 0;
  if (::posix_spawn(&child, nativePath(program).c_str(), nullptr, nullptr, pointers.data(),
                    environ) != 0)
    return std::nullopt;
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return -1;  // a host that ignores SIGCHLD: ended, but nobody knows how
  }
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace platform

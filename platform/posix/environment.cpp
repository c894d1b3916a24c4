#include "platform/environment.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <string_view>
#include <vector>

#include "platform/posix/nativePath.h"

namespace platform {
namespace {

std::string nameOfUserDatabase() {
  std::vector<char> buffer(1024);
  passwd entry;
  passwd* found = nullptr;
  int error = 0;
  while ((error = ::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found)) ==
             ERANGE ||
         error == EINTR) {
    if (error == ERANGE) buffer.resize(2 * buffer.size());
  }
  return found == nullptr || found->pw_name == nullptr ? std::string() : found->pw_name;
}

}  // namespace

std::optional<std::wstring> environmentVariable(const std::wstring& name) {
  const char* const value = std::getenv(nativeBytes(name).c_str());
  if (value == nullptr) return std::nullopt;
  return wideText(value);
}

std::wstring userName() {
  std::string name = nameOfUserDatabase();
  for (const char* variable : {"USER", "LOGNAME"}) {
    if (!name.empty()) break;
    if (const char* const value = std::getenv(variable)) name = value;
  }
  return wideText(name);
}

std::wstring executablePath() {
  std::vector<char> buffer(256);
  while (true) {
    const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (length < 0) return {};
    const auto count = static_cast<std::size_t>(length);
    if (count < buffer.size()) return wideText(std::string_view(buffer.data(), count));
    buffer.resize(2 * buffer.size());  // a full buffer may hold a cut path
  }
}

std::wstring temporaryFolder() {
  const char* const variable = std::getenv("TMPDIR");
  std::wstring folder = wideText(variable != nullptr && *variable != '\0' ? variable : "/tmp");
  if (folder.back() != L'/') folder += L'/';
  return folder;
}

std::uint32_t currentThreadId() { return static_cast<std::uint32_t>(::gettid()); }

long clockCount() { return std::clock(); }

}  // namespace platform

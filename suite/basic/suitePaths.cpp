// Suite paths of vok_basic: where the main module and the temporary folder are.
#include <mutex>
#include <string>

#include "platform/environment.h"
#include "platform/vok_basic.h"

namespace {

// What vok_basic remembers: what the host said of its main module and of its temporary folder. They are kept here and
// nowhere else, because only the host can know them and every variant asks for them.
class hostsPath {
 public:
  void set(const wchar_t* path) {
    const std::lock_guard<std::mutex> lock(mutex_);
    path_ = path == nullptr ? L"" : path;
  }

  std::wstring get() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return path_;
  }

 private:
  std::mutex mutex_;
  std::wstring path_;
};

hostsPath& hostsMainModule() {
  static hostsPath module;
  return module;
}

hostsPath& hostsTemporaryFolder() {
  static hostsPath folder;
  return folder;
}

}  // namespace

// The analyzer takes the end of a function for the end of its thread.
// NOLINTBEGIN(clang-analyzer-cplusplus.InnerPointer)

// WHY thread_local: the result is a bare pointer that nobody frees, and two threads may ask at once.
const wchar_t* vo_options_get_main_module_path(void) {
  thread_local std::wstring answer;
  answer = hostsMainModule().get();
  if (answer.empty()) answer = platform::executablePath();
  return answer.c_str();
}

void vo_options_set_main_module_path(const wchar_t* path) { hostsMainModule().set(path); }

const wchar_t* vo_options_get_temp_wpath(void) {
  thread_local std::wstring answer;
  answer = hostsTemporaryFolder().get();
  if (answer.empty()) answer = platform::temporaryFolder();
  return answer.c_str();
}

void vo_options_set_temp_wpath(const wchar_t* path) {
  std::wstring folder = path == nullptr ? L"" : path;
  if (!folder.empty() && folder.back() != L'/' && folder.back() != L'\\') folder += L'/';
  hostsTemporaryFolder().set(folder.c_str());
}

// NOLINTEND(clang-analyzer-cplusplus.InnerPointer)

// Suite paths of vok_basic: where the main module and the temporary folder are.
#include <mutex>
#include <set>
#include <string>
#include <utility>

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

// Every path that was answered, once: the answers are bare pointers that nobody frees, and threads may ask at a time.
// WHY not one string for each thread: with MinGW a thread's memory is freed before the destructors of what lies in it.
const wchar_t* kept(std::wstring path) {
  static std::mutex mutex;
  static std::set<std::wstring> paths;
  const std::lock_guard<std::mutex> lock(mutex);
  return paths.insert(std::move(path)).first->c_str();
}

}  // namespace

const wchar_t* vo_options_get_main_module_path(void) {
  std::wstring path = hostsMainModule().get();
  if (path.empty()) path = platform::executablePath();
  return kept(std::move(path));
}

void vo_options_set_main_module_path(const wchar_t* path) { hostsMainModule().set(path); }

const wchar_t* vo_options_get_temp_wpath(void) {
  std::wstring path = hostsTemporaryFolder().get();
  if (path.empty()) path = platform::temporaryFolder();
  return kept(std::move(path));
}

void vo_options_set_temp_wpath(const wchar_t* path) {
  std::wstring folder = path == nullptr ? L"" : path;
  if (!folder.empty() && folder.back() != L'/' && folder.back() != L'\\') folder += L'/';
  hostsTemporaryFolder().set(folder.c_str());
}

#include "tools/targetFile.h"

#include "platform/environment.h"
#include "platform/files.h"

namespace vokTable {

targetFile::targetFile(const std::wstring& target) : target_(target) {
  const std::size_t name = target.find_last_of(L"/\\") + 1;  // 0 when there is neither
  const std::size_t dot = target.rfind(L'.');
  const std::wstring extension =
      dot == std::wstring::npos || dot < name ? std::wstring() : target.substr(dot);
  const std::wstring begin =
      target.substr(0, name) + L"~vok_table-" + std::to_wstring(platform::currentThreadId()) + L"-";
  long number = platform::clockCount();
  do {
    temporaryPath_ = begin + std::to_wstring(number++) + extension;
  } while (platform::fileExists(temporaryPath_));
}

targetFile::~targetFile() {
  if (!isFinished_) platform::removeFile(temporaryPath_);
}

bool targetFile::finish() {
  isFinished_ = platform::replaceFile(temporaryPath_, target_);
  return isFinished_;
}

}  // namespace vokTable

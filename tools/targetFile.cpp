#include "tools/targetFile.h"

#include "platform/caseFolding.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "tools/formats.h"

namespace vokTable {
namespace {

std::size_t nameBegin(const std::wstring& path) {
  return path.find_last_of(L"/\\") + 1;  // 0 when there is neither
}

std::wstring folderOf(const std::wstring& path) {
  const std::wstring folder = path.substr(0, nameBegin(path));
  return folder.empty() ? L"." : folder;
}

std::wstring comparableName(const std::wstring& path) {
  return platform::lowerCase(path.substr(nameBegin(path)));
}

}  // namespace

bool isSamePath(const std::wstring& first, const std::wstring& second) {
  return platform::isSameFile(first, second) ||
         (comparableName(first) == comparableName(second) &&
          platform::isSameFile(folderOf(first), folderOf(second)));
}

std::wstring codePageFileOf(const std::wstring& target) {
  if (!isWrittenAsDbf(target)) return {};
  return target.substr(0, target.rfind(L'.')) + L".cpg";
}

targetFile::targetFile(const std::wstring& target) : target_(target) {
  const std::size_t name = nameBegin(target);
  const std::size_t dot = target.rfind(L'.');
  const std::wstring extension =
      dot == std::wstring::npos || dot < name ? std::wstring() : target.substr(dot);
  const std::wstring begin =
      target.substr(0, name) + L"~vok_table-" + std::to_wstring(platform::currentThreadId()) + L"-";
  long number = platform::clockCount();
  do {
    temporaryPath_ = begin + std::to_wstring(number++) + extension;
    codePagePath_ = codePageFileOf(temporaryPath_);
  } while (platform::fileExists(temporaryPath_) || platform::fileExists(codePagePath_));
}

targetFile::~targetFile() {
  if (!isFinished_) platform::removeFile(temporaryPath_);
  if (!codePagePath_.empty()) platform::removeFile(codePagePath_);
}

bool targetFile::finish() {
  isFinished_ = platform::replaceFile(temporaryPath_, target_);
  return isFinished_;
}

bool targetFile::finishCodePage() const {
  if (codePagePath_.empty()) return true;
  const std::wstring wanted = codePageFileOf(target_);
  // WHY not asked for first: a disk that fails to tell of a file would make it one that is not there.
  if (platform::replaceFile(codePagePath_, wanted)) return true;
  if (platform::fileExists(codePagePath_)) return false;
  return platform::removeFile(wanted) || !platform::fileExists(wanted);
}

}  // namespace vokTable

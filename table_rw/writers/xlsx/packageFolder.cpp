#include "table_rw/writers/xlsx/packageFolder.h"

#include <algorithm>
#include <utility>

#include "platform/environment.h"
#include "platform/files.h"

namespace SimpleXlsx {

packageFolder::packageFolder(packageDisk& disk) : disk_(disk) {
  // ODD: without TEMP in the current folder: hosts choose their working folder.
  const std::wstring parent = platform::environmentVariable(L"TEMP").value_or(L"");
  if (!parent.empty()) path_ = parent + L'/';
  path_ += L"xlsx_" + std::to_wstring(platform::currentThreadId()) + L'_' +
           std::to_wstring(platform::clockCount());
}

packageFolder::~packageFolder() { remove(); }

std::wstring packageFolder::prepare(const std::wstring& part) {
  if (made_.empty()) createTop();
  if (made_.empty()) return pathOf(part);  // there is no folder; opening the part will fail
  for (std::size_t slash = part.find(L'/'); slash != std::wstring::npos;
       slash = part.find(L'/', slash + 1))
    createFolder(pathOf(part.substr(0, slash)));
  made_.push_back({pathOf(part), false});
  return made_.back().path;
}

void packageFolder::createTop() {
  const std::wstring wanted = path_;
  made_.reserve(made_.size() + 1);  // nothing may fail between making the folder and noting it
  for (unsigned number = 1;; ++number) {
    made entry{path_, true};
    if (disk_.createFolder(entry.path)) {
      made_.push_back(std::move(entry));
      return;
    }
    if (!platform::fileExists(path_)) return;
    path_ = wanted + L'_' + std::to_wstring(number);
  }
}

void packageFolder::createFolder(const std::wstring& path) {
  const bool isThere =
      std::any_of(made_.begin(), made_.end(), [&](const made& each) { return each.path == path; });
  if (isThere) return;
  made entry{path, true};
  made_.reserve(made_.size() + 1);  // as above
  if (disk_.createFolder(path)) made_.push_back(std::move(entry));
}

void packageFolder::remove() {
  while (!made_.empty()) {
    const made& last = made_.back();
    if (last.isFolder)
      platform::removeFolder(last.path);
    else
      platform::removeFile(last.path);
    made_.pop_back();
  }
}

}  // namespace SimpleXlsx

#include "tools/workbookReading.h"

#include "platform/environment.h"
#include "platform/files.h"
#include "platform/vok_basic.h"
#include "tools/formats.h"

namespace vokTable {
namespace {

constexpr int mostTries = 100;  // names that are taken

}  // namespace

workbookReading::workbookReading(const readingArguments& arguments, const std::wstring& path) {
  if (!isWorkbook(*findFileType(arguments.type.value_or("auto")), path)) return;
  interrupted_.emplace();
  const std::wstring name = vo_options_get_temp_wpath() + std::wstring(L"vok_table-") +
                            std::to_wstring(platform::currentThreadId()) + L'-';
  for (int number = 0; number < mostTries && folder_.empty(); ++number)
    if (platform::createPrivateFolder(name + std::to_wstring(number)))
      folder_ = name + std::to_wstring(number);
  // Where no folder can be made, no sheet can be written either: the read says so.
  if (!folder_.empty()) vo_options_set_temp_wpath(folder_.c_str());
}

workbookReading::~workbookReading() {
  if (folder_.empty()) return;
  vo_options_set_temp_wpath(nullptr);
  platform::removeFolderAndFiles(folder_);
}

}  // namespace vokTable

#include "table_rw/core/converterProgram.h"

#include "platform/files.h"
#include "platform/vok_basic.h"
#include "table_rw/core/pathNames.h"

namespace tableRW {

std::wstring converterProgramPath() {
  return folderOf(vo_options_get_main_module_path()) + L"vok_xls2csv.exe";
}

bool converterProgramExists() { return platform::fileExists(converterProgramPath()); }

}  // namespace tableRW

// The suite's spreadsheet converter, a program beside the suite's main module.
#ifndef VOK_TABLE_RW_CORE_CONVERTERPROGRAM_H
#define VOK_TABLE_RW_CORE_CONVERTERPROGRAM_H

#include <string>

namespace tableRW {

/// Where the converter stands when it is installed.
std::wstring converterProgramPath();

/// Whether it is there at this moment; nothing is remembered.
bool converterProgramExists();

}  // namespace tableRW

#endif

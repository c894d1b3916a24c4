// One table on its way to a file, in the format that the file's extension names.
//
// The target appears whole or not at all. The table goes to a file with a temporary name beside it;
// what the library's writers do not report is found out from that file's size; then it takes the
// target's name in one step. Whatever fails, the temporary file goes and the old target stays.
#ifndef VOK_TOOLS_CONVERSION_H
#define VOK_TOOLS_CONVERSION_H

#include <cstdint>
#include <string>

#include "tools/commandLine.h"
#include "tools/exitCodes.h"
#include "tools/messages.h"
#include "tools/selection.h"

namespace vokTable {

/// True, and explained, when the file exists and may not be replaced.
bool refusesExisting(const std::string& name, bool force, const messageWriter& messages);

/// Refuses a file that should not be written: the source, a folder, a link or a device, or one that exists.
exitCode checkFileToWrite(const std::string& name, const commandLine& request,
                          const messageWriter& messages);

/// Refuses a target that cannot or should not be written, before the source is read.
exitCode checkTarget(const commandLine& request, const messageWriter& messages);

struct conversionResult {
  exitCode outcome = exitCode::clean;
  std::uint64_t lossCount = 0;  ///< values that the target does not hold as they were
  bool isInterrupted = false;
};

/// Writes a table to the request's target, and explains what went wrong or was lost.
conversionResult writeTable(const commandLine& request, const selectedTable& table,
                            const messageWriter& messages);

}  // namespace vokTable

#endif

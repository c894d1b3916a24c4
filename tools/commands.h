// The commands of vok_table, one function each. A command hands what it found to context.answer, explains in
// context.messages what went wrong or was odd, and answers the exit code.
#ifndef VOK_TOOLS_COMMANDS_H
#define VOK_TOOLS_COMMANDS_H

#include <string>
#include <vector>

#include "tools/commandLine.h"
#include "tools/exitCodes.h"
#include "tools/source.h"

namespace vokTable {

exitCode listTables(const commandLine& request, toolContext& context);
exitCode listFields(const commandLine& request, toolContext& context);
exitCode showFirstRows(const commandLine& request, toolContext& context);
exitCode showAllRows(const commandLine& request, toolContext& context);
exitCode countRows(const commandLine& request, toolContext& context);
exitCode showStatistics(const commandLine& request, toolContext& context);
exitCode listRejectedLines(const commandLine& request, toolContext& context);
exitCode findValues(const commandLine& request, toolContext& context);
exitCode examineMachine(const commandLine& request, toolContext& context);
exitCode convertTable(const commandLine& request, toolContext& context);
exitCode listFormats(const commandLine& request, toolContext& context);
exitCode showVersion(const commandLine& request, toolContext& context);
exitCode printCompletion(const commandLine& request, toolContext& context);
exitCode printManual(const commandLine& request, toolContext& context);

/// The shells that printCompletion has a script for.
std::vector<std::string> shellNames();

}  // namespace vokTable

#endif

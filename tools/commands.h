// The commands of vok_table, one function each. A command explains on standard error what went
// wrong or was odd, writes nothing but data to standard output, and answers the exit code.
#ifndef VOK_TOOLS_COMMANDS_H
#define VOK_TOOLS_COMMANDS_H

#include "tools/commandLine.h"
#include "tools/exitCodes.h"
#include "tools/source.h"

namespace vokTable {

exitCode listTables(const commandLine& request, toolContext& context);
exitCode listFields(const commandLine& request, toolContext& context);
exitCode showFirstRows(const commandLine& request, toolContext& context);
exitCode showAllRows(const commandLine& request, toolContext& context);
exitCode countRows(const commandLine& request, toolContext& context);
exitCode listRejectedLines(const commandLine& request, toolContext& context);
exitCode findValues(const commandLine& request, toolContext& context);
exitCode examineMachine(const commandLine& request, toolContext& context);
exitCode convertTable(const commandLine& request, toolContext& context);

}  // namespace vokTable

#endif

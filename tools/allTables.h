// convert --all-tables: every table of a source as a file of its own, in one folder.
//
// The folder is the TARGET, made when it is missing; the files bear the names of their tables (see
// tableFileNames.h) and the extension of the format that --to names. Where any of them exists already nothing is
// written, unless --force was given. A table that cannot be written keeps no other from being written; the
// answer lists them all, and the exit code is the worst of theirs.
#ifndef VOK_TOOLS_ALLTABLES_H
#define VOK_TOOLS_ALLTABLES_H

#include <string>
#include <vector>

#include "tools/commandLine.h"
#include "tools/conversion.h"
#include "tools/exitCodes.h"
#include "tools/source.h"

namespace vokTable {

exitCode convertAllTables(const commandLine& request, toolContext& context);

/// What became of tables, for an answer; the rows outlive the list.
recordList conversionReport(const std::vector<tableRow>& rows);

/// A row of it, for a table that was read; the table's name is the one that the request asks for.
tableRow reportRow(const commandLine& request, const tableRW::tableReader& reader,
                   const conversionResult& result);

}  // namespace vokTable

#endif

// The file that `convert --rejects` keeps the rejected lines in: their own bytes, line ends included, one behind
// the other, so that they can be put right and read again. It is written when the target was, also without a
// rejected line: then it is empty, and no older file is taken for the answer.
//
// Rows of a sheet have no bytes of their own in the workbook; their text is kept as UTF-8, a line each.
#ifndef VOK_TOOLS_REJECTS_H
#define VOK_TOOLS_REJECTS_H

#include "table_rw/core/tableReader.h"
#include "tools/commandLine.h"
#include "tools/exitCodes.h"
#include "tools/messages.h"

namespace vokTable {

/// Refuses a file that should not be written, and a source that can be read only once. Clean without --rejects.
exitCode checkRejects(const commandLine& request, const tableRW::tableReader& reader,
                      const messageWriter& messages);

/// Writes the rejected lines of the last read. Clean, and nothing done, without --rejects.
exitCode keepRejects(const commandLine& request, tableRW::tableReader& reader,
                     const messageWriter& messages);

}  // namespace vokTable

#endif

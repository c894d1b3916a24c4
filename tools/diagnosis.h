// What a user should know about a source that was read: lines that were rejected, a byte-order
// mark, bytes that end a line or the text, signs that the delimiter, the header row, the encoding or
// the code page is another one, and what a DBF table lacks. The data stay as they are.
//
// A DBF table and a Micromine data file are searched to their end for text that could not be
// decoded: whoever converts one loses it for good. Hints are cheap guesses from the header, the
// first rows and the first rejected line. Neither changes the exit code; rejected lines do.
#ifndef VOK_TOOLS_DIAGNOSIS_H
#define VOK_TOOLS_DIAGNOSIS_H

#include "table_rw/core/tableReader.h"
#include "tools/exitCodes.h"
#include "tools/messages.h"
#include "tools/readingOptions.h"

namespace vokTable {

/// Where the rejected lines are listed: here already, or by another command that the warning names.
enum class listing { here, elsewhere };

/// What of the source was read: its field names alone, or its rows too.
enum class coverage { fields, whole };

/// Writes the warnings and hints that the results of a read give reason for.
/// @return rejected when lines were rejected, else clean
exitCode diagnose(tableRW::tableReader& reader, const readingArguments& arguments, listing rejected,
                  coverage seen, const messageWriter& messages);

}  // namespace vokTable

#endif

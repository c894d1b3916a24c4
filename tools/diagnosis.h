// What a user should know about a source that was read: lines that were rejected, a byte-order
// mark, and signs that the delimiter, the header row or the encoding is another one. The data stay
// as they are.
//
// Hints are cheap guesses from the header, the first rows and the first rejected line; they never
// change the exit code.
#ifndef VOK_TOOLS_DIAGNOSIS_H
#define VOK_TOOLS_DIAGNOSIS_H

#include "table_rw/core/tableReader.h"
#include "tools/exitCodes.h"
#include "tools/messages.h"
#include "tools/readingOptions.h"

namespace vokTable {

/// Where the rejected lines are listed: here already, or by another command that the warning names.
enum class listing { here, elsewhere };

/// Writes the warnings and hints that the results of a read give reason for.
/// @return rejected when lines were rejected, else clean
exitCode diagnose(tableRW::tableReader& reader, const readingArguments& arguments, listing rejected,
                  const messageWriter& messages);

/// Warns of bytes in a text file that make line numbers or its end differ from what an editor
/// shows: NUL bytes, which can join two lines, and 0x1A, which ends the text.
void warnOfSpecialBytes(const std::wstring& path, const messageWriter& messages);

}  // namespace vokTable

#endif

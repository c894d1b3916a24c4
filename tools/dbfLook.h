// A look at a DBF file that the library does not offer: what its header tells beside its fields, and whether
// what belongs to the table is there.
//
// The library reads what the file holds, whatever its header says, and a table without its memo file has no
// memo texts. Both are right for a program that reads; a user wants to hear of it. The look also tells a DBF file
// under another name from text.
//
// A file without room for a header gives an empty answer. No state; any thread.
#ifndef VOK_TOOLS_DBFLOOK_H
#define VOK_TOOLS_DBFLOOK_H

#include <cstdint>
#include <string>

#include "tools/messages.h"

namespace vokTable {

struct dbfLook {
  bool isTable = false;  ///< begins as no text does, and the header lies in the file
  std::uint64_t recordsTold = 0;
  std::uint64_t recordsHeld = 0;  ///< whole ones, deleted or not
  bool hasMemos = false;          ///< a field whose texts stand in a memo file
  bool isFoxPro = false;          ///< whose memo file is always an .fpt
};

/// Looks at the header and the size of a file.
dbfLook lookAtDbf(const std::wstring& path);

/// Warns of records that the header tells and the file lacks, and of a memo file that is not there.
/// @param name  of the file, as the user knows it
void warnOfMissingParts(const std::wstring& path, const std::string& name,
                        const messageWriter& messages);

}  // namespace vokTable

#endif

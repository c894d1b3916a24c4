// The header of a data file: its code page, its variables and where its records begin.
//
// Accepted is what describes a file that can be: as many variable lines as are announced, types that exist,
// widths from 1 to 999 that fit the types, and behind the first record, if there is one, a line end.
// Everything else is no data file. Metadata that cannot be understood is none: then the text is in the
// system's code page.
#ifndef VOK_SUITE_FILE_MICROMINE_MICROMINEHEADER_H
#define VOK_SUITE_FILE_MICROMINE_MICROMINEHEADER_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace fileMicromine {

struct variable {
  std::string name;  // in the file's code page; the long name where there is one
  char type = 0;
  std::size_t offset = 0;  // in the record
  std::size_t width = 0;
};

struct tableHeader {
  unsigned codePage = 0;  // 0: the system's
  std::vector<variable> variables;
  std::uint64_t recordsAt = 0;
  std::size_t valuesSize = 0;   // of all values of a record
  std::size_t lineEndSize = 0;  // 1 or 2
};

/// Reads the header of an open file. @return nothing for a file that is none of Micromine's
std::optional<tableHeader> readHeader(platform::binaryFile& file);

/// The code page that the metadata names. @return 0 when it names none or an unknown one
unsigned codePageOfMetadata(std::string_view metadata);

}  // namespace fileMicromine

#endif

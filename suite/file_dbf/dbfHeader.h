// The header of a table: which version it is, which fields it has and where its records begin.
//
// Accepted is what describes a file that can be: a header that lies in the file whole, records of at least
// one byte, fields that fit into a record, not millions of values without any bytes. Everything else is no
// table. Real files end the list of
// descriptors with 0D, with 00, with 0A or not at all; the header's length bounds it then.
#ifndef VOK_SUITE_FILE_DBF_DBFHEADER_H
#define VOK_SUITE_FILE_DBF_DBFHEADER_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "platform/files.h"
#include "suite/file_dbf/dbfFields.h"

namespace fileDbf {

struct tableHeader {
  unsigned version = 0;
  fileLevel level = fileLevel::dbase;
  std::uint64_t recordCount = 0;  // as the header says
  std::size_t recordsAt = 0;      // offset of the first record
  std::size_t recordLength = 0;
  std::vector<tableField> fields;
  std::size_t nullFlagsAt = 0;  // in the record; of no length in most files
  std::size_t nullFlagsLength = 0;

  bool hasMemos() const;
};

/// Reads the header of an open file. @return nothing for a file that is no table
std::optional<tableHeader> readHeader(platform::binaryFile& file);

}  // namespace fileDbf

#endif

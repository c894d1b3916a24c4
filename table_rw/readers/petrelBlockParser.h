// The fast way through the data lines of a Petrel table: lines are found and split in the file's own bytes,
// and the bytes of each value move once, by table, into the table's arena.
//
// It takes the lines for which that gives what the literal way gives (read a line, decode it, split it) and
// leaves each of the others to its caller, line by line: those that hold a NUL byte, and one so long that
// the literal way cannot convert it.
//
// WHY bytes suffice: Petrel tables are read as Windows-1251, where a byte is a character and a byte below 80
// is that ASCII character, so blanks and quotes can be found before decoding.
// One object belongs to one thread at a time.
#ifndef VOK_TABLE_RW_READERS_PETRELBLOCKPARSER_H
#define VOK_TABLE_RW_READERS_PETRELBLOCKPARSER_H

#include <cstdint>
#include <string_view>
#include <vector>

#include "table_rw/core/valueTable.h"
#include "table_rw/text/singleByteDecoder.h"
#include "table_rw/text/textModeFile.h"

namespace tableRW {

class petrelBlockParser {
 public:
  /// @param codePage  the page in which the file is read
  /// @param limit     number of rows at which reading stops; it is looked at after each row
  petrelBlockParser(unsigned codePage, std::uint64_t limit)
      : usable_(decoder_.make(codePage)), limit_(limit) {}

  /// Reads data lines from where the file stands and adds their rows, up to a line that has to be read the
  /// literal way, to the end of the file or to the limit.
  /// @return true when the limit is reached
  bool addRecords(textModeInput& file, valueTable& rows);

 private:
  void addRecord(std::string_view line, valueTable& rows);
  void split(std::string_view line);

  singleByteDecoder decoder_;
  bool usable_;
  std::uint64_t limit_;
  std::vector<std::string_view> pieces_;
};

}  // namespace tableRW

#endif

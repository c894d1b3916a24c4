// The fast way through delimited text: lines are found and split in the file's own bytes, 64 at a time, and
// the bytes of each value move once, blanks trimmed, into the table's arena.
//
// It takes the lines for which that gives what the literal way gives (read a line, decode it, split it),
// and leaves each of the others to its caller, line by line:
//   - lines that hold a NUL byte,
//   - lines of broken UTF-8, and of ASCII with bytes from 80 on,
//   - lines too long for their offsets.
// It takes none at all when the delimiter is no single ASCII character, the quote is not one or none, or
// the code page is neither UTF-8 nor one whose bytes are ASCII and single characters.
//
// WHY bytes suffice: in those code pages a byte below 80 is always that ASCII character and never a part of
// another, so delimiter, quote, line end and blanks can be found before decoding.
// One object belongs to one thread at a time.
#ifndef VOK_TABLE_RW_READERS_CSVBLOCKPARSER_H
#define VOK_TABLE_RW_READERS_CSVBLOCKPARSER_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "table_rw/core/tableReaderOptions.h"
#include "table_rw/core/valueTable.h"
#include "table_rw/text/byteMasks.h"
#include "table_rw/text/singleByteDecoder.h"
#include "table_rw/text/textModeFile.h"

namespace tableRW {

class csvBlockParser {
 public:
  static constexpr std::size_t longestText = std::numeric_limits<std::int32_t>::max();

  /// @param codePage  the file's code page, the system's one resolved
  /// @param longestLine  in bytes; tests choose a small one
  csvBlockParser(const tableReaderOptions& options, unsigned codePage,
                 std::size_t longestLine = longestText);

  /// Reads data lines from where the file stands, adds their rows and lists the rejected ones, up to a line
  /// that has to be read the literal way or to the end of the file.
  /// @param number  of the line at which the file stands, from 0
  /// @return the number of the line at which the file stands now
  std::uint64_t addRecords(textModeInput& file, std::uint64_t number, std::size_t fieldCount,
                           valueTable& rows, std::vector<std::uint64_t>& errors);

 private:
  enum class textKind { none, utf8, ascii, singleByte };
  struct piece {
    const char* begin;
    const char* end;
  };
  class scan;

  textKind kind_ = textKind::none;
  textMarks marks_ = {};
  std::uint64_t dataPosition_;
  std::size_t longestLine_;
  singleByteDecoder decoder_;
};

}  // namespace tableRW

#endif

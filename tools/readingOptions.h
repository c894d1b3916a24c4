// How the words of the command line become the options of a reader.
//
// Lines are counted from 1 here, as editors count them, and from 0 in the library. Encodings are
// found by their name or alias without regard to letter case, '-', '_' and blanks; a name wins over
// another row's alias (the aliases of UTF-32LE and UTF-32BE are crossed). A number is the row of
// the table.
//
// Everything here is a function of its arguments. A word that cannot be understood gives a text
// that says so and what would be.
#ifndef VOK_TOOLS_READINGOPTIONS_H
#define VOK_TOOLS_READINGOPTIONS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "table_rw/core/tableReaderOptions.h"

namespace vokTable {

/// What the user wrote, in UTF-8; what is missing was not written.
struct readingArguments {
  std::string file;
  std::optional<std::string> type;
  std::optional<std::string> encoding;
  std::optional<std::string> delimiter;
  std::optional<std::string> quote;
  std::optional<std::string> headerRow;
  std::optional<std::string> dataRow;
  std::optional<std::string> table;
  std::optional<std::string> systemEncoding;
};

/// The options of a reader.
/// @param problem  what is wrong with the arguments, when nothing is answered
std::optional<tableRW::tableReaderOptions> makeReaderOptions(const readingArguments& arguments,
                                                             std::string& problem);

/// Makes the chosen code page the system's own for this process, in the library and in the tool.
/// @return what is wrong with the argument; nothing when there is none or all is well
std::optional<std::string> applySystemEncoding(const readingArguments& arguments);

/// A count as a user writes it, in digits; nothing when it is none.
std::optional<std::uint64_t> parseCount(std::string_view text);

/// Row of the encoding table; nothing when there is no such encoding.
std::optional<std::int32_t> findEncoding(std::string_view name);

/// The names of all encodings, in the order of the table.
std::vector<std::string> encodingNames();

/// A delimiter as the user may write it: `tab` is a TAB, and so is each `\t`.
std::wstring makeDelimiter(std::string_view text);

/// The command line that does something else with the same source: `vok_table errors wells.csv`.
std::string commandFor(std::string_view command, const readingArguments& arguments);

}  // namespace vokTable

#endif

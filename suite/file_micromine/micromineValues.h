// Values of a record as text: character values without their padding on the right, numbers in digits without
// blanks on both sides, binary numbers as the shortest text that reads back to the same number.
// No state; any thread.
#ifndef VOK_SUITE_FILE_MICROMINE_MICROMINEVALUES_H
#define VOK_SUITE_FILE_MICROMINE_MICROMINEVALUES_H

#include <cstddef>
#include <string_view>

#include "suite/file_micromine/micromineHeader.h"

namespace fileMicromine {

/// Bytes that a binary number takes as text, at most.
inline constexpr std::size_t longestNumber = 32;

bool isBinary(char type);

/// The text of a value; empty for no value: blanks, a NaN, an infinity, the smallest of the whole numbers.
/// @param digits  room for longestNumber bytes, in which a binary number's text is made
std::string_view textOf(const variable& column, const char* record, char* digits);

}  // namespace fileMicromine

#endif

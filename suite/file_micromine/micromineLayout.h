// Where the bytes of a Micromine data file stand.
//
//     extended   magic 42 | XML metadata | zeros up to a multiple of 4096 |
//     standard   title line |
//     both         "18  VARIABLES" line | variable lines | records
//
//     variable line   name 10 | type 1 | width 3 | decimals 3 [ | "|" | description 255 ] | line end
//     record          the variables' values one behind the other, as wide as their lines say | line end
//
// Line ends are CR LF, or LF all through the file; the line that announces the variables tells. Records are found by their length: a line end may stand
// inside a binary number. Numbers are little-endian.
// FORMAT: the vendor's help on internal file types, and what files in use hold.
#ifndef VOK_SUITE_FILE_MICROMINE_MICROMINELAYOUT_H
#define VOK_SUITE_FILE_MICROMINE_MICROMINELAYOUT_H

#include <cstddef>
#include <string_view>

namespace fileMicromine {

using namespace std::string_view_literals;

// --- the extended header ---
inline constexpr std::string_view magic = "THIS IS MICROMINE EXTENDED DATA FILE!\x07\x1A\x01\r\n"sv;
static_assert(magic.size() == 42);
inline constexpr std::size_t pageSize = 4096;
inline constexpr std::size_t mostPages = 256;
inline constexpr std::string_view metadataEnd = "</metadata>"sv;

// --- the lines ---
inline constexpr std::size_t longestTitle = 4096;
inline constexpr std::string_view variablesWord = "VARIABLES"sv;
inline constexpr std::size_t longestCountLine = 80;
inline constexpr std::size_t mostVariables = 9999;

inline constexpr std::size_t nameSize = 10;
inline constexpr std::size_t typeAt = 10;
inline constexpr std::size_t widthAt = 11;
inline constexpr std::size_t widthSize = 3;
inline constexpr std::size_t descriptionMarkAt =
    17;  // behind the decimals, which only programs need that draw
inline constexpr char descriptionMark = '|';
inline constexpr std::size_t descriptionAt = 18;
inline constexpr std::size_t descriptionSize = 255;
inline constexpr std::size_t longestVariableLine = descriptionAt + descriptionSize + 2;

// --- the types of variables: a letter, and the width of those that are binary ---
inline constexpr char typeCharacter = 'C';
inline constexpr char typeNumeric = 'N';  // digits
inline constexpr char typeReal = 'R';     // a double
inline constexpr char typeFloat = 'F';
inline constexpr char typeLong = 'L';   // 32 bits
inline constexpr char typeShort = 'S';  // 16 bits
inline constexpr std::size_t realSize = 8;
inline constexpr std::size_t floatSize = 4;
inline constexpr std::size_t longSize = 4;
inline constexpr std::size_t shortSize = 2;

inline constexpr char fileEnd = '\x1A';  // behind the last record, in files of some programs

}  // namespace fileMicromine

#endif

// The fields of a table that is read: what their letters mean, and how their bytes are to be taken.
//
// The same letter means different things in different versions: B is a double in Visual FoxPro and a
// memo in dBASE 5, I turns its bytes round in dBASE 7. That is decided once, here, when the header is
// read. No state; any thread.
#ifndef VOK_SUITE_FILE_DBF_DBFFIELDS_H
#define VOK_SUITE_FILE_DBF_DBFFIELDS_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace fileDbf {

/// How the bytes of a field become text.
enum class fieldKind : std::uint8_t {
  text,            // C, and what is text under a letter of its own
  varyingText,     // V, Q: the length may stand in the last byte
  number,          // N, F: digits
  date,            // D: YYYYMMDD
  logical,         // L
  memo,            // M: the number of a block in the memo file
  noText,          // pictures, objects, and letters with a length that does not fit them
  integer,         // I of FoxPro
  orderedInteger,  // I and + of dBASE 7: big-endian, sign bit inverted
  real,            // B of FoxPro
  orderedReal,     // O of dBASE 7: big-endian; negative numbers with all bits inverted
  signedReal,      // O elsewhere: big-endian, sign bit inverted
  currency,        // Y: 10,000 times the amount
  julianTime,      // T: a Julian day number and the milliseconds of the day
  millisecondTime  // @: milliseconds since the first day of year 1
};

struct tableField {
  std::string name;  // bytes of the file
  char type = 0;
  fieldKind kind = fieldKind::text;
  std::size_t offset = 0;  // in the record, its first byte being the mark of deletion
  std::size_t length = 0;
  int nullBit = -1;    // in the null flags; -1: the field is never null
  int lengthBit = -1;  // in the null flags, for varying text
};

/// What decides the meaning of a letter beside its field's length.
enum class fileLevel : std::uint8_t { dbase, dbase7, visualFoxPro };

fieldKind kindOf(char type, std::size_t length, fileLevel level);

/// The type code of a letter, 0 for letters that have none.
int codeOfType(char type);

/// The type code of a field: its letter's, except that the B of a memo is a memo.
int codeOfField(const tableField& field);

}  // namespace fileDbf

#endif

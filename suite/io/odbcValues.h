// One value of a result's current row as text, whole whatever its length.
//
// Everything is asked for as characters: drivers convert to text more reliably than to anything else. Bytes
// of pictures that a driver does not turn into text are asked for as they are and written as hexadecimal
// digits, which is what drivers that do turn them into text give.
//
// One object, one thread at a time.
#ifndef VOK_SUITE_IO_ODBCVALUES_H
#define VOK_SUITE_IO_ODBCVALUES_H

#include <string>
#include <vector>

#include "suite/io/odbcHandles.h"

namespace suiteIo {

class odbcValues {
 public:
  /// Reads the value of a column, counted from 1. Columns of a row must be read in their order.
  /// @param sqlType  the column's type as the driver describes it
  /// @param value  receives the text; empty for NULL
  /// @return false when the driver fails; the value is empty then
  bool read(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT sqlType, std::string& value);
  /// The same in the driver's text.
  bool readRaw(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT sqlType, std::string& value);

 private:
  enum class outcome { whole, nothing, failed };
  outcome readPieces(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT type, std::string& value);

  std::vector<char> buffer_ = std::vector<char>(4096);
};

}  // namespace suiteIo

#endif

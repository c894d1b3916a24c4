// Rows of a result in blocks: many a call instead of one call a row and one a value.
//
//     if (blocks.begin(statement, columns))
//       while (blocks.next(statement) == odbcBlocks::step::row) use(blocks.value(0));
//
// Blocks are taken only where every column has a bound: numbers, dates, and text of a length that is told and
// short. What drivers tell need not be true, so each block is looked at before any row of it is given: a
// driver that fails, warns, cuts a value, or leaves a count, a state or a length unwritten makes the block
// unsound, and its rows have to be had one at a time. `given` tells how far the rows before have come, so that
// the caller can find the place in the same statement run again, and see that it is the same.
//
// Text is the driver's. One object, one thread at a time; it must outlive the statement's use of it, or the
// statement must be freed before the next call of the driver.
#ifndef VOK_SUITE_IO_ODBCBLOCKS_H
#define VOK_SUITE_IO_ODBCBLOCKS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "suite/io/odbcHandles.h"

namespace suiteIo {

/// A column as the driver describes it.
struct odbcColumn {
  std::string name;
  SQLSMALLINT type = 0;
  SQLULEN size = 0;  ///< of text: most characters; 0 where there is no bound

  bool operator==(const odbcColumn&) const = default;
};

/// How many rows have been given, and a digest of their values, row by row.
class rowsGiven {
 public:
  void addValue(std::string_view value);
  void endRow() { ++rows_; }
  std::size_t rows() const { return rows_; }
  bool operator==(const rowsGiven&) const = default;

 private:
  std::size_t rows_ = 0;
  std::uint64_t digest_ = 0;
};

class odbcBlocks {
 public:
  enum class step { row, end, unsound };

  odbcBlocks() = default;
  odbcBlocks(const odbcBlocks&) = delete;
  odbcBlocks& operator=(const odbcBlocks&) = delete;

  /// Readies a statement that has run and of which no row has been fetched.
  /// @return false when there are to be no blocks; nothing of the statement has changed then
  bool begin(SQLHSTMT statement, const std::vector<odbcColumn>& columns);
  /// True from a `begin` that answered true until `stop`.
  bool inUse() const { return rowsOfBlock_ != 0; }
  /// Goes to the next row, also after `begin`. After `unsound` there is no more.
  step next(SQLHSTMT statement);
  /// The value of the current row; empty for NULL. Columns count from 0, and are those of `begin`.
  std::string_view value(std::size_t column) const;
  /// The rows of the blocks that were sound.
  const rowsGiven& given() const { return given_; }
  /// Forgets everything. The statement must have been freed, or unused since `begin` answered false.
  void stop();

 private:
  struct boundColumn {
    std::size_t room;
    std::vector<char> text;
    std::vector<SQLLEN> lengths;
  };
  bool bind(SQLHSTMT statement);
  step fetchBlock(SQLHSTMT statement);
  bool isSound() const;
  std::string_view valueAt(const boundColumn& column, std::size_t row) const;

  std::vector<boundColumn> columns_;
  std::vector<SQLUSMALLINT> states_;
  SQLULEN fetched_ = 0;
  std::size_t rowsOfBlock_ = 0;
  std::size_t row_ = 0;
  bool refused_ = false;
  rowsGiven given_;
};

}  // namespace suiteIo

#endif

// The rows of a read table in memory: all values one behind the other as UTF-8 in one arena, and for
// each value the offset of its end.
//
//     arena   W-1 1250.5 sand W-2 980 clay          bytes of all values
//     ends       3     9   13  16  19   23          one a value; 32 bits until the arena outgrows them
//     rows    0                3                    first value of each row, kept only for ragged tables
//
// A value costs its bytes and one offset; a table of equal rows costs nothing per row. Rows may differ in
// length, since some formats have such rows; then the row starts are kept too.
//
// Values are added at the end, closed row by row; a row that turns out to be unwanted is dropped before it
// is closed. Copying copies the table. Nothing fails but allocation. One object, one thread at a time.
#ifndef VOK_TABLE_RW_CORE_VALUETABLE_H
#define VOK_TABLE_RW_CORE_VALUETABLE_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "table_rw/text/growingArray.h"

namespace tableRW {

class valueTable {
 public:
  /// @param shortOffsetLimit  arena size up to which offsets have 32 bits; tests choose a small one
  explicit valueTable(std::uint64_t shortOffsetLimit = std::numeric_limits<std::uint32_t>::max())
      : shortOffsetLimit_(shortOffsetLimit) {}

  /// Forgets all rows and gives their memory back.
  void clear();

  std::size_t rowCount() const { return rowCount_; }

  /// Number of values in a row; 0 for a row that does not exist.
  std::size_t rowSize(std::size_t row) const;

  /// The UTF-8 bytes of a value (see text/utf8.h); empty for a row or column that does not exist. They
  /// live until the table is changed.
  std::string_view bytes(std::size_t row, std::size_t column) const;

  /// A value as wide text; empty for a row or column that does not exist.
  std::wstring text(std::size_t row, std::size_t column) const;

  /// Appends a value to the open row.
  void addValue(std::wstring_view text);
  /// Appends a value that is already UTF-8.
  void addValue(std::string_view utf8);

  /// Appends a whole row whose values are written straight into the arena. No row may be open.
  /// @param mostBytes  upper bound of the bytes of all its values
  /// @param put  called as put(i, to) for each value i in turn: writes its UTF-8 bytes at `to` and answers
  ///             behind the last; may scribble over writeAhead bytes behind that
  template <class Put>
  void addRow(std::size_t values, std::size_t mostBytes, Put put);
  static constexpr std::size_t writeAhead = 64;

  /// Closes the open row: its values become the table's next row.
  void endRow();

  /// Forgets the values of the open row.
  void dropRow();

 private:
  std::uint64_t endOf(std::size_t value) const {
    return longOffsets_ ? longEnds_[value] : shortEnds_[value];
  }
  std::uint64_t startOf(std::size_t value) const { return value == 0 ? 0 : endOf(value - 1); }
  std::size_t valueCount() const { return longOffsets_ ? longEnds_.size() : shortEnds_.size(); }
  std::size_t firstValue(std::size_t row) const {
    return ragged_ ? static_cast<std::size_t>(rowStarts_[row]) : row * rowWidth_;
  }
  template <class Offset, class Put>
  void fillRow(growingArray<Offset>& ends, std::size_t values, char* to, Put put);
  void addEnd(std::size_t size);
  void widenOffsets();
  void keepRowStarts();

  std::uint64_t shortOffsetLimit_;
  growingArray<char> arena_;
  growingArray<std::uint32_t> shortEnds_;
  growingArray<std::uint64_t> longEnds_;
  growingArray<std::uint64_t> rowStarts_;  // of all rows and of the open one, when ragged
  std::size_t rowCount_ = 0;
  std::size_t rowWidth_ = 0;      // values in every row, while the rows are equal
  std::size_t openRowStart_ = 0;  // first value of the open row
  bool longOffsets_ = false;
  bool ragged_ = false;
};

template <class Offset, class Put>
void valueTable::fillRow(growingArray<Offset>& ends, std::size_t values, char* to, Put put) {
  Offset* const end = ends.room(values);
  const char* const base = arena_.data();
  for (std::size_t i = 0; i < values; ++i) {
    to = put(i, to);
    end[i] = static_cast<Offset>(to - base);
  }
  ends.advance(values);
  arena_.advance(static_cast<std::size_t>(to - base) - arena_.size());
}

template <class Put>
void valueTable::addRow(std::size_t values, std::size_t mostBytes, Put put) {
  char* const to = arena_.room(mostBytes + writeAhead);
  if (!longOffsets_ && arena_.size() + mostBytes > shortOffsetLimit_) widenOffsets();
  if (longOffsets_)
    fillRow(longEnds_, values, to, put);
  else
    fillRow(shortEnds_, values, to, put);
  endRow();
}

inline std::size_t valueTable::rowSize(std::size_t row) const {
  if (row >= rowCount_) return 0;
  return ragged_ ? static_cast<std::size_t>(rowStarts_[row + 1] - rowStarts_[row]) : rowWidth_;
}

inline std::string_view valueTable::bytes(std::size_t row, std::size_t column) const {
  if (column >= rowSize(row)) return {};
  const std::size_t value = firstValue(row) + column;
  const std::uint64_t start = startOf(value);
  return {arena_.data() + start, static_cast<std::size_t>(endOf(value) - start)};
}

}  // namespace tableRW

#endif

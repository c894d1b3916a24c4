// The rows of a sheet's XML part: where their cells stand and of what kind they are, and rows in the form that
// nearly all programs write, straight from the bytes.
//
// FORMAT: rows and cells without a reference follow the one before. A cell's kind is its attribute `t`: `s` a
// shared string by number, `str` the text of a formula, `inlineStr` text in the cell, `b` a boolean, `e` an
// error, `d` a date in ISO 8601, which stays as it is, else a number.
#ifndef VOK_CONVERTER_WORKBOOK_XLSXROW_H
#define VOK_CONVERTER_WORKBOOK_XLSXROW_H

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "converter/syntax/xmlBytes.h"

namespace converter {

enum class cellKind : std::uint8_t { number, shared, text, inlineText, boolean, error, date };

/// The kind that an attribute `t` names.
cellKind cellKindOf(std::string_view type);

std::string_view withoutBlanks(std::string_view text);

/// A number in decimal digits and nothing else. @return false when the text is none
template <class Number>
bool readWholeNumber(std::string_view text, Number& number) {
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

/// The style that an attribute `s` names; 0 when it is no number.
std::size_t styleNumber(std::string_view text);

/// A reference such as `B7`. @return false when it is none or lies outside a sheet
bool readReference(std::string_view reference, std::uint32_t& row, std::uint32_t& column);

/// Where the next cell stands, from 0.
struct cellPlace {
  std::uint32_t row = 0;
  std::uint32_t column = 0;
  std::uint32_t nextRow = 0;
  std::uint32_t nextColumn = 0;

  /// @param number  from 1, as it stands in the file; null: the next row
  /// @return false when there is no such row
  bool startRow(const std::string_view* number);
  /// @param reference  null: the next cell of the row
  /// @return false when there is no such cell
  bool startCell(const std::string_view* reference);
};

struct xlsxPlainCell {
  std::uint32_t row;
  std::uint32_t column;
  std::size_t style;
  std::string_view text;  ///< of `v`, or of `is`; lives as long as the bytes
  cellKind kind;
  bool isInline;
};

/// One row from bytes. Understood are, in any order and number, cells with the attributes `r`, `s` and `t`, and
/// in them one value, one formula without references to characters, one inline string of a single `t`.
class xlsxPlainRow {
 public:
  /// @param at     blanks, then the row
  /// @param place  of the row before; becomes this row's
  /// @return behind the row; null when it is not whole or not understood, and everything else is undefined
  const char* read(const char* at, cellPlace& place, std::size_t& lines);

  /// The cells that have a value.
  const std::vector<xlsxPlainCell>& cells() const { return cells_; }

 private:
  const char* readCell(const char* at, cellPlace& place, std::size_t& lines);
  const char* readCellAttributes(const char* at, cellPlace& place, xlsxPlainCell& cell) const;
  const char* readCellContent(const char* at, xlsxPlainCell& cell, std::size_t& lines);

  xmlTagBytes tag_;
  std::vector<xlsxPlainCell> cells_;
};

}  // namespace converter

#endif

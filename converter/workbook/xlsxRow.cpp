#include "converter/workbook/xlsxRow.h"

#include <algorithm>

#include "converter/workbook/workbook.h"

namespace converter {
namespace {

std::string_view between(const char* begin, const char* end) {
  return {begin, static_cast<std::size_t>(end - begin)};
}

}  // namespace

std::string_view withoutBlanks(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

cellKind cellKindOf(std::string_view type) {
  if (type == "s") return cellKind::shared;
  if (type == "str") return cellKind::text;
  if (type == "inlineStr") return cellKind::inlineText;
  if (type == "b") return cellKind::boolean;
  if (type == "e") return cellKind::error;
  if (type == "d") return cellKind::date;
  return cellKind::number;
}

std::size_t styleNumber(std::string_view text) {
  std::size_t style = 0;
  return readWholeNumber(text, style) ? style : 0;
}

bool readReference(std::string_view reference, std::uint32_t& row, std::uint32_t& column) {
  std::uint32_t letters = 0;
  std::size_t i = 0;
  for (; i < reference.size(); ++i) {
    const auto letter = static_cast<unsigned char>(reference[i] | 0x20);
    if (letter < 'a' || letter > 'z') break;
    letters = letters * 26 + (letter - 'a' + 1u);
    if (letters > mostColumns) return false;
  }
  std::uint32_t number = 0;
  for (const std::size_t digits = i; i < reference.size(); ++i) {
    const auto digit = static_cast<unsigned char>(reference[i] - '0');
    if (digit > 9 || i - digits > 6) return false;
    number = number * 10 + digit;
  }
  if (letters == 0 || number == 0 || number > mostRows) return false;
  row = number - 1;
  column = letters - 1;
  return true;
}

bool cellPlace::startRow(const std::string_view* number) {
  row = nextRow;
  nextColumn = 0;
  if (number != nullptr) {
    std::uint32_t fromOne = 0;
    if (!readWholeNumber(withoutBlanks(*number), fromOne) || fromOne == 0) return false;
    row = fromOne - 1;
  }
  nextRow = row + 1;
  return row < mostRows;
}

bool cellPlace::startCell(const std::string_view* reference) {
  column = nextColumn;
  if (reference != nullptr && !readReference(*reference, row, column)) return false;
  nextColumn = column + 1;
  nextRow = std::max(nextRow, row + 1);
  return column < mostColumns;
}

const char* xlsxPlainRow::read(const char* at, cellPlace& place, std::size_t& lines) {
  cells_.clear();
  at = behindBlanks(at, lines);
  if (!beginsWith(at, "<row")) return nullptr;
  at = tag_.read(at + 4);
  if (at == nullptr || !place.startRow(tag_.find("r"))) return nullptr;
  if (*at == '/') return at + 2;
  ++at;
  for (;;) {
    at = behindBlanks(at, lines);
    if (beginsWith(at, "<c")) {
      at = readCell(at + 2, place, lines);
      if (at == nullptr) return nullptr;
    } else {
      return beginsWith(at, "</row>") ? at + 6 : nullptr;
    }
  }
}

const char* xlsxPlainRow::readCell(const char* at, cellPlace& place, std::size_t& lines) {
  xlsxPlainCell cell{0, 0, 0, {}, cellKind::number, false};
  at = readCellAttributes(at, place, cell);
  if (at == nullptr) return nullptr;
  cell.row = place.row;
  cell.column = place.column;
  if (*at == '/') return at + 2;
  at = readCellContent(at + 1, cell, lines);
  if (at != nullptr && !cell.text.empty()) cells_.push_back(cell);
  return at;
}

// WHY not xmlTagBytes: there are millions of cells, and three attributes they can have.
const char* xlsxPlainRow::readCellAttributes(const char* at, cellPlace& place,
                                             xlsxPlainCell& cell) const {
  std::string_view reference;
  bool hasReference = false;
  bool hasStyle = false;
  bool hasType = false;
  while (*at == ' ') {
    bool* const isThere = at[1] == 'r'   ? &hasReference
                          : at[1] == 's' ? &hasStyle
                          : at[1] == 't' ? &hasType
                                         : nullptr;
    if (isThere == nullptr || *isThere || !beginsWith(at + 2, "=\"")) return nullptr;
    *isThere = true;
    const char* const value = at + 4;
    const char* const end = behindPlain(value);
    if (*end != '"') return nullptr;
    if (at[1] == 'r')
      reference = between(value, end);
    else if (at[1] == 's')
      cell.style = styleNumber(between(value, end));
    else
      cell.kind = cellKindOf(between(value, end));
    at = end + 1;
  }
  if (*at != '>' && !beginsWith(at, "/>")) return nullptr;
  return place.startCell(hasReference ? &reference : nullptr) ? at : nullptr;
}

const char* xlsxPlainRow::readCellContent(const char* at, xlsxPlainCell& cell, std::size_t& lines) {
  bool hasValue = false;
  bool hasFormula = false;
  for (;;) {
    at = behindBlanks(at, lines);
    if (beginsWith(at, "<v>") && !hasValue) {
      const char* const text = at + 3;
      at = behindText(text, lines);
      if (!beginsWith(at, "</v>")) return nullptr;
      cell.text = between(text, at);
      hasValue = true;
      at += 4;
    } else if (beginsWith(at, "<f") && !hasFormula) {
      at = tag_.read(at + 2);
      if (at == nullptr) return nullptr;
      hasFormula = true;
      if (*at == '/') {
        at += 2;
        continue;
      }
      at = behindText(at + 1, lines);
      if (!beginsWith(at, "</f>")) return nullptr;
      at += 4;
    } else if (beginsWith(at, "<is><t") && !hasValue) {
      at = tag_.read(at + 6);
      if (at == nullptr || *at == '/') return nullptr;
      const char* const text = at + 1;
      at = behindText(text, lines);
      if (!beginsWith(at, "</t></is>")) return nullptr;
      cell.text = between(text, at);
      cell.isInline = hasValue = true;
      at += 9;
    } else {
      return beginsWith(at, "</c>") ? at + 4 : nullptr;
    }
  }
}

}  // namespace converter

#include "table_rw/writers/xlsx/worksheet.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "table_rw/writers/xlsx/xmlText.h"

namespace SimpleXlsx {
namespace {

constexpr std::string_view beforeDimension =
    "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\""
    " xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\""
    " xmlns:mc=\"http://schemas.openxmlformats.org/markup-compatibility/2006\" "
    "mc:Ignorable=\"x14ac\""
    " xmlns:x14ac=\"http://schemas.microsoft.com/office/spreadsheetml/2009/9/ac\">";
constexpr std::string_view beforeRows =
    "<sheetViews><sheetView tabSelected=\"1\" workbookViewId=\"0\"/></sheetViews>"
    "<sheetFormatPr defaultRowHeight=\"15\" x14ac:dyDescent=\"0.25\"/><sheetData>";
constexpr std::string_view afterRows =
    "</sheetData><pageMargins left=\"0.7\" right=\"0.7\" top=\"0.75\" bottom=\"0.75\" "
    "header=\"0.3\""
    " footer=\"0.3\"/></worksheet>";

// Room for the dimension of any sheet: it is known when the last row is, and blanks fill the rest.
constexpr std::size_t dimensionSize = 80;

// What surrounds the parts of a cell and of a row; the sizes of the constants count in the room below.
constexpr std::string_view rowBegin = "<row r=\"";
constexpr std::string_view rowSpans = "\" spans=\"1:";
constexpr std::string_view rowRest = "\" x14ac:dyDescent=\"0.25\">";
constexpr std::string_view rowEnd = "</row>";
constexpr std::string_view cellBegin = "<c r=\"";
constexpr std::string_view styleBegin = "\" s=\"";
constexpr std::string_view sharedBegin = "\" t=\"s\"><v>";
constexpr std::string_view sharedEnd = "</v></c>";
constexpr std::string_view formulaBegin = "\"><f>";
constexpr std::string_view formulaEnd = "</f></c>";
constexpr std::size_t rowRoom = 128;
constexpr std::size_t cellRoom = 128;  // without the text of a formula

// ODD: a value that begins so is a formula: users write them.
constexpr wchar_t formulaMark = L'=';
constexpr unsigned lettersInAlphabet = 26;

char* put(std::string_view text, char* output) {
  // WHY not memcpy: it may not be given the null of an empty text, which the formula "=" has.
  return output + text.copy(output, text.size());
}

}  // namespace

CWorksheet::CWorksheet(std::wstring title, packageDisk& disk, sharedStrings& strings)
    : title_(std::move(title)), part_(disk), strings_(strings) {}

void CWorksheet::open(const std::wstring& path) {
  part_.open(path);
  part_.raw(beforeDimension);
  dimensionAt_ = part_.position();
  part_.raw(std::string(dimensionSize, ' ')).raw(beforeRows);
}

void CWorksheet::copyFrom(CWorksheet& other, const std::wstring& path) {
  other.part_.copyTo(part_, path);
  columns_ = other.columns_;
  rows_ = other.rows_;
  isWhole_ = other.isWhole_;
  dimensionAt_ = other.dimensionAt_;
}

void CWorksheet::AddRow(const std::vector<CellDataStr>& cells) {
  if (cells.size() > columns_.size()) nameColumns(cells.size());
  const bool wasWhole = std::exchange(isWhole_, false);  // until the row's end is there
  std::array<char, mostDigits> digits;
  const char* const digitsEnd = putNumber(rows_ + 1, digits.data());
  const std::string_view rowNumber(digits.data(),
                                   static_cast<std::size_t>(digitsEnd - digits.data()));
  ++rows_;

  char* const begin = part_.room(rowRoom);
  char* end = put(rowNumber, put(rowBegin, begin));
  end = putNumber(cells.size() + 1, put(rowSpans, end));
  end = put(rowRest, end);
  part_.advance(static_cast<std::size_t>(end - begin));
  for (std::size_t column = 0; column < cells.size(); ++column)
    putCell(column, rowNumber, cells[column]);
  part_.raw(rowEnd);
  isWhole_ = wasWhole;
}

void CWorksheet::putCell(std::size_t column, std::string_view rowNumber, const CellDataStr& cell) {
  const bool isFormula = !cell.value.empty() && cell.value.front() == formulaMark;
  std::uint32_t index = 0;
  formula_.shrinkTo(0);
  if (isFormula)
    appendUtf8(std::wstring_view(cell.value).substr(1), formula_);
  else
    index = strings_.indexOf(cell.value);

  char* const begin = part_.room(cellRoom + formula_.size());
  const columnName& name = columns_[column];
  char* end = put(cellBegin, begin);
  std::memcpy(end, name.letters.data(), name.letters.size());  // a fixed size is one instruction
  end = put(rowNumber, end + name.size);
  if (cell.style != 0) end = putNumber(cell.style, put(styleBegin, end));
  if (isFormula) {
    end = put({formula_.data(), formula_.size()}, put(formulaBegin, end));
    end = put(formulaEnd, end);
  } else {
    end = put(sharedEnd, putNumber(index, put(sharedBegin, end)));
  }
  part_.advance(static_cast<std::size_t>(end - begin));
}

// A, B ... Z, AA, AB ...: numbers to the base of 26 without a zero.
void CWorksheet::nameColumns(std::size_t count) {
  columns_.reserve(count);
  while (columns_.size() < count) {
    std::string letters;
    for (std::size_t number = columns_.size() + 1; number > 0;
         number = (number - 1) / lettersInAlphabet)
      letters += "ABCDEFGHIJKLMNOPQRSTUVWXYZ"[(number - 1) % lettersInAlphabet];
    columnName name{{}, static_cast<std::uint8_t>(letters.size())};
    std::copy(letters.rbegin(), letters.rend(), name.letters.begin());
    columns_.push_back(name);
  }
}

std::string CWorksheet::dimension() const {
  std::string reference = "A1";
  if (rows_ > 0 && !columns_.empty()) {
    const columnName& last = columns_.back();
    const std::string corner = std::string(last.letters.data(), last.size) + std::to_string(rows_);
    if (corner != reference) reference += ":" + corner;
  }
  return "<dimension ref=\"" + reference + "\"/>";
}

bool CWorksheet::close() {
  part_.raw(afterRows);
  part_.rewrite(dimensionAt_, dimension());
  return part_.close() && isWhole_;
}

}  // namespace SimpleXlsx

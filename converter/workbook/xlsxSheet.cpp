#include "converter/workbook/xlsxSheet.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace converter {
namespace {

std::string_view withoutBlanks(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

template <class Number>
bool readWhole(std::string_view text, Number& number) {
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

std::string referenceText(std::uint32_t row, std::uint32_t column) {
  std::string letters;
  for (std::uint32_t rest = column + 1; rest > 0; rest = (rest - 1) / 26)
    letters.insert(letters.begin(), static_cast<char>('A' + (rest - 1) % 26));
  return letters + std::to_string(row + 1);
}

}  // namespace

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

xlsxSheetEvents::cellKind xlsxSheetEvents::kindOf(const char* type) {
  if (isText(type, "s")) return cellKind::shared;
  if (isText(type, "str")) return cellKind::text;
  if (isText(type, "inlineStr")) return cellKind::inlineText;
  if (isText(type, "b")) return cellKind::boolean;
  if (isText(type, "e")) return cellKind::error;
  if (isText(type, "d")) return cellKind::date;
  return cellKind::number;
}

void xlsxSheetEvents::fail(std::string reason) {
  if (problem_.empty()) problem_ = std::move(reason);
}

void xlsxSheetEvents::checkLength() {
  if (std::max(value_.size(), inline_.size()) > longestText) fail(longTextProblem);
}

std::string xlsxSheetEvents::stopReason() {
  checkLength();
  return problem_.empty() ? receiver_->stopReason() : problem_;
}

void xlsxSheetEvents::startElement(const char* name, const xmlAttributes& attributes) {
  if (isText(name, "c")) {
    startCell(attributes);
  } else if (isText(name, "v")) {
    isInValue_ = isInCell_;
  } else if (isText(name, "row")) {
    startRow(attributes);
  } else if (isText(name, "mergeCell")) {
    addMerge(attributes);
  } else if (isInCell_) {
    if (isText(name, "is")) isInline_ = hasInline_ = true;
    if (isInline_) inline_.startElement(name);
  }
}

void xlsxSheetEvents::endElement(const char* name) {
  if (isText(name, "v")) {
    isInValue_ = false;
  } else if (isText(name, "c")) {
    endCell();
  } else if (isInline_) {
    inline_.endElement(name);
    if (isText(name, "is")) isInline_ = false;
  }
}

void xlsxSheetEvents::text(std::string_view piece) {
  if (isInValue_)
    value_ += piece;
  else if (isInline_)
    inline_.text(piece);
}

void xlsxSheetEvents::startRow(const xmlAttributes& attributes) {
  row_ = nextRow_;
  nextColumn_ = 0;
  if (const char* const number = attributes.find("r")) {
    std::uint32_t fromOne = 0;
    if (!readWhole(withoutBlanks(number), fromOne) || fromOne == 0 || fromOne > mostRows) {
      fail(std::string("the sheet is damaged: it has a row ") + number);
      return;
    }
    row_ = fromOne - 1;
  }
  if (row_ >= mostRows) fail("the sheet is damaged: it has too many rows");
  nextRow_ = row_ + 1;
}

void xlsxSheetEvents::startCell(const xmlAttributes& attributes) {
  isInCell_ = true;
  isInValue_ = isInline_ = hasInline_ = false;
  kind_ = cellKind::number;
  style_ = 0;
  value_.clear();
  column_ = nextColumn_;
  attributes.forEach([this](const char* attribute, const char* text) {
    if (isText(attribute, "r")) {
      if (!readReference(text, row_, column_))
        fail(std::string("the sheet is damaged: it has a cell ") + text);
    } else if (isText(attribute, "t")) {
      kind_ = kindOf(text);
    } else if (isText(attribute, "s")) {
      if (!readWhole(std::string_view(text), style_)) style_ = 0;
    }
  });
  if (column_ >= mostColumns) fail("the sheet is damaged: it has too many columns");
  nextColumn_ = column_ + 1;
  nextRow_ = std::max(nextRow_, row_ + 1);
}

void xlsxSheetEvents::endCell() {
  isInCell_ = isInValue_ = isInline_ = false;
  checkLength();
  if (!problem_.empty()) return;
  if (hasInline_) {
    line_.clear();
    inline_.appendTo(line_, context_->replacements);
    inline_.clear();
    if (!line_.empty()) receiver_->cell(row_, column_, line_);
  } else if (!value_.empty()) {
    emitValue(value_);
  }
}

void xlsxSheetEvents::emitValue(std::string_view value) {
  line_.clear();
  switch (kind_) {
    case cellKind::shared: {
      std::size_t number = 0;
      value = withoutBlanks(value);
      if (value.empty()) return;
      if (!readWhole(value, number) || number >= context_->sharedStrings.size()) {
        fail("the sheet is damaged: cell " + referenceText(row_, column_) +
             " refers to shared string " + std::string(value) + " of " +
             std::to_string(context_->sharedStrings.size()));
        return;
      }
      const std::string_view shared = context_->sharedStrings.get(number);
      if (!shared.empty()) receiver_->cell(row_, column_, shared);
      return;
    }
    case cellKind::number:
      value = withoutBlanks(value);
      if (context_->replacements.isPlain(value)) {
        appendFormatted(line_, value, context_->formats.kindOfStyle(style_), context_->dates);
        break;
      }
      [[fallthrough]];  // no number, but the delimiter
    case cellKind::text:
    case cellKind::inlineText:
    case cellKind::error:
    case cellKind::date:
      appendText(line_, value, context_->replacements, scratch_);
      break;
    case cellKind::boolean:
      value = withoutBlanks(value);
      if (value == "1" || value == "true")
        line_ = trueText;
      else if (value == "0" || value == "false")
        line_ = falseText;
      else
        context_->replacements.append(line_, value);
      break;
  }
  if (!line_.empty()) receiver_->cell(row_, column_, line_);
}

void xlsxSheetEvents::addMerge(const xmlAttributes& attributes) {
  const char* const found = attributes.find("ref");
  if (found == nullptr) return;
  const std::string_view reference(found);
  const std::size_t colon = reference.find(':');
  cellRange range;
  const bool isRange =
      colon != std::string_view::npos &&
      readReference(reference.substr(0, colon), range.firstRow, range.firstColumn) &&
      readReference(reference.substr(colon + 1), range.lastRow, range.lastColumn);
  if (!isRange) return;  // one cell, or nothing that could be merged
  if (range.firstRow > range.lastRow) std::swap(range.firstRow, range.lastRow);
  if (range.firstColumn > range.lastColumn) std::swap(range.firstColumn, range.lastColumn);
  receiver_->mergedCells(range);
}

}  // namespace converter

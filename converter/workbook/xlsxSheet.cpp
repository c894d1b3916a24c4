#include "converter/workbook/xlsxSheet.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace converter {
namespace {

std::string referenceText(std::uint32_t row, std::uint32_t column) {
  std::string letters;
  for (std::uint32_t rest = column + 1; rest > 0; rest = (rest - 1) / 26)
    letters.insert(letters.begin(), static_cast<char>('A' + (rest - 1) % 26));
  return letters + std::to_string(row + 1);
}

}  // namespace

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
  const char* const number = attributes.find("r");
  const std::string_view text = number == nullptr ? std::string_view() : number;
  if (!place_.startRow(number == nullptr ? nullptr : &text))
    fail(number == nullptr ? "the sheet is damaged: it has too many rows"
                           : std::string("the sheet is damaged: it has a row ") + number);
}

void xlsxSheetEvents::startCell(const xmlAttributes& attributes) {
  isInCell_ = true;
  isInValue_ = isInline_ = hasInline_ = false;
  kind_ = cellKind::number;
  style_ = 0;
  value_.clear();
  std::optional<std::string_view> reference;
  attributes.forEach([&](const char* attribute, std::string_view text) {
    if (isText(attribute, "r"))
      reference = text;
    else if (isText(attribute, "t"))
      kind_ = cellKindOf(text);
    else if (isText(attribute, "s"))
      style_ = styleNumber(text);
  });
  if (!place_.startCell(reference ? &*reference : nullptr))
    fail(reference ? "the sheet is damaged: it has a cell " + std::string(*reference)
                   : "the sheet is damaged: it has too many columns");
}

void xlsxSheetEvents::endCell() {
  isInCell_ = isInValue_ = isInline_ = false;
  checkLength();
  if (!problem_.empty()) return;
  if (hasInline_) {
    line_.clear();
    inline_.appendTo(line_, context_->replacements);
    inline_.clear();
    if (!line_.empty()) receiver_->cell(place_.row, place_.column, line_);
  } else if (!value_.empty()) {
    emitValue(value_);
  }
}

std::size_t xlsxSheetEvents::plainRows::take(std::string_view bytes, std::size_t& lines) {
  const char* taken = bytes.data();
  for (;;) {
    cellPlace place = events_->place_;
    std::size_t linesOfRow = 0;
    const char* const end = row_.read(taken, place, linesOfRow);
    if (end == nullptr) return static_cast<std::size_t>(taken - bytes.data());
    for (const xlsxPlainCell& cell : row_.cells()) events_->emitPlainCell(cell);
    events_->place_ = place;
    lines += linesOfRow;
    taken = end;
  }
}

void xlsxSheetEvents::emitPlainCell(const xlsxPlainCell& cell) {
  if (!problem_.empty()) return;
  place_.row = cell.row;
  place_.column = cell.column;
  kind_ = cell.kind;
  style_ = cell.style;
  if (!cell.isInline) {
    emitValue(cell.text);
    return;
  }
  line_.clear();
  appendText(line_, cell.text, context_->replacements, scratch_);
  receiver_->cell(cell.row, cell.column, line_);
}

void xlsxSheetEvents::emitValue(std::string_view value) {
  line_.clear();
  switch (kind_) {
    case cellKind::shared: {
      std::size_t number = 0;
      value = withoutBlanks(value);
      if (value.empty()) return;
      if (!readWholeNumber(value, number) || number >= context_->sharedStrings.size()) {
        fail("the sheet is damaged: cell " + referenceText(place_.row, place_.column) +
             " refers to shared string " + std::string(value) + " of " +
             std::to_string(context_->sharedStrings.size()));
        return;
      }
      const std::string_view shared = context_->sharedStrings.get(number);
      if (!shared.empty()) receiver_->cell(place_.row, place_.column, shared);
      return;
    }
    case cellKind::number:
      value = withoutBlanks(value);
      if (context_->replacements.isPlain(value)) {
        appendNumberText(value);
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
  if (!line_.empty()) receiver_->cell(place_.row, place_.column, line_);
}

void xlsxSheetEvents::appendNumberText(std::string_view number) {
  const numberFormat& format = context_->formats.ofStyle(style_);
  if (format.isPlain()) {
    appendFormatted(line_, number, format, context_->dates);
    return;
  }
  scratch_.clear();
  appendFormatted(scratch_, number, format, context_->dates);
  context_->replacements.append(line_, scratch_);  // the colons of a time may be the delimiter
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

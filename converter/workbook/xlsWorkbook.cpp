#include "converter/workbook/xlsWorkbook.h"

#include <algorithm>
#include <cmath>

namespace converter {
namespace {

constexpr unsigned version8 = 0x0600;
constexpr unsigned kindGlobals = 0x0005;
constexpr unsigned kindSheet = 0x0010;
constexpr std::size_t cellHeader = 6;   // row, column, style
constexpr std::size_t sheetHeader = 6;  // place, visibility, kind

constexpr unsigned flagWide = 1;
constexpr unsigned flagPhonetic = 4;
constexpr unsigned flagRich = 8;

constexpr unsigned numberError = 0x24;  // #NUM!
constexpr std::string_view unknownError = "#UNKNOWN!";
constexpr std::string_view tooManyColumns = "the sheet is damaged: it has too many columns";
constexpr std::string_view cutProblem = "the workbook is damaged: its records end too early";

// FORMAT: two low bits, then 30 bits of an integer or the upper bits of a double; the lowest bit divides by
// a hundred.
double numberOfRk(std::uint32_t rk) {
  const double number = (rk & 2) != 0
                            ? static_cast<double>(static_cast<std::int32_t>(rk) >> 2)
                            : std::bit_cast<double>(static_cast<std::uint64_t>(rk & ~3u) << 32);
  return (rk & 1) != 0 ? number / 100 : number;
}

}  // namespace

// The sheet that is being read.
struct xlsWorkbook::sheetState {
  sheetReceiver* receiver;
  std::string problem = {};
  std::uint32_t row = 0;
  std::uint32_t column = 0;
  bool expectsString = false;  // a formula's text comes in a record of its own

  // Takes the place of the record's cell. @return false when the record is too short or the place is none
  bool takeCell(const recordReader& records, std::size_t leastSize) {
    if (records.size() < leastSize) {
      problem = "the sheet is damaged: it has a cell that is too short";
      return false;
    }
    row = read16(records.data());
    column = read16(records.data() + 2);
    if (column < mostColumns) return true;
    problem = tooManyColumns;
    return false;
  }
};

bool xlsWorkbook::open(byteStream& stream, std::string& problem) {
  records_ = std::make_unique<recordReader>(stream);
  if (!readGlobals(problem)) return false;
  formats_.resolve();
  return true;
}

bool xlsWorkbook::readGlobals(std::string& problem) {
  if (!records_->next() || records_->id() != biff::beginOfFile || records_->size() < 4) {
    problem =
        "the workbook is damaged, or of Excel 4 or older, which is not read: save it as .xlsx";
    return false;
  }
  isBiff8_ = read16(records_->data()) >= version8;
  if (read16(records_->data() + 2) == kindSheet) {
    // A sheet that was saved alone.
    sheetEntry only;
    only.name = "Sheet1";
    sheets_.push_back(only);
    return true;
  }
  unsigned depth = 1;
  while (records_->next()) {
    if (records_->id() == biff::beginOfFile) {
      ++depth;
    } else if (records_->id() == biff::endOfFile) {
      if (--depth == 0) return true;
    } else if (depth == 1 && !readGlobal(problem)) {
      return false;
    }
  }
  problem = cutProblem;
  return false;
}

bool xlsWorkbook::readGlobal(std::string& problem) {
  const unsigned char* const data = records_->data();
  const std::size_t size = records_->size();
  switch (records_->id()) {
    case biff::filePass:
      problem = "the workbook is protected by a password";
      return false;
    case biff::codePage:
      if (size >= 2) bytes_.choose(read16(data));
      break;
    case biff::date1904:
      if (size >= 2 && read16(data) != 0) dates_ = dateSystem::from1904;
      break;
    case biff::boundSheet:
      return readBoundSheet(problem);
    case biff::format:
      readFormat();
      break;
    case biff::extendedFormat:
      formats_.addStyle(size >= 4 ? read16(data + 2) : 0);
      break;
    case biff::sharedStrings:
      return readSharedStrings(problem);
    default:
      break;
  }
  return true;
}

// A string: its length in one or two bytes; in BIFF8 a flag byte, sizes of what follows the characters, the
// characters, formatting and phonetic text. @return false when it is cut
bool xlsWorkbook::appendString(continuedReader& reader, unsigned lengthBytes,
                               std::string& text) const {
  unsigned length = 0;
  if (lengthBytes == 1 ? !reader.read8(length) : !reader.read16(length)) return false;
  if (!isBiff8_) {
    unsigned byte = 0;
    for (unsigned i = 0; i < length; ++i) {
      if (!reader.read8(byte)) return false;
      bytes_.append(text, byte);
    }
    return true;
  }
  unsigned flags = 0;
  unsigned formatRuns = 0;
  std::uint32_t phoneticSize = 0;
  if (length == 0 && !reader.hasMore()) return true;  // some writers leave the flags of nothing out
  if (!reader.read8(flags)) return false;
  if ((flags & flagRich) != 0 && !reader.read16(formatRuns)) return false;
  if ((flags & flagPhonetic) != 0 && !reader.read32(phoneticSize)) return false;
  return reader.appendCharacters(text, length, (flags & flagWide) != 0) &&
         reader.skip(4 * std::size_t{formatRuns}) && reader.skip(phoneticSize);
}

// WHY not without a sheet whose entry is cut: another one would be taken for the first.
bool xlsWorkbook::readBoundSheet(std::string& problem) {
  const unsigned char* const data = records_->data();
  sheetEntry sheet;
  continuedReader reader(*records_);
  if (records_->size() >= sheetHeader) {
    sheet.place = read32(data);
    sheet.isVisible = (data[4] & 3) == 0;
    sheet.hasCells = data[5] == 0;
    reader.skip(sheetHeader);
    if (appendString(reader, 1, sheet.name)) {
      sheets_.push_back(std::move(sheet));
      return true;
    }
  }
  problem = "the workbook is damaged: its list of sheets is cut";
  return false;
}

void xlsWorkbook::readFormat() {
  continuedReader reader(*records_);
  unsigned number = 0;
  text_.clear();
  if (reader.read16(number) && appendString(reader, isBiff8_ ? 2 : 1, text_))
    formats_.define(number, text_);
}

// The counts at the beginning are wrong in some files: there are as many strings as there are.
bool xlsWorkbook::readSharedStrings(std::string& problem) {
  continuedReader reader(*records_);
  std::uint32_t cells = 0;
  std::uint32_t strings = 0;
  if (!reader.read32(cells) || !reader.read32(strings)) return true;
  while (sharedStrings_.size() < strings && reader.hasMore()) {
    text_.clear();
    line_.clear();
    if (!appendString(reader, 2, text_)) {
      problem = "the workbook is damaged: its shared strings are cut";
      return false;
    }
    replacements_.append(line_, text_);
    sharedStrings_.add(line_);
  }
  return true;
}

bool xlsWorkbook::readSheet(const sheetEntry& sheet, sheetReceiver& receiver,
                            std::string& problem) {
  records_->seek(sheet.place);
  if (!records_->next() || records_->id() != biff::beginOfFile) {
    problem = "the workbook is damaged: the sheet does not stand where the workbook says";
    return false;
  }
  sheetState state{&receiver};
  unsigned depth = 1;
  constexpr unsigned recordsBetweenQuestions = 4096;
  for (unsigned count = 0; records_->next(); ++count) {
    // FORMAT: charts stand in the sheet as streams of their own, with a beginning and an end.
    if (records_->id() == biff::beginOfFile) {
      ++depth;
    } else if (records_->id() == biff::endOfFile) {
      if (--depth > 0) continue;
      problem = receiver.stopReason();
      return problem.empty();
    } else if (depth == 1 && !readSheetRecord(state)) {
      problem = state.problem;
      return false;
    }
    if (count % recordsBetweenQuestions == 0) problem = receiver.stopReason();
    if (!problem.empty()) return false;
  }
  problem = depth == 1 && records_->isWhole() ? receiver.stopReason() : std::string(cutProblem);
  return problem.empty();
}

// The cells by their records. @return false with a reason in the state when the sheet is damaged
bool xlsWorkbook::readSheetRecord(sheetState& state) {
  const unsigned char* const data = records_->data();
  switch (records_->id()) {
    case biff::number:
      if (!state.takeCell(*records_, cellHeader + 8)) return false;
      emitNumber(state, read16(data + 4), readDouble(data + 6));
      return true;
    case biff::rk:
      if (!state.takeCell(*records_, cellHeader + 4)) return false;
      emitNumber(state, read16(data + 4), numberOfRk(read32(data + 6)));
      return true;
    case biff::multipleRk:
      return readMultipleRk(state);
    case biff::sharedLabel:
      return readSharedLabel(state);
    case biff::label:
    case biff::richString: {
      if (!state.takeCell(*records_, cellHeader + 2)) return false;
      continuedReader reader(*records_);
      reader.skip(cellHeader);
      return emitString(state, reader);
    }
    case biff::booleanOrError:
      if (!state.takeCell(*records_, cellHeader + 2)) return false;
      emitBooleanOrError(state, data[6], data[7] != 0);
      return true;
    case biff::formula:
    case biff::formula3:
    case biff::formula4:
      return readFormula(state);
    case biff::string: {
      if (!state.expectsString) return true;
      state.expectsString = false;
      continuedReader reader(*records_);
      return emitString(state, reader);
    }
    case biff::mergedCells:
      readMerges(state);
      return true;
    default:
      return true;
  }
}

bool xlsWorkbook::readMultipleRk(sheetState& state) {
  constexpr std::size_t itemSize = 6;  // style and number
  if (!state.takeCell(*records_, 6)) return false;
  const std::size_t items = (records_->size() - 6) / itemSize;
  if (items > mostColumns - state.column) {
    state.problem = tooManyColumns;
    return false;
  }
  const unsigned char* item = records_->data() + 4;
  for (std::size_t i = 0; i < items; ++i, item += itemSize) {
    emitNumber(state, read16(item), numberOfRk(read32(item + 2)));
    ++state.column;
  }
  return true;
}

bool xlsWorkbook::readSharedLabel(sheetState& state) {
  if (!state.takeCell(*records_, cellHeader + 4)) return false;
  const std::uint32_t number = read32(records_->data() + 6);
  if (number >= sharedStrings_.size()) {
    state.problem = "the sheet is damaged: a cell of row " + std::to_string(state.row + 1) +
                    " refers to shared string " + std::to_string(number) + " of " +
                    std::to_string(sharedStrings_.size());
    return false;
  }
  const std::string_view text = sharedStrings_.get(number);
  if (!text.empty()) state.receiver->cell(state.row, state.column, text);
  return true;
}

// FORMAT: the result is a double, unless its last two bytes are FF: then its first byte tells the kind, and
// the third is the value of a boolean or an error.
bool xlsWorkbook::readFormula(sheetState& state) {
  if (!state.takeCell(*records_, cellHeader + 8)) return false;
  const unsigned char* const result = records_->data() + cellHeader;
  state.expectsString = false;
  if (result[6] != 0xFF || result[7] != 0xFF)
    emitNumber(state, read16(records_->data() + 4), readDouble(result));
  else if (result[0] == 0)
    state.expectsString = true;
  else if (result[0] == 1 || result[0] == 2)
    emitBooleanOrError(state, result[2], result[0] == 2);
  return true;
}

void xlsWorkbook::readMerges(sheetState& state) const {
  constexpr std::size_t itemSize = 8;
  const unsigned char* item = records_->data() + 2;
  for (std::size_t left = records_->size(); left >= 2 + itemSize;
       left -= itemSize, item += itemSize) {
    const cellRange range{read16(item), read16(item + 2), read16(item + 4), read16(item + 6)};
    if (range.firstRow <= range.lastRow && range.firstColumn <= range.lastColumn &&
        range.lastColumn < mostColumns)
      state.receiver->mergedCells(range);
  }
}

void xlsWorkbook::emitNumber(sheetState& state, unsigned style, double number) {
  if (!std::isfinite(number)) {
    emitBooleanOrError(state, numberError, true);  // as spreadsheet programs take it
    return;
  }
  const numberKind kind = formats_.ofStyle(style).kindOf(number);
  line_.clear();
  if (kind == numberKind::number) {
    appendFormatted(line_, number, kind, dates_);
  } else {
    text_.clear();
    appendFormatted(text_, number, kind, dates_);
    replacements_.append(line_, text_);  // the colons of a time may be the delimiter
  }
  state.receiver->cell(state.row, state.column, line_);
}

void xlsWorkbook::emitBooleanOrError(const sheetState& state, unsigned value, bool isError) {
  const std::string_view error = errorText(value);
  const std::string_view text = isError      ? (error.empty() ? unknownError : error)
                                : value != 0 ? trueText
                                             : falseText;
  line_.clear();
  replacements_.append(line_, text);
  state.receiver->cell(state.row, state.column, line_);
}

bool xlsWorkbook::emitString(sheetState& state, continuedReader& reader) {
  text_.clear();
  line_.clear();
  if (!appendString(reader, 2, text_)) {
    state.problem =
        "the sheet is damaged: a text of row " + std::to_string(state.row + 1) + " is cut";
    return false;
  }
  replacements_.append(line_, text_);
  if (!line_.empty()) state.receiver->cell(state.row, state.column, line_);
  return true;
}

}  // namespace converter

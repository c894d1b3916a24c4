#include "table_rw/readers/tableReader_csv.h"

#include <algorithm>
#include <utility>

#include "table_rw/readers/csvBlockParser.h"
#include "table_rw/text/sourcePositions.h"
#include "table_rw/text/splitText.h"
#include "table_rw/text/textFileReader.h"

namespace tableRW {
namespace {

// Joins the pieces of quoted values back that a plain split has cut at the delimiter.
// ODD: an empty piece and a piece with a quote at both ends always are values of their own, also inside
// quotes; files in use are read with that rule.
std::vector<std::wstring> joinQuoted(std::vector<std::wstring> pieces, wchar_t quote,
                                     const std::wstring& delimiter) {
  std::vector<std::wstring> values;
  values.reserve(pieces.size());
  bool insideQuotes = false;
  for (std::wstring& piece : pieces) {
    if (piece.empty() || (piece.front() == quote && piece.back() == quote)) {
      values.push_back(std::move(piece));
    } else if (insideQuotes) {
      insideQuotes = piece.back() != quote;
      values.back() += delimiter;
      values.back() += piece;
    } else {
      insideQuotes = piece.front() == quote;
      values.push_back(std::move(piece));
    }
  }
  return values;
}

// ODD: one from each end, and inner ones stay, doubled ones too.
void stripQuotes(std::wstring& value, wchar_t quote) {
  if (!value.empty() && value.front() == quote) value.erase(0, 1);
  if (!value.empty() && value.back() == quote) value.pop_back();
}

}  // namespace

tableReader_csv::tableReader_csv(tableReaderOptions options) : tableReader(std::move(options)) {}

bool tableReader_csv::readOnlyHeaders() {
  rowLimit_ = -1;
  headersOnly_ = true;
  return readFile();
}

bool tableReader_csv::readDemo(int n) {
  rowLimit_ = n;
  headersOnly_ = false;
  return readFile();
}

bool tableReader_csv::read() {
  rowLimit_ = -1;
  headersOnly_ = false;
  return readFile();
}

// ODD: ignored here and wherever a source holds one table: hosts call it for every source.
void tableReader_csv::setTable(std::wstring) {}

void tableReader_csv::tableList(std::vector<std::wstring>& list) { list.assign(1, L"csv"); }

capability_options tableReader_csv::get_capabilities() { return {false, true, true, true}; }

void tableReader_csv::parceString(const std::wstring& line,
                                  std::vector<std::wstring>& values) const {
  splitTextInto(line, options_.delimiter, false, values);
  if (options_.quote.empty() || line.find(options_.quote) == std::wstring::npos) return;
  const wchar_t quote = options_.quote.front();
  if (values.size() != fieldNames_.size())
    values = joinQuoted(std::move(values), quote, options_.delimiter);
  for (std::wstring& value : values) stripQuotes(value, quote);
}

bool tableReader_csv::readFile() {
  // ODD: the results of the read before stay; hosts switch the direction back.
  if (options_.direction != 0) return false;
  fieldNames_.clear();
  rows_.clear();
  errors_.clear();
  textFileReader source;
  ok_ = source.open(options_.path, options_.encoding);
  isWhole_ = true;
  if (!ok_) return false;

  const std::int64_t header = options_.header_position;
  std::wstring line;
  std::vector<std::wstring> values;
  csvBlockParser fastWay(options_, source.codePage);
  for (std::int64_t number = 0; !source.file.atEnd(); ++number) {
    if (number > std::max<std::int64_t>(header, 0)) {
      number = static_cast<std::int64_t>(fastWay.addRecords(
          source.file, static_cast<std::uint64_t>(number), fieldNames_.size(), rows_, errors_));
      if (source.file.atEnd()) break;
    }
    // WHY the result is not asked: the line behind the last LF is a line too, and empty.
    readTextLine(source, line);
    const bool namesFields = number == header || (number == 0 && header < 0);
    if (number == header) {
      parceString(line, values);
      nameFields(values);
    } else if (namesFields) {
      numberFields(line);
    }
    if (namesFields && headersOnly_) break;
    if (number > header) addRecord(line, static_cast<std::uint64_t>(number), values);
  }
  fieldTypes_.assign(fieldNames_.size(), fldText);
  // ODD: a source that opened was read, also when it could not be read to its end: hosts show what there is.
  isWhole_ = !source.file.hasFailed();
  return true;
}

// ODD: names keep their blanks, where values lose them: hosts look up names as the file has them.
// ODD: a byte-order mark stays in the first one: taking it off would be a guess at the encoding.
void tableReader_csv::nameFields(const std::vector<std::wstring>& names) {
  fieldNames_ = names;
  for (std::size_t i = 0; i < fieldNames_.size(); ++i)
    if (fieldNames_[i].empty()) fieldNames_[i] = std::to_wstring(i);
}

// ODD: "field_3" here, but a bare "3" for an empty name in a header: hosts tell the two apart by it.
void tableReader_csv::numberFields(const std::wstring& firstLine) {
  const std::size_t count = splitText(firstLine, options_.delimiter, false).size();
  for (std::size_t i = 0; i < count; ++i) fieldNames_.push_back(L"field_" + std::to_wstring(i));
}

void tableReader_csv::addRecord(const std::wstring& line, std::uint64_t number,
                                std::vector<std::wstring>& values) {
  if (number < options_.data_position) return;
  parceString(line, values);
  if (isRowEmpty(values)) return;
  if (values.size() != fieldNames_.size()) {
    errors_.push_back(number);
    return;
  }
  for (const std::wstring& value : values) rows_.addValue(trimmed(value));
  rows_.endRow();
}

bool tableReader_csv::rejectedRecords(const std::function<bool(const rejectedRecord&)>& receive) {
  textFileReader source;
  sourcePositions positions;
  if (!source.open(options_.path, options_.encoding) || !positions.open(options_.path))
    return false;
  rejectedRecord record;
  std::vector<std::wstring> values;
  std::uint64_t number = 0;
  for (const std::uint64_t wanted : errors_) {
    std::uint64_t start = 0;
    while (number <= wanted) {
      start = source.file.taken();
      if (!readTextLine(source, record.text))
        return !source.file.hasFailed();  // or it has become shorter
      ++number;
    }
    parceString(record.text, values);
    record.line = wanted;
    record.valueCount = values.size();
    record.offset = positions.of(start);
    record.size = positions.of(source.file.taken()) - record.offset;
    if (source.file.hasFailed() || positions.hasFailed()) return false;
    if (!receive(record)) break;
  }
  return true;
}

}  // namespace tableRW

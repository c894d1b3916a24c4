#include "table_rw/readers/tableReader_petrel.h"

#include <cstdint>
#include <string_view>
#include <utility>

#include "table_rw/readers/petrelBlockParser.h"
#include "table_rw/text/textFileReader.h"

namespace tableRW {
namespace {

constexpr wchar_t blank = L' ';
constexpr wchar_t quote = L'"';

std::wstring valueOf(const std::wstring& token) {
  if (token == L"-999" || token == L"\"NULL\"") return {};
  if (token.front() != quote) return token;
  return token.size() < 2 ? std::wstring() : token.substr(1, token.size() - 2);
}

}  // namespace

tableReader_petrel::tableReader_petrel(tableReaderOptions options)
    : tableReader(std::move(options)) {}

bool tableReader_petrel::readOnlyHeaders() {
  headersOnly_ = true;
  return read();
}

bool tableReader_petrel::readDemo(int n) {
  headersOnly_ = false;
  rowLimit_ = n;
  return read();
}

bool tableReader_petrel::read() {
  fieldNames_.clear();
  rows_.clear();
  textFileReader source;
  ok_ = source.open(options_.path, encodingCp1251);
  isWhole_ = true;
  if (!ok_) return false;
  readHeader(source);
  if (!headersOnly_) readRows(source);
  // ODD: true, too, of a file that could not be read to its end: hosts show what there is.
  isWhole_ = !source.file.hasFailed();
  return true;
}

void tableReader_petrel::setTable(std::wstring) {}

void tableReader_petrel::tableList(std::vector<std::wstring>& list) {
  constexpr std::wstring_view marker = L"# Petrel ";
  list.clear();
  textFileReader source;
  ok_ = source.open(options_.path, options_.encoding);
  isWhole_ = true;
  if (!ok_) return;
  std::wstring line;
  readTextLine(source, line);
  isWhole_ = !source.file.hasFailed();
  // ODD: the name begins at the tenth character wherever the marker stands; hosts have stored such names.
  const bool named = line.find(marker) != std::wstring::npos;
  list.push_back(named ? line.substr(marker.size()) : L"petrel");
}

capability_options tableReader_petrel::get_capabilities() { return {true, true, false, false}; }

// ODD: the end of the header counts also where none has begun, and a second beginning is a field name.
void tableReader_petrel::readHeader(textFileReader& source) {
  std::wstring line;
  bool begun = false;
  while (!source.file.atEnd() && readTextLine(source, line)) {
    if (line == L"END HEADER") return;
    if (begun)
      fieldNames_.push_back(line);
    else
      begun = line == L"BEGIN HEADER";
  }
}

void tableReader_petrel::readRows(textFileReader& source) {
  // WHY widened with its sign: a negative limit becomes a number of rows that is never reached.
  const auto limit = static_cast<std::uint64_t>(static_cast<std::int64_t>(rowLimit_));
  petrelBlockParser fastWay(source.codePage, limit);
  std::wstring line;
  std::vector<std::wstring> values;
  while (!source.file.atEnd()) {
    if (fastWay.addRecords(source.file, rows_)) return;
    if (source.file.atEnd() || !readTextLine(source, line)) return;
    // ODD: a row is as long as its line, a blank line included: hosts count lines by rows.
    parceString(line, values);
    for (const std::wstring& value : values) rows_.addValue(std::wstring_view(value));
    rows_.endRow();
    if (rows_.rowCount() >= limit) return;
  }
}

void tableReader_petrel::parceString(const std::wstring& line, std::vector<std::wstring>& values) {
  values.clear();
  std::wstring token;
  for (const wchar_t c : line) {
    if (c != blank) {
      token += c;
    } else if (!token.empty()) {
      const bool goesOn = token.front() == quote && token.back() != quote;
      if (goesOn) {
        token += c;
      } else {
        values.push_back(valueOf(token));
        token.clear();
      }
    }
  }
  // ODD: no blank has followed the token in hand, so it is no value. Files in use end their lines in blanks.
}

}  // namespace tableRW

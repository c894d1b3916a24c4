// Tables of the input written as CSV, DBF and XLSX and read back: what must survive a format does.
//
//   CSV   the file's bytes are those of a slow writer; read back they give what the slow reader gives
//   DBF   every value comes back, but for what its field does not hold
//   XLSX  where every value can stand in XML, the converter gives the cells with the writer's few changes; where one
//         cannot, the workbook is refused or read, and never half of it
#include <algorithm>

#include "converter/conversion.h"
#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "fuzz/workbookChecks.h"
#include "platform/files.h"
#include "platform/vok_basic.h"
#include "table_rw/readers/tableReader_csv.h"
#include "table_rw/readers/tableReader_dbf.h"
#include "table_rw/text/textConversion.h"
#include "table_rw/writers/tableWriter.h"
#include "tests/reference/textTwin.h"
#include "tests/support/csvComparison.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using fuzzing::demand;
using testSupport::textRow;

struct inputTable {
  textRow fields;
  std::vector<textRow> rows;
  std::wstring delimiter;
};

std::string encoded(const std::wstring& text, int encoding) {
  return tableRW::encodeText(text.data(), static_cast<std::int32_t>(text.size()), encoding);
}

std::wstring decoded(const std::string& bytes, int encoding) {
  return tableRW::decodeText(bytes.data(), static_cast<std::int32_t>(bytes.size()), encoding);
}

void write(const inputTable& table, const std::wstring& path, std::int32_t width) {
  tableRW::tableWriterOptions options;
  options.fileName = path;
  options.delimiter = table.delimiter;
  for (const std::wstring& name : table.fields)
    options.fields.push_back({name, tableRW::fldText, width});
  // WHY: see testSupport::writeFile; a file that is emptied may be waited for.
  platform::removeFile(path);
  tableRW::tableWriter* const writer = tableRW::tableWriter::open(options);
  demand(writer != nullptr, "no writer");
  for (const textRow& row : table.rows) demand(writer->addRow(row), "a row is refused");
  tableRW::tableWriter::close(writer);
}

// --- CSV ---

std::string slowLine(const textRow& row, const std::wstring& delimiter) {
  std::wstring line;
  for (std::size_t i = 0; i < row.size(); ++i) line += (i > 0 ? delimiter : L"") + row[i];
  std::string bytes = encoded(line, tableRW::encodingCp1251);
  bytes = bytes.substr(0, bytes.find('\0')) + '\n';
  std::string written;
  for (const char byte : bytes)
    written += byte == '\n' ? std::string("\r\n") : std::string(1, byte);
  return written;
}

// Whether a value comes back from any line that it stands in.
bool isPlainInCsv(const std::wstring& value, const std::wstring& delimiter) {
  constexpr std::wstring_view special(L"\r\n\"\x1A\0", 5);
  const std::wstring back =
      decoded(encoded(value, tableRW::encodingCp1251), tableRW::encodingCp1251);
  return back == value && value.find_first_of(special) == std::wstring::npos &&
         value.find_first_of(delimiter) == std::wstring::npos;
}

std::string checkCsv(const inputTable& table) {
  const std::wstring path = fuzzing::inputPath(L"output.csv");
  write(table, path, 0);
  std::string expected = slowLine(table.fields, table.delimiter);
  for (const textRow& row : table.rows) expected += slowLine(row, table.delimiter);
  demand(testSupport::readFile(path) == expected, "the file has other bytes");
  testSupport::csvOptions options;
  options.delimiter = table.delimiter;
  options.encoding = tableRW::encodingCp1251;
  const std::string difference = testSupport::differenceFromTwin(path, expected, options);
  demand(difference.empty(), difference);

  std::vector<textRow> rows;
  for (const textRow& row : table.rows) {
    for (const std::wstring& value : row)
      if (!isPlainInCsv(value, table.delimiter)) return "CSV, not plain";
    if (std::all_of(row.begin(), row.end(), [](const auto& value) { return value.empty(); }))
      continue;
    rows.push_back(row);
    for (std::wstring& value : rows.back()) value = reference::trimText(value);
  }
  for (const std::wstring& name : table.fields)
    if (!isPlainInCsv(name, table.delimiter)) return "CSV, not plain";
  const testSupport::tableContent content = testSupport::readCsvFile(path, options);
  demand(content.rows == rows && content.errors.empty(), "a plain table does not come back");
  return "CSV, " + std::to_string(rows.size()) + " rows";
}

// --- DBF ---

constexpr std::size_t dbfWidth = 254;
constexpr unsigned dbfPages[] = {1251, 65001, 866, 1252};
constexpr int dbfEncodings[] = {8, 0, 16, 9};

// A value as a character field of the widest kind holds it.
std::wstring keptByDbf(const std::wstring& value, int encoding) {
  const std::wstring text = value.c_str();  // to its first NUL
  std::string kept;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isPair = sizeof(wchar_t) == 2 && (text[i] & 0xFC00) == 0xD800 &&
                        i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
    const std::string bytes = encoded(text.substr(i, isPair ? 2 : 1), encoding);
    i += isPair ? 1 : 0;
    if (kept.size() + bytes.size() > dbfWidth) break;
    kept += bytes;
  }
  kept.erase(kept.find_last_not_of(' ') + 1);
  return decoded(kept, encoding);
}

std::string checkDbf(const inputTable& table, std::size_t page) {
  vo_options_set_system_code_page(dbfPages[page]);
  const std::wstring path = fuzzing::inputPath(L"output.dbf");
  write(table, path, dbfWidth);
  tableRW::tableReader_dbf reader{tableRW::tableReaderOptions(path)};
  demand(reader.read(), "the table cannot be read back");
  vo_options_set_system_code_page(0);
  demand(reader.fieldCount() == table.fields.size(), "the number of fields");
  demand(reader.count() == table.rows.size(), "the number of rows");
  textRow row;
  for (std::size_t i = 0; i < table.rows.size(); ++i) {
    reader.getRow(i, row);
    for (std::size_t column = 0; column < row.size(); ++column) {
      const std::wstring expected = keptByDbf(table.rows[i][column], dbfEncodings[page]);
      demand(row[column] == expected, "a value: " + testSupport::printable(row[column]) +
                                          " and not " + testSupport::printable(expected));
    }
  }
  return "DBF, " + std::to_string(table.rows.size()) + " rows";
}

// --- XLSX ---

bool canStandInXml(const std::wstring& value) {
  for (const wchar_t element : value) {
    const auto code = static_cast<std::uint32_t>(element);
    const bool isControl = code < 0x20 && element != L'\t' && element != L'\n' && element != L'\r';
    if (isControl || code == 0xFFFE || code == 0xFFFF || (code >= 0xD800 && code <= 0xDFFF))
      return false;
  }
  const auto countOf = [&](wchar_t element) {
    return std::count(value.begin(), value.end(), element);
  };
  // The first of each alone is escaped; what looks like _x0041_ is read as a character.
  return countOf(L'&') <= 1 && countOf(L'<') <= 1 && value.find(L"]]>") == std::wstring::npos &&
         value.find(L"_x") == std::wstring::npos;
}

// A value as the converter shows the cell: the writer's changes, then those of a line of text.
std::string shownByConverter(std::wstring value) {
  if (!value.empty() && value.front() == L'=') return {};  // a formula without a value
  const std::size_t blank = value.find(L' ');
  if (blank != std::wstring::npos) value[blank] = L'\x00A0';
  const std::size_t quote = value.find(L'"');
  if (quote != std::wstring::npos) value.insert(quote + 1, 1, L' ');
  std::wstring shown;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] == L'\r' && i + 1 < value.size() && value[i + 1] == L'\n') continue;
    const bool isBreak = value[i] == L'\r' || value[i] == L'\n' || value[i] == L'\t';
    shown += isBreak ? L' ' : value[i] == L'$' ? L'\xFF04' : value[i];
  }
  return encoded(shown, tableRW::encodingUtf8);
}

std::string checkXlsx(const inputTable& table) {
  converter::conversionRequest request;
  request.source = fuzzing::inputPath(L"output.xlsx");
  request.folder = fuzzing::inputPath(L"");
  write(table, request.source, 0);
  demand(platform::fileExists(request.source), "no workbook");
  std::string problem;
  const bool isDone = converter::convert(request, problem);
  const auto text = testSupport::readFile(converter::targetPath(request));
  platform::removeFile(converter::targetPath(request));
  demand(isDone == text.has_value() && (isDone || !problem.empty()), "a half conversion");

  fuzzing::sheetCells cells;
  std::vector<textRow> rows = {table.fields};
  rows.insert(rows.end(), table.rows.begin(), table.rows.end());
  for (std::uint32_t row = 0; row < rows.size(); ++row) {
    for (std::uint32_t column = 0; column < rows[row].size(); ++column) {
      const std::wstring& value = rows[row][column];
      if (!canStandInXml(value)) return "XLSX, not in XML";
      std::string shown = shownByConverter(value);
      if (!shown.empty()) cells[{row, column}] = std::move(shown);
    }
  }
  demand(isDone, "a sound workbook is refused: " + problem);
  const std::string expected = fuzzing::sheetTextOf(cells);
  demand(*text == expected, "the workbook has " + *text + " and not " + expected);
  return "XLSX, " + std::to_string(cells.size()) + " cells";
}

}  // namespace

// Four choices, then the values, each a part of the input.
std::string fuzzing::writers(std::string_view bytes) {
  static const std::wstring delimiters[] = {L";", L"\t", L"|", L" <> ", L"\x042A"};
  inputReader input(bytes);
  inputTable table;
  const std::size_t format = input.below(3);
  const std::size_t page = input.below(std::size(dbfPages));
  table.delimiter = input.oneOf(delimiters);
  const std::size_t columns = 1 + input.below(6);
  const auto nextRow = [&] {
    textRow row(columns);
    for (std::wstring& value : row) value = wideText(input.part());
    return row;
  };
  table.fields = nextRow();
  while (!input.isAtEnd()) table.rows.push_back(nextRow());
  if (format == 0) return checkCsv(table);
  return format == 1 ? checkDbf(table, page) : checkXlsx(table);
}

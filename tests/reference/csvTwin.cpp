#include "tests/reference/csvTwin.h"

#include "tests/reference/textTwin.h"

namespace reference {
namespace {

std::vector<std::wstring> rebuildQuoted(const std::vector<std::wstring>& tokens, wchar_t quote,
                                        const std::wstring& delimiter) {
  std::vector<std::wstring> values;
  bool insideQuotes = false;
  for (const std::wstring& token : tokens) {
    if (token.empty()) {
      values.push_back(token);
    } else if (token.front() == quote && token.back() == quote) {
      values.push_back(token);
    } else if (insideQuotes) {
      values.back() += delimiter + token;
      if (token.back() == quote) insideQuotes = false;
    } else {
      values.push_back(token);
      if (token.front() == quote) insideQuotes = true;
    }
  }
  return values;
}

std::wstring withoutQuotes(std::wstring value, wchar_t quote) {
  if (!value.empty() && value.front() == quote) value = value.substr(1);
  if (!value.empty() && value.back() == quote) value = value.substr(0, value.size() - 1);
  return value;
}

bool isBlankRow(const std::vector<std::wstring>& row) {
  for (const std::wstring& value : row)
    if (!value.empty()) return false;
  return true;
}

}  // namespace

std::vector<std::wstring> parseLine(const std::wstring& line, const std::wstring& delimiter,
                                    const std::wstring& quote, std::size_t fieldCount) {
  std::vector<std::wstring> values = splitText(line, delimiter, false);
  const bool holdsQuote = !quote.empty() && line.find(quote) != std::wstring::npos;
  if (!holdsQuote) return values;
  if (values.size() != fieldCount) values = rebuildQuoted(values, quote.front(), delimiter);
  for (std::wstring& value : values) value = withoutQuotes(value, quote.front());
  return values;
}

testSupport::tableContent readCsv(std::string_view fileBytes,
                                  const tableRW::tableReaderOptions& options, bool headersOnly,
                                  std::vector<rejectedLine>* rejected) {
  testSupport::tableContent table;
  table.ok = true;
  textStream stream(fileBytes);
  for (std::int64_t number = 0; !stream.feof(); ++number) {
    std::wstring line;
    readTextLine(stream, options.encoding, line);
    const auto parsed = [&] {
      return parseLine(line, options.delimiter, options.quote, table.fields.size());
    };
    if (options.header_position < 0 && number == 0) {
      const std::size_t count = splitText(line, options.delimiter, false).size();
      for (std::size_t i = 0; i < count; ++i)
        table.fields.push_back(L"field_" + std::to_wstring(i));
      if (headersOnly) break;
    }
    if (number < options.header_position) continue;
    if (number == options.header_position) {
      table.fields = parsed();
      for (std::size_t i = 0; i < table.fields.size(); ++i)
        if (table.fields[i].empty()) table.fields[i] = std::to_wstring(i);
      if (headersOnly) break;
      continue;
    }
    const auto lineNumber = static_cast<std::uint64_t>(number);
    if (lineNumber < options.data_position) continue;
    std::vector<std::wstring> row = parsed();
    if (isBlankRow(row)) continue;
    if (row.size() == table.fields.size()) {
      for (std::wstring& value : row) value = trimText(value);
      table.rows.push_back(row);
    } else {
      table.errors.push_back(lineNumber);
      if (rejected != nullptr) rejected->push_back({lineNumber, row.size(), line});
    }
  }
  table.types.assign(table.fields.size(), tableRW::fldText);
  return table;
}

}  // namespace reference

#include "tools/answer.h"

#include "tools/text.h"

namespace vokTable {
namespace {

constexpr std::uint64_t shapeVersion = 1;

/// A value between quotation marks where it would not come back without them.
void appendCsvValue(std::wstring& line, const std::wstring& value) {
  const bool hasBlanks = !value.empty() && (value.front() == L' ' || value.back() == L' ');
  if (!hasBlanks && value.find_first_of(L",\"\r\n") == std::wstring::npos) {
    line += value;
    return;
  }
  line += L'"';
  for (const wchar_t unit : value) {
    if (unit == L'"') line += L'"';
    line += unit;
  }
  line += L'"';
}

/// Text that UTF-8 can hold and a terminal can show: what it cannot becomes U+FFFD. Line breaks stay in a pipe.
std::wstring showable(std::wstring_view text, destination where) {
  std::wstring out;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t begin = at;
    const char32_t character = nextCharacter(text, at);
    if (isSurrogate(character) || (where == destination::terminal && drivesTerminal(character)))
      out += static_cast<wchar_t>(replacementCharacter);
    else
      out.append(text, begin, at - begin);
  }
  return out;
}

std::uint64_t asNumber(std::wstring_view digits) {
  std::uint64_t number = 0;
  for (const wchar_t digit : digits)
    number = number * 10 + static_cast<std::uint64_t>(digit - L'0');
  return number;
}

}  // namespace

void answerWriter::begin(std::string_view command, std::string_view file) {
  if (!isJson()) return;
  json_.beginObject();
  json_.key("version");
  json_.number(shapeVersion);
  json_.key("command");
  if (command.empty())
    json_.null();
  else
    json_.string(command);
  if (file.empty()) return;
  json_.key("file");
  json_.string(file);
}

void answerWriter::table(const dataTable& table) {
  if (!isJson()) {
    drawTable({table.names, table.visitRows}, output_);
    return;
  }
  json_.key("fields");
  json_.beginArray();
  for (std::size_t field = 0; field < table.names.size(); ++field) {
    json_.beginObject();
    json_.key("name");
    json_.string(table.names[field]);
    json_.key("type");
    json_.string(std::string_view(table.isNumber[field] ? "number" : "text"));
    json_.endObject();
  }
  json_.endArray();
  json_.key("rows");
  json_.beginArray();
  table.visitRows([this](const tableRow& row) {
    json_.breakLine();
    json_.beginArray();
    for (const std::wstring& value : row) json_.string(value);
    json_.endArray();
    return json_.isOpen();
  });
  json_.breakLine();
  json_.endArray();
}

void answerWriter::records(const recordList& list) {
  if (form_ == answerForm::csv) {
    recordsAsCsv(list);
  } else if (!isJson()) {
    drawnTable drawn;
    if (list.hasTitles)
      for (const recordColumn& column : list.columns) drawn.header.push_back(toWide(column.title));
    drawn.visitRows = list.visitRows;
    drawTable(drawn, output_);
  } else {
    json_.key(list.key);
    json_.beginArray();
    list.visitRows([&](const tableRow& row) {
      recordAsJson(list, row);
      return json_.isOpen();
    });
    json_.breakLine();
    json_.endArray();
  }
}

void answerWriter::recordAsJson(const recordList& list, const tableRow& row) {
  json_.breakLine();
  json_.beginObject();
  for (std::size_t i = 0; i < list.columns.size(); ++i) {
    const recordColumn& column = list.columns[i];
    const bool isMore = column.kind == columnKind::countOrMore && row[i].starts_with(L'>');
    json_.key(column.key);
    if (column.kind == columnKind::text ||
        (column.kind == columnKind::textWhenThere && !row[i].empty()))
      json_.string(row[i]);
    else if (column.kind == columnKind::truth)
      json_.truth(row[i] == L"yes");
    else if (row[i].empty())
      json_.null();
    else
      json_.number(asNumber(std::wstring_view(row[i]).substr(isMore ? 1 : 0)));
    if (column.kind != columnKind::countOrMore) continue;
    json_.key(std::string(column.key) + "IsExact");
    json_.truth(!isMore);
  }
  json_.endObject();
}

void answerWriter::recordsAsCsv(const recordList& list) {
  std::wstring line;
  const auto write = [&](const tableRow& row) {
    line.clear();
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (i > 0) line += L',';
      appendCsvValue(line, showable(row[i], output_.where()));
    }
    output_.line(line);
    return output_.isOpen();
  };
  tableRow titles;
  for (const recordColumn& column : list.columns) titles.push_back(toWide(column.title));
  write(titles);
  list.visitRows(write);
}

void answerWriter::texts(std::string_view key, const std::vector<std::wstring>& texts) {
  if (isJson()) {
    json_.key(key);
    json_.beginArray();
    for (const std::wstring& text : texts) json_.string(text);
    json_.endArray();
    return;
  }
  for (const std::wstring& text : texts) output_.value(text);
}

void answerWriter::number(std::string_view key, std::uint64_t value) {
  if (isJson())
    note(key, value);
  else
    output_.line(std::to_wstring(value));
}

void answerWriter::text(std::string_view key, std::string_view utf8) {
  if (!isJson()) {
    output_.line(toWide(utf8));
    return;
  }
  json_.key(key);
  json_.string(utf8);
}

void answerWriter::note(std::string_view key, std::uint64_t value) {
  if (!isJson()) return;
  json_.key(key);
  json_.number(value);
}

void answerWriter::conclude(const std::vector<keptMessage>& messages, exitCode outcome) {
  if (!isJson()) return;
  json_.key("messages");
  json_.beginArray();
  for (const keptMessage& message : messages) {
    json_.breakLine();
    json_.beginObject();
    json_.key("kind");
    json_.string(message.kind);
    json_.key("text");
    json_.string(message.text);
    json_.key("details");
    json_.beginArray();
    for (const std::string& detail : message.details) json_.string(detail);
    json_.endArray();
    json_.endObject();
  }
  json_.endArray();
  json_.key("exitCode");
  json_.number(static_cast<std::uint64_t>(outcome));
  json_.endObject();
  output_.text(L"\n");
}

}  // namespace vokTable

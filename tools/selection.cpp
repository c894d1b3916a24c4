#include "tools/selection.h"

#include <fmt/core.h>

#include <algorithm>
#include <utility>

#include "tools/text.h"

namespace vokTable {
namespace {

std::string fieldsOf(const tableRW::tableReader& reader) {
  std::string list;
  for (std::size_t field = 0; field < reader.fieldCount(); ++field)
    list += (field == 0 ? "its fields are " : ", ") + inQuotes(toUtf8(reader.fieldName(field)));
  return list.empty() ? "it has no fields" : list;
}

/// Takes a list of names apart from its end: what can be taken apart behind each comma is known before.
class listParser {
 public:
  listParser(const tableRW::tableReader& reader, const std::wstring& list)
      : reader_(reader), list_(list), rest_(list.size() + 1) {}

  /// The fields in their order; nothing when the list cannot be taken apart.
  std::optional<std::vector<std::size_t>> parse() {
    for (std::size_t begin = list_.size() + 1; begin-- > 0;)
      if (begin == 0 || list_[begin - 1] == L',') rest_[begin] = best(begin);
    if (!rest_[0]) return std::nullopt;
    std::vector<std::size_t> fields;
    for (std::size_t begin = 0; begin <= list_.size(); begin = rest_[begin]->next)
      fields.push_back(rest_[begin]->field);
    return fields;
  }

 private:
  struct step {
    std::size_t field;
    std::size_t next;  // behind the comma, or what would be one at the end
  };

  std::optional<step> best(std::size_t begin) const {
    for (std::size_t end = std::min(list_.find(L',', begin), list_.size());;
         end = std::min(list_.find(L',', end + 1), list_.size())) {
      const bool isLast = end == list_.size();
      // A comma at the end is followed by one more name, an empty one.
      if (isLast || rest_[end + 1])
        if (const auto field = findField(reader_, list_.substr(begin, end - begin)))
          return step{*field, end + 1};
      if (isLast) return std::nullopt;
    }
  }

  const tableRW::tableReader& reader_;
  const std::wstring& list_;
  std::vector<std::optional<step>> rest_;
};

/// The first piece of a list that is no field's name, for a message; a list of names alone can be taken apart.
std::string firstUnknown(const tableRW::tableReader& reader, const std::wstring& list) {
  std::size_t begin = 0;
  for (;;) {
    const std::size_t end = std::min(list.find(L',', begin), list.size());
    const std::wstring name = list.substr(begin, end - begin);
    if (!findField(reader, name)) return toUtf8(name);
    begin = end + 1;
  }
}

}  // namespace

std::optional<std::size_t> findField(const tableRW::tableReader& reader, const std::wstring& name) {
  const std::int32_t field = reader.fieldNum(name);
  if (field >= 0) return static_cast<std::size_t>(field);
  const std::wstring markedName = static_cast<wchar_t>(byteOrderMark) + name;
  if (reader.fieldCount() > 0 && reader.fieldName(0) == markedName) return 0;
  return std::nullopt;
}

std::optional<std::vector<std::size_t>> findFields(const tableRW::tableReader& reader,
                                                   const std::vector<std::string>& lists,
                                                   std::string& unknown) {
  std::vector<std::size_t> all;
  for (const std::string& text : lists) {
    const std::wstring list = toWide(text);
    const auto fields = listParser(reader, list).parse();
    if (!fields) {
      unknown = firstUnknown(reader, list);
      return std::nullopt;
    }
    all.insert(all.end(), fields->begin(), fields->end());
  }
  return all;
}

std::size_t selectedTable::fieldCount() const {
  return fields_ ? fields_->size() : static_cast<std::size_t>(reader_.fieldCount());
}

void selectedTable::fieldList(std::vector<std::wstring>& out) const {
  out.clear();
  for (std::size_t field = 0; field < fieldCount(); ++field) out.push_back(fieldName(field));
}

std::optional<std::size_t> selectedTable::fieldNum(const std::wstring& name) const {
  for (std::size_t field = 0; field < fieldCount(); ++field)
    if (fieldName(field) == name) return field;
  return std::nullopt;
}

void selectedTable::getRow(std::size_t row, std::vector<std::wstring>& out) const {
  if (!fields_) {
    reader_.getRow(row, out);
    return;
  }
  out.resize(fields_->size());
  for (std::size_t field = 0; field < out.size(); ++field)
    out[field] = reader_.value((*fields_)[field], row);
}

dataTable selectedTable::shown(std::uint64_t rows) const {
  dataTable table;
  fieldList(table.names);
  for (std::size_t field = 0; field < table.names.size(); ++field)
    table.isNumber.push_back(fieldType(field) == tableRW::fldNumber);
  table.visitRows = [this, rows](const rowReceiver& receive) {
    tableRow row;
    for (std::size_t number = 0; number < std::min(rows, count()); ++number) {
      getRow(number, row);
      if (!receive(row)) return;
    }
  };
  return table;
}

exitCode explainUnknownField(std::string_view option, std::string_view text,
                             std::string_view expectation, const commandLine& request,
                             tableRW::tableReader& reader, toolContext& context) {
  context.messages.error(fmt::format("{} {}: {} of {}; {}", option, inQuotes(text), expectation,
                                     request.reading.file, fieldsOf(reader)));
  concludeReading(reader, request.reading, context);  // the hints may tell why
  return exitCode::usage;
}

std::optional<selectedTable> selectTable(const commandLine& request, tableRW::tableReader& reader,
                                         toolContext& context) {
  if (request.selected.empty()) return selectedTable(reader);
  std::string unknown;
  auto fields = findFields(reader, request.selected, unknown);
  if (fields) return selectedTable(reader, std::move(*fields));
  explainUnknownField("--select", unknown, "this is no field", request, reader, context);
  return std::nullopt;
}

}  // namespace vokTable

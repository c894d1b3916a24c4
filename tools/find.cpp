// The command find: the values of one field in the rows that have wanted values in other fields.
#include <fmt/format.h>

#include <optional>
#include <string>
#include <vector>

#include "tools/commands.h"
#include "tools/text.h"

namespace vokTable {
namespace {

using condition = tableRW::tableReader::indexCondition;

/// Index of the field that the user means. A byte-order mark before the first field's name, which
/// nobody can type, may be left out.
std::optional<std::size_t> findField(const tableRW::tableReader& reader, const std::wstring& name) {
  const std::int32_t field = reader.fieldNum(name);
  if (field >= 0) return static_cast<std::size_t>(field);
  const std::wstring markedName = static_cast<wchar_t>(byteOrderMark) + name;
  if (reader.fieldCount() > 0 && reader.fieldName(0) == markedName) return 0;
  return std::nullopt;
}

/// A condition as the user wrote it, FIELD=VALUE. A name may hold the sign too: the first one that
/// has a field's name before it counts.
std::optional<condition> parseCondition(const tableRW::tableReader& reader,
                                        const std::wstring& text) {
  for (std::size_t sign = text.find(L'='); sign != std::wstring::npos;
       sign = text.find(L'=', sign + 1)) {
    const auto field = findField(reader, text.substr(0, sign));
    if (field) return condition(*field, text.substr(sign + 1));
  }
  return std::nullopt;
}

std::string fieldsOf(const tableRW::tableReader& reader) {
  std::string list;
  for (std::size_t field = 0; field < reader.fieldCount(); ++field) {
    if (field > 0) list += ", ";
    list += inQuotes(toUtf8(reader.fieldName(field)));
  }
  return list;
}

}  // namespace

exitCode findValues(const commandLine& request, toolContext& context) {
  readerPointer reader;
  const exitCode opened = openSource(request.reading, context, reader);
  if (!reader) return opened;
  if (!readSource(*reader, {}, request.reading, context)) return exitCode::cannotOpen;

  const auto refuse = [&](std::string_view option, const std::string& text,
                          std::string_view expectation) {
    context.messages.error(fmt::format("{} {}: {} of {}; its fields are {}", option, inQuotes(text),
                                       expectation, request.reading.file, fieldsOf(*reader)));
    concludeReading(*reader, request.reading, context);  // the hints may tell why
    return exitCode::usage;
  };
  std::vector<condition> conditions;
  for (const std::string& text : request.conditions) {
    const auto parsed = parseCondition(*reader, toWide(text));
    if (!parsed) return refuse("--where", text, "this is not FIELD=VALUE with a field");
    conditions.push_back(*parsed);
  }
  const auto shown = findField(*reader, toWide(request.shownField));
  if (!shown) return refuse("--show", request.shownField, "this is no field");

  std::vector<std::wstring> values;
  reader->searchValue(reader->fieldName(*shown), conditions, values);
  for (const std::wstring& value : values) {
    if (!context.output.isOpen()) break;
    context.output.value(value);
  }
  return concludeReading(*reader, request.reading, context);
}

}  // namespace vokTable

// The command find: one field, or some, of the rows that have wanted values in other fields.
#include <fmt/core.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "tools/commands.h"
#include "tools/selection.h"
#include "tools/text.h"

namespace vokTable {
namespace {

using condition = tableRW::tableReader::indexCondition;

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

/// Hands over the rows that have every wanted value.
void visitFound(const tableRW::tableReader& reader, const selectedTable& table,
                const std::vector<condition>& conditions, const rowReceiver& receive) {
  tableRow row;
  for (std::size_t number = 0; number < reader.count(); ++number) {
    const bool isFound =
        std::all_of(conditions.begin(), conditions.end(), [&](const condition& wanted) {
          return reader.value(wanted.first, number) == wanted.second;
        });
    if (!isFound) continue;
    table.getRow(number, row);
    if (!receive(row)) return;
  }
}

/// @param isList  one field, a value a line, instead of a table
void showFound(const tableRW::tableReader& reader, const selectedTable& table,
               const std::vector<condition>& conditions, bool isList, toolContext& context) {
  dataTable found = table.shown(0);
  found.visitRows = [&](const rowReceiver& receive) {
    visitFound(reader, table, conditions, receive);
  };
  if (!isList || context.answer.isJson()) {
    context.answer.table(found);
    return;
  }
  found.visitRows([&context](const tableRow& row) {
    context.output.value(row.front());
    return context.output.isOpen();
  });
}

}  // namespace

exitCode findValues(const commandLine& request, toolContext& context) {
  if (request.shownField.has_value() != request.selected.empty()) {
    context.messages.error(
        "name the fields to print, either one with --show FIELD or some with --select "
        "FIELD[,FIELD...]");
    return exitCode::usage;
  }
  readerPointer reader;
  const exitCode opened = openSource(request.reading, context, reader);
  if (!reader) return opened;
  if (!readSource(*reader, {}, request.reading, context)) return exitCode::cannotOpen;

  std::vector<condition> conditions;
  for (const std::string& text : request.conditions) {
    const auto parsed = parseCondition(*reader, toWide(text));
    if (!parsed)
      return explainUnknownField("--where", text, "this is not FIELD=VALUE with a field", request,
                                 *reader, context);
    conditions.push_back(*parsed);
  }
  if (request.shownField) {
    const auto shown = findField(*reader, toWide(*request.shownField));
    if (!shown)
      return explainUnknownField("--show", *request.shownField, "this is no field", request,
                                 *reader, context);
    showFound(*reader, selectedTable(*reader, {*shown}), conditions, true, context);
  } else {
    const auto table = selectTable(request, *reader, context);
    if (!table) return exitCode::usage;
    showFound(*reader, *table, conditions, false, context);
  }
  return concludeReading(*reader, request.reading, context);
}

}  // namespace vokTable

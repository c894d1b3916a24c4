// The command convert: one table to a file, or all tables of a source to the files of a folder; and the lines that
// were rejected to a file of their own.
#include <fmt/core.h>

#include <optional>
#include <string>
#include <vector>

#include "tools/allTables.h"
#include "tools/commands.h"
#include "tools/conversion.h"
#include "tools/rejects.h"
#include "tools/text.h"

namespace vokTable {
namespace {

/// What --select asks for, unless it asks for a field twice: names of a target are not given twice.
std::optional<selectedTable> selectForTarget(const commandLine& request,
                                             tableRW::tableReader& reader, toolContext& context) {
  auto table = selectTable(request, reader, context);
  if (!table || request.selected.empty()) return table;
  for (std::size_t field = 0; field < table->fieldCount(); ++field) {
    const std::wstring name = table->fieldName(field);
    if (table->fieldNum(name) == field) continue;
    context.messages.error(fmt::format(
        "--select names {} twice, and a target holds a field once: leave one of them out",
        inQuotes(toUtf8(name))));
    return std::nullopt;
  }
  return table;
}

}  // namespace

exitCode convertTable(const commandLine& request, toolContext& context) {
  if (request.allTables) return convertAllTables(request, context);
  if (request.targetFormat) {
    context.messages.error(
        "--to is for --all-tables: otherwise the target's extension names the format");
    return exitCode::usage;
  }
  readerPointer reader;
  const exitCode opened = openSource(request.reading, context, reader);
  if (!reader) return opened;
  const exitCode checked = checkTarget(request, context.messages);
  if (checked != exitCode::clean) return checked;
  const exitCode checkedRejects = checkRejects(request, *reader, context.messages);
  if (checkedRejects != exitCode::clean) return checkedRejects;
  if (!readSource(*reader, {}, request.reading, context)) return exitCode::cannotOpen;
  if (reader->fieldCount() == 0) {
    context.messages.error(
        fmt::format("{} holds no fields: there is nothing to write", request.reading.file));
    return exitCode::cannotOpen;
  }
  const auto table = selectForTarget(request, *reader, context);
  if (!table) return exitCode::usage;
  rejectsFile rejects(request, *reader, context.messages);
  conversionResult written{rejects.prepare(), 0, false};
  if (written.outcome == exitCode::clean) written = writeTable(request, *table, context.messages);
  exitCode outcome = written.outcome;
  if (isWritten(outcome)) outcome = worse(outcome, rejects.finish());
  if (context.answer.isJson())
    context.answer.records(conversionReport({reportRow(request, *reader, written)}));
  return worse(outcome, concludeReading(*reader, request.reading, context));
}

}  // namespace vokTable

// The commands that show what a source holds.
#include "tools/commands.h"

#include <fmt/core.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <string>

#include "tools/formats.h"
#include "tools/selection.h"
#include "tools/text.h"
#include "tools/version.h"

namespace vokTable {
namespace {

exitCode showRows(const commandLine& request, extent wanted, std::uint64_t rows,
                  toolContext& context) {
  readerPointer reader;
  const exitCode opened = openSource(request.reading, context, reader);
  if (!reader) return opened;
  if (!readSource(*reader, wanted, request.reading, context)) return exitCode::cannotOpen;
  const auto table = selectTable(request, *reader, context);
  if (!table) return exitCode::usage;
  context.answer.table(table->shown(rows));
  return concludeReading(*reader, request.reading, context);
}

/// WHY not the fields alone of a sheet whose header row is named: the library answers with its first row when it has
/// none, and with a field of its own making when the row lies behind the sheet's end.
extent extentForFields(const readingArguments& arguments, tableRW::tableReader& reader) {
  const tableRW::capability_options offered = reader.get_capabilities();
  const bool isSheet = offered.offersTables && offered.offersPositions;
  return extent{isSheet && arguments.headerRow ? 1 : extent::fieldsOnly};
}

}  // namespace

exitCode listTables(const commandLine& request, toolContext& context) {
  readerPointer reader;
  const exitCode opened = openSource(request.reading, context, reader);
  if (!reader) return opened;
  std::vector<std::wstring> tables;
  if (!listSourceTables(*reader, request.reading, context, tables)) return exitCode::cannotOpen;
  context.answer.texts("tables", tables);
  return exitCode::clean;
}

exitCode listFields(const commandLine& request, toolContext& context) {
  readerPointer reader;
  const exitCode opened = openSource(request.reading, context, reader);
  if (!reader) return opened;
  const extent wanted = extentForFields(request.reading, *reader);
  if (!readSource(*reader, wanted, request.reading, context)) return exitCode::cannotOpen;
  recordList list{
      "fields", {{"name", "name"}, {"type", "type"}},
       {                },
       false
  };
  list.visitRows = [&reader](const rowReceiver& receive) {
    for (std::size_t field = 0; field < reader->fieldCount(); ++field) {
      const bool isNumber = reader->fieldType(field) == tableRW::fldNumber;
      if (!receive({reader->fieldName(field), isNumber ? L"number" : L"text"})) return;
    }
  };
  context.answer.records(list);
  return concludeReading(*reader, request.reading, context, listing::elsewhere, coverage::fields);
}

exitCode showFirstRows(const commandLine& request, toolContext& context) {
  const std::string written = request.rows.value_or("10");
  const auto rows = parseCount(written);
  if (!rows) {
    context.messages.error(
        fmt::format("-n {} is no number of rows: give it in digits", inQuotes(written)));
    return exitCode::usage;
  }
  // Where the library heeds the number of rows, it is at least 1, so that a source is really read.
  constexpr std::uint64_t most = std::numeric_limits<int>::max();
  const auto limit = std::clamp<std::uint64_t>(*rows, 1, most);
  return showRows(request, extent{static_cast<int>(limit)}, *rows, context);
}

exitCode showAllRows(const commandLine& request, toolContext& context) {
  return showRows(request, {}, std::numeric_limits<std::uint64_t>::max(), context);
}

exitCode countRows(const commandLine& request, toolContext& context) {
  readerPointer reader;
  const exitCode opened = openSource(request.reading, context, reader);
  if (!reader) return opened;
  if (!readSource(*reader, {}, request.reading, context)) return exitCode::cannotOpen;
  context.answer.number("count", reader->count());
  return concludeReading(*reader, request.reading, context);
}

exitCode listFormats(const commandLine&, toolContext& context) {
  context.answer.records({
      "formats",
      {{"format", "name"},
        {"type", "type"},
        {"extensions", "extensions"},
        {"read", "read", columnKind::truth},
        {"write", "write", columnKind::truth}},
      visitFormats
  });
  return exitCode::clean;
}

exitCode showVersion(const commandLine&, toolContext& context) {
  context.answer.text("program", versionText);
  return exitCode::clean;
}

}  // namespace vokTable

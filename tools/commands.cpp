// The commands that show what a source holds.
#include "tools/commands.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <string>

#include "platform/files.h"
#include "tools/formats.h"
#include "tools/tableDrawing.h"
#include "tools/text.h"

namespace vokTable {
namespace {

/// The first rows of a table that was read, with its field names as the header.
drawnTable tableOf(const tableRW::tableReader& reader, std::uint64_t rows) {
  drawnTable table;
  reader.fieldList(table.header);
  table.visitRows = [&reader, rows](const rowReceiver& receive) {
    tableRow row;
    for (std::size_t number = 0; number < std::min(rows, reader.count()); ++number) {
      reader.getRow(number, row);
      if (!receive(row)) return;
    }
  };
  return table;
}

exitCode showRows(const commandLine& request, extent wanted, std::uint64_t rows,
                  toolContext& context) {
  readerPointer reader;
  const exitCode opened = openSource(request.reading, context, reader);
  if (!reader) return opened;
  if (!readSource(*reader, wanted, request.reading, context)) return exitCode::cannotOpen;
  drawTable(tableOf(*reader, rows), context.output);
  return concludeReading(*reader, request.reading, context);
}

}  // namespace

namespace {

/// Whether a source without tables is a source at all. An SQLite file is opened before anybody looks into it, so
/// only a query tells: it answers even for a table that is not there.
bool isReadable(tableRW::tableReader& reader, const readingArguments& arguments) {
  const auto type = findFileType(arguments.type.value_or("auto"));
  if (type && isSqliteDatabase(*type, reader.path())) return reader.readOnlyHeaders();
  return reader.isOK();
}

}  // namespace

exitCode listTables(const commandLine& request, toolContext& context) {
  readerPointer reader;
  const exitCode opened = openSource(request.reading, context, reader);
  if (!reader) return opened;
  std::vector<std::wstring> tables;
  reader->tableList(tables);
  if (tables.empty() && !isReadable(*reader, request.reading)) {
    explainFailure(*reader, request.reading, context);
    return exitCode::cannotOpen;
  }
  for (const std::wstring& table : tables) context.output.value(table);
  return exitCode::clean;
}

exitCode listFields(const commandLine& request, toolContext& context) {
  readerPointer reader;
  const exitCode opened = openSource(request.reading, context, reader);
  if (!reader) return opened;
  const extent wanted{extent::fieldsOnly};
  if (!readSource(*reader, wanted, request.reading, context)) return exitCode::cannotOpen;
  drawnTable table;
  table.visitRows = [&reader](const rowReceiver& receive) {
    for (std::size_t field = 0; field < reader->fieldCount(); ++field) {
      const bool isNumber = reader->fieldType(field) == tableRW::fldNumber;
      if (!receive({reader->fieldName(field), isNumber ? L"number" : L"text"})) return;
    }
  };
  drawTable(table, context.output);
  return concludeReading(*reader, request.reading, context);
}

exitCode showFirstRows(const commandLine& request, toolContext& context) {
  const auto rows = parseCount(request.rows);
  if (!rows) {
    context.messages.error(
        fmt::format("-n {} is no number of rows: give it in digits", inQuotes(request.rows)));
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
  context.output.line(std::to_wstring(reader->count()));
  return concludeReading(*reader, request.reading, context);
}

exitCode listRejectedLines(const commandLine& request, toolContext& context) {
  readerPointer reader;
  const exitCode opened = openSource(request.reading, context, reader);
  if (!reader) return opened;
  if (platform::isPipeOrDevice(reader->path())) {
    context.messages.error(fmt::format(
        "{} can be read only once, and listing its rejected lines takes two: save it to a file",
        request.reading.file));
    return exitCode::cannotOpen;
  }
  if (!readSource(*reader, {}, request.reading, context)) return exitCode::cannotOpen;
  drawnTable table;
  table.header = {L"line", L"expected", L"found", L"text"};
  table.visitRows = [&reader](const rowReceiver& receive) {
    if (reader->errorCount() == 0) return;
    const std::wstring expected = std::to_wstring(reader->fieldCount());
    reader->rejectedRecords([&](const tableRW::rejectedRecord& record) {
      return receive({std::to_wstring(record.line + 1), expected,
                      std::to_wstring(record.valueCount), record.text});
    });
  };
  drawTable(table, context.output);
  const exitCode outcome = concludeReading(*reader, request.reading, context, listing::here);
  const auto type = findFileType(request.reading.type.value_or("auto"));
  if (isDelimitedText(*type, reader->path())) warnOfSpecialBytes(reader->path(), context.messages);
  return outcome;
}

}  // namespace vokTable

#include "tools/allTables.h"

#include <fmt/core.h>

#include <algorithm>
#include <optional>
#include <string_view>

#include "platform/files.h"
#include "tools/formats.h"
#include "tools/tableFileNames.h"
#include "tools/text.h"

namespace vokTable {
namespace {

/// What is wrong with the options; nothing when all is well.
std::optional<std::string> optionProblem(const commandLine& request, const std::string& format) {
  if (request.target.empty()) return "the name of the target folder is empty";
  const std::vector<std::string> formats = targetFormatNames();
  if (std::find(formats.begin(), formats.end(), format) == formats.end()) {
    std::string names;
    for (const std::string& name : formats) names += (names.empty() ? "" : ", ") + name;
    return fmt::format("--to {} is no format of a target: the formats are {}", inQuotes(format),
                       names);
  }
  const auto refused = [](std::string_view option) {
    return fmt::format("{} is for one table: leave it out, or leave out --all-tables", option);
  };
  if (request.reading.table) return refused("--table");
  if (!request.selected.empty()) return refused("--select");
  if (request.targetFields) return refused("--fields");
  if (request.rejects) return refused("--rejects");
  return std::nullopt;
}

/// The tables by their names; that of a source without a choice of tables, which has one, bears its file's.
std::vector<std::wstring> namesForFiles(tableRW::tableReader& reader,
                                        std::vector<std::wstring> tables) {
  if (reader.get_capabilities().offersTables) return tables;
  const std::wstring path = reader.path();
  const std::wstring name = path.substr(path.find_last_of(L"/\\") + 1);
  tables.front() = name.substr(0, name.rfind(L'.'));
  return tables;
}

/// One request for each table: as if it were asked for alone.
std::vector<commandLine> requestsFor(const commandLine& request, const std::string& format,
                                     tableRW::tableReader& reader,
                                     const std::vector<std::wstring>& tables) {
  const std::vector<std::wstring> names = fileNamesOf(namesForFiles(reader, tables));
  const bool hasEnd = request.target.ends_with('/') || request.target.ends_with('\\');
  std::vector<commandLine> requests;
  for (std::size_t i = 0; i < tables.size(); ++i) {
    requests.push_back(request);
    requests.back().target += fmt::format("{}{}.{}", hasEnd ? "" : "/", toUtf8(names[i]), format);
    requests.back().reading.table = toUtf8(tables[i]);
  }
  return requests;
}

/// Makes the folder when it is missing. @return false, explained, when it cannot be one
bool openFolder(const std::string& name, bool& isMade, const messageWriter& messages) {
  const std::wstring path = toWide(name);
  if (platform::folderExists(path)) return true;
  if (platform::fileExists(path)) {
    messages.error(
        fmt::format("{} is a file: name a folder, in which every table gets its own file", name));
    return false;
  }
  isMade = platform::createFolder(path);
  if (!isMade)
    messages.error(fmt::format(
        "cannot create the folder {}: check that the one around it exists and may be written to",
        name));
  return isMade;
}

/// Reads and writes one table. @return its row of the report
tableRow convertOne(const commandLine& request, tableRW::tableReader& reader, toolContext& context,
                    conversionResult& result) {
  reader.setTable(toWide(*request.reading.table));
  tableRow failed{toWide(*request.reading.table),
                  toWide(request.target),
                  L"",
                  L"",
                  L"",
                  std::to_wstring(static_cast<int>(exitCode::cannotOpen))};
  result = {exitCode::cannotOpen, 0, false};
  if (!readSource(reader, {}, request.reading, context)) return failed;
  if (reader.fieldCount() == 0) {
    context.messages.warning(
        fmt::format("table {} of {} holds no fields: there is nothing to write",
                    inQuotes(*request.reading.table), request.reading.file));
    return failed;
  }
  result = writeTable(request, selectedTable(reader), context.messages);
  tableRow row = reportRow(request, reader, result);
  result.outcome = worse(result.outcome, concludeReading(reader, request.reading, context));
  row.back() = std::to_wstring(static_cast<int>(result.outcome));
  return row;
}

}  // namespace

recordList conversionReport(const std::vector<tableRow>& rows) {
  recordList list;
  list.key = "tables";
  list.columns = {
      {"table",    "table",    columnKind::text  },
      {"file",     "target",   columnKind::text  },
      {"rows",     "rows",     columnKind::number},
      {"rejected", "rejected", columnKind::number},
      {"changed",  "changed",  columnKind::number},
      {"code",     "exitCode", columnKind::number},
  };
  list.visitRows = [&rows](const rowReceiver& receive) {
    for (const tableRow& row : rows)
      if (!receive(row)) return;
  };
  return list;
}

tableRow reportRow(const commandLine& request, const tableRW::tableReader& reader,
                   const conversionResult& result) {
  const exitCode read = reader.errorCount() > 0 ? exitCode::rejected : exitCode::clean;
  return {toWide(request.reading.table.value_or("")),
          toWide(request.target),
          std::to_wstring(reader.count()),
          std::to_wstring(reader.errorCount()),
          std::to_wstring(result.lossCount),
          std::to_wstring(static_cast<int>(worse(result.outcome, read)))};
}

exitCode convertAllTables(const commandLine& request, toolContext& context) {
  const std::string format = request.targetFormat.value_or("csv");
  if (const auto problem = optionProblem(request, format)) {
    context.messages.error(*problem);
    return exitCode::usage;
  }
  readerPointer reader;
  const exitCode opened = openSource(request.reading, context, reader);
  if (!reader) return opened;
  std::vector<std::wstring> tables;
  if (!listSourceTables(*reader, request.reading, context, tables)) return exitCode::cannotOpen;
  if (tables.empty()) {
    context.messages.error(
        fmt::format("{} holds no tables: there is nothing to write", request.reading.file));
    return exitCode::cannotOpen;
  }
  const std::vector<commandLine> requests = requestsFor(request, format, *reader, tables);
  for (const commandLine& each : requests) {
    const exitCode checked = checkTarget(each, context.messages);
    if (checked != exitCode::clean) return checked;
  }
  bool isMade = false;
  if (!openFolder(request.target, isMade, context.messages)) return exitCode::writeFailed;
  exitCode outcome = exitCode::clean;
  std::vector<tableRow> rows;
  for (const commandLine& each : requests) {
    conversionResult result;
    rows.push_back(convertOne(each, *reader, context, result));
    outcome = worse(outcome, result.outcome);
    if (result.isInterrupted) break;
  }
  context.answer.records(conversionReport(rows));
  // A folder that was made for nothing goes again; one that holds a file stays.
  if (isMade) platform::removeFolder(toWide(request.target));
  return outcome;
}

}  // namespace vokTable

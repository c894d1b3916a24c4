// The command `doctor`: what this machine has for reading tables, what is missing, and for a file how far
// it gets.
#include <fmt/core.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/codePages.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "tools/commands.h"
#include "tools/formats.h"
#include "tools/odbcSources.h"
#include "tools/text.h"
#include "tools/workbookReading.h"

namespace vokTable {
namespace {

class report {
 public:
  void add(std::string_view what, const std::string& found) {
    rows_.push_back({toWide(what), toWide(found)});
  }
  void write(answerWriter& answer) const {
    answer.records({
        "findings", {{"what", "what"},                       {"found", "found"}},
         [this](const rowReceiver& receive) {
          for (const tableRow& row : rows_)
            if (!receive(row)) return;
                     }
    });
  }

 private:
  std::vector<tableRow> rows_;
};

void addAll(report& lines, std::string_view what, const std::vector<std::string>& names) {
  if (names.empty()) lines.add(what, "none");
  for (const std::string& name : names) lines.add(what, name);
}

void addLocale(report& lines) {
  for (const wchar_t* const name : {L"LC_ALL", L"LC_CTYPE", L"LANG"}) {
    const auto value = platform::environmentVariable(name);
    if (!value || value->empty()) continue;
    lines.add("locale", toUtf8(name) + "=" + toUtf8(*value));
    return;
  }
  lines.add("locale", "none is set");
}

void addConverter(report& lines) {
  const std::wstring path = converterPath();
  const bool isThere = platform::fileExists(path);
  lines.add("converter", toUtf8(path) + (isThere ? "" : " is missing"));
  lines.add("spreadsheets by converter (.xls, .xlsx, .xlsm)",
            isThere ? "ready" : "put vok_xls2csv.exe there, which comes with this program");
}

void addKind(report& lines, std::string_view what, odbcKind kind, const odbcMachine& machine) {
  const std::vector<std::string> ways = waysFor(kind, machine);
  lines.add(what, ways.empty() ? needsOf(kind, machine) : "ready: " + ways.front());
}

void addMachine(report& lines, const odbcMachine& machine) {
  lines.add("ODBC driver manager", machine.manager.empty() ? "does not work" : machine.manager);
  addAll(lines, "ODBC driver", machine.drivers);
  addAll(lines, "ODBC data source", machine.dataSources);
  lines.add("system code page",
            std::to_string(platform::resolveCodePage(platform::systemCodePage)));
  addLocale(lines);
  addConverter(lines);
  addKind(lines, "spreadsheets by ODBC (.xls, .xlsx)", odbcKind::excel, machine);
  addKind(lines, "Access databases (.mdb, .accdb)", odbcKind::access, machine);
  addKind(lines, "drill-hole databases (.dhdb)", odbcKind::drillHoles, machine);
  lines.add("delimited text, DBF, SQLite", "ready: they need nothing more");
}

// What a table in the code page of some system lacks, and what of it cannot be decoded, shows when it is read.
exitCode readThrough(const readingArguments& reading, tableRW::tableReader& reader,
                     toolContext& context) {
  if (!readSource(reader, {}, reading, context)) return exitCode::cannotOpen;
  return concludeReading(reader, reading, context);
}

// How far a source gets; what stops it is explained on standard error.
exitCode examine(const readingArguments& reading, report& lines, toolContext& context,
                 const odbcMachine& machine) {
  std::string problem;
  const auto options = makeReaderOptions(reading, problem);
  const odbcKind kind = options ? odbcKindOf(*options) : odbcKind::none;
  if (kind != odbcKind::none && platform::fileExists(options->path))
    for (const odbcAttempt& made : tryToReach(*options, kind, machine))
      lines.add("connecting by " + made.name, made.connected ? "works" : made.message);
  readerPointer reader;
  const exitCode opened = openSource(reading, context, reader);
  if (!reader) return opened;
  std::vector<std::wstring> tables;
  const workbookReading converted(reading, reader->path());
  reader->tableList(tables);
  for (const std::wstring& table : tables) lines.add("table", toUtf8(table));
  // There are options: the reader was opened with them.
  const std::int32_t type = fileTypeOf(options->file_type, options->path);
  if (type == tableRW::fileTypeDbf || type == tableRW::fileTypeMicromineData)
    return readThrough(reading, *reader, context);
  if (!tables.empty() && reader->isWhole()) return exitCode::clean;
  context.messages.error(
      fmt::format("{} holds no table that can be listed; check that the file is "
                  "whole and of the kind that its name says",
                  reading.file));
  return exitCode::cannotOpen;
}

}  // namespace

exitCode examineMachine(const commandLine& request, toolContext& context) {
  report lines;
  const odbcMachine machine = lookAtMachine();
  addMachine(lines, machine);
  const exitCode outcome = request.reading.file.empty()
                               ? exitCode::clean
                               : examine(request.reading, lines, context, machine);
  lines.write(context.answer);
  return outcome;
}

}  // namespace vokTable

#include "tools/commandTable.h"

#include <algorithm>

#include "tools/commands.h"
#include "tools/formats.h"

namespace vokTable {
namespace {

// The rows of these tables are read better as they stand.
// clang-format off

// --- words without an option ---
constexpr optionEntry file{"FILE", "", "The file to read", &readingArguments::file, valueKind::file, true};
constexpr optionEntry fileToTry{"FILE", "", "A file to try", &readingArguments::file, valueKind::file};
constexpr optionEntry target{"TARGET", "", "The file to write, or with --all-tables the folder", &commandLine::target,
                             valueKind::file, true};
constexpr optionEntry shell{"SHELL", "", "Which shell", &commandLine::shell, valueKind::shell, true};

// --- options of all commands that read ---
constexpr optionEntry reading[] = {
    {"--type", "TYPE", "Format, by name or number", &readingArguments::type, valueKind::fileType},
    {"--encoding", "NAME", "Encoding of text: CP1251, CP866...; UTF-8 when not given", &readingArguments::encoding,
     valueKind::encoding},
    {"--delimiter", "TEXT", "What separates values, tab for TAB; ';' when not given", &readingArguments::delimiter,
     valueKind::text},
    {"--quote", "TEXT", "What encloses values, \"\" for nothing; '\"' when not given", &readingArguments::quote,
     valueKind::text},
    {"--header-row", "LINE", "Line of the field names, from 1, or none; 1 when not given", &readingArguments::headerRow,
     valueKind::text},
    {"--data-row", "LINE", "First line of data; the line after the header when not given", &readingArguments::dataRow,
     valueKind::text},
    {"--table", "NAME", "Table or sheet, where the file holds several", &readingArguments::table, valueKind::text},
    {"--system-encoding", "NAME", "Code page to use as the system's own: the text of DBF files is in it",
     &readingArguments::systemEncoding, valueKind::encoding},
};
constexpr const optionEntry& type = reading[0];

// --- options of single commands ---
constexpr optionEntry json{"--json", "", "One JSON document, messages included (docs/tool_json.md)", &commandLine::json,
                           valueKind::text};
constexpr optionEntry csv{"--csv", "", "Comma-separated values, quoted where it is needed", &commandLine::csv,
                          valueKind::text};
constexpr optionEntry rows{"-n,--rows", "N", "How many rows; 10 when not given", &commandLine::rows, valueKind::text};
constexpr optionEntry select{"--select", "FIELD[,FIELD...]", "These fields alone, in this order; may be repeated",
                             &commandLine::selected, valueKind::text};
constexpr optionEntry where{"--where", "FIELD=VALUE", "A value that a field has, exactly; may be repeated",
                            &commandLine::conditions, valueKind::text, true};
constexpr optionEntry show{"--show", "FIELD", "The field to print, a value a line; or --select for a table",
                           &commandLine::shownField, valueKind::text};
constexpr optionEntry force{"--force", "", "Replace files that exist", &commandLine::force, valueKind::text};
constexpr optionEntry strict{"--strict", "", "Write nothing when the target cannot hold all values", &commandLine::strict,
                             valueKind::text};
constexpr optionEntry outputDelimiter{"--output-delimiter", "TEXT",
                                      "What separates values in delimited text; ';' when not given", &commandLine::targetDelimiter,
                                      valueKind::text};
constexpr optionEntry fields{"--fields", "FIELD=TYPE,...",
                             "Types of a DBF file: C20, N10.2, D; chosen from the data when not given",
                             &commandLine::targetFields, valueKind::text};
constexpr optionEntry rejects{"--rejects", "FILE", "Keep the rejected lines in this file, byte by byte",
                              &commandLine::rejects, valueKind::file};
constexpr optionEntry allTables{"--all-tables", "", "Write every table, each as a file of its own in the folder TARGET",
                                &commandLine::allTables, valueKind::text};
constexpr optionEntry to{"--to", "FORMAT", "Format of the files of --all-tables; csv when not given",
                         &commandLine::targetFormat, valueKind::targetFormat};
// clang-format on

using optionList = std::vector<const optionEntry*>;

/// The options of a command that reads: its own, then those of all.
optionList readingWith(optionList own) {
  own.push_back(&json);
  for (const optionEntry& each : reading) own.push_back(&each);
  return own;
}

// clang-format off
std::vector<commandEntry> makeCommands() {
  return {
      {"tables", "List the tables of a file", listTables, {&file}, readingWith({})},
      {"fields", "List the fields and their types, text or number", listFields, {&file}, readingWith({})},
      {"head", "Show the first rows", showFirstRows, {&file}, readingWith({&rows, &select})},
      {"cat", "Show all rows", showAllRows, {&file}, readingWith({&select})},
      {"count", "Print the number of rows", countRows, {&file}, readingWith({})},
      {"stats", "Count the values of each field, and tell their lengths and range", showStatistics, {&file}, readingWith({})},
      {"errors", "List the lines that were rejected, and why", listRejectedLines, {&file}, readingWith({&csv})},
      {"find", "Print fields of the rows with given values", findValues, {&file},
       readingWith({&where, &show, &select})},
      {"convert", "Write the table in the format of the target's extension", convertTable, {&file, &target},
       readingWith({&select, &force, &strict, &outputDelimiter, &fields, &rejects, &allTables, &to})},
      {"doctor", "Tell what this machine has for reading tables, and what a file lacks", examineMachine, {&fileToTry},
       {&type, &json}},
      {"formats", "List the formats, and what this version does with each", listFormats, {}, {&json}},
      {"completion", "Print a script that completes commands and options in a shell", printCompletion, {&shell}, {}},
      {"version", "Print the version", showVersion, {}, {&json}},
      {"manual", "Print the manual page, in roff", printManual, {}, {}, true},
  };
}

constexpr exitCodeEntry exitCodes[] = {
    {exitCode::clean, "clean"},
    {exitCode::rejected, "done, but lines were rejected or values cannot be held by the target"},
    {exitCode::usage, "wrong usage"},
    {exitCode::cannotOpen, "the source cannot be opened"},
    {exitCode::notAvailable, "the format or its driver is not available"},
    {exitCode::writeFailed, "writing failed"},
};

constexpr exampleEntry examples[] = {
    {"vok_table head wells.csv --encoding CP1251", "The first rows of a Cyrillic table"},
    {"vok_table errors wells.csv --csv", "The lines that were rejected, for a spreadsheet"},
    {"vok_table find wells.csv --where AREA=North --select WELL,DEPTH", "Two fields of the rows that fit"},
    {"vok_table stats assays.txt --delimiter tab", "Which values the fields hold"},
    {"vok_table convert wells.csv wells.xlsx --rejects bad.csv", "A workbook, and the rejected lines in a file"},
    {"vok_table convert project.well2 folder --all-tables --to xlsx", "Every table as a workbook of its own"},
};
// clang-format on

}  // namespace

std::span<const commandEntry> allCommands() {
  static const std::vector<commandEntry> commands = makeCommands();
  return commands;
}

const commandEntry& commandNamed(std::string_view name) {
  const auto commands = allCommands();
  return *std::find_if(commands.begin(), commands.end(),
                       [name](const commandEntry& each) { return each.name == name; });
}

std::span<const exitCodeEntry> exitCodeTexts() { return exitCodes; }
std::span<const exampleEntry> exampleLines() { return examples; }

std::vector<std::string> listedValues(valueKind kind) {
  switch (kind) {
    case valueKind::fileType:
      return fileTypeList();
    case valueKind::encoding:
      return encodingNames();
    case valueKind::targetFormat:
      return targetFormatNames();
    case valueKind::shell:
      return shellNames();
    case valueKind::text:
    case valueKind::file:
      break;
  }
  return {};
}

std::string fullText(const optionEntry& option) {
  std::string text(option.text);
  if (option.kind == valueKind::encoding)
    return text;  // nineteen names; the message of a wrong one lists them
  const std::vector<std::string> values = listedValues(option.kind);
  for (std::size_t i = 0; i < values.size(); ++i) text += (i == 0 ? ": " : ", ") + values[i];
  return text;
}

std::vector<std::string> namesOf(const optionEntry& option) {
  std::vector<std::string> names;
  std::string_view rest = option.names;
  while (!rest.empty()) {
    const std::size_t comma = std::min(rest.find(','), rest.size());
    names.emplace_back(rest.substr(0, comma));
    rest.remove_prefix(std::min(comma + 1, rest.size()));
  }
  return names;
}

}  // namespace vokTable

#include "tools/commandLine.h"

#include <CLI/CLI.hpp>

#include "tools/formats.h"
#include "tools/text.h"
#include "tools/version.h"

namespace vokTable {
namespace {

constexpr const char* description =
    "Reads tables of wells, samples and surveys from many formats, shows them and converts them.";

constexpr const char* footer =
    "Data go to standard output as UTF-8, messages to standard error. Into a pipe or a file, "
    "tables are\n"
    "text with TABs between the values.\n"
    "\n"
    "Exit codes: 0 clean; 1 done, but lines were rejected or values cannot be held by the target;\n"
    "2 wrong usage; 3 the source cannot be opened; 4 the format or its driver is not available;\n"
    "5 writing failed.";

void addOption(CLI::App& command, const char* name, std::optional<std::string>& value,
               const char* valueName, const std::string& text) {
  command.add_option(name, value, text)->type_name(valueName);
}

void addReadingOptions(CLI::App& command, readingArguments& arguments) {
  command.add_option("FILE", arguments.file, "The file to read")->required()->type_name("");
  addOption(command, "--type", arguments.type, "TYPE",
            "Format, by name or number:\n" + fileTypeNames());
  addOption(command, "--encoding", arguments.encoding, "NAME",
            "Encoding of text: CP1251, CP866...; UTF-8 when not given");
  addOption(command, "--delimiter", arguments.delimiter, "TEXT",
            "What separates values, tab for TAB; ';' when not given");
  addOption(command, "--quote", arguments.quote, "TEXT",
            "What encloses values, \"\" for nothing; '\"' when not given");
  addOption(command, "--header-row", arguments.headerRow, "LINE",
            "Line of the field names, from 1, or none; 1 when not given");
  addOption(command, "--data-row", arguments.dataRow, "LINE",
            "First line of data; the line after the header when not given");
  addOption(command, "--table", arguments.table, "NAME",
            "Table or sheet, where the file holds several");
  addOption(command, "--system-encoding", arguments.systemEncoding, "NAME",
            "Code page to use as the system's own: the text of DBF files is in it");
}

CLI::App& addReadingCommand(CLI::App& tool, const char* name, const char* text,
                            commandLine& request) {
  CLI::App* const command = tool.add_subcommand(name, text)->group("Commands");
  addReadingOptions(*command, request.reading);
  return *command;
}

void addCommands(CLI::App& tool, commandLine& request) {
  addReadingCommand(tool, "tables", "List the tables of a file", request);
  addReadingCommand(tool, "fields", "List the fields and their types, text or number", request);
  CLI::App& head = addReadingCommand(tool, "head", "Show the first rows", request);
  head.add_option("-n,--rows", request.rows, "How many rows; 10 when not given")->type_name("N");
  addReadingCommand(tool, "cat", "Show all rows", request);
  addReadingCommand(tool, "count", "Print the number of rows", request);
  addReadingCommand(tool, "errors", "List the lines that were rejected, and why", request);

  CLI::App& find =
      addReadingCommand(tool, "find", "Print a field of the rows with given values", request);
  find.add_option("--where", request.conditions,
                  "A value that a field has, exactly; may be repeated")
      ->type_name("FIELD=VALUE")
      ->required()
      ->allow_extra_args(false);
  find.add_option("--show", request.shownField, "The field to print")
      ->type_name("FIELD")
      ->required();

  CLI::App& convert = addReadingCommand(
      tool, "convert", "Write the table in the format of the target's extension", request);
  convert.add_option("TARGET", request.target, "The file to write")->required()->type_name("");
  convert.add_flag("--force", request.force, "Replace the target when it exists");
  convert.add_flag("--strict", request.strict,
                   "Write nothing when the target cannot hold all values");
  addOption(convert, "--output-delimiter", request.targetDelimiter, "TEXT",
            "What separates values in delimited text; ';' when not given");
  addOption(convert, "--fields", request.targetFields, "FIELD=TYPE,...",
            "Types of a DBF file: C20, N10.2, D; chosen from the data when not given");

  CLI::App* const doctor = tool.add_subcommand(
      "doctor", "Tell what this machine has for reading tables, and what a file lacks");
  doctor->group("Commands");
  doctor->add_option("FILE", request.reading.file, "A file to try")->type_name("");
  addOption(*doctor, "--type", request.reading.type, "TYPE",
            "Format, by name or number:\n" + fileTypeNames());

  tool.add_subcommand("formats", "List the formats, and what this version does with each")
      ->group("Commands");
  tool.add_subcommand("version", "Print the version")->group("Commands");
}

/// CLI11 speaks of a missing subcommand whatever stands in its place.
std::string problemOf(const CLI::App& tool, const CLI::ParseError& error,
                      const std::vector<std::wstring>& arguments) {
  if (!tool.get_subcommands().empty()) return error.what();
  std::string problem = "a command is missing";
  if (!arguments.empty()) {
    const bool isOption = arguments.front().starts_with(L"-");
    problem = (isOption ? "there is no option " : "there is no command ") +
              inQuotes(toUtf8(arguments.front()));
  }
  problem += "; the commands are ";
  for (const CLI::App* const command : tool.get_subcommands(nullptr))
    problem += command->get_name() + ", ";
  problem.resize(problem.size() - 2);
  return problem;
}

}  // namespace

parsedCommandLine parseCommandLine(const std::vector<std::wstring>& arguments) {
  parsedCommandLine parsed;
  commandLine request;
  CLI::App tool(description, "vok_table");
  // Commands take this over when they are added: a path that begins with a slash is no option.
  tool.allow_windows_style_options(false);
  tool.footer(footer);
  tool.get_formatter()->label("SUBCOMMAND", "COMMAND");
  tool.get_formatter()->label("REQUIRED", "(required)");
  tool.set_version_flag("--version", versionText, "Print the version and end");
  tool.require_subcommand(1);
  addCommands(tool, request);

  // CLI11 takes the arguments in reverse.
  std::vector<std::string> reversed;
  for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument)
    reversed.push_back(toUtf8(*argument));
  try {
    tool.parse(reversed);
  } catch (const CLI::CallForHelp&) {
    parsed.help = tool.help();
    return parsed;
  } catch (const CLI::CallForVersion&) {
    parsed.help = std::string(versionText) + "\n";
    return parsed;
  } catch (const CLI::ParseError& error) {
    parsed.problem = problemOf(tool, error, arguments);
    return parsed;
  }
  request.command = tool.get_subcommands().front()->get_name();
  parsed.request = std::move(request);
  return parsed;
}

}  // namespace vokTable

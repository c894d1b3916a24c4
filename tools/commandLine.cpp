#include "tools/commandLine.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "tools/commandTable.h"
#include "tools/text.h"
#include "tools/version.h"

namespace vokTable {
namespace {

constexpr std::size_t footerWidth = 95;
constexpr std::size_t optionWidth = 70;

/// Text in lines of a width.
std::string filled(std::string_view text, std::size_t width) {
  std::string out;
  while (text.size() > width) {
    const std::size_t end = text.rfind(' ', width);
    if (end == std::string_view::npos) break;
    out.append(text.substr(0, end)).append("\n");
    text.remove_prefix(end + 1);
  }
  return out.append(text);
}

/// Takes an entry of the table into the parser.
class optionAdder {
 public:
  optionAdder(CLI::App& command, const optionEntry& entry, commandLine& request)
      : command_(command), entry_(entry), request_(request) {}

  void operator()(bool commandLine::*member) const {
    command_.add_flag(std::string(entry_.names), request_.*member, text());
  }
  void operator()(std::vector<std::string> commandLine::*member) const {
    add(request_.*member)->allow_extra_args(false);
  }
  template <typename Value>
  void operator()(Value commandLine::*member) const {
    add(request_.*member);
  }
  template <typename Value>
  void operator()(Value readingArguments::*member) const {
    add(request_.reading.*member);
  }

 private:
  std::string text() const { return filled(fullText(entry_), optionWidth); }

  template <typename Value>
  CLI::Option* add(Value& value) const {
    return command_.add_option(std::string(entry_.names), value, text())
        ->type_name(std::string(entry_.valueName))
        ->required(entry_.isRequired);
  }

  CLI::App& command_;
  const optionEntry& entry_;
  commandLine& request_;
};

void addCommands(CLI::App& tool, commandLine& request) {
  for (const commandEntry& entry : allCommands()) {
    CLI::App* const command = tool.add_subcommand(std::string(entry.name), std::string(entry.text));
    command->group(entry.isHidden ? "" : "Commands");
    for (const auto* const list : {&entry.words, &entry.options})
      for (const optionEntry* const each : *list)
        std::visit(optionAdder(*command, *each, request), each->member);
  }
}

std::string footer() {
  std::string codes;
  for (const exitCodeEntry& each : exitCodeTexts())
    codes += fmt::format("{}{} {}", codes.empty() ? "Exit codes: " : "; ",
                         static_cast<int>(each.code), each.text);
  return filled(outputText, footerWidth) + "\n\n" + filled(codes + ".", footerWidth);
}

std::string commandNames() {
  std::string names;
  for (const commandEntry& each : allCommands())
    if (!each.isHidden) names += fmt::format("{}{}", names.empty() ? "" : ", ", each.name);
  return names;
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
  return problem + "; the commands are " + commandNames();
}

}  // namespace

bool asksForJson(const std::vector<std::wstring>& arguments) {
  const auto end = std::find(arguments.begin(), arguments.end(), L"--");
  return std::find(arguments.begin(), end, L"--json") != end;
}

parsedCommandLine parseCommandLine(const std::vector<std::wstring>& arguments) {
  parsedCommandLine parsed;
  commandLine request;
  CLI::App tool(std::string(toolText), "vok_table");
  // Commands take this over when they are added: a path that begins with a slash is no option.
  tool.allow_windows_style_options(false);
  tool.footer(footer());
  tool.get_formatter()->label("SUBCOMMAND", "COMMAND");
  tool.get_formatter()->label("REQUIRED", "(required)");
  tool.set_version_flag("--version", versionText, "Print the version and end");
  tool.require_subcommand(1);
  addCommands(tool, request);

  // CLI11 takes the arguments in reverse.
  std::vector<std::string> reversed;
  for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument)
    reversed.push_back(toUtf8(*argument));
  const auto command = [&tool] {
    const auto found = tool.get_subcommands();
    return found.empty() ? std::string() : found.front()->get_name();
  };
  try {
    tool.parse(reversed);
  } catch (const CLI::CallForHelp&) {
    parsed.help = tool.help();
    return parsed;
  } catch (const CLI::CallForVersion&) {
    parsed.help = std::string(versionText) + "\n";
    return parsed;
  } catch (const CLI::ParseError& error) {
    parsed.command = command();
    parsed.problem = problemOf(tool, error, arguments);
    return parsed;
  }
  parsed.command = request.command = command();
  parsed.request = std::move(request);
  return parsed;
}

}  // namespace vokTable

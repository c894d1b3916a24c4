#include "tools/commandLine.h"

#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "tools/commandTable.h"
#include "tools/nearestName.h"
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

std::vector<std::string> shownCommands() {
  std::vector<std::string> names;
  for (const commandEntry& each : allCommands())
    if (!each.isHidden) names.emplace_back(each.name);
  return names;
}

/// "; perhaps NAME is meant" when one of the names is close.
std::string perhapsMeant(std::string_view written, const std::vector<std::string>& names) {
  const std::string nearest = nearestName(written, names);
  return nearest.empty() ? std::string() : fmt::format("; perhaps {} is meant", nearest);
}

bool isOption(std::string_view word) { return word.size() > 1 && word.front() == '-'; }

/// What is wrong with the words that a command did not expect: there are some, listed backwards by CLI11, the values of
/// unknown options among them.
std::string unexpectedProblem(const CLI::App& command) {
  const std::vector<std::string> words = command.remaining();
  const auto option = std::find_if(words.begin(), words.end(), isOption);
  if (option == words.end())
    return fmt::format("{} has no use for {}; a name with blanks needs quotes", command.get_name(),
                       inQuotes(words.front()));
  const std::string written = option->substr(0, option->find('='));
  std::vector<std::string> names;
  for (const optionEntry* const each : commandNamed(command.get_name()).options)
    for (const std::string& name : namesOf(*each)) names.push_back(name);
  return fmt::format("{} has no option {}{}", command.get_name(), inQuotes(written),
                     perhapsMeant(written, names));
}

/// CLI11 writes "--rows: 1 required N missing" where an option stands without its value.
std::string missingValueProblem(std::string text) {
  constexpr std::string_view count = ": 1 required ";
  constexpr std::string_view end = " missing";
  const std::size_t at = text.find(count);
  if (at == std::string::npos || !text.ends_with(end)) return text;
  text.resize(text.size() - end.size());
  return text.replace(at, count.size(), " needs a value: ");
}

/// CLI11 speaks of a missing subcommand whatever stands in its place.
std::string problemOf(const CLI::App& tool, const CLI::ParseError& error,
                      const std::vector<std::wstring>& arguments) {
  const auto found = tool.get_subcommands();
  const bool hasCommand = !found.empty();
  if (hasCommand && dynamic_cast<const CLI::ExtrasError*>(&error) == nullptr)
    return missingValueProblem(error.what());
  if (hasCommand && !found.front()->remaining().empty()) return unexpectedProblem(*found.front());
  std::string problem = "a command is missing";
  if (!arguments.empty()) {
    const std::string written = toUtf8(arguments.front());
    if (hasCommand && isOption(written))
      return fmt::format("{} stands before the command {}: options come behind it",
                         inQuotes(written), found.front()->get_name());
    problem = (isOption(written) ? "there is no option " : "there is no command ") +
              inQuotes(written) + perhapsMeant(written, shownCommands());
  }
  std::string names;
  for (const std::string& name : shownCommands()) names += (names.empty() ? "" : ", ") + name;
  return problem + "; the commands are " + names;
}

/// `help` and `help COMMAND` are what other tools call `--help` and `COMMAND --help`.
std::vector<std::wstring> withoutHelpCommand(std::vector<std::wstring> arguments) {
  if (arguments.empty() || arguments.front() != L"help") return arguments;
  arguments.erase(arguments.begin());
  arguments.resize(std::min<std::size_t>(arguments.size(), 1));
  arguments.emplace_back(L"--help");
  return arguments;
}

}  // namespace

bool asksForJson(const std::vector<std::wstring>& arguments) {
  const auto end = std::find(arguments.begin(), arguments.end(), L"--");
  return std::find(arguments.begin(), end, L"--json") != end;
}

parsedCommandLine parseCommandLine(const std::vector<std::wstring>& written) {
  const std::vector<std::wstring> arguments = withoutHelpCommand(written);
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

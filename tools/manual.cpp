// The command manual: the manual page vok_table(1) in roff, made from commandTable.h.
#include <fmt/core.h>

#include <algorithm>
#include <string>

#include "tools/commandTable.h"
#include "tools/commands.h"
#include "tools/text.h"
#include "tools/version.h"

namespace vokTable {
namespace {

/// Text of a line in roff: a minus that is one, a backslash, and no request at the line's begin.
std::string roff(std::string_view text) {
  std::string out;
  for (const char character : text) {
    if (out.empty() && (character == '.' || character == '\'')) out += "\\&";
    if (character == '\\')
      out += "\\e";
    else if (character == '-')
      out += "\\-";
    else if (character == '\'')
      out += "\\(aq";
    else
      out += character;
  }
  return out;
}

std::string bold(std::string_view text) { return "\\fB" + roff(text) + "\\fR"; }
std::string italic(std::string_view text) { return "\\fI" + roff(text) + "\\fR"; }

/// An option as it is written: "-n, --rows N".
std::string written(const optionEntry& option) {
  std::string line;
  for (const std::string& name : namesOf(option)) line += (line.empty() ? "" : ", ") + bold(name);
  return option.isFlag() ? line : line + " " + italic(option.valueName);
}

/// A command and the words that it takes.
std::string synopsis(const commandEntry& command) {
  std::string line = bold(command.name);
  for (const optionEntry* const word : command.words)
    line += word->isRequired ? " " + italic(word->names) : " [" + italic(word->names) + "]";
  return line + (command.options.empty() ? "" : " [" + italic("OPTIONS") + "]");
}

std::string sentence(std::string_view text) { return roff(text) + ".\n"; }

std::string item(const std::string& title, const std::string& text) {
  return ".TP\n" + title + "\n" + text;
}

/// Whether an option belongs to all commands that read, and is explained once.
bool isCommon(const optionEntry& option) {
  const auto& common = commandNamed("tables").options;
  return std::find(common.begin(), common.end(), &option) != common.end();
}

std::string commandSection() {
  std::string text = ".SH COMMANDS\n";
  for (const commandEntry& command : allCommands()) {
    if (command.isHidden) continue;
    text += item(synopsis(command), sentence(command.text));
    std::string options;
    for (const optionEntry* const option : command.options)
      if (!isCommon(*option)) options += item(written(*option), sentence(fullText(*option)));
    if (!options.empty()) text += ".RS\n" + options + ".RE\n";
  }
  return text;
}

std::string optionSection() {
  std::string text = ".SH OPTIONS\nCommands that read a file take these as well:\n";
  for (const optionEntry* const option : commandNamed("tables").options)
    text += item(written(*option), sentence(fullText(*option)));
  text += item(bold("--help"), sentence("Print how a command is used"));
  return text + item(bold("--version"), sentence("Print the version and end"));
}

std::string restOfPage() {
  std::string text = ".SH EXIT STATUS\n";
  for (const exitCodeEntry& each : exitCodeTexts())
    text += item(bold(std::to_string(static_cast<int>(each.code))), sentence(each.text));
  text += ".SH ENVIRONMENT\n";
  text += item(bold("NO_COLOR"), sentence("When set to anything, messages have no colours"));
  text += item(bold("TERM"), sentence("A terminal that is missing or dumb gets no colours"));
  text += ".SH EXAMPLES\n";
  for (const exampleEntry& each : exampleLines())
    text += item(bold(each.line), sentence(each.text));
  return text;
}

}  // namespace

exitCode printManual(const commandLine&, toolContext& context) {
  std::string page = ".\\\" made by: vok_table manual\n";
  page += fmt::format(".TH VOK_TABLE 1 \"\" \"{}\" \"User Commands\"\n", roff(versionText));
  page += ".SH NAME\nvok_table \\- show, search and convert tables of many formats\n";
  page += ".SH SYNOPSIS\n" + bold("vok_table") + " " + italic("COMMAND") + " [" +
          italic("OPTIONS") + "]\n";
  page += ".SH DESCRIPTION\n" + roff(toolText) + "\n.PP\n" + roff(outputText) + "\n";
  page += commandSection() + optionSection() + restOfPage();
  context.output.text(toWide(page));
  return exitCode::clean;
}

}  // namespace vokTable

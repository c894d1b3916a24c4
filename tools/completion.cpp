// The command completion: scripts that complete commands, options and their values in four shells. Each is made
// from commandTable.h and knows nothing else.
#include <fmt/core.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "tools/commandTable.h"
#include "tools/commands.h"
#include "tools/text.h"

namespace vokTable {
namespace {

std::string joined(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) line += (line.empty() ? "" : " ") + word;
  return line;
}

std::vector<std::string> optionNames(const commandEntry& command) {
  std::vector<std::string> names;
  for (const optionEntry* const option : command.options)
    for (const std::string& name : namesOf(*option)) names.push_back(name);
  names.emplace_back("--help");
  return names;
}

std::vector<const commandEntry*> shownCommands() {
  std::vector<const commandEntry*> commands;
  for (const commandEntry& each : allCommands())
    if (!each.isHidden) commands.push_back(&each);
  return commands;
}

std::string commandWords() {
  std::vector<std::string> names;
  for (const commandEntry* const each : shownCommands()) names.emplace_back(each->name);
  return joined(names);
}

/// Every option of any command, once.
std::vector<const optionEntry*> allOptions() {
  std::vector<const optionEntry*> options;
  for (const commandEntry* const command : shownCommands())
    for (const optionEntry* const each : command->options)
      if (std::find(options.begin(), options.end(), each) == options.end()) options.push_back(each);
  return options;
}

/// Text between single quotes, with what stands for a single quote in it.
std::string quoted(std::string_view text, std::string_view singleQuote) {
  std::string out = "'";
  for (const char character : text) character == '\'' ? out += singleQuote : out += character;
  return out + "'";
}

// --- bash ---

/// The arms of a case statement for the word before: what a value can be.
std::string bashValues() {
  std::string arms;
  for (const optionEntry* const option : allOptions()) {
    if (option->isFlag()) continue;
    std::string names;
    for (const std::string& name : namesOf(*option)) names += (names.empty() ? "" : "|") + name;
    const std::vector<std::string> values = listedValues(option->kind);
    const std::string action = option->kind == valueKind::file ? "_vok_table_files; return"
                               : values.empty()
                                   ? "return"
                                   : fmt::format("_vok_table_words \"{}\"; return", joined(values));
    arms += fmt::format("    {}) {} ;;\n", names, action);
  }
  return arms;
}

std::string bashOptions() {
  std::string arms;
  for (const commandEntry* const command : shownCommands()) {
    const bool hasShell = !command->words.empty() && command->words[0]->kind == valueKind::shell;
    arms +=
        fmt::format("    {}) options=\"{}\"{} ;;\n", command->name, joined(optionNames(*command)),
                    hasShell ? fmt::format(" words=\"{}\"", joined(shellNames())) : "");
  }
  return arms;
}

std::string bashScript() {
  return fmt::format(R"(# bash completion of vok_table; made by: vok_table completion bash
_vok_table_words() {{
  local IFS=$' \t\n'
  COMPREPLY=($(compgen -W "$1" -- "$current"))
}}

_vok_table_files() {{
  compopt -o filenames 2>/dev/null
  local IFS=$'\n'
  COMPREPLY=($(compgen -f -- "$current"))
}}

_vok_table() {{
  local current=${{COMP_WORDS[COMP_CWORD]}} previous=${{COMP_WORDS[COMP_CWORD-1]}} options= words=
  COMPREPLY=()
  # bash takes --option=value apart at the sign.
  if [ "$current" = "=" ]; then
    current=
  elif [ "$previous" = "=" ]; then
    previous=${{COMP_WORDS[COMP_CWORD-2]}}
  fi
  if [ "$COMP_CWORD" -eq 1 ]; then
    _vok_table_words "{} --help --version"
    return
  fi
  case $previous in
{}  esac
  case ${{COMP_WORDS[1]}} in
{}  esac
  case $current in
    -*) _vok_table_words "$options" ;;
    *) if [ -n "$words" ]; then _vok_table_words "$words"; else _vok_table_files; fi ;;
  esac
}}

complete -F _vok_table vok_table vok_table.exe
)",
                     commandWords(), bashValues(), bashOptions());
}

// --- zsh ---

/// Text as it stands in an argument of _arguments, between single quotes.
std::string zshText(std::string_view text) {
  std::string out;
  for (const char character : text) {
    if (std::string_view("[]:\\").find(character) != std::string_view::npos) out += '\\';
    if (character == '\'')
      out += "'\\''";
    else
      out += character;
  }
  return out;
}

std::string zshAction(const optionEntry& option) {
  if (option.kind == valueKind::file) return "_files";
  const std::vector<std::string> values = listedValues(option.kind);
  return values.empty() ? " " : "(" + joined(values) + ")";
}

std::string zshArguments(const commandEntry& command) {
  std::string lines;
  for (const optionEntry* const option : command.options)
    for (const std::string& name : namesOf(*option)) {
      const std::string value =
          option->isFlag() ? ""
                           : fmt::format(":{}:{}", zshText(option->valueName), zshAction(*option));
      lines += fmt::format(" \\\n        '*{}[{}]{}'", name, zshText(option->text), value);
    }
  for (const optionEntry* const word : command.words)
    lines += fmt::format(" \\\n        ':{}:{}'", zshText(word->names), zshAction(*word));
  return lines;
}

std::string zshScript() {
  std::string names;
  std::string arms;
  for (const commandEntry* const command : shownCommands()) {
    names += fmt::format("    '{}:{}'\n", command->name, zshText(command->text));
    arms += fmt::format("    {})\n      _arguments '--help[Print how it is used]'{} ;;\n",
                        command->name, zshArguments(*command));
  }
  return fmt::format(R"(#compdef vok_table vok_table.exe
# zsh completion of vok_table; made by: vok_table completion zsh
_vok_table() {{
  local -a commands
  commands=(
{}  )
  if (( CURRENT == 2 )); then
    _describe -t commands 'command' commands
    return
  fi
  shift words
  (( CURRENT-- ))
  case $words[1] in
{}  esac
}}

if [ "$funcstack[1]" = "_vok_table" ]; then
  _vok_table "$@"
else
  compdef _vok_table vok_table vok_table.exe
fi
)",
                     names, arms);
}

// --- fish ---

std::string fishText(std::string_view text) {
  std::string escaped;
  for (const char character : text) {
    if (character == '\\') escaped += '\\';
    escaped += character;
  }
  return quoted(escaped, "\\'");
}

std::string fishOption(const commandEntry& command, const optionEntry& option) {
  std::string line =
      fmt::format("complete -c vok_table -n '__fish_seen_subcommand_from {}'", command.name);
  for (const std::string& name : namesOf(option))
    line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
  if (!option.isFlag()) {
    const std::vector<std::string> values = listedValues(option.kind);
    line += option.kind == valueKind::file ? " -r -F" : " -x";
    if (!values.empty()) line += " -a " + fishText(joined(values));
  }
  return line + " -d " + fishText(option.text) + "\n";
}

std::string fishScript() {
  std::string lines =
      "# fish completion of vok_table; made by: vok_table completion fish\n"
      "complete -c vok_table -n '__fish_use_subcommand' -f\n"
      "complete -c vok_table -l help -d 'Print how it is used'\n"
      "complete -c vok_table -n '__fish_use_subcommand' -l version -d 'Print the version and "
      "end'\n";
  for (const commandEntry* const command : shownCommands()) {
    lines += fmt::format("complete -c vok_table -n '__fish_use_subcommand' -a {} -d {}\n",
                         command->name, fishText(command->text));
    for (const optionEntry* const option : command->options) lines += fishOption(*command, *option);
    for (const optionEntry* const word : command->words)
      if (word->kind == valueKind::shell)
        lines += fmt::format("complete -c vok_table -n '__fish_seen_subcommand_from {}' -f -a {}\n",
                             command->name, fishText(joined(shellNames())));
  }
  return lines;
}

// --- PowerShell ---

std::string powershellList(const std::vector<std::string>& words) {
  std::string list;
  for (const std::string& word : words) list += (list.empty() ? "" : ", ") + quoted(word, "''");
  return "@(" + list + ")";
}

std::string powershellScript() {
  std::string commands;
  for (const commandEntry* const command : shownCommands())
    commands +=
        fmt::format("    {} = @{{ Text = {}; Options = {} }}\n", quoted(command->name, "''"),
                    quoted(command->text, "''"), powershellList(optionNames(*command)));
  std::string values;
  for (const optionEntry* const option : allOptions()) {
    const std::vector<std::string> listed = listedValues(option->kind);
    if (listed.empty()) continue;
    for (const std::string& name : namesOf(*option))
      values += fmt::format("    {} = {}\n", quoted(name, "''"), powershellList(listed));
  }
  values += fmt::format("    'completion' = {}\n", powershellList(shellNames()));
  return fmt::format(
      R"(# PowerShell completion of vok_table; made by: vok_table completion powershell
Register-ArgumentCompleter -Native -CommandName vok_table, vok_table.exe -ScriptBlock {{
  param($wordToComplete, $commandAst, $cursorPosition)
  $commands = [ordered]@{{
{}  }}
  $values = @{{
{}  }}
  $words = @($commandAst.CommandElements | ForEach-Object {{ $_.ToString() }})
  $before = if ($wordToComplete) {{ $words.Count - 2 }} else {{ $words.Count - 1 }}
  $found = @()
  if ($before -lt 1) {{
    $found = @($commands.Keys)
  }} elseif ($values.ContainsKey($words[$before])) {{
    $found = $values[$words[$before]]
  }} elseif ($wordToComplete -like '-*' -and $commands.Contains($words[1])) {{
    $found = $commands[$words[1]].Options
  }}
  $found | Where-Object {{ $_ -like "$wordToComplete*" }} | ForEach-Object {{
    $text = if ($before -lt 1) {{ $commands[$_].Text }} else {{ $_ }}
    [System.Management.Automation.CompletionResult]::new($_, $_, 'ParameterValue', $text)
  }}
}}
)",
      commands, values);
}

constexpr struct {
  std::string_view shell;
  std::string (*make)();
} scripts[] = {
    {"bash",       bashScript      },
    {"zsh",        zshScript       },
    {"fish",       fishScript      },
    {"powershell", powershellScript},
};

}  // namespace

std::vector<std::string> shellNames() {
  std::vector<std::string> names;
  for (const auto& each : scripts) names.emplace_back(each.shell);
  return names;
}

exitCode printCompletion(const commandLine& request, toolContext& context) {
  for (const auto& each : scripts) {
    if (each.shell != request.shell) continue;
    context.output.text(toWide(each.make()));
    return exitCode::clean;
  }
  std::string names;
  for (const std::string& name : shellNames()) names += (names.empty() ? "" : ", ") + name;
  context.messages.error(fmt::format("there is no script for the shell {}: the shells are {}",
                                     inQuotes(request.shell), names));
  return exitCode::usage;
}

}  // namespace vokTable

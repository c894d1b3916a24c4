// What vok_table can be asked for: its commands, their options, and the texts that explain them.
//
// This table is the only place where they stand. Four things are made from it: the parser with its --help
// (commandLine.cpp), the manual page (manual.cpp), the completion scripts of four shells (completion.cpp), and
// the list of commands in messages. What is added here appears in all of them.
//
// Texts are ASCII, one sentence without a full stop at its end. No state; any thread.
#ifndef VOK_TOOLS_COMMANDTABLE_H
#define VOK_TOOLS_COMMANDTABLE_H

#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tools/commandLine.h"
#include "tools/exitCodes.h"
#include "tools/source.h"

namespace vokTable {

/// What a value on the command line can be, as far as a shell can offer it.
enum class valueKind { text, file, fileType, encoding, targetFormat, shell };

/// Where a value of the command line goes.
using requestMember =
    std::variant<bool commandLine::*, std::string commandLine::*,
                 std::optional<std::string> commandLine::*, std::vector<std::string> commandLine::*,
                 std::string readingArguments::*, std::optional<std::string> readingArguments::*>;

/// An option, or a word without one.
struct optionEntry {
  std::string_view names;      ///< "-n,--rows"; a word without option: what it is called
  std::string_view valueName;  ///< empty for a flag and for a word without option
  std::string_view text;
  requestMember member;
  valueKind kind;
  bool isRequired = false;

  bool isFlag() const { return std::holds_alternative<bool commandLine::*>(member); }
};

struct commandEntry {
  std::string_view name;
  std::string_view text;
  exitCode (*run)(const commandLine& request, toolContext& context);
  std::vector<const optionEntry*> words;    ///< without options, in their order
  std::vector<const optionEntry*> options;  ///< those of all reading commands behind its own
  bool isHidden = false;                    ///< for packaging: no help and no completion names it
};

/// An exit code and what it means.
struct exitCodeEntry {
  exitCode code;
  std::string_view text;
};

struct exampleEntry {
  std::string_view line;
  std::string_view text;
};

std::span<const commandEntry> allCommands();
/// @param name  of one of them
const commandEntry& commandNamed(std::string_view name);

std::span<const exitCodeEntry> exitCodeTexts();
std::span<const exampleEntry> exampleLines();

inline constexpr std::string_view toolText =
    "Reads tables of wells, samples and surveys from many formats, shows them and converts them.";
inline constexpr std::string_view outputText =
    "Data go to standard output as UTF-8, messages to standard error. Into a pipe or a file, "
    "tables are text "
    "with TABs between the values; --json gives one JSON document instead, messages included.";

/// The text of an option with the values that it takes, where they can be listed.
std::string fullText(const optionEntry& option);
/// The values that can be listed; empty for all other kinds.
std::vector<std::string> listedValues(valueKind kind);
/// The names of an option, one by one.
std::vector<std::string> namesOf(const optionEntry& option);

}  // namespace vokTable

#endif

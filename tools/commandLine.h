// The command line of vok_table: which command, on which file, with which options.
//
// Only commandLine.cpp knows CLI11. Help and version texts, and what is wrong with a command line,
// come back as text for the caller to show. Arguments are UTF-8 here. Options in Windows' style
// ("/f") are not understood, because a path may begin with a slash.
#ifndef VOK_TOOLS_COMMANDLINE_H
#define VOK_TOOLS_COMMANDLINE_H

#include <optional>
#include <string>
#include <vector>

#include "tools/readingOptions.h"

namespace vokTable {

/// What the user asks for. Members that the command does not have keep their defaults.
struct commandLine {
  std::string command;
  readingArguments reading;                    ///< the source, for all commands that read one
  std::string rows = "10";                     ///< head: how many, as written
  std::vector<std::string> conditions;         ///< find: FIELD=VALUE, as written
  std::string shownField;                      ///< find
  std::string target;                          ///< convert
  std::optional<std::string> targetDelimiter;  ///< convert
  std::optional<std::string> targetFields;     ///< convert: the types of a DBF file, as written
  bool force = false;                          ///< convert: replace an existing target
  bool strict = false;                         ///< convert: refuse what the target cannot hold
};

/// A command line that was understood, or what to say instead.
struct parsedCommandLine {
  std::optional<commandLine> request;
  std::string help;     ///< text that was asked for: for standard output, and a clean end
  std::string problem;  ///< what is wrong with the command line
};

parsedCommandLine parseCommandLine(const std::vector<std::wstring>& arguments);

}  // namespace vokTable

#endif

// The command line of vok_table: which command, on which file, with which options.
//
// Only commandLine.cpp knows CLI11; what there is to parse stands in commandTable.h. Help and version texts,
// and what is wrong with a command line, come back as text for the caller to show. Arguments are UTF-8 here.
// Options in Windows' style ("/f") are not understood, because a path may begin with a slash.
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
  bool json = false;                           ///< the answer as a JSON document
  bool csv = false;                            ///< errors: the answer as comma-separated values
  std::optional<std::string> rows;             ///< head: how many, as written
  std::vector<std::string> selected;           ///< fields to show or to write, as written
  std::vector<std::string> conditions;         ///< find: FIELD=VALUE, as written
  std::optional<std::string> shownField;       ///< find
  std::string target;                          ///< convert
  std::optional<std::string> targetDelimiter;  ///< convert
  std::optional<std::string> targetFields;     ///< convert: the types of a DBF file, as written
  std::optional<std::string> rejects;          ///< convert: the file for rejected lines
  std::optional<std::string> targetFormat;     ///< convert: the format of all tables
  bool allTables = false;                      ///< convert: every table, into a folder
  bool force = false;                          ///< convert: replace files that exist
  bool strict = false;                         ///< convert: refuse what the target cannot hold
  std::string shell;                           ///< completion
};

/// A command line that was understood, or what to say instead.
struct parsedCommandLine {
  std::optional<commandLine> request;
  std::string command;  ///< the command that was recognised, also in a line that is wrong
  std::string help;     ///< text that was asked for: for standard output, and a clean end
  std::string problem;  ///< what is wrong with the command line
};

parsedCommandLine parseCommandLine(const std::vector<std::wstring>& arguments);

/// Whether the line asks for a JSON document, as far as that can be told of one that is wrong.
bool asksForJson(const std::vector<std::wstring>& arguments);

}  // namespace vokTable

#endif

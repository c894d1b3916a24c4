#include "tools/source.h"

#include <fmt/core.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "tools/fileBegin.h"
#include "tools/formats.h"
#include "tools/odbcSources.h"
#include "tools/progress.h"
#include "tools/text.h"
#include "tools/workbookReading.h"

namespace vokTable {
namespace {

constexpr std::size_t tablesNamed = 8;

/// What keeps the file from being opened, as far as that can be told without opening it.
std::optional<std::string> obstacle(const std::wstring& path) {
  const std::string name = toUtf8(path);
  if (path.empty()) return "the name of the file is empty";
  if (!platform::fileExists(path))
    return fmt::format("cannot open {}: there is no such file; check the path", name);
  if (platform::folderExists(path))
    return fmt::format("cannot open {}: it is a folder; name a file in it", name);
  return std::nullopt;
}

/// WHY only after a failure: a pipe that was opened and closed is lost for whoever writes to it.
bool explainUnreadable(const std::wstring& path, const messageWriter& messages) {
  platform::binaryFile file;
  if (file.openForReading(path)) return false;
  messages.error(fmt::format(
      "cannot open {}: it may not be read; check its permissions and close programs that use it",
      toUtf8(path)));
  return true;
}

/// A pipe that holds more than lines of text, which are all that can be read in one go.
bool explainPipe(const tableRW::tableReader& reader, const readingArguments& arguments,
                 const messageWriter& messages) {
  const auto type = findFileType(arguments.type.value_or("auto"));
  if (isDelimitedText(*type, reader.path()) || !platform::isPipeOrDevice(reader.path()))
    return false;
  messages.error(fmt::format(
      "cannot read {}: its format needs a file, and this is a pipe or a device; save it to one",
      arguments.file));
  return true;
}

bool isSqlite(const tableRW::tableReader& reader, const readingArguments& arguments) {
  // There is such a type: the reader was opened with it.
  const auto type = findFileType(arguments.type.value_or("auto"));
  return isSqliteDatabase(*type, reader.path());
}

/// Options that a format has no use for are no mistake, but whoever gives them expects something of them. The encoding of
/// a Petrel table is that of its name.
void hintAtUnusedOptions(tableRW::tableReader& reader, const tableRW::tableReaderOptions& options,
                         const readingArguments& arguments, const messageWriter& messages) {
  const bool isText = isDelimitedText(options.file_type, options.path) ||
                      options.file_type == tableRW::fileTypePetrel;
  const bool hasLines = reader.get_capabilities().offersPositions;
  const auto hint = [&](std::string_view option, const std::optional<std::string>& value,
                        bool isHeeded) {
    if (value && !isHeeded)
      messages.hint(fmt::format("{} has no effect on {}", option, arguments.file));
  };
  hint("--encoding", arguments.encoding, isText);
  hint("--delimiter", arguments.delimiter, isText);
  hint("--quote", arguments.quote, isText);
  hint("--header-row", arguments.headerRow, hasLines);
  hint("--data-row", arguments.dataRow, hasLines);
}

bool beginsWith(const std::wstring& path, std::string_view mark) {
  std::string begin(mark.size(), '\0');
  platform::binaryFile file;
  return file.openForReading(path) && file.read(begin.data(), begin.size()) == mark.size() &&
         begin == mark;
}

/// A database that does not answer at all, not even which tables it has. FORMAT: the journal of a change that is
/// done has gone, or lost its mark.
bool explainSilentDatabase(const tableRW::tableReader& reader, const readingArguments& arguments,
                           const messageWriter& messages) {
  constexpr std::string_view databaseMark("SQLite format 3\0", 16);
  constexpr std::string_view journalMark("\xD9\xD5\x05\xF9\x20\xA1\x63\xD7", 8);
  if ((reader.isOK() && reader.isWhole()) || !isSqlite(reader, arguments)) return false;
  if (!beginsWith(reader.path(), databaseMark)) return false;
  const std::string journal = arguments.file + "-journal";
  messages.error(
      beginsWith(toWide(journal), journalMark)
          ? fmt::format("cannot read {}: the changes in {} are not finished: another program is "
                        "writing them, or broke off; let one that may write the database open it",
                        arguments.file, journal)
          : fmt::format("cannot read {}: another program has it locked, or it is damaged; close "
                        "programs that use it and try again",
                        arguments.file));
  return true;
}

/// A table whose name the engine would have to be given in quotes, which the library does not do.
bool explainNameOfTable(const tableRW::tableReader& reader, const readingArguments& arguments,
                        const messageWriter& messages) {
  constexpr std::string_view oddOnes = " !\"#%&'()*+,-./:;<=>?@[\\]^`{|}~\t\n\r";
  if (!arguments.table || !isSqlite(reader, arguments)) return false;
  if (reader.fieldCount() == 0) return false;  // there is no such table
  if (arguments.table->find_first_of(oddOnes) == std::string::npos) return false;
  messages.error(
      fmt::format("cannot read {}, table {}: rows are read of tables alone whose name is one word "
                  "of letters, digits, _ and $; a view of such a name can stand for it",
                  arguments.file, inQuotes(*arguments.table)));
  return true;
}

/// A source that opened and could not be read to its end: what was read of it must pass for no answer. Of a database
/// only the engine knows whether it is damaged or the disk has failed.
bool explainIncomplete(const tableRW::tableReader& reader, const readingArguments& arguments,
                       const messageWriter& messages) {
  if (reader.isWhole() || isSqlite(reader, arguments)) return false;
  messages.error(
      fmt::format("cannot read {} to its end: the disk or the network failed, or its memo file "
                  "cannot be opened",
                  arguments.file));
  return true;
}

bool explainInterruption(const workbookReading& converted, const readingArguments& arguments,
                         const messageWriter& messages) {
  if (!converted.isInterrupted()) return false;
  messages.error(fmt::format("interrupted: {} was not read", arguments.file));
  return true;
}

exitCode explainNothingReads(const tableRW::tableReaderOptions& options,
                             const messageWriter& messages) {
  if (explainUnreadable(options.path, messages)) return exitCode::cannotOpen;
  if (options.file_type == tableRW::fileTypeAuto) {
    messages.error(fmt::format("cannot read the first line of {}: the disk or the network failed",
                               toUtf8(options.path)));
    return exitCode::cannotOpen;
  }
  messages.error(fmt::format("cannot read {}: reading the format \"{}\" is not in this version",
                             toUtf8(options.path), formatName(options.file_type, options.path)));
  messages.hint("vok_table formats lists what can be read; --type chooses another format");
  return exitCode::notAvailable;
}

/// Refuses a file of another format that would be taken for delimited text because of its name.
bool refusesAsText(const tableRW::tableReaderOptions& options, const messageWriter& messages) {
  if (options.file_type != tableRW::fileTypeAuto ||
      !isDelimitedText(options.file_type, options.path))
    return false;
  const auto format = formatOfContent(options.path);
  if (!format) return false;
  messages.error(fmt::format("cannot read {} as delimited text: it looks like {}",
                             toUtf8(options.path), format->title));
  messages.hint(fmt::format("{}; --type csv reads any file as delimited text", format->advice));
  return true;
}

/// The tables that the source holds, when the one asked for is none of them. Of a source that does not open there is
/// nothing to choose from, unless a table was asked for, which may be what kept it from opening.
std::vector<std::wstring> tablesInstead(tableRW::tableReader& reader,
                                        const readingArguments& arguments) {
  std::vector<std::wstring> tables;
  if (!reader.get_capabilities().offersTables) return tables;
  if (!arguments.table && !reader.isOK()) return tables;
  reader.tableList(tables);
  const std::wstring wanted = toWide(arguments.table.value_or(""));
  if (std::find(tables.begin(), tables.end(), wanted) != tables.end()) tables.clear();
  return tables;
}

void hintAtTables(const std::vector<std::wstring>& tables, const messageWriter& messages) {
  std::string names;
  for (std::size_t i = 0; i < std::min(tables.size(), tablesNamed); ++i)
    names += (i == 0 ? "" : ", ") + toUtf8(tables[i]);
  if (tables.size() > tablesNamed) names += " ...";
  messages.hint(fmt::format("name one of its tables with --table: {}", names));
}

/// A source that could be read and whose table has no fields: of a database that is a table which is not there.
/// @return false when nothing was explained
bool explainNoFields(tableRW::tableReader& reader, const readingArguments& arguments,
                     const messageWriter& messages) {
  const tableRW::capability_options offered = reader.get_capabilities();
  if (!reader.isWhole() || offered.offersTextOptions) return false;
  if (!offered.offersPositions) {
    const auto type = findFileType(arguments.type.value_or("auto"));
    messages.error(
        fmt::format("cannot read {} as a {}: it has no fields; check the file and --type",
                    arguments.file, formatName(*type, reader.path())));
    return true;
  }
  messages.error(fmt::format("cannot read {}: the sheet has no line {}; check --header-row",
                             arguments.file, arguments.headerRow.value_or("1")));
  std::vector<std::wstring> tables;
  reader.tableList(tables);
  if (!arguments.table && tables.size() > 1) hintAtTables(tables, messages);
  return true;
}

/// WHY an SQLite database is asked for its tables first: it waits for a lock, and once is enough to know that it does
/// not answer.
bool readExtent(tableRW::tableReader& reader, extent wanted, const readingArguments& arguments) {
  if (isSqlite(reader, arguments)) {
    std::vector<std::wstring> tables;
    reader.tableList(tables);
    if (!reader.isWhole()) return false;
  }
  if (wanted.rows == extent::fieldsOnly) return reader.readOnlyHeaders();
  return wanted.rows == extent::wholeTable ? reader.read() : reader.readDemo(wanted.rows);
}

/// Whether a source without tables is a source at all. An SQLite file is opened before anybody looks into it, so
/// only a query tells: it answers even for a table that is not there.
bool isReadable(tableRW::tableReader& reader, const readingArguments& arguments) {
  if (isSqlite(reader, arguments)) return reader.readOnlyHeaders();
  return reader.isOK();
}

}  // namespace

exitCode openSource(const readingArguments& arguments, toolContext& context,
                    readerPointer& reader) {
  std::string problem;
  auto options = makeReaderOptions(arguments, problem);
  if (!options) {
    context.messages.error(problem);
    return exitCode::usage;
  }
  if (const auto reason = obstacle(options->path)) {
    context.messages.error(*reason);
    return exitCode::cannotOpen;
  }
  if (options->file_type == tableRW::fileTypeAuto)
    options->file_type = typeForExtension(options->path);
  // The automatic choice looks into a file of an unknown kind, and would take a pipe's begin away.
  const bool looksInside =
      options->file_type == tableRW::fileTypeAuto && !isChosenByExtension(options->path);
  if (looksInside && platform::isPipeOrDevice(options->path))
    options->file_type = tableRW::fileTypeCsv;
  if (!platform::isPipeOrDevice(options->path) &&
      explainUnreadable(options->path, context.messages))
    return exitCode::cannotOpen;
  if (refusesAsText(*options, context.messages)) return exitCode::cannotOpen;
  const exitCode reached = checkOdbcSource(*options, context.messages);
  if (reached != exitCode::clean) return reached;
  readerPointer opened(tableRW::tableReader::open(*options));
  if (opened->path().empty()) return explainNothingReads(*options, context.messages);
  hintAtUnusedOptions(*opened, *options, arguments, context.messages);
  reader = std::move(opened);
  return exitCode::clean;
}

bool readSource(tableRW::tableReader& reader, extent wanted, const readingArguments& arguments,
                toolContext& context) {
  bool isRead = false;
  const workbookReading converted(arguments, reader.path());
  {
    const progressLine progress(context.messages, fmt::format("reading {}", arguments.file));
    isRead = readExtent(reader, wanted, arguments);
  }
  if (explainInterruption(converted, arguments, context.messages)) return false;
  // A table that is not there has no fields, and reading them alone is no failure then.
  const bool offersTables = reader.get_capabilities().offersTables;
  if (isRead && reader.isWhole() && (reader.fieldCount() > 0 || !offersTables)) return true;
  if (!isRead || !explainNoFields(reader, arguments, context.messages))
    explainFailure(reader, arguments, context);
  return false;
}

void explainFailure(tableRW::tableReader& reader, const readingArguments& arguments,
                    toolContext& context) {
  if (explainPipe(reader, arguments, context.messages)) return;
  if (explainUnreadable(reader.path(), context.messages)) return;
  if (explainIncomplete(reader, arguments, context.messages)) return;
  if (explainSilentDatabase(reader, arguments, context.messages)) return;
  if (explainNameOfTable(reader, arguments, context.messages)) return;
  const std::vector<std::wstring> tables = tablesInstead(reader, arguments);
  if (tables.empty()) {
    const std::string table =
        arguments.table ? fmt::format(", table {}", inQuotes(*arguments.table)) : std::string();
    context.messages.error(fmt::format(
        "cannot read {}{}: its content is not what was expected; check the file and the options",
        arguments.file, table));
    return;
  }
  const std::string reason = arguments.table ? "it holds no table " + inQuotes(*arguments.table)
                                             : std::string("the table to read was not named");
  context.messages.error(fmt::format("cannot read {}: {}", arguments.file, reason));
  hintAtTables(tables, context.messages);
}

exitCode concludeReading(tableRW::tableReader& reader, const readingArguments& arguments,
                         toolContext& context, listing rejected, coverage seen) {
  context.output.flush();
  return diagnose(reader, arguments, rejected, seen, context.messages);
}

bool listSourceTables(tableRW::tableReader& reader, const readingArguments& arguments,
                      toolContext& context, std::vector<std::wstring>& tables) {
  const workbookReading converted(arguments, reader.path());
  reader.tableList(tables);
  if (explainInterruption(converted, arguments, context.messages)) return false;
  const bool isListed = reader.isWhole() && (!tables.empty() || isReadable(reader, arguments));
  if (isListed) return true;
  explainFailure(reader, arguments, context);
  return false;
}

}  // namespace vokTable

// The source of a command: a file that is looked at before it is opened, a reader for it, and what
// the user has to be told about the reading.
//
//     readerPointer reader;
//     exitCode outcome = openSource(arguments, context, reader);
//     if (!reader) return outcome;
//     if (!readSource(*reader, {}, arguments, context)) return exitCode::cannotOpen;
//     ... the command's own work ...
//     return concludeReading(*reader, arguments, context);
//
// The library has no messages, so the tool finds out for itself: a missing file and a folder are
// told apart beforehand, a file that may not be read afterwards; a reader whose path is empty is
// the one that reads nothing, which means that the format is not in this version. A pipe is opened
// once; unless the user says otherwise, it holds delimited text. A file that the library would take for
// delimited text because of its name is looked at first, and refused when it begins like another format.
#ifndef VOK_TOOLS_SOURCE_H
#define VOK_TOOLS_SOURCE_H

#include <memory>
#include <string>
#include <vector>

#include "table_rw/core/tableReader.h"
#include "tools/answer.h"
#include "tools/diagnosis.h"
#include "tools/exitCodes.h"
#include "tools/messages.h"
#include "tools/output.h"
#include "tools/readingOptions.h"

namespace vokTable {

/// Where a command speaks.
struct toolContext {
  explicit toolContext(answerForm form)
      : messages(messageWriter::forStandardError()),
        output(dataOutput::forStandardOutput()),
        answer(output, form) {}
  toolContext(const toolContext&) = delete;
  toolContext& operator=(const toolContext&) = delete;
  ~toolContext() = default;

  messageWriter messages;
  dataOutput output;
  answerWriter answer;
};

struct readerCloser {
  void operator()(tableRW::tableReader* reader) const { tableRW::tableReader::close(reader); }
};
using readerPointer = std::unique_ptr<tableRW::tableReader, readerCloser>;

/// Builds the reader for a source.
/// @param reader  receives it; stays null when the answer is not clean, which has been explained
/// then
exitCode openSource(const readingArguments& arguments, toolContext& context, readerPointer& reader);

/// How much of a table is read.
struct extent {
  int rows = wholeTable;  ///< number of rows wanted, where the format can stop there
  static constexpr int wholeTable = -1;
  static constexpr int fieldsOnly = -2;
};

/// Reads the table and shows that work goes on.
/// @return false when it cannot be read, which has been explained then
bool readSource(tableRW::tableReader& reader, extent wanted, const readingArguments& arguments,
                toolContext& context);

/// Says why nothing could be read from an open source.
void explainFailure(tableRW::tableReader& reader, const readingArguments& arguments,
                    toolContext& context);

/// The tables of an open source; none is no failure.
/// @return false when the source cannot be read, which has been explained then
bool listSourceTables(tableRW::tableReader& reader, const readingArguments& arguments,
                      toolContext& context, std::vector<std::wstring>& tables);

/// Hands out what was written, then says what is odd about the source (see diagnosis.h).
/// @return rejected when lines were rejected, else clean
exitCode concludeReading(tableRW::tableReader& reader, const readingArguments& arguments,
                         toolContext& context, listing rejected = listing::elsewhere,
                         coverage seen = coverage::whole);

}  // namespace vokTable

#endif

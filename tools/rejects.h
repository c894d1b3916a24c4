// The file that `convert --rejects` keeps the rejected lines in: their own bytes, line ends included, one behind
// the other, so that they can be put right and read again. It is written along with the target, also without a
// rejected line: then it is empty, and no older file is taken for the answer.
//
//     rejectsFile rejects(request, *reader, messages);
//     rejects.prepare();   // before the target is touched: what can fail fails here
//     ... write the target ...
//     rejects.finish();    // takes its name
//
// Rows of a sheet have no bytes of their own in the workbook; their text is kept as UTF-8, a line each.
#ifndef VOK_TOOLS_REJECTS_H
#define VOK_TOOLS_REJECTS_H

#include <optional>

#include "table_rw/core/tableReader.h"
#include "tools/commandLine.h"
#include "tools/exitCodes.h"
#include "tools/messages.h"
#include "tools/targetFile.h"

namespace vokTable {

/// Refuses a file that should not be written, and a source that can be read only once. Clean without --rejects.
exitCode checkRejects(const commandLine& request, const tableRW::tableReader& reader,
                      const messageWriter& messages);

/// The file on its way. Without --rejects all is clean, and nothing done. What was prepared and not finished goes
/// away with its owner. Request, reader and messages outlive it.
class rejectsFile {
 public:
  rejectsFile(const commandLine& request, tableRW::tableReader& reader,
              const messageWriter& messages)
      : request_(request), reader_(reader), messages_(messages) {}

  /// Writes the rejected lines of the last read under a temporary name.
  exitCode prepare();

  /// After a clean prepare: takes the wanted name, which must not have become that of another file meanwhile.
  exitCode finish();

 private:
  const commandLine& request_;
  tableRW::tableReader& reader_;
  const messageWriter& messages_;
  std::optional<targetFile> file_;
};

}  // namespace vokTable

#endif

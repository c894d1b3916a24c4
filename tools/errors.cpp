// The command errors: every rejected line, where it stands, what is wrong with it, and its text.
#include <fmt/core.h>

#include <string>

#include "platform/files.h"
#include "tools/commands.h"
#include "tools/workbookReading.h"

namespace vokTable {

exitCode listRejectedLines(const commandLine& request, toolContext& context) {
  readerPointer reader;
  const exitCode opened = openSource(request.reading, context, reader);
  if (!reader) return opened;
  if (platform::isPipeOrDevice(reader->path())) {
    context.messages.error(fmt::format(
        "{} can be read only once, and listing its rejected lines takes two: save it to a file",
        request.reading.file));
    return exitCode::cannotOpen;
  }
  if (!readSource(*reader, {}, request.reading, context)) return exitCode::cannotOpen;
  recordList list;
  list.key = "rejected";
  list.columns = {
      {"line",     "line",     columnKind::number},
      {"offset",   "offset",   columnKind::number},
      {"expected", "expected", columnKind::number},
      {"found",    "found",    columnKind::number},
      {"text",     "text",     columnKind::text  },
  };
  bool isWhole = true;
  list.visitRows = [&](const rowReceiver& receive) {
    if (reader->errorCount() == 0) return;
    const std::wstring expected = std::to_wstring(reader->fieldCount());
    const workbookReading converted(request.reading, reader->path());
    isWhole = reader->rejectedRecords([&](const tableRW::rejectedRecord& record) {
      const bool hasPlace = record.offset != tableRW::rejectedRecord::noOffset;
      return receive({std::to_wstring(record.line + 1),
                      hasPlace ? std::to_wstring(record.offset) : std::wstring(), expected,
                      std::to_wstring(record.valueCount), record.text});
    });
  };
  context.answer.records(list);
  if (!isWhole) {
    context.messages.error(
        fmt::format("cannot read {} a second time: the list of its rejected lines is not whole",
                    request.reading.file));
    return exitCode::cannotOpen;
  }
  return concludeReading(*reader, request.reading, context, listing::here);
}

}  // namespace vokTable

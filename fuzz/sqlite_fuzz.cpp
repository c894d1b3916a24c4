// The SQLite reader on files of any bytes: rows are whole, and nothing on the disk is changed or made.
#include <algorithm>

#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "platform/files.h"
#include "table_rw/readers/tableReader_sqlite.h"
#include "tests/support/temporaryFolder.h"

namespace {

using fuzzing::demand;

void checkRows(const tableRW::tableReader& reader) {
  std::vector<std::wstring> row;
  for (std::size_t i = 0; i < reader.count(); ++i) {
    reader.getRow(i, row);
    demand(row.size() == reader.fieldCount(), "a row without full width");
  }
}

}  // namespace

// WHY a limit: a view of a few bytes may have any number of rows, which is no fault of who reads it.
std::string fuzzing::sqlite(std::string_view bytes) {
  constexpr int mostRows = 2000;
  const std::wstring path = writeInput(L"input.sqlite", bytes);
  std::string outcome;
  {
    tableRW::tableReaderOptions options(path);
    options.table = L"t";
    tableRW::tableReader_sqlite reader(options);
    std::vector<std::wstring> tables;
    reader.tableList(tables);
    const bool isRead = reader.readDemo(mostRows);
    demand(!isRead || reader.fieldCount() > 0, "a table without fields is read");
    demand(reader.count() <= mostRows, "more rows than the limit");
    demand(reader.errorCount() == 0, "records are rejected");
    checkRows(reader);
    outcome = (isRead ? "read, " : "refused, ") + std::to_string(reader.fieldCount()) +
              " fields, " + std::to_string(reader.count()) + " rows, " +
              std::to_string(tables.size()) + " tables";
    if (!tables.empty()) {
      reader.setTable(tables.back());
      reader.readDemo(mostRows);
      checkRows(reader);
    }
    reader.readOnlyHeaders();
    demand(reader.count() == 0, "headers come with rows");
  }
  demand(testSupport::readFile(path) == bytes, "the file is changed");
  for (const wchar_t* const ending : {L"-wal", L"-shm", L"-journal"})
    demand(!platform::fileExists(path + ending), "a file is left beside the database");
  return outcome;
}

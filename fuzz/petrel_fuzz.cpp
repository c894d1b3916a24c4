// Feeds arbitrary bytes to the Petrel reader and checks what holds for every input: it is read, has no more
// rows and fields than the file has bytes, and a limit gives the first rows of the same table.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/environment.h"
#include "platform/files.h"
#include "table_rw/core/tableReader.h"

namespace {

constexpr std::size_t mostBytes = 64 * 1024;

void demand(bool holds) {
  if (!holds) std::abort();
}

std::vector<std::vector<std::wstring>> rowsOf(const tableRW::tableReader& reader) {
  std::vector<std::vector<std::wstring>> rows(reader.count());
  for (std::size_t i = 0; i < rows.size(); ++i) reader.getRow(i, rows[i]);
  return rows;
}

}  // namespace

// The first byte is the limit of a second read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1 || size > mostBytes) return 0;
  const std::wstring path = platform::temporaryFolder() + L"petrel_fuzz_" +
                            std::to_wstring(platform::currentThreadId()) + L".tops";
  {
    platform::binaryFile file;
    if (!file.openForWriting(path) || !file.write(data + 1, size - 1) || !file.close()) return 0;
  }
  tableRW::tableReaderOptions options(path);
  options.file_type = tableRW::fileTypePetrel;
  tableRW::tableReader* const reader = tableRW::tableReader::open(options);
  demand(reader->read() && reader->isOK());
  demand(reader->count() <= size && reader->fieldCount() <= size && reader->errorCount() == 0);
  std::vector<std::vector<std::wstring>> all = rowsOf(*reader);
  demand(reader->readDemo(data[0]));
  const std::size_t limit = data[0] == 0 ? 1 : data[0];
  if (all.size() > limit) all.resize(limit);
  demand(rowsOf(*reader) == all);
  std::vector<std::wstring> tables;
  reader->tableList(tables);
  demand(tables.size() == 1);
  tableRW::tableReader::close(reader);
  return 0;
}

// Feeds arbitrary bytes to the DBF reader, with a memo file beside them, and checks what holds for every
// input: what opens has rows of full width, no more of them than the file has bytes, and gives the same
// table when it is read again.
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

std::wstring inputPath(const wchar_t* extension) {
  return platform::temporaryFolder() + L"dbf_fuzz_" + std::to_wstring(platform::currentThreadId()) +
         extension;
}

bool write(const std::wstring& path, const std::uint8_t* data, std::size_t size) {
  platform::binaryFile file;
  return file.openForWriting(path) && file.write(data, size) && file.close();
}

}  // namespace

// The first byte says how much of the input is the memo file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2 || size > mostBytes) return 0;
  const std::size_t memoSize = (size - 1) * (data[0] % 8) / 16;
  const wchar_t* const memoName = (data[0] & 8) != 0 ? L".fpt" : L".dbt";
  platform::removeFile(inputPath(L".fpt"));
  platform::removeFile(inputPath(L".dbt"));
  if (!write(inputPath(memoName), data + 1, memoSize) ||
      !write(inputPath(L".dbf"), data + 1 + memoSize, size - 1 - memoSize))
    return 0;
  tableRW::tableReaderOptions options(inputPath(L".dbf"));
  options.file_type = tableRW::fileTypeDbf;
  tableRW::tableReader* const reader = tableRW::tableReader::open(options);
  if (reader->read()) {
    demand(reader->isOK() && reader->count() <= size);
    std::vector<std::wstring> row;
    for (std::size_t i = 0; i < reader->count(); ++i) {
      reader->getRow(i, row);
      demand(row.size() == reader->fieldCount());
    }
    const std::uint64_t rows = reader->count();
    demand(reader->read() && reader->count() == rows);
  }
  tableRW::tableReader::close(reader);
  return 0;
}

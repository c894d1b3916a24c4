// Feeds arbitrary bytes to the Micromine reader and checks what holds for every input: what opens has rows of
// full width, no more of them than the file has bytes, and gives the same table when it is read again.
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
constexpr std::size_t pageSize = 4096;

void demand(bool holds) {
  if (!holds) std::abort();
}

// The extended flavour's first page is made here, so that the input is of use from its second byte on.
std::string fileOf(const std::uint8_t* data, std::size_t size) {
  std::string bytes;
  if ((data[0] & 1) != 0) {
    bytes.assign(
        "THIS IS MICROMINE EXTENDED DATA FILE!\x07\x1A\x01\r\n<data "
        "codepage=\"UTF-8\"/></metadata>");
    bytes.resize(pageSize, '\0');
  }
  for (std::size_t i = 1; i < size; ++i) bytes += static_cast<char>(data[i]);
  return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1 || size > mostBytes) return 0;
  const std::wstring path = platform::temporaryFolder() + L"micromine_fuzz_" +
                            std::to_wstring(platform::currentThreadId()) + L".dat";
  const std::string bytes = fileOf(data, size);
  {
    platform::binaryFile file;
    if (!file.openForWriting(path) || !file.write(bytes.data(), bytes.size()) || !file.close())
      return 0;
  }
  tableRW::tableReaderOptions options(path);
  options.file_type = tableRW::fileTypeMicromineData;
  tableRW::tableReader* const reader = tableRW::tableReader::open(options);
  if (reader->read()) {
    demand(reader->count() <= bytes.size() && reader->fieldCount() <= bytes.size());
    std::vector<std::wstring> row;
    for (std::size_t i = 0; i < reader->count(); ++i) {
      reader->getRow(i, row);
      demand(row.size() == reader->fieldCount());
    }
    const std::uint64_t rows = reader->count();
    demand(reader->read() && reader->count() == rows);
  } else {
    demand(reader->count() == 0 && reader->fieldCount() == 0 && !reader->isOK());
  }
  tableRW::tableReader::close(reader);
  return 0;
}

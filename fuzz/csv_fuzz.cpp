// Feeds arbitrary bytes and options to the CSV reader and checks what holds for every input: the read
// succeeds, every row has one value per field, the rejected lines are listed in order and come back with
// a number of values that is wrong, and a second read gives the same table.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/environment.h"
#include "platform/files.h"
#include "table_rw/core/tableReader.h"

namespace {

void demand(bool holds) {
  if (!holds) std::abort();
}

const std::wstring& inputPath() {
  static const std::wstring path = platform::temporaryFolder() + L"csv_fuzz_" +
                                   std::to_wstring(platform::currentThreadId()) + L".csv";
  return path;
}

void checkRows(const tableRW::tableReader& reader) {
  std::vector<std::wstring> row;
  for (std::size_t i = 0; i < reader.count(); ++i) {
    reader.getRow(i, row);
    demand(row.size() == reader.fieldCount());
  }
}

void checkRejected(tableRW::tableReader& reader) {
  std::size_t seen = 0;
  std::uint64_t end = 0;
  demand(reader.rejectedRecords([&](const tableRW::rejectedRecord& record) {
    demand(record.line == reader.getError(seen));
    demand(seen == 0 || record.line > reader.getError(seen - 1));
    demand(record.valueCount != reader.fieldCount());
    demand(record.offset >= end && record.size > 0);
    end = record.offset + record.size;
    ++seen;
    return true;
  }));
  demand(seen == reader.errorCount());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 4) return 0;
  static const wchar_t* const delimiters[] = {L";", L"\t", L",", L";;", L"", L"\x0436"};
  static const wchar_t* const quotes[] = {L"\"", L"'", L"", L"\"\"", L"\x00AB"};
  tableRW::tableReaderOptions options(inputPath());
  options.file_type = tableRW::fileTypeCsv;
  options.delimiter = delimiters[data[0] % 6];
  options.quote = quotes[data[1] % 5];
  options.encoding = data[2] % 19;
  options.header_position = static_cast<std::int8_t>(data[3]) % 8;

  platform::binaryFile file;
  if (!file.openForWriting(inputPath()) || !file.write(data + 4, size - 4) || !file.close())
    return 0;
  tableRW::tableReader* reader = tableRW::tableReader::open(options);
  demand(reader->read() && reader->isOK());
  checkRows(*reader);
  checkRejected(*reader);
  const std::uint64_t rows = reader->count();
  const std::uint64_t errors = reader->errorCount();
  demand(reader->read() && reader->count() == rows && reader->errorCount() == errors);
  tableRW::tableReader::close(reader);
  return 0;
}

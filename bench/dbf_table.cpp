// This library reading and writing DBF files, through its classes, as a host uses it:
//
//   dbf_table make FILE RECORDS   the data of the benchmark, the same at every run
//   dbf_table read FILE           a read of the whole file
//   dbf_table write FILE OUT      a read, then the table, held as vectors, is written
//
// The system's code page is Windows-1251. Twelve fields of 1 to 20 bytes, two of them Russian.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/vok_basic.h"
#include "report.h"
#include "table_rw/core/tableReader.h"
#include "table_rw/writers/tableWriter.h"

namespace {

using bench::stopwatch;
using tableRW::tableReader;
using tableRW::tableWriter;
using rowsOfText = std::vector<std::vector<std::wstring>>;

struct closer {
  void operator()(tableReader* reader) const { tableReader::close(reader); }
  void operator()(tableWriter* writer) const { tableWriter::close(writer); }
};

std::vector<tableRW::writerField> fields() {
  using tableRW::fldNumber;
  using tableRW::fldText;
  return {
      {L"WELL",    fldText,   8                 },
      {L"N",       fldNumber, 8,                  0},
      {L"DEPTH",          fldNumber,            10,            2},
      {L"FIELD",         fldText,                  20                 },
      {L"GR",        fldNumber,8,2},
      {L"NPHI",         fldNumber,                  8,                                        4},
      {L"RHOB",fldNumber,8,3},
      {L"DT",    fldNumber,            8,                                              2},
      {L"CODE",          fldNumber,               4,                     0},
      {L"LITH",         fldText,                  12},
      {L"PERM",         fldNumber,   12, 4},
      {L"DATE",fldText,10                  }
  };
}

std::wstring path(const char* name) { return std::filesystem::path(name).wstring(); }

std::uint64_t sizeOf(const char* name) { return std::filesystem::file_size(name); }

std::unique_ptr<tableWriter, closer> openWriter(const char* name) {
  tableRW::tableWriterOptions options;
  options.fileName = path(name);
  options.fields = fields();
  return std::unique_ptr<tableWriter, closer>(tableWriter::open(options));
}

std::unique_ptr<tableReader, closer> readTable(const char* name) {
  std::unique_ptr<tableReader, closer> reader(
      tableReader::open(tableRW::tableReaderOptions(path(name))));
  if (!reader->read()) bench::fail("cannot be read", name);
  return reader;
}

// A number with a fixed count of decimals, of the digits of `value`.
std::wstring decimal(std::uint64_t value, std::size_t decimals) {
  std::wstring digits = std::to_wstring(value);
  if (digits.size() <= decimals) digits.insert(0, decimals + 1 - digits.size(), L'0');
  return digits.insert(digits.size() - decimals, 1, L'.');
}

void makeData(const char* name, std::uint32_t records) {
  const std::wstring oilFields[] = {L"\x0421\x0435\x0432\x0435\x0440\x043D\x0430\x044F",
                                    L"\x0417\x0430\x0440\x0435\x0447\x043D\x0430\x044F",
                                    L"\x0412\x043E\x0441\x0442\x043E\x0447\x043D\x0430\x044F"};
  const std::wstring rocks[] = {L"\x043F\x0435\x0441\x043E\x043A",
                                L"\x0433\x043B\x0438\x043D\x0430"};
  const auto writer = openWriter(name);
  std::uint64_t state = 1;
  const auto below = [&state](std::uint64_t limit) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    return (state >> 33) % limit;
  };
  for (std::uint32_t i = 0; i < records; ++i) {
    const std::wstring number = std::to_wstring(10000000 + i).substr(1);
    writer->addRow({L"W" + number, std::to_wstring(i), decimal(below(500000), 2),
                    oilFields[below(3)], decimal(below(20000), 2), decimal(below(5000), 4),
                    decimal(1500 + below(1500), 3), decimal(below(20000), 2),
                    std::to_wstring(below(100)), rocks[below(2)], decimal(below(9999999), 4),
                    L"2020-01-" + std::to_wstring(10 + below(20))});
  }
}

void measureRead(const char* name) {
  const stopwatch watch;
  const auto reader = readTable(name);
  const double seconds = watch.seconds();
  bench::report("read", seconds,
                {
                    {"rows",   reader->count()                       },
                    {"values", reader->count() * reader->fieldCount()}
  });
  bench::leave();
}

void measureWrite(const char* name, const char* target) {
  rowsOfText rows;
  {
    const auto reader = readTable(name);
    rows.resize(reader->count());
    for (std::size_t row = 0; row < rows.size(); ++row) reader->getRow(row, rows[row]);
  }
  const stopwatch watch;
  auto writer = openWriter(target);
  for (const std::vector<std::wstring>& row : rows) writer->addRow(row);
  writer.reset();
  bench::report("write", watch.seconds(),
                {
                    {"rows",    rows.size()   },
                    {"written", sizeOf(target)}
  });
  bench::leave();
}

}  // namespace

int main(int count, char** words) {
  vo_options_set_system_code_page(1251);
  const std::string_view mode = count > 2 ? words[1] : "";
  if (mode == "make" && count == 4)
    makeData(words[2], static_cast<std::uint32_t>(std::strtoul(words[3], nullptr, 10)));
  else if (mode == "read" && count == 3)
    measureRead(words[2]);
  else if (mode == "write" && count == 4)
    measureWrite(words[2], words[3]);
  else
    bench::fail("make FILE RECORDS | read FILE | write FILE OUT", words[0]);
  return 0;
}

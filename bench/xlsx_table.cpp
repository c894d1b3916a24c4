// This library writing a workbook, through its classes, as a host uses it:
//
//   xlsx_table held FILE OUT      the rows are held as wide strings; the writing alone is timed
//   xlsx_table streamed FILE OUT  every row is read when it is written, so that the peak of memory is the writer's
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "report.h"
#include "rowsFile.h"
#include "table_rw/writers/tableWriter.h"

namespace {

using row = std::vector<std::wstring>;

// The characters of the data are ASCII and Russian: two bytes at most.
void widen(std::string_view bytes, std::wstring& text) {
  text.clear();
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    if (byte < 0x80)
      text += static_cast<wchar_t>(byte);
    else
      text += static_cast<wchar_t>((byte & 0x1F) << 6 | (bytes[++i] & 0x3F));
  }
}

tableRW::tableWriter* openWriter(const char* target, const row& names) {
  tableRW::tableWriterOptions options;
  options.fileName = std::filesystem::path(target).wstring();
  for (const std::wstring& name : names) options.fields.push_back({name});
  return tableRW::tableWriter::open(std::move(options));
}

void reportWritten(const char* mode, double seconds, const char* target) {
  bench::report(mode, seconds,
                {
                    {"rows",    bench::writtenRows                      },
                    {"values",  bench::writtenRows * bench::wellsColumns},
                    {"written", std::filesystem::file_size(target)      }
  });
  bench::leave();
}

void writeHeld(const char* source, const char* target) {
  std::vector<row> rows(1 + bench::writtenRows, row(bench::wellsColumns));
  {
    const bench::rowsFile file(source);
    for (std::size_t i = 0; i < file.cells.size(); ++i)
      widen(file.cells[i], rows[i / bench::wellsColumns][i % bench::wellsColumns]);
  }
  const bench::stopwatch watch;
  tableRW::tableWriter* const writer = openWriter(target, rows[0]);
  for (std::size_t i = 1; i < rows.size(); ++i) writer->addRow(rows[i]);
  tableRW::tableWriter::close(writer);
  reportWritten("held", watch.seconds(), target);
}

void writeStreamed(const char* source, const char* target) {
  std::ifstream file(source, std::ios::binary);
  std::string line;
  row values(bench::wellsColumns);
  const auto next = [&] {
    std::getline(file, line);
    std::size_t begin = 0;
    for (std::wstring& value : values) {
      const std::size_t end = std::min(line.find(';', begin), line.size());
      widen(std::string_view(line).substr(begin, end - begin), value);
      begin = end + 1;
    }
  };
  next();
  const bench::stopwatch watch;
  tableRW::tableWriter* const writer = openWriter(target, values);
  for (std::size_t i = 0; i < bench::writtenRows; ++i) {
    next();
    writer->addRow(values);
  }
  tableRW::tableWriter::close(writer);
  reportWritten("streamed", watch.seconds(), target);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view mode = argc == 4 ? argv[1] : "";
  if (mode == "held") writeHeld(argv[2], argv[3]);
  if (mode == "streamed") writeStreamed(argv[2], argv[3]);
  std::fprintf(stderr, "usage: xlsx_table held|streamed FILE OUT\n");
  return 2;
}

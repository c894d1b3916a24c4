// This library reading and writing delimited text, through its classes, as a host uses it:
//
//   csv_table read FILE ENCODING         a read of the whole file
//   csv_table access FILE ENCODING       a read, then every way of taking values out of the table
//   csv_table write FILE ENCODING OUT    a read, then the table, held as vectors, is written
//
// ENCODING is the number of the file's encoding (tableReaderOptions::encoding).
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "report.h"
#include "table_rw/core/tableReader.h"
#include "table_rw/writers/tableWriter.h"
#include "wells.h"

namespace {

using bench::stopwatch;
using tableRW::tableReader;

struct closeReader {
  void operator()(tableReader* reader) const { tableReader::close(reader); }
};
using ownedReader = std::unique_ptr<tableReader, closeReader>;

ownedReader readTable(const char* path, int encoding) {
  tableRW::tableReaderOptions options(std::filesystem::path(path).wstring());
  options.file_type = tableRW::fileTypeCsv;
  options.encoding = encoding;
  ownedReader reader(tableReader::open(options));
  if (!reader->read()) bench::fail("cannot be read", path);
  return reader;
}

void measureRead(const char* path, int encoding) {
  const stopwatch watch;
  const ownedReader reader = readTable(path, encoding);
  const double seconds = watch.seconds();
  const std::uint64_t rows = reader->count();
  const std::uint64_t rejected = reader->errorCount();
  bench::report("read", seconds,
                {
                    {"rows",     rows                       },
                    {"values",   rows * reader->fieldCount()},
                    {"rejected", rejected                   },
                    {"lines",    rows + rejected            }
  });
  bench::leave();
}

// --- access
// ---------------------------------------------------------------------------------------

void measureValue(const tableReader& reader) {
  const std::size_t columns = reader.fieldCount();
  const std::size_t rows = reader.count();
  std::uint64_t characters = 0;
  const stopwatch watch;
  for (std::size_t row = 0; row < rows; ++row)
    for (std::size_t column = 0; column < columns; ++column)
      characters += reader.value(column, row).size();
  bench::report("value", watch.seconds(),
                {
                    {"values",     rows * columns},
                    {"characters", characters    }
  });
}

std::uint64_t charactersIn(const std::vector<std::wstring>& values) {
  std::uint64_t characters = 0;
  for (const std::wstring& value : values) characters += value.size();
  return characters;
}

void measureRows(const tableReader& reader) {
  const std::size_t rows = reader.count();
  std::uint64_t values = 0;
  std::uint64_t characters = 0;
  std::vector<std::wstring> taken;
  const stopwatch watch;
  for (std::size_t row = 0; row < rows; ++row) {
    reader.getRow(row, taken);
    values += taken.size();
    characters += charactersIn(taken);
  }
  bench::report("getRow", watch.seconds(),
                {
                    {"values",     values    },
                    {"characters", characters}
  });
}

void measureColumns(const tableReader& reader) {
  const std::size_t columns = reader.fieldCount();
  std::uint64_t values = 0;
  std::uint64_t characters = 0;
  std::vector<std::wstring> taken;
  const stopwatch watch;
  for (std::size_t column = 0; column < columns; ++column) {
    reader.values(column, taken);
    values += taken.size();
    characters += charactersIn(taken);
  }
  bench::report("values", watch.seconds(),
                {
                    {"values",     values    },
                    {"characters", characters}
  });
}

/// One search takes so little time that several are measured and their mean is reported.
constexpr int searches = 5;

/// The wells of one field: every sixteenth row.
void measureSearchAll(const tableReader& reader) {
  std::wstring field;
  for (std::size_t row = 0; field.empty() && row < reader.count(); ++row)
    field = reader.value(bench::wellsFieldColumn, row);
  std::vector<std::wstring> wells;
  const stopwatch watch;
  for (int i = 0; i < searches; ++i) reader.searchValue(L"WELL", {L"FIELD", field}, wells);
  const double seconds = watch.seconds() / searches;

  std::size_t found = 0;
  for (std::size_t row = 0; row < reader.count(); ++row) {
    if (reader.value(L"FIELD", row) != field) continue;
    if (found == wells.size() || wells[found] != reader.value(L"WELL", row))
      bench::fail("wrong wells", "searchValue");
    ++found;
  }
  if (found != wells.size()) bench::fail("too many wells", "searchValue");
  bench::report("search-all", seconds,
                {
                    {"found", found}
  });
}

/// The date of the last well: every row is looked at.
void measureSearchFirst(const tableReader& reader) {
  const std::size_t last = reader.count() - 1;
  const std::vector<tableReader::indexCondition> conditions = {
      {0, reader.value(L"WELL", last)}
  };
  std::wstring date;
  const stopwatch watch;
  for (int i = 0; i < searches; ++i) date = reader.searchValue(L"DATE", conditions);
  const double seconds = watch.seconds() / searches;
  if (date != reader.value(L"DATE", last)) bench::fail("wrong date", "searchValue");
  bench::report("search-first", seconds,
                {
                    {"found", 1}
  });
}

void measureAccess(const char* path, int encoding) {
  const ownedReader reader = readTable(path, encoding);
  if (reader->count() == 0) bench::fail("holds no rows", path);
  measureValue(*reader);
  measureRows(*reader);
  measureColumns(*reader);
  measureSearchAll(*reader);
  measureSearchFirst(*reader);
  bench::leave();
}

// --- write
// ----------------------------------------------------------------------------------------

void measureWrite(const char* path, int encoding, const char* target) {
  std::vector<std::vector<std::wstring>> rows;
  tableRW::tableWriterOptions options;
  options.fileName = std::filesystem::path(target).wstring();
  {
    const ownedReader reader = readTable(path, encoding);
    for (std::size_t i = 0; i < reader->fieldCount(); ++i)
      options.fields.push_back({reader->fieldName(i)});
    rows.resize(reader->count());
    for (std::size_t i = 0; i < rows.size(); ++i) reader->getRow(i, rows[i]);
  }
  const stopwatch watch;
  tableRW::tableWriter* const writer = tableRW::tableWriter::open(options);
  if (writer == nullptr) bench::fail("cannot be created", target);
  for (const std::vector<std::wstring>& row : rows) writer->addRow(row);
  tableRW::tableWriter::close(writer);
  bench::report("write", watch.seconds(),
                {
                    {"rows",    rows.size()                       },
                    {"written", std::filesystem::file_size(target)}
  });
  bench::leave();
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view mode = argc < 4 ? "" : argv[1];
  const int encoding = argc < 4 ? 0 : std::atoi(argv[3]);
  if (mode == "read") measureRead(argv[2], encoding);
  if (mode == "access") measureAccess(argv[2], encoding);
  if (mode == "write" && argc == 5) measureWrite(argv[2], encoding, argv[4]);
  std::fprintf(stderr, "usage: csv_table read|access|write FILE ENCODING [OUT]\n");
  return 2;
}

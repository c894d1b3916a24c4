// Reads examples/wells.csv through the class interface and prints a short report.
//
//     read_wells_cpp [folder]      the folder that holds wells.csv; "examples" when not given
//
// Shown here: options, opening and reading, a loop over the rows, the list of rejected lines, value
// search, closing. All text of the library is wide; this program prints it as UTF-8.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "table_rw/core/tableReader.h"
#include "wide_text.h"

namespace {

using tableRW::tableReader;

struct readerCloser {
  void operator()(tableReader* reader) const { tableReader::close(reader); }
};

void printFields(const tableReader& reader) {
  std::vector<std::wstring> fields;
  reader.fieldList(fields);
  std::printf("%zu fields:", fields.size());
  for (const std::wstring& field : fields) std::printf(" %s", utf8(field).c_str());
  std::printf("\n");
}

void printRows(const tableReader& reader) {
  std::printf("%s rows\n", std::to_string(reader.count()).c_str());
  for (std::size_t row = 0; row < reader.count(); ++row) {
    std::printf("  %s, %s: %s m\n", utf8(reader.value(L"Скважина", row)).c_str(),
                utf8(reader.value(L"Площадь", row)).c_str(),
                utf8(reader.value(L"Забой", row)).c_str());
  }
}

// The library counts lines from 0; people and their editors count from 1.
void printRejectedLines(tableReader& reader) {
  std::printf("%s rejected lines\n", std::to_string(reader.errorCount()).c_str());
  reader.rejectedRecords([](const tableRW::rejectedRecord& record) {
    std::printf("  line %s has %zu values: %s\n", std::to_string(record.line + 1).c_str(),
                record.valueCount, utf8(record.text).c_str());
    return true;
  });
}

void search(const tableReader& reader) {
  const auto area = static_cast<std::size_t>(reader.fieldNum(L"Площадь"));
  const auto horizon = static_cast<std::size_t>(reader.fieldNum(L"Горизонт"));
  const std::wstring first =
      reader.searchValue(L"Скважина", {
                                          {area,    L"Северная"},
                                          {horizon, L"Д2"             }
  });
  std::printf("first well of Северная in Д2: %s\n", utf8(first).c_str());

  std::vector<std::wstring> wells;
  const tableReader::namedCondition onArea(L"Площадь", L"Заречная");
  reader.searchValue(L"Скважина", onArea, wells);
  std::printf("wells of Заречная:");
  for (const std::wstring& well : wells) std::printf(" %s", utf8(well).c_str());
  std::printf("\n");
}

}  // namespace

int main(int count, char** arguments) {
  const std::wstring folder = wide(count > 1 ? arguments[1] : "examples");

  tableRW::tableReaderOptions options(folder + L"/wells.csv");
  options.header_position = 0;  // lines count from 0; this is the default
  options.delimiter = L";";     // the default too
  options.encoding = 0;         // UTF-8, the default; 8 is CP1251, 16 is CP866

  const std::unique_ptr<tableReader, readerCloser> reader(tableReader::open(options));
  if (!reader->read()) {
    std::fprintf(stderr, "cannot read %s\n", utf8(options.path).c_str());
    return 1;
  }
  printFields(*reader);
  printRows(*reader);
  printRejectedLines(*reader);
  search(*reader);
  return 0;
}

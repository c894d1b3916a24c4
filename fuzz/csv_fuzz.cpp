// The CSV reader with every option from the input: it gives what its slow twin gives, header, rows and rejected
// lines, and a second read gives the same.
#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "table_rw/readers/tableReader_csv.h"
#include "tests/support/csvComparison.h"

namespace {

using fuzzing::demand;

// Where the rejected lines stand in the file: in order, and each as its bytes.
void checkPlaces(tableRW::tableReader& reader, std::string_view bytes) {
  std::uint64_t end = 0;
  reader.rejectedRecords([&](const tableRW::rejectedRecord& record) {
    demand(record.offset >= end && record.size > 0, "rejected lines overlap");
    end = record.offset + record.size;
    demand(end <= bytes.size(), "a rejected line ends behind the file");
    return true;
  });
}

}  // namespace

std::string fuzzing::csv(std::string_view bytes) {
  static const std::wstring delimiters[] = {L";", L"\t", L",", L";;", L"", L"\x0436", L" ", L"a"};
  static const std::wstring quotes[] = {L"\"", L"'", L"", L"\"\"", L"\x00AB", L";"};
  inputReader input(bytes);
  testSupport::csvOptions options;
  options.delimiter = input.oneOf(delimiters);
  options.quote = input.oneOf(quotes);
  options.encoding = static_cast<std::int32_t>(input.below(20));  // 19 is outside the table
  options.header = static_cast<std::int32_t>(input.below(8)) - 2;
  options.data = input.below(8);

  const std::wstring path = writeInput(L"input.csv", input.rest());
  const std::string difference = testSupport::differenceFromTwin(path, input.rest(), options);
  demand(difference.empty(), difference);
  tableRW::tableReader_csv reader(options.forFile(path));
  const std::string outcome = checkedTable(reader, input.rest().size() + 1);
  checkPlaces(reader, input.rest());
  return outcome;
}

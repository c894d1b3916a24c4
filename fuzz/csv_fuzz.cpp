// The CSV reader with every option from the input: it gives what its slow twin gives, header, rows and rejected
// lines, and a second read gives the same.
#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "table_rw/readers/tableReader_csv.h"
#include "tests/support/csvComparison.h"

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
  return checkedTable(reader, input.rest().size() + 1);
}

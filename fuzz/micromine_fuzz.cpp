// The Micromine reader: what opens is a table, see checkedTable, and has no more fields than bytes. Below a header
// that is right its records are those of the slow twin.
#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "table_rw/readers/tableReader_micromineDat.h"
#include "tests/reference/micromineTwin.h"
#include "tests/support/micromineBuilder.h"
#include "tests/support/tableText.h"

namespace {

using fuzzing::demand;
using fuzzing::inputReader;
using testSupport::micromineBuilder;

constexpr unsigned codePage = 1251;

std::string extendedPage() {
  constexpr std::size_t pageSize = 4096;
  std::string page =
      "THIS IS MICROMINE EXTENDED DATA FILE!\x07\x1A\x01\r\n<data "
      "codepage=\"UTF-8\"/></metadata>";
  page.resize(pageSize, '\0');
  return page;
}

// The header of a file whose variables, line ends and descriptions the input chooses.
micromineBuilder rightHeader(inputReader& input) {
  static constexpr std::string_view variables[] = {"A C3, X R8, N N5, L L4", "TENLETTERS C12, S S2",
                                                   "F F4", "A C1, B C1, C C1, D R8",
                                                   "X R8, Y R8, Z R8, HOLE C8"};
  micromineBuilder builder(input.oneOf(variables));
  builder.codePage("ibm-5347_P100-1998");
  if ((input.byte() & 1) != 0) builder.lineEnd("\n");
  // A line end within a description would begin another variable.
  std::string description(input.bytes(input.below(20)));
  for (char& byte : description)
    if (byte == '\r' || byte == '\n') byte = ' ';
  if (!description.empty()) builder.describe(0, description);
  return builder;
}

}  // namespace

// The first byte tells what stands before the rest: 1 the extended flavour's first page, 2 or 3 a whole header.
std::string fuzzing::micromine(std::string_view bytes) {
  inputReader input(bytes);
  const unsigned kind = input.byte() % 4;
  std::string file;
  if (kind >= 2)
    file = rightHeader(input).header();
  else if (kind == 1)
    file = extendedPage();
  file += input.rest();
  tableRW::tableReader_micromineDat reader{
      tableRW::tableReaderOptions(writeInput(L"input.dat", file))};
  const std::string outcome = checkedTable(reader, file.size(), true);
  demand(reader.fieldCount() <= file.size(), "more fields than bytes");
  // A file whose first record does not end as the header's lines do is none of these.
  if (kind >= 2 && outcome != "failed")
    demand(testSupport::contentOf(reader) == reference::readMicromine(file, codePage),
           "the twin reads something else");
  return outcome;
}

// The Micromine reader: what opens is a table, see checkedTable, and has no more fields than bytes.
#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "table_rw/readers/tableReader_micromineDat.h"

// An odd first byte puts the extended flavour's first page before the rest.
std::string fuzzing::micromine(std::string_view bytes) {
  constexpr std::size_t pageSize = 4096;
  inputReader input(bytes);
  std::string file;
  if ((input.byte() & 1) != 0) {
    file =
        "THIS IS MICROMINE EXTENDED DATA FILE!\x07\x1A\x01\r\n<data "
        "codepage=\"UTF-8\"/></metadata>";
    file.resize(pageSize, '\0');
  }
  file += input.rest();
  tableRW::tableReader_micromineDat reader{
      tableRW::tableReaderOptions(writeInput(L"input.dat", file))};
  const std::string outcome = checkedTable(reader, file.size(), true);
  demand(reader.fieldCount() <= file.size(), "more fields than bytes");
  return outcome;
}

// The Petrel reader: it gives what its slow twin gives, whole, with a limit, and the header alone.
#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "table_rw/readers/tableReader_petrel.h"
#include "tests/reference/petrelTwin.h"

// The first byte is the limit of a second read.
std::string fuzzing::petrel(std::string_view bytes) {
  inputReader input(bytes);
  const auto limit = static_cast<std::int32_t>(input.byte());
  const std::wstring path = writeInput(L"input.tops", input.rest());
  tableRW::tableReader_petrel reader{tableRW::tableReaderOptions(path)};
  const auto expectTwin = [&](const testSupport::tableContent& twin, const char* what) {
    const testSupport::tableContent content = testSupport::contentOf(reader);
    demand(content == twin, what + (": library " + testSupport::describe(content)) + "\ntwin " +
                                testSupport::describe(twin));
  };
  demand(reader.read(), "the read fails");
  expectTwin(reference::readPetrel(input.rest()), "read");
  const std::string outcome = outcomeOf(reader);
  demand(reader.readDemo(limit), "the limited read fails");
  expectTwin(reference::readPetrel(input.rest(), limit), "readDemo");
  demand(reader.readOnlyHeaders(), "the headers fail");
  expectTwin(reference::readPetrel(input.rest(), -1, true), "readOnlyHeaders");
  std::vector<std::wstring> tables;
  reader.tableList(tables);
  demand(tables.size() == 1, "not one table");
  return outcome;
}

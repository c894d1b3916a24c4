// .xls workbooks: records of the input in a compound file that is made here, or the input as the whole file. See
// checkedWorkbook.
#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "fuzz/workbookChecks.h"
#include "tests/support/workbookBuilders.h"

// The first byte chooses: 0 BIFF8 and 1 BIFF5 of two parts, globals and cells; 2 the whole stream; 3 the whole file.
std::string fuzzing::xls(std::string_view bytes) {
  constexpr std::size_t largestStream = 60000;  // that the builder takes
  inputReader input(bytes);
  const std::size_t kind = input.below(4);
  if (kind == 3) return checkedWorkbook(input.rest());
  if (input.rest().size() > largestStream) return "too long";
  if (kind == 2)
    return checkedWorkbook(testSupport::compoundOf("Workbook", std::string(input.rest())));
  const std::string globals(input.part());
  const std::string cells(input.rest());
  return checkedWorkbook(
      kind == 0 ? testSupport::compoundOf("Workbook", testSupport::biff8(globals, cells))
                : testSupport::compoundOf("Book", testSupport::biff5(globals, cells)));
}

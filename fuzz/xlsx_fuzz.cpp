// .xlsx workbooks whose parts are the input's, packed here with right checksums, so that what is changed in an
// input is XML and not an archive: see checkedWorkbook.
#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "fuzz/workbookChecks.h"
#include "tests/support/workbookBuilders.h"

// Parts, in this order: sheet, shared strings, styles, workbook, relationships of the workbook. A part that is
// empty stays the plain one; without shared strings there is no such part.
std::string fuzzing::xlsx(std::string_view bytes) {
  static constexpr std::string_view order[] = {"xl/worksheets/sheet1.xml", "xl/sharedStrings.xml",
                                               "xl/styles.xml", "xl/workbook.xml",
                                               "xl/_rels/workbook.xml.rels"};
  inputReader input(bytes);
  testSupport::xlsxBuilder plain;
  testSupport::zipMembers members = plain.members();
  for (const std::string_view name : order) {
    const std::string_view part = input.part();
    if (part.empty()) continue;
    bool isThere = false;
    for (auto& [member, content] : members) {
      if (member != name) continue;
      content = part;
      isThere = true;
    }
    if (!isThere) members.emplace_back(name, part);
  }
  return checkedWorkbook(testSupport::zipOf(members, false));
}

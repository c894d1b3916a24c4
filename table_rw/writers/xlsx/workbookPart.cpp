#include "table_rw/writers/xlsx/workbookPart.h"

#include <cstddef>

#include "table_rw/writers/xlsx/relationships.h"

namespace SimpleXlsx {

// The fixed numbers are those that Excel 2010 writes.
void writeWorkbook(xmlPart& part, const std::vector<std::wstring>& titles) {
  part.start("workbook")
      .attribute("xmlns", "http://schemas.openxmlformats.org/spreadsheetml/2006/main")
      .attribute("xmlns:r", "http://schemas.openxmlformats.org/officeDocument/2006/relationships");
  part.start("fileVersion")
      .attribute("appName", "xl")
      .attribute("lastEdited", 5)
      .attribute("lowestEdited", 5)
      .attribute("rupBuild", 9303)
      .end();
  part.start("workbookPr")
      .attribute("codeName", "ThisWorkbook")
      .attribute("defaultThemeVersion", 124226)
      .end();
  part.start("bookViews")
      .start("workbookView")
      .attribute("xWindow", 240)
      .attribute("yWindow", 15)
      .attribute("windowWidth", 16095)
      .attribute("windowHeight", 9660)
      .end()
      .end();
  part.start("sheets");
  for (std::size_t i = 0; i < titles.size(); ++i)
    part.start("sheet")
        .attribute("name", titles[i])
        .attribute("sheetId", i + 1)
        .attribute("r:id", worksheetRelationship(i + 1))
        .end();
  part.end();
  part.start("calcPr").attribute("calcId", 145621).end();
  part.end();
}

}  // namespace SimpleXlsx

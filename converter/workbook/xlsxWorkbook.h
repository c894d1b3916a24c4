// Workbooks of the kinds .xlsx and .xlsm: XML parts in a ZIP archive, transitional or strict.
//
// The workbook part, the styles and the shared strings are read when it is opened, a sheet when it is asked
// for. Refused: .xlsb, whose parts are no XML.
#ifndef VOK_CONVERTER_WORKBOOK_XLSXWORKBOOK_H
#define VOK_CONVERTER_WORKBOOK_XLSXWORKBOOK_H

#include "converter/workbook/cellText.h"
#include "converter/workbook/lineText.h"
#include "converter/workbook/textPool.h"
#include "converter/workbook/workbook.h"
#include "converter/workbook/xlsxPackage.h"

namespace converter {

/// What the cells of every sheet refer to.
struct xlsxContext {
  explicit xlsxContext(char delimiter) : replacements(delimiter) {}

  lineText replacements;
  textPool sharedStrings;  // as they can stand in a line
  numberFormats formats;
  dateSystem dates = dateSystem::from1900;
};

class xlsxWorkbook final : public workbook {
 public:
  explicit xlsxWorkbook(char delimiter) : context_(delimiter) {}

  bool open(platform::binaryFile& file, std::string& problem);
  bool readSheet(const sheetEntry& sheet, sheetReceiver& receiver, std::string& problem) override;

 private:
  bool findWorkbookPart(std::string& part, std::string& problem);
  bool readWorkbookPart(const std::string& part, std::string& problem);
  bool readStyles(const std::string& part, std::string& problem);
  bool readSharedStrings(const std::string& part, std::string& problem);

  zipArchive archive_;
  xlsxContext context_;
  std::string stringsPart_;
  bool hasStrings_ = false;  // they are read for the first sheet, not for a list of sheets
};

}  // namespace converter

#endif

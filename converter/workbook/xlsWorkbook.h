// Workbooks of the kind .xls: a stream of BIFF8 (Excel 97 to 2003) or BIFF5 records (Excel 5 and 95), in a
// compound file or, rarely, alone.
//
// Refused: workbooks that are protected by a password, and those of Excel 4 and older.
// FORMAT: the records are those of [MS-XLS]; BIFF5 has the same with shorter strings in the bytes of a code
// page. Counts in the file are not trusted: texts, styles and cells are taken while there are any.
#ifndef VOK_CONVERTER_WORKBOOK_XLSWORKBOOK_H
#define VOK_CONVERTER_WORKBOOK_XLSWORKBOOK_H

#include <array>
#include <memory>
#include <string>

#include "converter/container/byteStream.h"
#include "converter/syntax/biffRecords.h"
#include "converter/workbook/cellText.h"
#include "converter/workbook/lineText.h"
#include "converter/workbook/textPool.h"
#include "converter/workbook/workbook.h"

namespace converter {

/// Bytes of BIFF5 text as characters.
class byteText {
 public:
  byteText();
  /// @param number  as a CODEPAGE record has it. What a page that is not known lacks becomes U+FFFD.
  void choose(unsigned number);
  void append(std::string& text, unsigned byte) const;

 private:
  std::array<char32_t, 256> characters_{};
};

class xlsWorkbook final : public workbook {
 public:
  explicit xlsWorkbook(char delimiter) : replacements_(delimiter) {}

  /// @param stream  where the records are; must live as long as the workbook
  bool open(byteStream& stream, std::string& problem);
  bool readSheet(const sheetEntry& sheet, sheetReceiver& receiver, std::string& problem) override;

 private:
  struct sheetState;

  bool readGlobals(std::string& problem);
  bool readGlobal(std::string& problem);
  bool readBoundSheet(std::string& problem);
  void readFormat();
  bool readSharedStrings(std::string& problem);
  bool readSheetRecord(sheetState& state);
  bool readMultipleRk(sheetState& state);
  bool readSharedLabel(sheetState& state);
  bool readFormula(sheetState& state);
  void readMerges(sheetState& state) const;
  void emitNumber(sheetState& state, unsigned style, double number);
  void emitBooleanOrError(const sheetState& state, unsigned value, bool isError);
  bool emitString(sheetState& state, continuedReader& reader);
  bool appendString(continuedReader& reader, unsigned lengthBytes, std::string& text) const;

  lineText replacements_;
  std::unique_ptr<recordReader> records_;
  bool isBiff8_ = true;
  byteText bytes_;
  textPool sharedStrings_;
  numberFormats formats_;
  dateSystem dates_ = dateSystem::from1900;
  std::string text_;
  std::string line_;
};

}  // namespace converter

#endif

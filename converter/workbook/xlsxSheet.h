// The cells of one sheet of an .xlsx workbook, from its XML part.
//
// FORMAT: rows and cells without a reference follow the one before. A cell's kind is its attribute `t`: `s` a
// shared string by number, `str` the text of a formula, `inlineStr` text in the cell, `b` a boolean, `e` an
// error, `d` a date in ISO 8601, which stays as it is, else a number. Formulas are left out; their value
// stands in `v`.
// Refused: references outside 1,048,576 rows and 16,384 columns, and numbers of shared strings that do not
// exist.
#ifndef VOK_CONVERTER_WORKBOOK_XLSXSHEET_H
#define VOK_CONVERTER_WORKBOOK_XLSXSHEET_H

#include "converter/workbook/xlsxText.h"
#include "converter/workbook/xlsxWorkbook.h"

namespace converter {

class xlsxSheetEvents final : public xmlEvents {
 public:
  xlsxSheetEvents(const xlsxContext& context, sheetReceiver& receiver)
      : context_(&context), receiver_(&receiver) {}

  void startElement(const char* name, const xmlAttributes& attributes) override;
  void endElement(const char* name) override;
  void text(std::string_view piece) override;
  std::string stopReason() override;

 private:
  enum class cellKind : std::uint8_t { number, shared, text, inlineText, boolean, error, date };

  static cellKind kindOf(const char* type);
  void startRow(const xmlAttributes& attributes);
  void startCell(const xmlAttributes& attributes);
  void endCell();
  void emitValue(std::string_view value);
  void addMerge(const xmlAttributes& attributes);
  void fail(std::string reason);
  void checkLength();

  const xlsxContext* context_;
  sheetReceiver* receiver_;
  std::uint32_t nextRow_ = 0;
  std::uint32_t row_ = 0;
  std::uint32_t column_ = 0;
  std::uint32_t nextColumn_ = 0;
  bool isInCell_ = false;
  bool isInValue_ = false;
  bool isInline_ = false;  // inside `is`
  bool hasInline_ = false;
  cellKind kind_ = cellKind::number;
  std::size_t style_ = 0;
  std::string value_;
  richText inline_;
  std::string line_;
  std::string scratch_;
  std::string problem_;
};

/// A reference such as `B7`. @return false when it is none or lies outside a sheet
bool readReference(std::string_view reference, std::uint32_t& row, std::uint32_t& column);

}  // namespace converter

#endif

// The cells of one sheet of an .xlsx workbook, from its XML part.
//
// Formulas are left out; their value stands in `v`. Rows in the form that programs write them are taken from
// the bytes; of anything else the parser's events are used, with the same outcome.
// Refused: references outside 1,048,576 rows and 16,384 columns, and numbers of shared strings that do not
// exist.
#ifndef VOK_CONVERTER_WORKBOOK_XLSXSHEET_H
#define VOK_CONVERTER_WORKBOOK_XLSXSHEET_H

#include "converter/workbook/xlsxRow.h"
#include "converter/workbook/xlsxText.h"
#include "converter/workbook/xlsxWorkbook.h"

namespace converter {

class xlsxSheetEvents final : public xmlEvents {
 public:
  xlsxSheetEvents(const xlsxContext& context, sheetReceiver& receiver)
      : context_(&context), receiver_(&receiver), plainRows_(*this) {}

  void startElement(const char* name, const xmlAttributes& attributes) override;
  void endElement(const char* name) override;
  void text(std::string_view piece) override;
  std::string stopReason() override;
  xmlShortcut* shortcut() override { return &plainRows_; }

 private:
  class plainRows final : public xmlShortcut {
   public:
    explicit plainRows(xlsxSheetEvents& events)
        : xmlShortcut("sheetData", "</row>"), events_(&events) {}
    std::size_t take(std::string_view bytes, std::size_t& lines) override;

   private:
    xlsxSheetEvents* events_;
    xlsxPlainRow row_;
  };

  void startRow(const xmlAttributes& attributes);
  void startCell(const xmlAttributes& attributes);
  void endCell();
  void emitPlainCell(const xlsxPlainCell& cell);
  void emitValue(std::string_view value);
  void appendNumberText(std::string_view number);
  void addMerge(const xmlAttributes& attributes);
  void fail(std::string reason);
  void checkLength();

  const xlsxContext* context_;
  sheetReceiver* receiver_;
  plainRows plainRows_;
  cellPlace place_;
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

}  // namespace converter

#endif

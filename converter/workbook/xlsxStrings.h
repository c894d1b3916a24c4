// The shared strings of an .xlsx workbook, from their XML part.
//
// FORMAT: an item `si` holds one `t`, or rich text, of which the text is taken, and phonetic guides, which are
// left out. Items of a single `t` are taken from the bytes.
// Refused: texts above 16 MiB, and more than 4,194,304 texts that are also more than the package has bytes.
#ifndef VOK_CONVERTER_WORKBOOK_XLSXSTRINGS_H
#define VOK_CONVERTER_WORKBOOK_XLSXSTRINGS_H

#include <algorithm>
#include <cstdint>
#include <string>

#include "converter/syntax/xmlBytes.h"
#include "converter/workbook/textPool.h"
#include "converter/workbook/xlsxText.h"

namespace converter {

class xlsxStringEvents final : public xmlEvents {
 public:
  /// @param pool  receives the strings in their order, as they can stand in a line
  xlsxStringEvents(textPool& pool, const lineText& replacements, std::uint64_t packageSize)
      : pool_(&pool),
        replacements_(&replacements),
        mostTexts_(std::max(textsThatAreNeverTooMany, packageSize)),
        plainItems_(*this) {}

  void startElement(const char* name, const xmlAttributes&) override { text_.startElement(name); }
  void endElement(const char* name) override;
  void text(std::string_view piece) override { text_.text(piece); }
  std::string stopReason() override;
  xmlShortcut* shortcut() override { return &plainItems_; }

 private:
  // WHY bytes of the package beyond that: different texts take at least one each, however they are packed.
  static constexpr std::uint64_t textsThatAreNeverTooMany = std::uint64_t{4} << 20;

  class plainItems final : public xmlShortcut {
   public:
    explicit plainItems(xlsxStringEvents& events) : xmlShortcut("sst", "</si>"), events_(&events) {}
    std::size_t take(std::string_view bytes, std::size_t& lines) override;

   private:
    const char* read(const char* at, std::string_view& text, std::size_t& lines);

    xlsxStringEvents* events_;
    xmlTagBytes tag_;
  };

  textPool* pool_;
  const lineText* replacements_;
  std::uint64_t mostTexts_;
  bool isTooLong_ = false;
  plainItems plainItems_;
  richText text_;
  std::string line_;
  std::string scratch_;
};

}  // namespace converter

#endif

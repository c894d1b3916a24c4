// Text of .xlsx parts: the escapes `_xHHHH_`, and rich text, of which only the text is taken.
#ifndef VOK_CONVERTER_WORKBOOK_XLSXTEXT_H
#define VOK_CONVERTER_WORKBOOK_XLSXTEXT_H

#include <string>
#include <string_view>

#include "converter/syntax/xmlParser.h"
#include "converter/workbook/lineText.h"

namespace converter {

/// A longer text is refused; spreadsheet programs take 32,767 characters.
constexpr std::size_t longestText = std::size_t{16} << 20;
constexpr const char* longTextProblem = "the workbook is refused: it has a text longer than 16 MiB";

/// Appends text with `_xHHHH_` turned into the UTF-16 unit it stands for; `_x005F_` is the underscore that
/// keeps such a text from being one.
void appendUnescaped(std::string& text, std::string_view escaped);

/// Collects the text of one shared string or inline string: every `t` in it but those of phonetic guides.
class richText {
 public:
  void clear();
  void startElement(const char* name);
  void endElement(const char* name);
  void text(std::string_view piece) {
    if (isCollecting_) collected_ += piece;
  }

  /// Bytes that were collected.
  std::size_t size() const { return collected_.size(); }

  /// Appends what was collected, as it can stand in a line.
  void appendTo(std::string& line, const lineText& replacements);

 private:
  std::string collected_;
  std::string unescaped_;
  unsigned phoneticDepth_ = 0;
  bool isCollecting_ = false;
};

/// Appends text of a part as it can stand in a line. @param scratch  memory for reuse
void appendText(std::string& line, std::string_view escaped, const lineText& replacements,
                std::string& scratch);

}  // namespace converter

#endif

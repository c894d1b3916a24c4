// What a cell's text becomes so that it is one value in one line of a text file.
//
//     CR LF, CR, LF, TAB   one blank each
//     the delimiter        its full-width form (`$` becomes U+FF04)
//     NUL, 1A              U+FFFD: the one would cut the line, the other end the file for who reads it
//
// There are no quotes around values and nothing is escaped: the readers of these files know neither.
#ifndef VOK_CONVERTER_WORKBOOK_LINETEXT_H
#define VOK_CONVERTER_WORKBOOK_LINETEXT_H

#include <array>
#include <string>
#include <string_view>

namespace converter {

/// Whether a character can separate values: ASCII punctuation or TAB, and none that numbers are made of.
bool isDelimiter(char c);

class lineText {
 public:
  explicit lineText(char delimiter);

  /// Appends `text` (UTF-8), replaced as above.
  void append(std::string& line, std::string_view text) const;

  /// Whether text can stand in a line as it is.
  bool isPlain(std::string_view text) const {
    for (const char c : text)
      if (isSpecial_[static_cast<unsigned char>(c)]) return false;
    return true;
  }

 private:
  std::array<bool, 256> isSpecial_{};
  char delimiter_;
};

}  // namespace converter

#endif

#include "converter/workbook/lineText.h"

#include "converter/syntax/utf8.h"

namespace converter {
namespace {

constexpr std::string_view lineBreaks = "\r\n\t";
constexpr std::string_view endsOfText("\0\x1A", 2);
constexpr char32_t fullWidthForms = 0xFEE0;  // added to an ASCII character

}  // namespace

bool isDelimiter(char c) {
  constexpr std::string_view delimiters = "\t!#$%&*,/:;<=>?@\\^_`|~";
  return delimiters.find(c) != std::string_view::npos;
}

lineText::lineText(char delimiter) : delimiter_(delimiter) {
  for (const std::string_view special : {lineBreaks, endsOfText})
    for (const char c : special) isSpecial_[static_cast<unsigned char>(c)] = true;
  isSpecial_[static_cast<unsigned char>(delimiter)] = true;
}

void lineText::append(std::string& line, std::string_view text) const {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t plain = i;
    while (i < text.size() && !isSpecial_[static_cast<unsigned char>(text[i])]) ++i;
    line += text.substr(plain, i - plain);
    if (i == text.size()) return;
    const char c = text[i];
    if (lineBreaks.find(c) != std::string_view::npos) {
      if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
      line += ' ';
    } else {
      const bool isEnd = endsOfText.find(c) != std::string_view::npos;
      appendUtf8(line, isEnd ? replacementCharacter : fullWidthForms + static_cast<char32_t>(c));
    }
  }
}

}  // namespace converter

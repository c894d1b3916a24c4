#include "converter/workbook/xlsxText.h"

#include <charconv>

#include "converter/syntax/utf8.h"

namespace converter {
namespace {

constexpr std::string_view escapeBegin = "_x";
constexpr std::size_t escapeSize = 7;  // _xHHHH_

bool readEscape(std::string_view text, char16_t& unit) {
  if (text.size() < escapeSize || text[escapeSize - 1] != '_') return false;
  unsigned value = 0;
  const char* const digits = text.data() + escapeBegin.size();
  const auto result = std::from_chars(digits, digits + 4, value, 16);
  unit = static_cast<char16_t>(value);
  return result.ec == std::errc() && result.ptr == digits + 4;
}

}  // namespace

void appendUnescaped(std::string& text, std::string_view escaped) {
  while (!escaped.empty()) {
    const std::size_t plain = std::min(escaped.find(escapeBegin), escaped.size());
    text += escaped.substr(0, plain);
    escaped.remove_prefix(plain);
    utf16Appender units(text);
    char16_t unit = 0;
    const std::size_t before = escaped.size();
    while (escaped.starts_with(escapeBegin) && readEscape(escaped, unit)) {
      units.append(unit);
      escaped.remove_prefix(escapeSize);
    }
    if (escaped.size() == before && !escaped.empty()) {
      text += escapeBegin;
      escaped.remove_prefix(escapeBegin.size());
    }
  }
}

void appendText(std::string& line, std::string_view escaped, const lineText& replacements,
                std::string& scratch) {
  if (escaped.find(escapeBegin) != std::string_view::npos) {
    scratch.clear();
    appendUnescaped(scratch, escaped);
    escaped = scratch;
  }
  replacements.append(line, escaped);
}

void richText::clear() {
  collected_.clear();
  phoneticDepth_ = 0;
  isCollecting_ = false;
}

void richText::startElement(const char* name) {
  if (isText(name, "rPh")) ++phoneticDepth_;
  if (isText(name, "t")) isCollecting_ = phoneticDepth_ == 0;
}

void richText::endElement(const char* name) {
  if (isText(name, "rPh")) --phoneticDepth_;
  if (isText(name, "t")) isCollecting_ = false;
}

void richText::appendTo(std::string& line, const lineText& replacements) {
  appendText(line, collected_, replacements, unescaped_);
}

}  // namespace converter

#include "tests/support/tableText.h"

#include <array>
#include <cstdio>

#include "tests/support/targetSystem.h"

namespace testSupport {
namespace {

std::uint32_t elementAt(std::wstring_view text, std::size_t index) {
  return static_cast<std::uint32_t>(text[index]) & (wideIsUtf16 ? 0xFFFFU : 0xFFFFFFFFU);
}

bool isHigh(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLow(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

void appendByte(std::string& out, std::uint32_t byte) { out += static_cast<char>(byte); }

void appendUtf8(std::string& out, std::uint32_t code) {
  if (code < 0x80) {
    appendByte(out, code);
  } else if (code < 0x800) {
    appendByte(out, 0xC0 | (code >> 6));
    appendByte(out, 0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    appendByte(out, 0xE0 | (code >> 12));
    appendByte(out, 0x80 | ((code >> 6) & 0x3F));
    appendByte(out, 0x80 | (code & 0x3F));
  } else {
    appendByte(out, 0xF0 | (code >> 18));
    appendByte(out, 0x80 | ((code >> 12) & 0x3F));
    appendByte(out, 0x80 | ((code >> 6) & 0x3F));
    appendByte(out, 0x80 | (code & 0x3F));
  }
}

bool isPrintable(std::uint32_t code) {
  const bool isControl = code < 0x20 || (code >= 0x7F && code < 0xA0);
  return !isControl && !isHigh(code) && !isLow(code) && code <= 0x10FFFF;
}

void appendPrintable(std::string& out, std::wstring_view text, bool escapeBar) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::uint32_t code = elementAt(text, i);
    if (wideIsUtf16 && isHigh(code) && i + 1 < text.size() && isLow(elementAt(text, i + 1))) {
      ++i;
      code = 0x10000 + ((code - 0xD800) << 10) + (elementAt(text, i) - 0xDC00);
    }
    if (code == '\\' || (escapeBar && code == '|')) out += '\\';
    if (isPrintable(code)) {
      appendUtf8(out, code);
    } else {
      std::array<char, 16> escape;
      std::snprintf(escape.data(), escape.size(), "\\x{%02X}", static_cast<unsigned>(code));
      out += escape.data();
    }
  }
}

void appendValues(std::string& out, const textRow& values) {
  if (values.empty()) out += "()";
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0) out += '|';
    appendPrintable(out, values[i], true);
  }
}

}  // namespace

tableContent contentOf(const tableRW::tableReader& reader) {
  tableContent content;
  reader.fieldList(content.fields);
  for (std::size_t i = 0; i < content.fields.size(); ++i)
    content.types.push_back(reader.fieldType(i));
  content.rows.resize(reader.count());
  for (std::size_t row = 0; row < content.rows.size(); ++row) reader.getRow(row, content.rows[row]);
  for (std::size_t i = 0; i < reader.errorCount(); ++i)
    content.errors.push_back(reader.getError(i));
  content.ok = reader.isOK();
  return content;
}

std::string describe(const tableContent& content) {
  std::string out;
  for (std::size_t i = 0; i < content.fields.size(); ++i) {
    out += i == 0 ? "fields " : "|";
    appendPrintable(out, content.fields[i], true);
    if (i < content.types.size() && content.types[i] != tableRW::fldText) out += ":number";
  }
  if (!content.fields.empty()) out += "  ";
  for (std::size_t i = 0; i < content.rows.size(); ++i) {
    out += i == 0 ? "rows " : " / ";
    appendValues(out, content.rows[i]);
  }
  if (!content.rows.empty()) out += "  ";
  for (std::size_t i = 0; i < content.errors.size(); ++i)
    out += (i == 0 ? "errors " : ",") + std::to_string(content.errors[i]);
  if (!content.errors.empty()) out += "  ";
  return out + (content.ok ? "ok" : "failed");
}

std::string describe(const tableRW::tableReader& reader) { return describe(contentOf(reader)); }

std::string describe(const textRow& values) {
  std::string out;
  appendValues(out, values);
  return out;
}

std::string printable(std::wstring_view text) {
  std::string out;
  appendPrintable(out, text, false);
  return out;
}

std::wstring wide(std::string_view utf8) {
  std::wstring text;
  for (std::size_t i = 0; i < utf8.size();) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    std::uint32_t code = length == 1 ? lead : lead & (0xFFU >> (length + 1));
    for (std::size_t k = 1; k < length; ++k)
      code = (code << 6) | (static_cast<unsigned char>(utf8.at(i + k)) & 0x3FU);
    i += length;
    if (wideIsUtf16 && code > 0xFFFF) {
      text += static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10));
      code = 0xDC00 + ((code - 0x10000) & 0x3FF);
    }
    text += static_cast<wchar_t>(code);
  }
  return text;
}

std::string shortened(const std::string& text) {
  constexpr std::size_t most = 2000;
  if (text.size() <= most) return text;
  return text.substr(0, most / 2) + " ... (" + std::to_string(text.size()) + " bytes) ... " +
         text.substr(text.size() - most / 2);
}

}  // namespace testSupport

#include "tests/support/codePageData.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include "tests/support/targetSystem.h"

namespace testSupport {
namespace {

unsigned hexadecimal(std::string_view digits) {
  return static_cast<unsigned>(std::stoul(std::string(digits), nullptr, 16));
}

template <class Text>
Text elementsOf(std::string_view digits, std::size_t width) {
  Text text;
  for (std::size_t i = 0; i < digits.size();) {
    if (digits[i] == ' ') {
      ++i;
      continue;
    }
    text += static_cast<typename Text::value_type>(hexadecimal(digits.substr(i, width)));
    i += width;
  }
  return text;
}

void appendDigits(std::string& text, unsigned value, int width) {
  char digits[16];
  std::snprintf(digits, sizeof digits, "%s%0*X", text.empty() ? "" : " ", width, value);
  text += digits;
}

}  // namespace

std::vector<std::vector<std::string>> recordedRows(const std::string& fileName) {
  std::vector<std::vector<std::string>> rows;
  std::ifstream file(VOK_TEST_DATA "/codepages/" + fileName);
  EXPECT_TRUE(file.is_open()) << fileName;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::vector<std::string> columns;
    std::size_t begin = 0;
    for (std::size_t tab; (tab = line.find('\t', begin)) != std::string::npos; begin = tab + 1)
      columns.push_back(line.substr(begin, tab - begin));
    columns.push_back(line.substr(begin));
    rows.push_back(std::move(columns));
  }
  EXPECT_FALSE(rows.empty()) << fileName;
  return rows;
}

std::array<char16_t, 256> recordedDecoding(unsigned codePage) {
  std::array<char16_t, 256> units{};
  std::size_t count = 0;
  for (const auto& row : recordedRows("decode.tsv")) {
    if (row[0] != std::to_string(codePage)) continue;
    units[hexadecimal(row[1])] = static_cast<char16_t>(hexadecimal(row[2]));
    ++count;
  }
  EXPECT_EQ(count, units.size()) << codePage;
  return units;
}

std::vector<unsigned char> recordedEncoding(unsigned codePage) {
  std::vector<unsigned char> bytes(0x10000, '?');
  for (const auto& row : recordedRows("encode.tsv")) {
    if (row[0] != std::to_string(codePage)) continue;
    unsigned byte = hexadecimal(row[3]);
    const bool isConstant = row[4].back() == '0';
    for (unsigned unit = hexadecimal(row[1]); unit <= hexadecimal(row[2]); ++unit) {
      bytes[unit] = static_cast<unsigned char>(byte);
      if (!isConstant) ++byte;
    }
  }
  EXPECT_EQ(bytes['A'], 'A') << codePage;
  return bytes;
}

std::vector<char16_t> recordedLowerCase() {
  std::vector<char16_t> small(0x10000);
  for (std::size_t unit = 0; unit < small.size(); ++unit) small[unit] = static_cast<char16_t>(unit);
  for (const auto& row : recordedRows("lower_case.tsv"))
    small[hexadecimal(row[0])] = static_cast<char16_t>(hexadecimal(row[1]));
  return small;
}

std::u16string unitsOf(std::string_view digits) { return elementsOf<std::u16string>(digits, 4); }

std::string bytesOf(std::string_view digits) { return elementsOf<std::string>(digits, 2); }

std::wstring wideOf(std::u16string_view units) { return std::wstring(units.begin(), units.end()); }

std::wstring joinedWideOf(std::u16string_view units) {
  std::wstring text;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char16_t next = i + 1 < units.size() ? units[i + 1] : u'\0';
    const bool isPair = (units[i] & 0xFC00) == 0xD800 && (next & 0xFC00) == 0xDC00;
    if (wideIsUtf16 || !isPair) {
      text += static_cast<wchar_t>(units[i]);
    } else {
      text += static_cast<wchar_t>(0x10000 + (units[i] - 0xD800) * 0x400 + (next - 0xDC00));
      ++i;
    }
  }
  return text;
}

std::string digitsOf(std::wstring_view text) {
  std::string digits;
  for (const wchar_t element : text) appendDigits(digits, static_cast<unsigned>(element), 4);
  return digits;
}

std::string digitsOf(std::string_view bytes) {
  std::string digits;
  for (const char byte : bytes) appendDigits(digits, static_cast<unsigned char>(byte), 2);
  return digits;
}

}  // namespace testSupport

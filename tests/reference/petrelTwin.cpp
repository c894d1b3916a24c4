#include "tests/reference/petrelTwin.h"

#include <string>
#include <vector>

#include "tests/reference/textTwin.h"

namespace reference {
namespace {

constexpr int cp1251 = 8;

std::wstring mapped(std::wstring token) {
  if (token.empty()) return L"";
  if (token == L"-999") return L"";
  if (token == L"\"NULL\"") return L"";
  if (token[0] == L'"') {
    token.erase(0, 1);
    if (!token.empty()) token.erase(token.size() - 1);
  }
  return token;
}

std::vector<std::wstring> splitLine(const std::wstring& line) {
  std::vector<std::wstring> values;
  std::wstring token;
  for (const wchar_t c : line) {
    if (c != L' ') {
      token.push_back(c);
      continue;
    }
    if (token.empty()) continue;
    if (token[0] == L'"' && token[token.size() - 1] != L'"') {
      token.push_back(L' ');
      continue;
    }
    values.push_back(mapped(token));
    token = L"";
  }
  return values;
}

}  // namespace

testSupport::tableContent readPetrel(std::string_view fileBytes, std::int32_t limit,
                                     bool headersOnly) {
  testSupport::tableContent table;
  table.ok = true;
  textStream stream(fileBytes);
  bool inHeader = false;
  std::wstring line;
  while (!stream.feof()) {
    if (!readTextLine(stream, cp1251, line)) break;
    if (line == L"END HEADER") break;
    if (inHeader) table.fields.push_back(line);
    if (line == L"BEGIN HEADER") inHeader = true;
    if (stream.feof()) break;
  }
  table.types.assign(table.fields.size(), tableRW::fldText);
  if (headersOnly) return table;
  while (!stream.feof()) {
    if (!readTextLine(stream, cp1251, line)) break;
    table.rows.push_back(splitLine(line));
    const auto rows = static_cast<std::uint64_t>(table.rows.size());
    if (rows >= static_cast<std::uint64_t>(static_cast<std::int64_t>(limit))) break;
  }
  return table;
}

}  // namespace reference

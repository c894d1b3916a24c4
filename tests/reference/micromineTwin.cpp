#include "tests/reference/micromineTwin.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "platform/codePages.h"
#include "tests/reference/textTwin.h"

namespace reference {
namespace {

struct column {
  char type;
  std::size_t width;
};

std::wstring decoded(const std::string& bytes, unsigned codePage) {
  const int size = static_cast<int>(bytes.size());
  const int length = platform::decodeCodePage(codePage, bytes.data(), size, nullptr, 0);
  std::wstring text(static_cast<std::size_t>(length), L'\0');
  platform::decodeCodePage(codePage, bytes.data(), size, text.data(), length);
  return text;
}

std::string upToNul(const std::string& bytes) { return bytes.substr(0, bytes.find('\0')); }

std::string withoutBlanks(std::string text) {
  while (!text.empty() && text.back() == ' ') text.pop_back();
  while (!text.empty() && text.front() == ' ') text.erase(0, 1);
  return text;
}

std::uint64_t littleEndian(const std::string& bytes) {
  std::uint64_t number = 0;
  for (std::size_t i = bytes.size(); i-- > 0;)
    number = number * 256 + static_cast<unsigned char>(bytes[i]);
  return number;
}

template <class Number>
std::string shortest(Number number) {
  char buffer[64];
  return {buffer, std::to_chars(buffer, buffer + sizeof buffer, number).ptr};
}

template <class Number>
std::string finite(std::uint64_t bits) {
  Number number = 0;
  if constexpr (sizeof number == 4) {
    const auto low = static_cast<std::uint32_t>(bits);
    std::memcpy(&number, &low, sizeof number);
  } else {
    std::memcpy(&number, &bits, sizeof number);
  }
  return std::isfinite(number) ? shortest(number) : "";
}

std::string textOf(char type, const std::string& bytes) {
  const std::uint64_t bits = littleEndian(bytes);
  switch (type) {
    case 'R':
      return finite<double>(bits);
    case 'F':
      return finite<float>(bits);
    case 'L':
      return bits == 0x80000000 ? "" : shortest(static_cast<std::int32_t>(bits));
    case 'S':
      return bits == 0x8000 ? "" : shortest(static_cast<std::int16_t>(bits));
    default:
      return upToNul(bytes);
  }
}

// A line without its end, which is `lineEnd`.
std::string takeLine(std::string_view bytes, std::size_t& at, const std::string& lineEnd) {
  const std::size_t end = bytes.find(lineEnd, at);
  std::string line(bytes.substr(at, end - at));
  at = end + lineEnd.size();
  return line;
}

}  // namespace

testSupport::tableContent readMicromine(std::string_view bytes, unsigned codePage) {
  testSupport::tableContent table;
  table.ok = true;
  std::size_t at = 0;
  if (bytes.starts_with("THIS IS MICROMINE"))
    at = (bytes.find("</metadata>") + 10) / 4096 * 4096 + 4096;
  else
    at = bytes.find('\n') + 1;
  const std::size_t countEnd = bytes.find('\n', at);
  const std::string lineEnd = bytes[countEnd - 1] == '\r' ? "\r\n" : "\n";
  std::size_t left = std::stoul(takeLine(bytes, at, lineEnd));
  std::vector<column> columns;
  std::size_t recordSize = 0;
  for (; left > 0; --left) {
    const std::string line = takeLine(bytes, at, lineEnd);
    const std::string name = upToNul(line.substr(0, 10));
    const std::string description =
        line.size() > 18 ? withoutBlanks(upToNul(line.substr(18))) : std::string();
    const bool isCut = name.size() == 10 && name.back() != ' ' && description.starts_with(name);
    table.fields.push_back(decoded(isCut ? description : withoutBlanks(name), codePage));
    columns.push_back({line[10], std::stoul(line.substr(11, 3))});
    table.types.push_back(line[10] == 'C' ? tableRW::fldText : tableRW::fldNumber);
    recordSize += columns.back().width;
  }
  while (at + recordSize <= bytes.size()) {
    const std::string_view rest = bytes.substr(at);
    // The byte that ends some files is no record.
    if (rest == "\x1A") break;
    testSupport::textRow row;
    const bool isLast = rest.size() < recordSize + lineEnd.size();
    const bool endsProperly = isLast || rest.substr(recordSize, lineEnd.size()) == lineEnd;
    for (const column& each : columns) {
      const std::string text = textOf(each.type, std::string(bytes.substr(at, each.width)));
      row.push_back(endsProperly ? trimText(decoded(text, codePage)) : L"");
      at += each.width;
    }
    at += lineEnd.size();
    table.rows.push_back(row);
  }
  return table;
}

}  // namespace reference

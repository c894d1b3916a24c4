#include "tools/xlsxLimits.h"

#include <fmt/core.h>

#include <algorithm>

#include "tools/text.h"

namespace vokTable {
namespace {

constexpr std::uint64_t mostRows = 1048576;
constexpr std::uint64_t mostColumns = 16384;
constexpr std::size_t longestText = 32767;    // UTF-16 units
constexpr std::size_t longestFormula = 8192;  // with its equals sign

constexpr wchar_t formulaMark = L'=';
constexpr wchar_t quotationMark = L'"';

// Characters outside XML 1.0, beside the surrogates.
bool isForbidden(char32_t character) {
  return (character < 0x20 && character != U'\t' && character != U'\n' && character != U'\r') ||
         character == 0xFFFE || character == 0xFFFF || character > 0x10FFFF ||
         isSurrogate(character);
}

std::optional<std::string> characterProblem(std::wstring_view value) {
  for (std::size_t at = 0; at < value.size();) {
    const char32_t character = nextCharacter(value, at);
    if (isForbidden(character))
      return fmt::format("holds a character that no workbook can hold (U+{:04X})",
                         static_cast<std::uint32_t>(character));
    if (character == U'\r') return "holds a CR, which is read back as a line feed";
  }
  return std::nullopt;
}

// The writer escapes the first of each of these characters in a value and leaves the others.
std::optional<std::string> markupProblem(std::wstring_view value) {
  for (const wchar_t character : {L'&', L'<'})
    if (std::count(value.begin(), value.end(), character) > 1)
      return fmt::format(
          "holds \"{}\" more than once, and spreadsheet programs refuse the workbook",
          static_cast<char>(character));
  const std::size_t end = value.find(L"]]>", std::min(value.find(L'>'), value.size()));
  if (end != std::wstring_view::npos)
    return "holds \"]]>\" behind a \">\", and spreadsheet programs refuse the workbook";
  return std::nullopt;
}

bool isHexDigit(wchar_t character) {
  return (character >= L'0' && character <= L'9') || (character >= L'a' && character <= L'f') ||
         (character >= L'A' && character <= L'F');
}

// FORMAT: _x and four hexadecimal digits and _ stand for a character in the texts of a workbook.
bool holdsCodedCharacter(std::wstring_view value) {
  constexpr std::size_t length = 7;
  for (std::size_t at = value.find(L"_x"); at != std::wstring_view::npos;
       at = value.find(L"_x", at + 1)) {
    const std::wstring_view coded = value.substr(at, length);
    if (coded.size() == length && coded.back() == L'_' &&
        std::all_of(coded.begin() + 2, coded.end() - 1, isHexDigit))
      return true;
  }
  return false;
}

// The value as the sheet has it, in UTF-16: characters beyond the BMP count twice.
std::size_t lengthInSheet(std::wstring_view value) {
  std::size_t length = 0;
  for (std::size_t at = 0; at < value.size(); ++length)
    if (nextCharacter(value, at) > 0xFFFF) ++length;
  return length + (value.find(quotationMark) == std::wstring_view::npos ? 0 : 1);
}

}  // namespace

std::optional<std::string> xlsxLimits::tableProblem(std::uint64_t rows,
                                                    std::uint64_t fields) const {
  if (rows + 1 > mostRows)
    return fmt::format("holds {} rows and its header; a sheet holds {} rows", grouped(rows),
                       grouped(mostRows));
  if (fields > mostColumns)
    return fmt::format("holds {} fields; a sheet holds {} columns", grouped(fields),
                       grouped(mostColumns));
  return std::nullopt;
}

std::optional<std::string> xlsxLimits::problem(std::size_t, std::wstring_view value) const {
  if (auto reason = characterProblem(value)) return reason;
  if (auto reason = markupProblem(value)) return reason;
  const bool isFormula = !value.empty() && value.front() == formulaMark;
  if (value.size() == 1 && isFormula)
    return "is an equals sign alone, a formula that spreadsheet programs refuse";
  const std::size_t most = isFormula ? longestFormula : longestText;
  if (value.size() * 2 >= most)
    if (const std::size_t length = lengthInSheet(value); length > most)
      return fmt::format("is {} characters long; a {} has {} at most", grouped(length),
                         isFormula ? "formula" : "cell", grouped(most));
  if (holdsCodedCharacter(value))
    return "holds _x, four hexadecimal digits and _, which spreadsheet programs read as a "
           "character";
  return std::nullopt;
}

const char* xlsxLimits::whenMissing() const {
  return "a workbook is made in the folder that TEMP names, or in the current folder when TEMP is "
         "not "
         "set: check that it may be written to, that it has room, and that its path is short and "
         "has no "
         "letters but Latin ones";
}

}  // namespace vokTable

#include "tools/csvLimits.h"

#include <fmt/core.h>

#include <algorithm>
#include <utility>

#include "tools/text.h"

namespace vokTable {
namespace {

constexpr unsigned writtenCodePage = 1251;
constexpr std::wstring_view lineEnd = L"\r\n";
constexpr wchar_t endOfText = L'\x1A';
constexpr wchar_t quotationMark = L'"';

bool isBlank(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\v' || c == L'\f'; }

}  // namespace

csvLimits::csvLimits(std::wstring delimiter)
    : delimiter_(std::move(delimiter)), page_(writtenCodePage) {}

std::optional<std::string> csvLimits::characterProblem(std::wstring_view text) const {
  for (std::size_t at = 0; at < text.size();) {
    const char32_t character = nextCharacter(text, at);
    if (character == 0) return "holds a NUL character, which ends the line";
    if (character == U'\n' || character == U'\r') return "holds a line break";
    if (character == endOfText) return "holds Ctrl-Z (0x1A), which ends the file when it is read";
    if (!page_.holds(character))
      return fmt::format("holds a character outside Windows-1251 (U+{:04X})",
                         static_cast<std::uint32_t>(character));
  }
  return std::nullopt;
}

std::optional<std::string> csvLimits::nameProblem(std::size_t, std::wstring_view name) const {
  if (auto reason = characterProblem(name)) return reason;
  if (isCutAtDelimiter(name)) return "holds the delimiter";
  if (!name.empty() && (name.front() == quotationMark || name.back() == quotationMark))
    return "begins or ends with a quotation mark, which is taken away when it is read";
  return std::nullopt;
}

std::optional<std::string> csvLimits::problem(std::size_t field, std::wstring_view value) const {
  if (auto reason = nameProblem(field, value)) return reason;
  if (!value.empty() && (isBlank(value.front()) || isBlank(value.back())))
    return "begins or ends with a blank, which is taken away when it is read";
  return std::nullopt;
}

bool csvLimits::isCutAtDelimiter(std::wstring_view value) const {
  if (value.find(delimiter_) != std::wstring_view::npos) return true;
  // The end of the value may look like the beginning of a delimiter of several characters.
  for (std::size_t length = 1; length < delimiter_.size() && length <= value.size(); ++length) {
    const std::wstring seam = std::wstring(value.substr(value.size() - length)) + delimiter_;
    if (seam.find(delimiter_) < length) return true;
  }
  return false;
}

std::optional<std::string> csvLimits::rowProblem(const std::vector<std::wstring>& row) const {
  if (std::all_of(row.begin(), row.end(), [](const auto& value) { return value.empty(); }))
    return "holds empty values only, and is skipped when it is read";
  return std::nullopt;
}

const char* csvLimits::alternative() const { return "choose another --output-delimiter or format"; }

std::optional<std::uint64_t> csvLimits::rowSize(const std::vector<std::wstring>& row) const {
  std::uint64_t size = lineEnd.size();
  bool isEnded = false;
  const auto add = [&](std::wstring_view text) {
    for (std::size_t at = 0; at < text.size() && !isEnded;) {
      const char32_t character = nextCharacter(text, at);
      isEnded = character == 0;
      if (!isEnded) size += character > 0xFFFF || character == U'\n' ? 2 : 1;
    }
  };
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (i > 0) add(delimiter_);
    add(row[i]);
  }
  return size;
}

}  // namespace vokTable

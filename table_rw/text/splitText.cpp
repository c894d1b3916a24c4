#include "table_rw/text/splitText.h"

namespace tableRW {

void splitTextInto(std::wstring_view text, std::wstring_view delimiter, bool skipEmpty,
                   std::vector<std::wstring>& pieces) {
  std::size_t used = 0;
  const auto add = [&](std::wstring_view piece) {
    if (skipEmpty && piece.empty()) return;
    if (used < pieces.size())
      pieces[used].assign(piece);
    else
      pieces.emplace_back(piece);
    ++used;
  };
  std::size_t start = 0;
  if (!delimiter.empty()) {
    for (std::size_t found = text.find(delimiter); found != std::wstring_view::npos;
         found = text.find(delimiter, start)) {
      add(text.substr(start, found - start));
      start = found + delimiter.size();
    }
  }
  add(text.substr(start));
  pieces.resize(used);
}

std::vector<std::wstring> splitText(std::wstring_view text, std::wstring_view delimiter,
                                    bool skipEmpty) {
  std::vector<std::wstring> pieces;
  splitTextInto(text, delimiter, skipEmpty, pieces);
  return pieces;
}

std::wstring_view trimmed(std::wstring_view text) {
  constexpr std::wstring_view blanks = L" \t\n\r\v\f";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::wstring_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::wstring trimText(std::wstring_view text) { return std::wstring(trimmed(text)); }

}  // namespace tableRW

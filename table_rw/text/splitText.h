// Cutting and trimming of wide text, as every reader does it.
#ifndef VOK_TABLE_RW_TEXT_SPLITTEXT_H
#define VOK_TABLE_RW_TEXT_SPLITTEXT_H

#include <string>
#include <string_view>
#include <vector>

namespace tableRW {

/// Cuts text at every occurrence of the whole delimiter, from left to right, without overlaps.
/// @param delimiter  empty: the whole text is one piece
/// @param skipEmpty  false: n delimiters give n + 1 pieces; true: empty pieces are left out
std::vector<std::wstring> splitText(std::wstring_view text, std::wstring_view delimiter,
                                    bool skipEmpty);

/// The same, into a vector whose strings are reused.
void splitTextInto(std::wstring_view text, std::wstring_view delimiter, bool skipEmpty,
                   std::vector<std::wstring>& pieces);

/// The text between the first and the last character that is not space, TAB, LF, CR, VT or FF.
std::wstring trimText(std::wstring_view text);

/// The same as a view into `text`.
std::wstring_view trimmed(std::wstring_view text);

}  // namespace tableRW

#endif

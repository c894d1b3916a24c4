// Text of a caller, in UTF-8 or UTF-16, to the library's wide text and back.
//
// Every function is a template over the unit: char is a byte of UTF-8, std::uint16_t a unit of UTF-16. Wide
// text has 16-bit elements on Windows, which are UTF-16 units, and code points on Linux.
#ifndef VOK_TABLE_RW_CAPI_TEXTUNITS_H
#define VOK_TABLE_RW_CAPI_TEXTUNITS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "table_rw/capi/vo_text_list.h"

// The list behind the handle. Units and offsets keep their memory when the list is filled again.
struct vo_text_list {
  std::string bytes;                      // with the NUL behind each text
  std::vector<std::uint16_t> units;       // the same
  std::vector<std::uint64_t> offsets{0};  // never empty
  bool holdsBytes = true;
  bool holdsUnits = true;

  void clear();
};

namespace cInterface {

/// A NUL-terminated text as wide text; null is the empty text.
/// @return false, `out` unchanged, for UTF-8 that is not valid
bool readText(const char* text, std::wstring& out);
bool readText(const std::uint16_t* text, std::wstring& out);

/// Appends one text, given in the table's own UTF-8 (see text/utf8.h), to a list of bytes or of units. What
/// the unit cannot express becomes U+FFFD: lone surrogates in UTF-8, in both what is no code point.
void appendBytes(vo_text_list& list, std::string_view tableBytes);
void appendUnits(vo_text_list& list, std::string_view tableBytes);

/// A list as a function fills it: texts of one kind of unit, one behind the other.
template <class Unit>
class listFiller {
 public:
  /// Empties the list.
  explicit listFiller(vo_text_list& list) : list_(list) {
    list.clear();
    list.holdsBytes = std::is_same_v<Unit, char>;
    list.holdsUnits = !list.holdsBytes;
  }

  void add(std::string_view tableBytes) {
    if constexpr (std::is_same_v<Unit, char>)
      appendBytes(list_, tableBytes);
    else
      appendUnits(list_, tableBytes);
  }
  void add(const std::wstring& text);

 private:
  vo_text_list& list_;
};

extern template class listFiller<char>;
extern template class listFiller<std::uint16_t>;

/// Runs an operation for a caller that no exception may reach.
/// @return its answer; false when it threw
template <class Operation>
bool safely(Operation operation) {
  try {
    return operation();
  } catch (...) {
    return false;
  }
}

}  // namespace cInterface

#endif

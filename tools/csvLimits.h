// What delimited text, as the library writes it, cannot hold: Windows-1251, values joined by the
// delimiter, neither quoted nor escaped, one row a line, CR LF at its end.
//
// Two questions, each answered for one row at a time: which values would not come back as they are,
// and how many bytes the row takes. The second is how the tool knows whether everything reached the
// disk.
#ifndef VOK_TOOLS_CSVLIMITS_H
#define VOK_TOOLS_CSVLIMITS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/codePageLimits.h"

namespace vokTable {

class csvLimits {
 public:
  explicit csvLimits(std::wstring delimiter);

  /// Why a text holds a character that no line can hold; nothing when there is none.
  std::optional<std::string> characterProblem(std::wstring_view text) const;

  /// Why a field's name would not come back as it is; nothing when it would.
  std::optional<std::string> nameProblem(std::wstring_view name) const;

  /// The same of a value, which loses the blanks around it.
  std::optional<std::string> problem(std::wstring_view value) const;

  /// Bytes that the writer makes of a row, its line end included; 0 for a row without values.
  std::uint64_t lineSize(const std::vector<std::wstring>& row) const;

 private:
  bool isCutAtDelimiter(std::wstring_view value) const;

  std::wstring delimiter_;
  codePageLimits page_;
};

}  // namespace vokTable

#endif

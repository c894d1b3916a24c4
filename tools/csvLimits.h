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
#include "tools/targetLimits.h"

namespace vokTable {

class csvLimits : public targetLimits {
 public:
  explicit csvLimits(std::wstring delimiter);

  /// Why a text holds a character that no line can hold; nothing when there is none.
  std::optional<std::string> characterProblem(std::wstring_view text) const;

  std::optional<std::string> nameProblem(std::size_t field, std::wstring_view name) const override;
  /// A value also loses the blanks around it.
  std::optional<std::string> problem(std::size_t field, std::wstring_view value) const override;
  std::optional<std::string> rowProblem(const std::vector<std::wstring>& row) const override;
  /// The line end included. Every row has a value: a table without fields is not written.
  std::optional<std::uint64_t> rowSize(const std::vector<std::wstring>& row) const override;
  const char* alternative() const override;

 private:
  bool isCutAtDelimiter(std::wstring_view value) const;

  std::wstring delimiter_;
  codePageLimits page_;
};

}  // namespace vokTable

#endif

// What a workbook, as the library writes it, cannot hold, or what makes a spreadsheet program refuse it.
//
// Not among it are the changes that every workbook of this library has: the first blank of a value becomes a
// non-breaking one, a quotation mark gains a blank, and a value that begins with "=" is a formula.
#ifndef VOK_TOOLS_XLSXLIMITS_H
#define VOK_TOOLS_XLSXLIMITS_H

#include "tools/targetLimits.h"

namespace vokTable {

class xlsxLimits : public targetLimits {
 public:
  std::optional<std::string> tableProblem(std::uint64_t rows, std::uint64_t fields) const override;
  std::optional<std::string> problem(std::size_t field, std::wstring_view value) const override;
  const char* whenMissing() const override;
};

}  // namespace vokTable

#endif

// Numbers as tables hold them, compared by their digits: exact at every length, whatever the locale.
//
// A number is what looksNumeric (text.h) takes for one: sign, digits with a point or a comma, exponent.
// Exponents beyond a billion are cut to it. No state; any thread.
#ifndef VOK_TOOLS_DECIMALNUMBER_H
#define VOK_TOOLS_DECIMALNUMBER_H

#include <cstdint>
#include <string>
#include <string_view>

namespace vokTable {

class decimalNumber {
 public:
  /// @param text  a number; of other text the value means nothing
  explicit decimalNumber(std::wstring_view text);

  /// -1, 0 or 1: less than, equal to or greater than the other.
  int compare(const decimalNumber& other) const;

 private:
  std::wstring digits_;     // without zeros at its ends; empty: the number is 0
  std::int64_t point_ = 0;  // 0.digits times ten to this
  bool isNegative_ = false;
};

}  // namespace vokTable

#endif

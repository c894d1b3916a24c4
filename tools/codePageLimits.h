// Which characters a code page has bytes of their own for, and how many. One object, one thread at a time.
#ifndef VOK_TOOLS_CODEPAGELIMITS_H
#define VOK_TOOLS_CODEPAGELIMITS_H

#include <bitset>
#include <cstddef>
#include <string>
#include <string_view>

namespace vokTable {

class codePageLimits {
 public:
  /// @param codePage  UTF-8 or a page of single bytes; any other number counts as one that holds ASCII
  explicit codePageLimits(unsigned codePage);

  bool holds(char32_t character) const;

  /// Bytes that a text takes; a character that the page lacks takes those of its substitute.
  std::size_t sizeOf(std::wstring_view text) const;

  /// What the page is called, for a message.
  std::string name() const;

 private:
  unsigned codePage_;
  std::bitset<0x10000> encodable_;  // of the BMP
};

}  // namespace vokTable

#endif

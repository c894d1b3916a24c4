// Text in a table that is written: wide text as bytes of the table's code page, cut at a whole character.
// One object belongs to one thread at a time. Nothing fails but allocation.
#ifndef VOK_SUITE_FILE_DBF_DBFTEXT_H
#define VOK_SUITE_FILE_DBF_DBFTEXT_H

#include <cstddef>
#include <optional>
#include <string>

#include "platform/singleByteEncoder.h"

namespace fileDbf {

class textField {
 public:
  explicit textField(unsigned codePage);

  /// Fills a field with the text's bytes, as many as fit, and blanks behind them.
  void write(const wchar_t* text, char* to, std::size_t width);

 private:
  std::size_t encode(const wchar_t* text, std::size_t width);

  unsigned codePage_;
  std::optional<platform::singleByteEncoder> single_;  // for a page of single bytes
  std::string bytes_;
};

}  // namespace fileDbf

#endif

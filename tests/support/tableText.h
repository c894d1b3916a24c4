// What a read has produced, as a value that can be compared and as one line of text for
// expectations:
//
//     fields a|b  rows 1|2 / 3|4  errors 2,5  ok
//
// Parts that are empty are left out; the last word is `ok` or `failed`. A numeric field stands as
// `name:number`, a row without values as `()`. Controls, lone surrogates and what is no character
// at all stand as `\x{1A}`, a backslash as `\\`, a bar inside a value as `\|`. A character beyond
// the BMP stands as it is, whether wide text holds it as one element or as a pair, so that one
// expectation fits both targets.
#ifndef VOK_TESTS_SUPPORT_TABLETEXT_H
#define VOK_TESTS_SUPPORT_TABLETEXT_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "table_rw/core/tableReader.h"

namespace testSupport {

using textRow = std::vector<std::wstring>;

struct tableContent {
  textRow fields;
  std::vector<tableRW::fldType> types;
  std::vector<textRow> rows;
  std::vector<std::uint64_t> errors;
  bool ok = false;

  bool operator==(const tableContent&) const = default;
};

/// Everything that a reader's accessors tell about its last read.
tableContent contentOf(const tableRW::tableReader& reader);

std::string describe(const tableContent& content);
std::string describe(const tableRW::tableReader& reader);

/// Values separated by `|`, as in a row of `describe`.
std::string describe(const textRow& values);

/// Wide text as printable UTF-8, escaped as above except the bar.
std::string printable(std::wstring_view text);

/// Wide text of UTF-8 that is known to be valid, such as a literal or an ASCII name.
std::wstring wide(std::string_view utf8);

/// The beginning and the end of a text that may be too long for a message.
std::string shortened(const std::string& text);

}  // namespace testSupport

#endif

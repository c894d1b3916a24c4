// Small workbooks, byte by byte, for the tests of the converter.
#ifndef VOK_TESTS_SUPPORT_WORKBOOKBUILDERS_H
#define VOK_TESTS_SUPPORT_WORKBOOKBUILDERS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace testSupport {

/// Integers and doubles, least significant byte first.
std::string le16(unsigned value);
std::string le32(std::uint32_t value);
std::string leDouble(double value);

/// A ZIP archive of members, name and bytes, in this order.
using zipMembers = std::vector<std::pair<std::string, std::string>>;
std::string zipOf(const zipMembers& members, bool isDeflated = true);

/// A workbook with one sheet called S: what stands in `worksheet`, the shared strings (elements `si`) and the
/// cell styles (elements `xf` and, before them, `numFmt`).
struct xlsxBuilder {
  std::string worksheet = "<sheetData/>";
  std::string sharedStrings = {};
  std::string formats = {};
  std::string styles = {};
  std::string properties = {};  ///< of the workbook, such as `date1904="1"`

  zipMembers members() const;
  std::string bytes() const { return zipOf(members()); }
};

/// One BIFF record.
std::string record(unsigned id, const std::string& data);

/// The stream of a BIFF8 workbook with one sheet called S. @param globals, cells  records
std::string biff8(const std::string& globals, const std::string& cells);

/// The same in BIFF5.
std::string biff5(const std::string& globals, const std::string& cells);

/// A compound file with one stream, as long as its bytes; short ones stand in the mini stream.
std::string compoundOf(const std::string& streamName, const std::string& bytes);

}  // namespace testSupport

#endif

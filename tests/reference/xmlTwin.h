// Sheets and lists of shared strings read with and without the shortcut past the XML parser, for comparison:
// whatever the document, the outcome must be the same.
#ifndef VOK_TESTS_REFERENCE_XMLTWIN_H
#define VOK_TESTS_REFERENCE_XMLTWIN_H

#include <cstddef>
#include <string>
#include <vector>

namespace reference {

struct xmlOutcome {
  bool isRead = false;
  std::string found;  ///< cells and merged cells, or the strings
  std::string problem;
  std::string reasonOfSheet;
  std::size_t taken = 0;  ///< bytes that the shortcut took
};

/// Reads a sheet that has four shared strings and three styles.
/// @param sizes    of the pieces that the parser gets, repeated; none is 0
/// @param isShort  with the shortcut
xmlOutcome readSheetXml(const std::string& document, const std::vector<std::size_t>& sizes,
                        bool isShort);

/// The same for a list of shared strings.
xmlOutcome readStringsXml(const std::string& document, const std::vector<std::size_t>& sizes,
                          bool isShort);

/// Empty when the parser alone and the shortcut have come to the same.
std::string difference(const xmlOutcome& whole, const xmlOutcome& quick);

}  // namespace reference

#endif

// Tables on standard output. A person gets aligned columns, a header line and a rule; a program
// gets text with TABs between the values and the header as its first line.
//
// Nothing is cut. In aligned columns, numbers stand on the right when every value of the column is
// one, and a column grows to 40 columns of the terminal at most: longer values push the rest of
// their row.
#ifndef VOK_TOOLS_TABLEDRAWING_H
#define VOK_TOOLS_TABLEDRAWING_H

#include <functional>
#include <string>
#include <vector>

#include "tools/output.h"

namespace vokTable {

using tableRow = std::vector<std::wstring>;

/// Takes one row; answers false when no more are wanted.
using rowReceiver = std::function<bool(const tableRow&)>;

/// Something with columns and rows. Rows may be shorter or longer than the header.
struct drawnTable {
  tableRow header;  ///< empty: neither header line nor rule
  /// Hands over the rows in order, from the first at each call: alignment needs to see them twice.
  std::function<void(const rowReceiver&)> visitRows;
};

/// Draws a table as it fits the output.
void drawTable(const drawnTable& table, dataOutput& output);

}  // namespace vokTable

#endif

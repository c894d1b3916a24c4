// What holds for the bytes of every workbook, whatever its format, shared by the targets that make them.
#ifndef VOK_FUZZ_WORKBOOKCHECKS_H
#define VOK_FUZZ_WORKBOOKCHECKS_H

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace fuzzing {

/// The cells of a sheet by row and column, the last of each place.
using sheetCells = std::map<std::pair<std::uint32_t, std::uint32_t>, std::string>;

/// The text file of a sheet, made in the slow and obvious way: a line for each row up to the last used one, as many
/// values in each as the widest has.
std::string sheetTextOf(const sheetCells& cells);

/// Opens the bytes as a workbook, reads its default sheet, and converts it. Demands:
///   - what is refused has a reason, and leaves no file
///   - cells lie within a sheet and their texts can stand in a line
///   - the text file is sheetTextOf the cells; its first line alone, too; merged cells make no line longer than others
///   - the list of sheets can be written, and nothing is left beside the text file
/// Sheets that would make large files are not converted, only read.
/// @return the outcome: `refused`, or `1 sheets, [0 0 a]`
std::string checkedWorkbook(std::string_view bytes);

}  // namespace fuzzing

#endif

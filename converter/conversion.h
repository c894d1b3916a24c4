// One run of the converter: a workbook, and what is wanted of it.
#ifndef VOK_CONVERTER_CONVERSION_H
#define VOK_CONVERTER_CONVERSION_H

#include <cstdint>
#include <optional>
#include <string>

namespace converter {

struct conversionRequest {
  std::wstring source;
  std::wstring folder;       ///< of the text files; empty: the current one
  bool listsTables = false;  ///< write the names of the sheets, not a sheet
  bool copyMerged = false;   ///< merged cells hold their value in every cell they cover
  char delimiter = '$';
  std::optional<std::wstring> table;  ///< the sheet; none: the first visible one
  std::optional<std::int32_t>
      headerPosition;  ///< only the line of this row (from 0; below: the first)
};

/// Where the file of a request is written: the source's name with the extension `csv`, or its stem with
/// `_tabList.csv`.
std::wstring targetPath(const conversionRequest& request);

/// Converts. The file appears only when it is whole; after a failure there is none, not even one of an
/// earlier run, which would be taken for the result.
/// @param problem  receives the reason when the answer is false
bool convert(const conversionRequest& request, std::string& problem);

}  // namespace converter

#endif

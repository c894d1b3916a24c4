// The parts of an Office Open XML package, found by the relationships between them.
//
// FORMAT: `_rels/.rels` leads to the workbook, `xl/_rels/workbook.xml.rels` to sheets, styles and shared
// strings. Targets are absolute (`/xl/...`) or relative to the part that refers to them, and relationship
// types are told apart by their last word, which the transitional and the strict kind share.
#ifndef VOK_CONVERTER_WORKBOOK_XLSXPACKAGE_H
#define VOK_CONVERTER_WORKBOOK_XLSXPACKAGE_H

#include <string>
#include <string_view>
#include <vector>

#include "converter/syntax/xmlParser.h"

namespace converter {

struct relationship {
  std::string id;
  std::string type;    ///< the last word of the type
  std::string target;  ///< name of the part, or empty for a target outside the package
};

/// The relationships of a part; "" asks for those of the package. None when the part has no relationships.
bool readRelationships(const zipArchive& archive, std::string_view part,
                       std::vector<relationship>& relationships, std::string& problem);

/// The name of the part that a relative target means. @param folder  of the part that refers to it
std::string resolveTarget(std::string_view folder, std::string_view target);

}  // namespace converter

#endif

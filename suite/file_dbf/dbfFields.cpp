#include "suite/file_dbf/dbfFields.h"

#include <algorithm>
#include <iterator>

#include "platform/vok_file_dbf.h"

namespace fileDbf {
namespace {

constexpr struct {
  char type;
  int code;
} codes[] = {
    {'C', 1},
    {'N', 2},
    {'D', 3},
    {'L', 4},
    {'M', 5},
    {'F', 6},
    {'I', 7},
    {'+', 7},
    {'B', 8},
    {'O', 8},
    {'Y', 8},
    {'T', 9},
    {'@', 9},
};
constexpr int memoCode = 5;

// The letters whose bytes are no text. The first row that fits decides.
constexpr bool anyLevel = true;
constexpr struct {
  char type;
  std::uint8_t length;
  bool everywhere;  // else on one level alone
  fileLevel level;
  fieldKind kind;
} binaryKinds[] = {
    {'D', 8,  anyLevel,  fileLevel::dbase,  fieldKind::date           },
    {'L', 1,  anyLevel,  fileLevel::dbase,  fieldKind::logical        },
    {'M', 10, anyLevel,  fileLevel::dbase,  fieldKind::memo           },
    {'M', 4,  anyLevel,  fileLevel::dbase,  fieldKind::memo           },
    {'I', 4,  !anyLevel, fileLevel::dbase7, fieldKind::orderedInteger },
    {'+', 4,  !anyLevel, fileLevel::dbase7, fieldKind::orderedInteger },
    {'I', 4,  anyLevel,  fileLevel::dbase,  fieldKind::integer        },
    {'+', 4,  anyLevel,  fileLevel::dbase,  fieldKind::integer        },
    {'B', 8,  anyLevel,  fileLevel::dbase,  fieldKind::real           },
    {'O', 8,  !anyLevel, fileLevel::dbase7, fieldKind::orderedReal    },
    {'O', 8,  anyLevel,  fileLevel::dbase,  fieldKind::signedReal     },
    {'Y', 8,  anyLevel,  fileLevel::dbase,  fieldKind::currency       },
    {'T', 8,  anyLevel,  fileLevel::dbase,  fieldKind::julianTime     },
    {'@', 8,  anyLevel,  fileLevel::dbase,  fieldKind::millisecondTime},
};

}  // namespace

fieldKind kindOf(char type, std::size_t length, fileLevel level) {
  for (const auto& row : binaryKinds)
    if (row.type == type && row.length == length && (row.everywhere || row.level == level))
      return row.kind;
  switch (type) {
    case 'N':
    case 'F':
      return fieldKind::number;
    case 'V':
    case 'Q':
      return level == fileLevel::visualFoxPro ? fieldKind::varyingText : fieldKind::text;
    case 'B':
    case 'G':
    case 'I':
    case 'L':
    case 'M':
    case 'O':
    case 'P':
    case 'W':
    case 'Y':
    case '+':
    case '@':
      return fieldKind::noText;
    default:
      return fieldKind::text;
  }
}

int codeOfType(char type) {
  const auto* const found = std::find_if(std::begin(codes), std::end(codes),
                                         [type](const auto& row) { return row.type == type; });
  return found == std::end(codes) ? 0 : found->code;
}

int codeOfField(const tableField& field) {
  return field.type == 'B' && field.kind == fieldKind::noText ? memoCode : codeOfType(field.type);
}

}  // namespace fileDbf

char vo_dbftype2char(int code) {
  using fileDbf::codes;
  const auto* const found = std::find_if(std::begin(codes), std::end(codes),
                                         [code](const auto& row) { return row.code == code; });
  return found == std::end(codes) ? 'C' : found->type;
}

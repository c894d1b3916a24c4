// The small letters of the BMP as data, for the POSIX case folding; ASCII is among them.
// The data stand in lowerCaseTable.cpp, which generate_code_pages.py writes.
#ifndef VOK_PLATFORM_POSIX_LOWERCASETABLE_H
#define VOK_PLATFORM_POSIX_LOWERCASETABLE_H

#include <cstddef>

namespace platform {

/// A capital letter and its small one.
struct lowerCasePair {
  char16_t capital;
  char16_t small;
};

/// Sorted by capital.
extern const lowerCasePair lowerCasePairs[];
extern const std::size_t lowerCasePairCount;

}  // namespace platform

#endif

// What the reader factory knows of each variant. The table itself is made where the variants are, in
// readers/, so that this folder depends on none of them.
#ifndef VOK_TABLE_RW_CORE_READERVARIANTS_H
#define VOK_TABLE_RW_CORE_READERVARIANTS_H

#include <array>
#include <cstdint>
#include <span>

#include "table_rw/core/tableReader.h"

namespace tableRW {

/// One way to read a source. The factory takes the first row that fits.
struct readerVariant {
  std::int32_t fileType;                          ///< the number that asks for it explicitly
  std::array<const wchar_t*, 4> extensions = {};  ///< lower case, without the dot; unused ones null
  bool (*usable)() = nullptr;                ///< asked before an extension is heeded; null: always
  const wchar_t* firstLineMarker = nullptr;  ///< text that a file's first line holds; null: none
  tableReader* (*make)(tableReaderOptions options) = nullptr;
};

/// All variants, in the order in which the factory looks.
std::span<const readerVariant> readerVariants();

/// The reader that reads nothing, for a source that no variant fits.
tableReader* makeDummyReader(tableReaderOptions options);

}  // namespace tableRW

#endif

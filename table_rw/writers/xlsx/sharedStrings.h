// The shared-strings part, xl/sharedStrings.xml: every distinct text of the workbook's cells once, in order of
// first appearance. Cells name a text by its index.
//
// The texts stand one behind the other in one arena, as UTF-8, each behind its index and its length; an
// open-addressing hash of 8 bytes a slot leads to them. That is all of a table that stays in memory.
//
// Limits: 2^32 - 1 distinct texts and 1 TiB of them; beyond, memory counts as having run out.
// One object belongs to one thread at a time.
#ifndef VOK_TABLE_RW_WRITERS_XLSX_SHAREDSTRINGS_H
#define VOK_TABLE_RW_WRITERS_XLSX_SHAREDSTRINGS_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/memoryRegion.h"
#include "table_rw/text/growingArray.h"
#include "table_rw/writers/xlsx/xmlPart.h"

namespace SimpleXlsx {

class sharedStrings {
 public:
  sharedStrings() = default;
  sharedStrings(const sharedStrings& other);
  sharedStrings& operator=(const sharedStrings&) = delete;

  /// The index of a text, which is added when it is new. It counts as one more cell.
  /// @param text  XML already; nothing is escaped
  /// @throws std::bad_alloc; the table is then as before
  std::uint32_t indexOf(std::wstring_view text);

  /// Cells that hold shared text.
  std::uint64_t count() const { return count_; }
  /// Distinct texts.
  std::uint32_t uniqueCount() const { return uniqueCount_; }

  /// Writes the part.
  void write(xmlPart& part) const;

 private:
  using slot = std::uint64_t;  // where the text's record stands in the arena; 0: free

  struct record {
    std::uint32_t index;
    std::string_view text;
    std::size_t end;  // where the next record begins
  };

  record recordAt(std::size_t offset) const;
  slot* slots() const;
  void putHead(std::size_t offset, std::size_t length);
  void growSlots();

  static constexpr std::size_t firstRecord_ = 8;  // none stands at 0, which marks a free slot

  tableRW::growingArray<char> arena_;
  std::size_t end_ = firstRecord_;  // behind the last record
  platform::memoryRegion slots_;
  std::size_t slotCount_ = 0;  // a power of two
  std::uint64_t count_ = 0;
  std::uint32_t uniqueCount_ = 0;
};

}  // namespace SimpleXlsx

#endif

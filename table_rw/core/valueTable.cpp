#include "table_rw/core/valueTable.h"

#include <cstring>

#include "table_rw/text/utf8.h"

namespace tableRW {

void valueTable::clear() { *this = valueTable(shortOffsetLimit_); }

std::wstring valueTable::text(std::size_t row, std::size_t column) const {
  return wideFromPaddedUtf8(bytes(row, column));
}

void valueTable::addValue(std::wstring_view text) {
  char* const start = arena_.room(text.size() * longestUtf8Element + writeAhead);
  addEnd(static_cast<std::size_t>(narrowToUtf8(text, start) - start));
}

void valueTable::addValue(std::string_view utf8) {
  char* const start = arena_.room(utf8.size() + writeAhead);
  if (!utf8.empty()) std::memcpy(start, utf8.data(), utf8.size());
  addEnd(utf8.size());
}

// WHY the offset goes first: when its allocation fails, the bytes behind the arena's end do not count.
void valueTable::addEnd(std::size_t size) {
  const std::uint64_t end = arena_.size() + size;
  if (!longOffsets_ && end > shortOffsetLimit_) widenOffsets();
  if (longOffsets_)
    longEnds_.push(end);
  else
    shortEnds_.push(static_cast<std::uint32_t>(end));
  arena_.advance(size);
}

void valueTable::endRow() {
  const std::size_t width = valueCount() - openRowStart_;
  if (rowCount_ == 0) rowWidth_ = width;
  if (!ragged_ && width != rowWidth_) keepRowStarts();
  if (ragged_) rowStarts_.push(valueCount());
  ++rowCount_;
  openRowStart_ = valueCount();
}

void valueTable::dropRow() {
  arena_.shrinkTo(static_cast<std::size_t>(startOf(openRowStart_)));
  if (longOffsets_)
    longEnds_.shrinkTo(openRowStart_);
  else
    shortEnds_.shrinkTo(openRowStart_);
}

void valueTable::widenOffsets() {
  std::uint64_t* ends = longEnds_.room(shortEnds_.size() + 1);
  for (std::size_t i = 0; i < shortEnds_.size(); ++i) ends[i] = shortEnds_[i];
  longEnds_.advance(shortEnds_.size());
  growingArray<std::uint32_t>().swap(shortEnds_);
  longOffsets_ = true;
}

void valueTable::keepRowStarts() {
  std::uint64_t* starts = rowStarts_.room(rowCount_ + 2);
  for (std::size_t row = 0; row <= rowCount_; ++row) starts[row] = row * rowWidth_;
  rowStarts_.advance(rowCount_ + 1);
  ragged_ = true;
}

}  // namespace tableRW

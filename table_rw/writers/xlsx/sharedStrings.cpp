#include "table_rw/writers/xlsx/sharedStrings.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "table_rw/writers/xlsx/xmlText.h"

namespace SimpleXlsx {
namespace {

// A record: index (4 bytes), length (1 byte, or 0xFF and 8 bytes), text.
constexpr std::size_t indexSize = sizeof(std::uint32_t);
constexpr unsigned char longText = 0xFF;
constexpr std::size_t shortHead = indexSize + 1;
constexpr std::size_t longHead = shortHead + sizeof(std::uint64_t);

// A slot: the offset of a record, and bits of the text's hash that spare most comparisons.
constexpr unsigned offsetBits = 40;
constexpr std::uint64_t offsetMask = (std::uint64_t{1} << offsetBits) - 1;
constexpr std::size_t firstSlotCount = 1024;  // filled up to three quarters
constexpr std::uint32_t mostTexts = std::numeric_limits<std::uint32_t>::max();

constexpr std::string_view plainBegin = "<si><t>";
// Spreadsheet programs take the blanks at both ends of a text away unless it says that they count.
constexpr std::string_view preservedBegin = "<si><t xml:space=\"preserve\">";
constexpr std::string_view itemEnd = "</t></si>";
constexpr std::string_view blanks = " \t\n\r";

bool needsItsBlanks(std::string_view text) {
  return !text.empty() && (blanks.find(text.front()) != std::string_view::npos ||
                           blanks.find(text.back()) != std::string_view::npos);
}

std::uint64_t load64(const char* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

std::uint64_t load32(const char* bytes) {
  std::uint32_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

std::uint64_t mixed(std::uint64_t hash, std::uint64_t word) {
  hash = (hash ^ word) * 0xFF51AFD7ED558CCD;
  return hash ^ hash >> 32;
}

std::uint64_t hashOf(std::string_view text) {
  const char* next = text.data();
  std::size_t left = text.size();
  std::uint64_t hash = left * 0x9E3779B97F4A7C15;
  for (; left >= 8; next += 8, left -= 8) hash = mixed(hash, load64(next));
  if (left >= 4) {
    hash = mixed(hash, load32(next) | load32(next + left - 4) << 32);
  } else if (left > 0) {
    const auto byte = [&](std::size_t at) {
      return static_cast<std::uint64_t>(static_cast<unsigned char>(next[at]));
    };
    hash = mixed(hash, byte(0) | byte(left / 2) << 8 | byte(left - 1) << 16);
  }
  hash = (hash ^ hash >> 29) * 0xC4CEB9FE1A85EC53;
  return hash ^ hash >> 32;
}

}  // namespace

sharedStrings::sharedStrings(const sharedStrings& other)
    : arena_(other.arena_),
      end_(other.end_),
      count_(other.count_),
      uniqueCount_(other.uniqueCount_) {
  if (other.slotCount_ == 0) return;
  const std::size_t bytes = other.slotCount_ * sizeof(slot);
  if (!slots_.reserve(bytes, bytes) || !slots_.commit(bytes)) throw std::bad_alloc();
  slotCount_ = other.slotCount_;
  std::memcpy(slots_.data(), other.slots_.data(), bytes);
}

sharedStrings::slot* sharedStrings::slots() const {
  return static_cast<slot*>(static_cast<void*>(slots_.data()));
}

sharedStrings::record sharedStrings::recordAt(std::size_t offset) const {
  const char* const head = arena_.data() + offset;
  const auto index = static_cast<std::uint32_t>(load32(head));
  const auto shortLength = static_cast<unsigned char>(head[indexSize]);
  const bool isLong = shortLength == longText;
  const std::size_t length = isLong ? load64(head + shortHead) : shortLength;
  const std::size_t headSize = isLong ? longHead : shortHead;
  return {
      index, {head + headSize, length},
       offset + headSize + length
  };
}

std::uint32_t sharedStrings::indexOf(std::wstring_view text) {
  const std::size_t offset = end_;
  if (uniqueCount_ == mostTexts || offset > offsetMask) throw std::bad_alloc();
  if ((std::size_t{uniqueCount_} + 1) * 4 > slotCount_ * 3) growSlots();

  // The text is written where it will stand if it is new, behind a short head.
  arena_.shrinkTo(
      std::min(arena_.size(), offset));  // what a call left behind that ran out of memory
  arena_.room(offset + shortHead - arena_.size());
  arena_.advance(offset + shortHead - arena_.size());
  appendUtf8(text, arena_);
  arena_.room(longHead - shortHead);
  const std::string_view bytes(arena_.data() + offset + shortHead,
                               arena_.size() - offset - shortHead);
  const std::uint64_t hash = hashOf(bytes);
  const std::uint64_t tag = hash & ~offsetMask;
  std::size_t at = hash & (slotCount_ - 1);
  for (; slots()[at] != 0; at = (at + 1) & (slotCount_ - 1)) {
    const slot found = slots()[at];
    if ((found & ~offsetMask) != tag) continue;
    const record known = recordAt(found & offsetMask);
    if (known.text != bytes) continue;
    ++count_;
    return known.index;
  }
  putHead(offset, bytes.size());
  slots()[at] = tag | offset;
  ++count_;
  return uniqueCount_++;
}

// Makes a record of the text that stands behind the room of a short head.
void sharedStrings::putHead(std::size_t offset, std::size_t length) {
  const bool isLong = length >= longText;
  char* const head = arena_.room(0) - (arena_.size() - offset);
  if (isLong) {
    const std::uint64_t wideLength = length;
    std::memmove(head + longHead, head + shortHead, length);
    std::memcpy(head + shortHead, &wideLength, sizeof wideLength);
    arena_.advance(longHead - shortHead);
  }
  head[indexSize] = static_cast<char>(isLong ? longText : length);
  std::memcpy(head, &uniqueCount_, indexSize);
  end_ = arena_.size();
}

void sharedStrings::growSlots() {
  std::size_t count = firstSlotCount;
  while ((std::size_t{uniqueCount_} + 1) * 4 > count * 3) count *= 2;
  platform::memoryRegion grown;
  // The old table goes first: it can be made again from the arena, and both would be the peak of memory.
  platform::memoryRegion().swap(slots_);
  slotCount_ = 0;
  if (!grown.reserve(count * sizeof(slot), count * sizeof(slot)) ||
      !grown.commit(count * sizeof(slot)))
    throw std::bad_alloc();
  slots_.swap(grown);
  slotCount_ = count;
  for (std::size_t offset = firstRecord_; offset < end_;) {
    const record each = recordAt(offset);
    const std::uint64_t hash = hashOf(each.text);
    std::size_t at = hash & (count - 1);
    while (slots()[at] != 0) at = (at + 1) & (count - 1);
    slots()[at] = (hash & ~offsetMask) | offset;
    offset = each.end;
  }
}

void sharedStrings::write(xmlPart& part) const {
  part.start("sst")
      .attribute("xmlns", "http://schemas.openxmlformats.org/spreadsheetml/2006/main")
      .attribute("count", count_)
      .attribute("uniqueCount", uniqueCount_);
  for (std::size_t offset = firstRecord_; offset < end_;) {
    const record each = recordAt(offset);
    part.raw(needsItsBlanks(each.text) ? preservedBegin : plainBegin);
    part.raw(each.text).raw(itemEnd);
    offset = each.end;
  }
  part.end();
}

}  // namespace SimpleXlsx

// The texts that cells share, by number, in the order in which they were added.
//
// They stand in blocks that never move, each with its length before it, so a pool takes little more than its
// texts: twelve bytes a text.
#ifndef VOK_CONVERTER_WORKBOOK_TEXTPOOL_H
#define VOK_CONVERTER_WORKBOOK_TEXTPOOL_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace converter {

class textPool {
 public:
  std::size_t size() const { return size_; }

  void add(std::string_view text) {
    const auto length = static_cast<std::uint32_t>(text.size());
    char* const place = room(sizeof length + text.size());
    std::memcpy(place, &length, sizeof length);
    if (!text.empty()) std::memcpy(place + sizeof length, text.data(), text.size());
    if (size_ % listSize == 0) lists_.push_back(std::make_unique<list>());
    (*lists_.back())[size_ % listSize] = place;
    ++size_;
  }

  /// @param number  less than size()
  std::string_view get(std::size_t number) const {
    const char* const place = (*lists_[number / listSize])[number % listSize];
    std::uint32_t length = 0;
    std::memcpy(&length, place, sizeof length);
    return {place + sizeof length, length};
  }

 private:
  static constexpr std::size_t blockSize = std::size_t{1} << 20;
  static constexpr std::size_t listSize = 65536;
  using list = std::array<const char*, listSize>;

  char* room(std::size_t size) {
    if (size > left_) {
      const std::size_t block = size > blockSize ? size : blockSize;
      blocks_.push_back(std::make_unique_for_overwrite<char[]>(block));
      next_ = blocks_.back().get();
      left_ = block;
    }
    char* const place = next_;
    next_ += size;
    left_ -= size;
    return place;
  }

  std::vector<std::unique_ptr<char[]>> blocks_;
  std::vector<std::unique_ptr<list>> lists_;
  char* next_ = nullptr;
  std::size_t left_ = 0;
  std::size_t size_ = 0;
};

}  // namespace converter

#endif

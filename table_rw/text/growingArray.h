// A sequence of plain values that grows at its end without constructing, zeroing or copying what it holds.
// std::vector does all three, which for a table of a hundred million bytes is most of the time of reading
// it. Small arrays lie on the heap; a large one moves once, into a region of reserved address space.
#ifndef VOK_TABLE_RW_TEXT_GROWINGARRAY_H
#define VOK_TABLE_RW_TEXT_GROWINGARRAY_H

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

#include "platform/memoryRegion.h"

namespace tableRW {

template <class T>
class growingArray {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

 public:
  growingArray() = default;
  growingArray(const growingArray& other) { append(other.data(), other.size()); }
  growingArray(growingArray&& other) noexcept { swap(other); }
  growingArray& operator=(growingArray other) noexcept {
    swap(other);
    return *this;
  }
  ~growingArray() { std::free(heap_); }

  const T* data() const { return data_; }
  std::size_t size() const { return size_; }
  T operator[](std::size_t index) const { return data_[index]; }

  /// Room for `count` more values behind the last; they count only after `advance`.
  /// @throws std::bad_alloc
  T* room(std::size_t count) {
    if (count > capacity_ - size_) grow(count);
    return data_ + size_;
  }

  /// Counts values that were written into the room.
  void advance(std::size_t count) { size_ += count; }

  void push(T value) {
    *room(1) = value;
    ++size_;
  }

  void append(const T* values, std::size_t count) {
    if (count == 0) return;
    std::memcpy(room(count), values, count * sizeof(T));
    size_ += count;
  }

  /// Forgets the first `count` values; the others move to the front.
  void dropFront(std::size_t count) {
    if (count > 0 && count < size_) std::memmove(data_, data_ + count, (size_ - count) * sizeof(T));
    size_ -= count;
  }

  /// Forgets the values from `size` on; keeps the memory.
  void shrinkTo(std::size_t size) { size_ = size; }

  void swap(growingArray& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(heap_, other.heap_);
    region_.swap(other.region_);
    std::swap(size_, other.size_);
    std::swap(capacity_, other.capacity_);
  }

 private:
  static constexpr std::size_t largestOnHeap = std::size_t{1} << 20;
  static constexpr std::size_t addressSpace = std::size_t{1} << 36;

  void grow(std::size_t count) {
    constexpr std::size_t most = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(T);
    if (count > most - size_) throw std::bad_alloc();
    const std::size_t needed = size_ + count;
    const std::size_t wanted =
        std::min(most, std::max({needed, capacity_ + capacity_ / 4, std::size_t{64}}));
    if (wanted * sizeof(T) <= largestOnHeap)
      growOnHeap(wanted);
    else
      growInRegion(needed * sizeof(T), wanted * sizeof(T));
  }

  void growOnHeap(std::size_t capacity) {
    void* const moved = std::realloc(heap_, capacity * sizeof(T));
    if (moved == nullptr) throw std::bad_alloc();
    heap_ = data_ = static_cast<T*>(moved);
    capacity_ = capacity;
  }

  void growInRegion(std::size_t needed, std::size_t wanted) {
    if (needed > region_.reserved()) moveToRegion(needed);
    const std::size_t bytes = std::min(wanted, region_.reserved());
    if (!region_.commit(bytes) && !region_.commit(needed)) throw std::bad_alloc();
    capacity_ = region_.committed() / sizeof(T);
  }

  // WHY a move is possible at all: from the heap, and where the system grants only a small region.
  void moveToRegion(std::size_t needed) {
    platform::memoryRegion region;
    if (!region.reserve(std::max(addressSpace, needed * 2), needed) || !region.commit(needed))
      throw std::bad_alloc();
    if (size_ > 0) std::memcpy(region.data(), data_, size_ * sizeof(T));
    region_.swap(region);
    std::free(std::exchange(heap_, nullptr));
    data_ = static_cast<T*>(static_cast<void*>(region_.data()));
  }

  T* data_ = nullptr;  // in the heap block or in the region
  T* heap_ = nullptr;
  platform::memoryRegion region_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace tableRW

#endif

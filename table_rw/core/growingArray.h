// A sequence of plain values that grows at its end without constructing, zeroing or, where the system
// can move pages, copying what it holds. std::vector does all three, which for a table of a hundred
// million bytes is most of the time of reading it.
#ifndef VOK_TABLE_RW_CORE_GROWINGARRAY_H
#define VOK_TABLE_RW_CORE_GROWINGARRAY_H

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

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
  ~growingArray() { std::free(data_); }

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

  /// Forgets the values from `size` on; keeps the memory.
  void shrinkTo(std::size_t size) { size_ = size; }

  void swap(growingArray& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    std::swap(capacity_, other.capacity_);
  }

 private:
  void grow(std::size_t count) {
    constexpr std::size_t most = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(T);
    if (count > most - size_) throw std::bad_alloc();
    const std::size_t wanted =
        std::max({size_ + count, capacity_ + capacity_ / 2, std::size_t{64}});
    const std::size_t capacity = std::min(wanted, most);
    void* const moved = std::realloc(data_, capacity * sizeof(T));
    if (moved == nullptr) throw std::bad_alloc();
    data_ = static_cast<T*>(moved);
    capacity_ = capacity;
  }

  T* data_ = nullptr;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace tableRW

#endif

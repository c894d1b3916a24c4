// A growing piece of memory that never moves: address space is reserved at once, memory is committed as
// it is needed, and what was never touched costs nothing.
//
// On POSIX large regions ask for huge pages. A system that limits address space gives less than was asked
// for; the owner then has to move to a larger region when this one is full.
// One object belongs to one thread at a time. Nothing throws; failures are false.
#ifndef VOK_PLATFORM_MEMORYREGION_H
#define VOK_PLATFORM_MEMORYREGION_H

#include <cstddef>

namespace platform {

class memoryRegion {
 public:
  memoryRegion() = default;
  memoryRegion(memoryRegion&& other) noexcept { swap(other); }
  memoryRegion& operator=(memoryRegion&& other) noexcept {
    swap(other);
    return *this;
  }
  memoryRegion(const memoryRegion&) = delete;
  memoryRegion& operator=(const memoryRegion&) = delete;
  ~memoryRegion();

  /// Reserves address space, as close to `wanted` bytes as the system allows, at least `least`. What was
  /// reserved before is given back. @return false when not even `least` is to be had
  bool reserve(std::size_t wanted, std::size_t least);

  /// Makes the first `size` bytes usable; new bytes are zero. @return false when memory has run out or
  /// the region is smaller
  bool commit(std::size_t size);

  char* data() const { return base_; }
  std::size_t reserved() const { return reserved_; }
  std::size_t committed() const { return committed_; }

  void swap(memoryRegion& other) noexcept;

 private:
  /// Sizes are multiples of this: a huge page.
  static constexpr std::size_t granularity = std::size_t{2} << 20;
  static std::size_t roundUp(std::size_t size) {
    return (size + granularity - 1) & ~(granularity - 1);
  }
  /// @return false when `size` bytes, a multiple of the granularity, are not to be had
  bool reserveExactly(std::size_t size);

  char* base_ = nullptr;
  std::size_t reserved_ = 0;
  std::size_t committed_ = 0;
};

}  // namespace platform

#endif

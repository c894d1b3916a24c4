#include "platform/memoryRegion.h"

#include <algorithm>
#include <utility>

namespace platform {

bool memoryRegion::reserve(std::size_t wanted, std::size_t least) {
  memoryRegion().swap(*this);
  const std::size_t smallest = std::max(roundUp(least), granularity);
  std::size_t size = std::max(roundUp(wanted), smallest);
  while (!reserveExactly(size)) {
    if (size == smallest) return false;
    size = std::max(roundUp(size / 2), smallest);
  }
  return true;
}

void memoryRegion::swap(memoryRegion& other) noexcept {
  std::swap(base_, other.base_);
  std::swap(reserved_, other.reserved_);
  std::swap(committed_, other.committed_);
}

}  // namespace platform

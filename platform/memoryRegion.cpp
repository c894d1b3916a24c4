#include "platform/memoryRegion.h"

#include <utility>

namespace platform {

void memoryRegion::swap(memoryRegion& other) noexcept {
  std::swap(base_, other.base_);
  std::swap(reserved_, other.reserved_);
  std::swap(committed_, other.committed_);
}

}  // namespace platform

#include "platform/memoryRegion.h"

#include <windows.h>

#include <algorithm>

namespace platform {

memoryRegion::~memoryRegion() {
  if (base_ != nullptr) ::VirtualFree(base_, 0, MEM_RELEASE);
}

bool memoryRegion::reserveExactly(std::size_t size) {
  base_ = static_cast<char*>(::VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS));
  reserved_ = base_ == nullptr ? 0 : size;
  return base_ != nullptr;
}

bool memoryRegion::commit(std::size_t size) {
  if (size <= committed_) return true;
  if (size > reserved_) return false;
  const std::size_t target = std::min(roundUp(size), reserved_);
  if (::VirtualAlloc(base_ + committed_, target - committed_, MEM_COMMIT, PAGE_READWRITE) ==
      nullptr)
    return false;
  committed_ = target;
  return true;
}

}  // namespace platform

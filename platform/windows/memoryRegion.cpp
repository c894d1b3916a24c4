#include "platform/memoryRegion.h"

#include <windows.h>

#include <algorithm>

namespace platform {
namespace {

constexpr std::size_t granularity = std::size_t{1} << 20;

std::size_t roundUp(std::size_t size) { return (size + granularity - 1) & ~(granularity - 1); }

}  // namespace

memoryRegion::~memoryRegion() {
  if (base_ != nullptr) ::VirtualFree(base_, 0, MEM_RELEASE);
}

bool memoryRegion::reserve(std::size_t wanted, std::size_t least) {
  memoryRegion().swap(*this);
  const std::size_t smallest = roundUp(least);
  for (std::size_t size = std::max(roundUp(wanted), smallest);;
       size = std::max(size / 2, smallest)) {
    void* const got = ::VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS);
    if (got != nullptr) {
      base_ = static_cast<char*>(got);
      reserved_ = size;
      return true;
    }
    if (size == smallest) return false;
  }
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

#include "platform/memoryRegion.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>

namespace platform {
namespace {

// Reserves `size` bytes at a multiple of `alignment`, as `size` is one. Null: none to be had.
char* reserveAligned(std::size_t size, std::size_t alignment) {
  // WHY no access at first: such a mapping counts against no limit of memory.
  void* const got = ::mmap(nullptr, size + alignment, PROT_NONE,
                           MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (got == MAP_FAILED) return nullptr;
  char* const start = static_cast<char*>(got);
  const std::size_t ahead =
      alignment - 1 - (reinterpret_cast<std::uintptr_t>(start) - 1) % alignment;
  if (ahead > 0) ::munmap(start, ahead);
  ::munmap(start + ahead + size, alignment - ahead);
  return start + ahead;
}

}  // namespace

memoryRegion::~memoryRegion() {
  if (base_ != nullptr) ::munmap(base_, reserved_);
}

bool memoryRegion::reserveExactly(std::size_t size) {
  base_ = reserveAligned(size, granularity);
  reserved_ = base_ == nullptr ? 0 : size;
  return base_ != nullptr;
}

bool memoryRegion::commit(std::size_t size) {
  if (size <= committed_) return true;
  if (size > reserved_) return false;
  const std::size_t target = std::min(roundUp(size), reserved_);
  if (::mprotect(base_ + committed_, target - committed_, PROT_READ | PROT_WRITE) != 0)
    return false;
  ::madvise(base_ + committed_, target - committed_,
            MADV_HUGEPAGE);  // a wish; a refusal is no harm
  committed_ = target;
  return true;
}

}  // namespace platform

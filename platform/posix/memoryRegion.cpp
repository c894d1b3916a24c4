#include "platform/memoryRegion.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>

namespace platform {
namespace {

constexpr std::size_t hugePage = std::size_t{2} << 20;

std::size_t roundUp(std::size_t size) { return (size + hugePage - 1) & ~(hugePage - 1); }

// Reserves `size` bytes, a multiple of a huge page, at an address that is one too. Null: none to be had.
char* reserveAligned(std::size_t size) {
  // WHY no access at first: such a mapping counts against no limit of memory.
  void* const got = ::mmap(nullptr, size + hugePage, PROT_NONE,
                           MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (got == MAP_FAILED) return nullptr;
  char* const start = static_cast<char*>(got);
  const std::size_t ahead =
      roundUp(reinterpret_cast<std::uintptr_t>(start)) - reinterpret_cast<std::uintptr_t>(start);
  if (ahead > 0) ::munmap(start, ahead);
  ::munmap(start + ahead + size, hugePage - ahead);
  return start + ahead;
}

}  // namespace

memoryRegion::~memoryRegion() {
  if (base_ != nullptr) ::munmap(base_, reserved_);
}

bool memoryRegion::reserve(std::size_t wanted, std::size_t least) {
  memoryRegion().swap(*this);
  const std::size_t smallest = roundUp(least);
  for (std::size_t size = std::max(roundUp(wanted), smallest);;
       size = std::max(size / 2, smallest)) {
    base_ = reserveAligned(size);
    if (base_ != nullptr) {
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
  if (::mprotect(base_ + committed_, target - committed_, PROT_READ | PROT_WRITE) != 0)
    return false;
  ::madvise(base_ + committed_, target - committed_,
            MADV_HUGEPAGE);  // a wish; a refusal is no harm
  committed_ = target;
  return true;
}

}  // namespace platform

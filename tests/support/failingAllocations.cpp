#include "tests/support/failingAllocations.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr std::size_t never = std::numeric_limits<std::size_t>::max();

// Per thread, so that a test framework's own threads are left alone.
thread_local std::size_t allocationsLeft = never;
thread_local bool failed = false;

}  // namespace

// Replaces the program's own operators; the array forms and the sized ones call these.
void* operator new(std::size_t size) {
  if (allocationsLeft != never && allocationsLeft-- == 0) {
    allocationsLeft = never;
    failed = true;
    throw std::bad_alloc();
  }
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

// Not left to the library: AddressSanitizer has one of its own, which std::stable_sort would ask for memory.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace testSupport {

failingAllocation::failingAllocation(std::size_t number) {
  failed = false;
  allocationsLeft = number;
}

failingAllocation::~failingAllocation() { allocationsLeft = never; }

bool failingAllocation::hasFailed() const { return failed; }

}  // namespace testSupport

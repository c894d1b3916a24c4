// Makes the n-th `new` of the test program fail, for sweeps over all allocations of an operation.
// Disarmed until a test arms it, and disarmed again by the failure itself.
#ifndef VOK_TESTS_SUPPORT_FAILINGALLOCATIONS_H
#define VOK_TESTS_SUPPORT_FAILINGALLOCATIONS_H

#include <cstddef>

namespace testSupport {

/// While it lives, the allocation with this number (from 0) throws std::bad_alloc; later ones succeed.
class failingAllocation {
 public:
  explicit failingAllocation(std::size_t number);
  failingAllocation(const failingAllocation&) = delete;
  failingAllocation& operator=(const failingAllocation&) = delete;
  ~failingAllocation();

  /// Whether so many allocations were made that one has failed.
  bool hasFailed() const;
};

}  // namespace testSupport

#endif

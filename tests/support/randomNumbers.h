// Random numbers that are the same at every run and on both targets.
#ifndef VOK_TESTS_SUPPORT_RANDOMNUMBERS_H
#define VOK_TESTS_SUPPORT_RANDOMNUMBERS_H

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>

namespace testSupport {

class randomNumbers {
 public:
  explicit randomNumbers(std::uint32_t seed) : engine_(seed) {}

  /// WHY no distribution of the standard library: each library computes them in its own way.
  std::uint32_t bits() { return static_cast<std::uint32_t>(engine_()); }

  /// A number from 0 to `count` - 1.
  std::size_t below(std::size_t count) { return bits() % count; }

  /// True once in `n` calls on average.
  bool onceIn(std::size_t n) { return below(n) == 0; }

  template <class List>
  const auto& oneOf(const List& list) {
    return *std::next(std::begin(list), static_cast<std::ptrdiff_t>(below(std::size(list))));
  }

 private:
  std::mt19937 engine_;
};

}  // namespace testSupport

#endif

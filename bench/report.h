// What a benchmark program measures and how it tells the runner: one line per measurement on
// standard output,
//
//     read seconds=0.284113 rows=925007 values=11100084
//
// the name, the wall time from a steady clock, and the counts that prove what was done. The runner
// compares the counts with those that the generator of the data has printed.
#ifndef VOK_BENCH_REPORT_H
#define VOK_BENCH_REPORT_H

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <utility>

namespace bench {

/// Runs from its construction on.
class stopwatch {
 public:
  double seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

using counts = std::initializer_list<std::pair<const char*, std::uint64_t>>;

inline void report(const char* name, double seconds, counts found) {
  std::printf("%s seconds=%.6f", name, seconds);
  for (const auto& [what, count] : found)
    std::printf(" %s=%llu", what, static_cast<unsigned long long>(count));
  std::printf("\n");
}

/// Ends the program without running destructors: freeing a table is not what is measured, and a
/// table of small strings takes its time to free.
[[noreturn]] inline void leave() {
  std::fflush(stdout);
  std::_Exit(0);
}

[[noreturn]] inline void fail(const char* what, const char* subject) {
  std::fprintf(stderr, "%s: %s\n", subject, what);
  std::_Exit(1);
}

}  // namespace bench

#endif

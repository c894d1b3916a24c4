// All targets as one libFuzzer program: the environment variable VOK_FUZZ_TARGET names the one to run.
// WHY a variable: libFuzzer starts itself anew to minimise an input, and hands only its own flags on.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"

namespace {

const fuzzing::target* chosen = nullptr;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  const char* const name = std::getenv("VOK_FUZZ_TARGET");
  chosen = fuzzing::findTarget(name == nullptr ? "" : name);
  if (chosen != nullptr) return 0;
  std::fputs("VOK_FUZZ_TARGET names no target; there are:", stderr);
  for (const fuzzing::target& each : fuzzing::targets) std::fprintf(stderr, " %s", each.name);
  std::fputs("\n", stderr);
  std::exit(2);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    chosen->run({reinterpret_cast<const char*>(data), size});
    return 0;
  } catch (const fuzzing::doesNotHold& problem) {
    std::fprintf(stderr, "does not hold: %s\n", problem.what());
    std::abort();  // which libFuzzer takes for a find
  }
}

// vok_replay: runs a fuzz target on given inputs, without a fuzzer.
//
//     vok_replay TARGET [-v] [-d TIMES] FILE-OR-FOLDER...
//
// Folders are taken with all that is below them. -v prints what becomes of each input. -d also runs each input so many
// times with some of its bytes changed, left out, or taken from another input; the same ones at every run.
// An input for which something does not hold is named, and a damaged one is kept as vok_replay.found.
// Exit code 1: something does not hold; 2: no such target, a file that cannot be read, or no input at all, so that a
// wrong folder is not taken for a success.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "tests/support/randomNumbers.h"
#include "tests/support/temporaryFolder.h"

namespace {

namespace fs = std::filesystem;

void collect(const fs::path& path, std::vector<fs::path>& files) {
  std::error_code failure;
  if (!fs::is_directory(path, failure)) return files.push_back(path);
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path, failure))
    if (entry.is_regular_file()) files.push_back(entry.path());
}

struct replayed {
  std::string name;
  std::string bytes;
};

// Whether all holds.
bool run(const fuzzing::target& target, const replayed& input, bool isVerbose) {
  try {
    const std::string outcome = target.run(input.bytes);
    if (isVerbose) std::printf("%s\t%s\n", input.name.c_str(), outcome.c_str());
    return true;
  } catch (const fuzzing::doesNotHold& problem) {
    std::fprintf(stderr, "%s\ndoes not hold: %s\n", input.name.c_str(), problem.what());
    return false;
  }
}

std::string damaged(std::string bytes, const std::string& other,
                    testSupport::randomNumbers& random) {
  static constexpr char odd[] = {0, 1, 0x7F, '\x80', '\xFF', '\n', '<', '0'};
  constexpr std::size_t longestPiece = 16;
  for (std::size_t edits = 1 + random.below(4); edits > 0; --edits) {
    const std::size_t at = random.below(bytes.size() + 1);
    const std::size_t size = std::min(random.below(longestPiece), bytes.size() - at);
    switch (random.below(5)) {
      case 0:
        bytes.erase(at, size);
        break;
      case 1:
        bytes.insert(at, other, random.below(other.size() + 1), random.below(longestPiece));
        break;
      case 2:
        bytes.insert(at, 1, random.oneOf(odd));
        break;
      default:
        if (at < bytes.size())
          bytes[at] =
              random.onceIn(2) ? random.oneOf(odd) : static_cast<char>(random.bits() & 0xFF);
    }
  }
  return bytes;
}

bool runDamaged(const fuzzing::target& target, const std::vector<replayed>& inputs,
                unsigned long times) {
  testSupport::randomNumbers random(1);
  for (const replayed& input : inputs) {
    for (unsigned long i = 0; i < times; ++i) {
      const replayed changed = {input.name + ", damaged",
                                damaged(input.bytes, random.oneOf(inputs).bytes, random)};
      if (run(target, changed, false)) continue;
      testSupport::writeFile(L"vok_replay.found", changed.bytes);
      return false;
    }
  }
  return true;
}

int usage() {
  std::fputs("usage: vok_replay TARGET [-v] [-d TIMES] FILE-OR-FOLDER...\ntargets:", stderr);
  for (const fuzzing::target& each : fuzzing::targets) std::fprintf(stderr, " %s", each.name);
  std::fputs("\n", stderr);
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  const fuzzing::target* const target = argc < 2 ? nullptr : fuzzing::findTarget(argv[1]);
  if (target == nullptr) return usage();
  bool isVerbose = false;
  unsigned long times = 0;
  std::vector<fs::path> files;
  for (int i = 2; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "-v")
      isVerbose = true;
    else if (argument == "-d" && i + 1 < argc)
      times = std::strtoul(argv[++i], nullptr, 10);
    else
      collect(argument, files);
  }
  std::sort(files.begin(), files.end());
  if (files.empty()) return usage();
  std::vector<replayed> inputs;
  for (const fs::path& path : files) {
    auto bytes = testSupport::readFile(path.wstring());
    if (!bytes) {
      std::fprintf(stderr, "cannot be read: %s\n", path.string().c_str());
      return 2;
    }
    inputs.push_back({path.string(), *std::move(bytes)});
  }
  bool allHold = true;
  for (const replayed& input : inputs) allHold = run(*target, input, isVerbose) && allHold;
  allHold = runDamaged(*target, inputs, times) && allHold;
  std::printf("%s: %s inputs\n", target->name, std::to_string(inputs.size() * (1 + times)).c_str());
  return allHold ? 0 : 1;
}

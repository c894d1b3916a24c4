// vok_replay: runs a fuzz target on given inputs, without a fuzzer.
//
//     vok_replay TARGET [-v] FILE-OR-FOLDER...
//
// Folders are taken with all that is below them. -v prints what becomes of each input.
// Exit code 1: something does not hold for an input, which is named; 2: no such target, a file that cannot be
// read, or no input at all, so that a wrong folder is not taken for a success.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "tests/support/temporaryFolder.h"

namespace {

namespace fs = std::filesystem;

void collect(const fs::path& path, std::vector<fs::path>& files) {
  std::error_code failure;
  if (!fs::is_directory(path, failure)) return files.push_back(path);
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path, failure))
    if (entry.is_regular_file()) files.push_back(entry.path());
}

// The exit code.
int replay(const fuzzing::target& target, const fs::path& path, bool isVerbose) {
  const auto bytes = testSupport::readFile(path.wstring());
  if (!bytes) {
    std::fprintf(stderr, "cannot be read: %s\n", path.string().c_str());
    return 2;
  }
  try {
    const std::string outcome = target.run(*bytes);
    if (isVerbose) std::printf("%s\t%s\n", path.string().c_str(), outcome.c_str());
    return 0;
  } catch (const fuzzing::doesNotHold& problem) {
    std::fprintf(stderr, "%s\ndoes not hold: %s\n", path.string().c_str(), problem.what());
    return 1;
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const fuzzing::target* const target =
      arguments.empty() ? nullptr : fuzzing::findTarget(arguments.front());
  if (target == nullptr) {
    std::fputs("usage: vok_replay TARGET [-v] FILE-OR-FOLDER...\ntargets:", stderr);
    for (const fuzzing::target& each : fuzzing::targets) std::fprintf(stderr, " %s", each.name);
    std::fputs("\n", stderr);
    return 2;
  }
  const bool isVerbose = std::find(arguments.begin(), arguments.end(), "-v") != arguments.end();
  std::vector<fs::path> files;
  for (std::size_t i = 1; i < arguments.size(); ++i)
    if (arguments[i] != "-v") collect(arguments[i], files);
  std::sort(files.begin(), files.end());
  int exitCode = files.empty() ? 2 : 0;
  for (const fs::path& path : files)
    exitCode = std::max(exitCode, replay(*target, path, isVerbose));
  std::printf("%s: %s inputs\n", target->name, std::to_string(files.size()).c_str());
  return exitCode;
}

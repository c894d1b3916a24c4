// Inputs that were once answered wrongly, found by fuzzing and cut down: tests/fixtures/<target>/found/. Each is run
// through its target, which checks what holds for every input, and must come to the outcome that
// tests/fixtures/found.tsv names.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/targets.h"
#include "tests/support/temporaryFolder.h"

namespace {

namespace fs = std::filesystem;

const fs::path fixtures = VOK_TEST_FIXTURES;

struct foundInput {
  std::string target;
  std::string file;
  std::string outcome;
};

// The lines of the list: target, file, outcome and what was wrong, with a TAB between them.
std::vector<foundInput> listedInputs() {
  std::vector<foundInput> all;
  std::ifstream list(fixtures / "found.tsv");
  for (std::string line; std::getline(list, line);) {
    if (line.empty() || line.front() == '#') continue;
    std::istringstream columns(line);
    foundInput& input = all.emplace_back();
    std::getline(columns, input.target, '\t');
    std::getline(columns, input.file, '\t');
    std::getline(columns, input.outcome, '\t');
  }
  return all;
}

TEST(foundInputs, everyOneComesToItsOutcome) {
  const std::vector<foundInput> all = listedInputs();
  EXPECT_FALSE(all.empty());
  for (const foundInput& input : all) {
    SCOPED_TRACE(input.target + "/" + input.file);
    const fuzzing::target* const target = fuzzing::findTarget(input.target);
    ASSERT_NE(target, nullptr);
    const auto bytes =
        testSupport::readFile((fixtures / input.target / "found" / input.file).wstring());
    ASSERT_TRUE(bytes.has_value());
    EXPECT_EQ(target->run(*bytes), input.outcome);
  }
}

TEST(foundInputs, everyOneIsListed) {
  std::set<std::string> listed;
  for (const foundInput& input : listedInputs()) listed.insert(input.target + "/" + input.file);
  std::size_t files = 0;
  for (const fuzzing::target& target : fuzzing::targets) {
    std::error_code isMissing;
    for (const fs::directory_entry& entry :
         fs::directory_iterator(fixtures / target.name / "found", isMissing)) {
      const std::string name = target.name + ("/" + entry.path().filename().string());
      EXPECT_TRUE(listed.contains(name)) << name;
      ++files;
    }
  }
  EXPECT_EQ(files, listed.size());
}

}  // namespace

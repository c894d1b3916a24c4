// Real files of many origins, read with several delimiters and encodings, against the slow twin. They are
// no part of the project: the environment variable VOK_REAL_FILES names the folder that holds them in its
// subfolders csv and petrel. Without it the test is skipped.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "tests/support/csvComparison.h"
#include "tests/support/temporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using testSupport::csvOptions;

std::vector<fs::path> realFiles() {
  std::vector<fs::path> files;
  const char* const folder = std::getenv("VOK_REAL_FILES");
  if (folder == nullptr) return files;
  for (const char* const kind : {"csv", "petrel"}) {
    std::error_code failure;
    for (auto entry = fs::recursive_directory_iterator(fs::path(folder) / kind, failure);
         !failure && entry != fs::recursive_directory_iterator(); entry.increment(failure))
      if (entry->is_regular_file()) files.push_back(entry->path());
  }
  return files;
}

TEST(csvRealFiles, agreeWithTheTwin) {
  const std::vector<fs::path> files = realFiles();
  if (files.empty()) GTEST_SKIP() << "VOK_REAL_FILES names no folder with files";
  for (const fs::path& file : files) {
    const std::optional<std::string> bytes = testSupport::readFile(file.wstring());
    ASSERT_TRUE(bytes.has_value()) << file;
    for (const wchar_t* const delimiter : {L";", L",", L"\t", L" "}) {
      for (const std::int32_t encoding : {0, 8, 9, 17}) {
        csvOptions options;
        options.delimiter = delimiter;
        options.encoding = encoding;
        EXPECT_EQ(testSupport::differenceFromTwin(file.wstring(), *bytes, options), "") << file;
      }
    }
  }
}

}  // namespace

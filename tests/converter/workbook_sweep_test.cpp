// Real workbooks, whole and damaged: each cut at places, with bytes changed, and with bytes changed in the
// parts of its package, which the checksums of a ZIP archive would hide. Every one gets an answer, none
// leaves anything behind (see tests/support/conversion.h), and a text that comes out is a table: UTF-8 whose
// lines are all equally wide.
//
// VOK_REAL_FILES names the folder that holds the files in its subfolders xls and xlsx. An ordinary run tries
// a few damages of each; VOK_FULL_SWEEP in the environment asks for 200 cuts and 500 changes of every file,
// which takes hours, and says `2/4` to do the second quarter of the files. Fixed seeds: a failure repeats.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "converter/container/zipArchive.h"
#include "tests/support/conversion.h"
#include "tests/support/randomNumbers.h"
#include "tests/support/workbookBuilders.h"

namespace {

namespace fs = std::filesystem;
using testSupport::conversion;
using testSupport::randomNumbers;

struct amounts {
  std::size_t cuts;
  std::size_t changes;
  std::size_t changedParts;
  std::size_t largest;  // larger files are converted whole alone
};

constexpr amounts ordinaryAmounts = {2, 3, 2, 25000};
constexpr amounts fullAmounts = {200, 500, 100, 1000000};

const char* fullSweep() { return std::getenv("VOK_FULL_SWEEP"); }

amounts wanted() { return fullSweep() == nullptr ? ordinaryAmounts : fullAmounts; }

std::vector<fs::path> realFiles() {
  std::vector<fs::path> files;
  const char* const folder = std::getenv("VOK_REAL_FILES");
  if (folder == nullptr) return files;
  for (const char* const kind : {"xls", "xlsx"}) {
    std::error_code failure;
    for (auto entry = fs::recursive_directory_iterator(fs::path(folder) / kind, failure);
         !failure && entry != fs::recursive_directory_iterator(); entry.increment(failure))
      if (entry->is_regular_file() && entry->path().parent_path().filename() != "excel2016-csv")
        files.push_back(entry->path());
  }
  std::sort(files.begin(), files.end());
  std::size_t part = 0;
  std::size_t parts = 0;
  if (fullSweep() == nullptr || std::sscanf(fullSweep(), "%zu/%zu", &part, &parts) != 2)
    return files;
  std::vector<fs::path> some;
  for (std::size_t i = 0; i < files.size(); ++i)
    if (i % parts + 1 == part) some.push_back(files[i]);
  return some;
}

// What a text file is that no reader could take for a table; empty when nothing is wrong.
std::string problemOf(const std::string& text) {
  std::size_t delimiters = 0;
  std::size_t expected = std::string::npos;
  std::size_t following = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isFollowing = (byte & 0xC0) == 0x80;
    if (isFollowing != (following > 0)) return "broken UTF-8";
    following = isFollowing ? following - 1 : byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : byte >= 0xC0;
    if (c == '$') ++delimiters;
    if (c == '\0' || c == '\x1A' || c == '\r') return "a character that ends a text";
    if (c != '\n') continue;
    if (expected != std::string::npos && expected != delimiters) return "lines of several widths";
    expected = std::exchange(delimiters, 0);
  }
  return text.empty() || text.back() == '\n' ? "" : "a line without an end";
}

// The parts of a package under their usual names; those that are damaged are left out.
testSupport::zipMembers partsOf(const fs::path& path) {
  testSupport::zipMembers parts;
  platform::binaryFile file;
  converter::zipArchive archive;
  std::string problem;
  if (!file.openForReading(path.wstring()) || !archive.open(file, problem)) return parts;
  for (const char* const name :
       {"_rels/.rels", "xl/workbook.xml", "xl/_rels/workbook.xml.rels", "xl/styles.xml",
        "xl/sharedStrings.xml", "xl/worksheets/sheet1.xml", "xl/worksheets/sheet2.xml"}) {
    const converter::zipMember* const member = archive.find(name);
    converter::zipMemberReader reader;
    if (member == nullptr || member->size > 4 * fullAmounts.largest ||
        !reader.open(archive, *member, problem))
      continue;
    std::string bytes(static_cast<std::size_t>(member->size), '\0');
    const std::ptrdiff_t count = reader.read(bytes.data(), bytes.size(), problem);
    if (count == static_cast<std::ptrdiff_t>(bytes.size())) parts.emplace_back(name, bytes);
  }
  return parts;
}

// Converts workbooks and counts what became of them.
class sweep {
 public:
  ~sweep() {
    if (fullSweep() != nullptr)
      std::printf("%zu conversions, %zu refused\n", conversions_, refusals_);
  }

  void convert(const std::string& bytes, const std::string& what) {
    conversion converting;
    converting.request.copyMerged = true;
    ++conversions_;
    const std::string answer = converting.run(bytes);
    if (answer.starts_with("problem: ") && answer.size() > 9) {
      ++refusals_;
      return;
    }
    ASSERT_EQ(problemOf(answer), "") << what << ": " << answer.substr(0, 1000);
  }

 private:
  std::size_t conversions_ = 0;
  std::size_t refusals_ = 0;
};

class workbookSweep : public testing::Test {
 protected:
  void SetUp() override {
    files_ = realFiles();
    if (files_.empty()) GTEST_SKIP() << "VOK_REAL_FILES names no folder with files";
  }

  static std::string bytesOf(const fs::path& path) {
    return testSupport::readFile(path.wstring()).value_or("");
  }

  std::vector<fs::path> files_;
  sweep sweep_;
};

TEST_F(workbookSweep, wholeFiles) {
  for (const fs::path& path : files_) {
    const std::string whole = bytesOf(path);
    EXPECT_FALSE(whole.empty()) << path;
    sweep_.convert(whole, path.string());
  }
}

TEST_F(workbookSweep, cut) {
  const std::size_t cuts = wanted().cuts;
  for (const fs::path& path : files_) {
    const std::string whole = bytesOf(path);
    if (whole.size() > wanted().largest) continue;
    for (std::size_t i = 0; i < cuts; ++i) {
      const std::size_t size = whole.size() * i / cuts;
      sweep_.convert(whole.substr(0, size), path.string() + " cut at " + std::to_string(size));
    }
  }
}

// One byte in each try, and all at once in the last.
TEST_F(workbookSweep, bytesChanged) {
  const std::size_t changes = wanted().changes;
  randomNumbers random(3);
  for (const fs::path& path : files_) {
    const std::string whole = bytesOf(path);
    if (whole.size() > wanted().largest) continue;
    std::string ruin = whole;
    for (std::size_t i = 0; i < changes; ++i) {
      const std::size_t at = random.below(whole.size());
      std::string damaged = whole;
      damaged[at] = ruin[at] = static_cast<char>(random.bits());
      sweep_.convert(damaged, path.string() + " changed at " + std::to_string(at));
    }
    sweep_.convert(ruin, path.string() + " with all changes");
  }
}

// XML that was changed by bytes and by words, in an archive whose checksums are right.
TEST_F(workbookSweep, partsChanged) {
  static constexpr std::string_view words[] = {
      "<",          ">",       "/>", "&lt;",  "&#0;", "&#x10FFFF;", "-1",      "1048577",
      "XFD1048576", "''",      "\"", "1e999", "NaN",  "9999999999", "t=\"s\"", "t=\"str\"",
      "_x0024_",    "_xD800_", "$",  "\n",    "</c>", "<is>",       "<rPh>",   "\xFF",
      "]]>",        "A1:A9",   "",   "<v>",   "00.",  "<!--x-->"};
  randomNumbers random(5);
  for (const fs::path& path : files_) {
    const std::string whole = bytesOf(path);
    if (whole.size() > wanted().largest || !whole.starts_with("PK")) continue;
    const testSupport::zipMembers members = partsOf(path);
    if (members.empty()) continue;  // damaged already
    for (std::size_t i = 0; i < wanted().changedParts; ++i) {
      testSupport::zipMembers damaged = members;
      std::string& bytes = damaged[random.below(damaged.size())].second;
      for (std::size_t changes = 1 + random.below(3); changes > 0 && !bytes.empty(); --changes)
        bytes.replace(random.below(bytes.size()), random.below(3), random.oneOf(words));
      sweep_.convert(testSupport::zipOf(damaged, false), path.string() + ", parts changed");
    }
  }
}

}  // namespace

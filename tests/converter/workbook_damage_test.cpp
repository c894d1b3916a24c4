// Damaged workbooks: cut, and with bytes changed. Every one gets an answer, none leaves anything behind
// (see tests/support/conversion.h), and a text that comes out in spite of the damage is whole. Real files: workbook_sweep_test.cpp.
#include <gtest/gtest.h>

#include <random>

#include "converter/container/zipArchive.h"
#include "converter/syntax/biffRecords.h"
#include "tests/support/conversion.h"
#include "tests/support/failingAllocations.h"
#include "tests/support/workbookBuilders.h"

namespace {

using testSupport::conversion;
using testSupport::le16;
using testSupport::le32;
using testSupport::leDouble;
using testSupport::record;

std::string xlsx() {
  testSupport::xlsxBuilder book;
  book.worksheet =
      "<sheetData><row><c t='s'><v>0</v></c><c s='1'><v>41684</v></c></row><row><c "
      "t='str'><v>x</v></c></row>"
      "</sheetData><mergeCells><mergeCell ref='A2:B3'/></mergeCells>";
  book.sharedStrings = "<si><t>first</t></si>";
  book.styles = "<xf numFmtId='0'/><xf numFmtId='14'/>";
  return book.bytes();
}

std::string xls() {
  const std::string shared =
      record(converter::biff::sharedStrings, le32(1) + le32(1) + le16(5) + '\0' + "first");
  const std::string cells =
      record(converter::biff::sharedLabel, std::string(6, '\0') + le32(0)) +
      record(converter::biff::number, le16(1) + le16(1) + le16(0) + leDouble(0.1));
  return testSupport::compoundOf("Workbook", testSupport::biff8(shared, cells));
}

std::string convertWhole(const std::string& bytes) {
  conversion converting;
  converting.request.copyMerged = true;
  return converting.run(bytes);
}

bool isRefused(const std::string& answer) { return answer.starts_with("problem: "); }

TEST(workbookDamage, wholeOnesAreRead) {
  EXPECT_EQ(convertWhole(xlsx()), "first$2014-02-14\nx$x\nx$x\n");
  EXPECT_EQ(convertWhole(xls()), "first$\n$0.1\n");
}

TEST(workbookDamage, cutAtEveryByte) {
  for (const std::string& whole : {xlsx(), xls()}) {
    const std::string expected = convertWhole(whole);
    for (std::size_t size = 0; size < whole.size(); ++size) {
      const std::string answer = convertWhole(whole.substr(0, size));
      EXPECT_TRUE(isRefused(answer) || answer == expected) << size << ": " << answer;
    }
  }
}

TEST(workbookDamage, bytesChanged) {
  std::mt19937 random(7);
  for (const std::string& whole : {xlsx(), xls()}) {
    for (int round = 0; round < 500; ++round) {
      std::string damaged = whole;
      damaged[random() % damaged.size()] = static_cast<char>(random());
      const std::string answer = convertWhole(damaged);
      EXPECT_TRUE(isRefused(answer) || answer.find("no file") == std::string::npos) << answer;
    }
  }
}

// Whatever is changed in the data of a member, its checksum tells.
TEST(workbookDamage, changedMembersAreRefused) {
  const std::string whole = xlsx();
  for (std::size_t at = whole.find("PK\3\4", 1); at < whole.size() && whole[at + 1] == 'K';
       at = whole.find("PK\3\4", at + 1)) {
    const std::size_t data = at + 30 + static_cast<unsigned char>(whole[at + 26]);
    std::string damaged = whole;
    damaged[data] = static_cast<char>(damaged[data] ^ 0x15);
    EXPECT_TRUE(isRefused(convertWhole(damaged))) << at;
  }
}

TEST(workbookDamage, membersThatInflateTooMuch) {
  const testSupport::temporaryFolder folder;
  platform::binaryFile file;
  ASSERT_TRUE(file.openForReading(folder.write(L"a.zip", testSupport::zipOf({
                                                             {"a", std::string(1000000, ' ')}
  }))));
  converter::zipArchive archive;
  std::string problem;
  ASSERT_TRUE(archive.open(file, problem));
  for (const auto& [limit, isTooMuch] : {std::pair(100000, true), std::pair(2000000, false)}) {
    converter::zipMemberReader reader;
    reader.setSizeThatIsNeverTooMuch(static_cast<std::uint64_t>(limit));
    problem.clear();
    ASSERT_TRUE(reader.open(archive, *archive.find("A"), problem));
    std::string buffer(4096, '\0');
    std::ptrdiff_t count = 1;
    while (count > 0) count = reader.read(buffer.data(), buffer.size(), problem);
    EXPECT_EQ(count < 0, isTooMuch);
    EXPECT_EQ(problem.empty(), !isTooMuch) << problem;
  }
}

// What cannot be deflated is no bomb, however large.
TEST(workbookDamage, largeMembersOfNoiseAreRead) {
  std::mt19937 random(3);
  std::string noise(100000, '\0');
  for (char& c : noise) c = static_cast<char>(random());
  const testSupport::temporaryFolder folder;
  platform::binaryFile file;
  ASSERT_TRUE(file.openForReading(folder.write(L"a.zip", testSupport::zipOf({
                                                             {"a", noise}
  }))));
  converter::zipArchive archive;
  std::string problem;
  ASSERT_TRUE(archive.open(file, problem));
  converter::zipMemberReader reader;
  reader.setSizeThatIsNeverTooMuch(1000);
  ASSERT_TRUE(reader.open(archive, *archive.find("a"), problem));
  std::string read(noise.size(), '\0');
  std::size_t size = 0;
  for (std::ptrdiff_t count = 1; count > 0 && size < read.size();
       size += static_cast<std::size_t>(count))
    count = reader.read(read.data() + size, 4096, problem);
  EXPECT_TRUE(read == noise);
  EXPECT_EQ(problem, "");
}

TEST(workbookDamage, everyAllocationMayFail) {
  for (const std::string& whole : {xlsx(), xls()}) {
    bool hasFailed = true;
    for (std::size_t number = 0; hasFailed; ++number) {
      testSupport::temporaryFolder folder;
      converter::conversionRequest request;
      request.source = folder.write(L"a.xls", whole);
      request.folder = folder.path();
      request.copyMerged = true;
      const std::wstring target = converter::targetPath(request);
      testSupport::writeFile(target, "of an earlier run");
      bool isDone = false;
      {
        const testSupport::failingAllocation failing(number);
        std::string problem;
        try {
          isDone = converter::convert(request, problem);
        } catch (const std::bad_alloc&) {
          isDone = false;
        }
        hasFailed = failing.hasFailed();
      }
      // Without the memory for its name the old file cannot be removed.
      const bool isOld = testSupport::readFile(target) == "of an earlier run";
      EXPECT_TRUE(!isOld || number < 10) << number;
      EXPECT_EQ(platform::fileExists(target), isDone || isOld) << number;
      EXPECT_FALSE(platform::fileExists(target + L".lines"));
      EXPECT_FALSE(platform::fileExists(target + L".part"));
    }
  }
}

}  // namespace

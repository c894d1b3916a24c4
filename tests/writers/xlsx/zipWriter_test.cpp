// The ZIP writer, judged by a reader that checks every header, and by what it refuses.
#include "table_rw/writers/xlsx/zipWriter.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "platform/calendar.h"
#include "platform/files.h"
#include "tests/support/failingDisk.h"
#include "tests/support/randomNumbers.h"
#include "tests/support/temporaryFolder.h"
#include "tests/support/zipContent.h"

namespace {

using SimpleXlsx::packageDisk;
using SimpleXlsx::zipLimits;
using SimpleXlsx::zipWriter;
using testSupport::failingDisk;
using testSupport::readFile;
using testSupport::readZip;
using testSupport::zipContent;

class zipWriting : public testing::Test {
 protected:
  zipContent content() const { return readZip(readFile(target_).value_or("")); }

  testSupport::temporaryFolder folder_;
  std::wstring target_ = folder_.file(L"out.zip");
};

TEST_F(zipWriting, limitsAreThoseOfTheFormat) {
  const zipLimits limits;
  EXPECT_EQ(limits.members, 65535u);
  EXPECT_EQ(limits.memberSize, 0xFFFFFFFFu);
  EXPECT_EQ(limits.archiveSize, 0xFFFFFFFFu);
}

TEST_F(zipWriting, membersComeBackInTheirOrder) {
  testSupport::randomNumbers random(7);
  std::string noise(700000, '\0');
  for (char& byte : noise) byte = static_cast<char>(random.bits());
  const std::string contents[] = {
      "", "x", std::string(262143, 'a'), std::string(262144, 'b'), std::string(262145, 'c'), noise};
  zipWriter archive(packageDisk::real());
  ASSERT_TRUE(archive.create(target_));
  int number = 0;
  for (const std::string& each : contents) {
    const std::wstring name = L"part" + std::to_wstring(number++);
    ASSERT_TRUE(archive.add(L"folder/" + name + L".xml", folder_.write(name, each)));
  }
  ASSERT_TRUE(archive.finish());
  const zipContent found = content();
  EXPECT_EQ(found.problem, "");
  ASSERT_EQ(found.members.size(), std::size(contents));
  for (std::size_t i = 0; i < std::size(contents); ++i) {
    EXPECT_EQ(found.members[i].name, "folder/part" + std::to_string(i) + ".xml");
    EXPECT_TRUE(found.members[i].content == contents[i]) << i;
    EXPECT_EQ(found.members[i].method, 8u) << "deflated";
    EXPECT_EQ(found.members[i].flags, 0u);
  }
}

TEST_F(zipWriting, anArchiveWithoutMembers) {
  zipWriter archive(packageDisk::real());
  ASSERT_TRUE(archive.create(target_));
  ASSERT_TRUE(archive.finish());
  EXPECT_EQ(content().problem, "");
  EXPECT_EQ(readFile(target_)->size(), 22u);
}

TEST_F(zipWriting, archivesAmongTheMembersAreStored) {
  const std::wstring file = folder_.write(L"f", std::string(5000, 'x'));
  const wchar_t* const stored[] = {L"a.zip", L"a.zoo", L"a.arc", L"a.lzh", L"a.arj",
                                   L"a.tgz", L"a.ZIP", L"a.Tgz", L".zip"};
  const wchar_t* const deflated[] = {L"a.xml", L"zip", L"a.zip.xml", L"a.gz", L"azip", L"a.zip/b"};
  zipWriter archive(packageDisk::real());
  ASSERT_TRUE(archive.create(target_));
  for (const wchar_t* name : stored) ASSERT_TRUE(archive.add(name, file));
  for (const wchar_t* name : deflated) ASSERT_TRUE(archive.add(name, file));
  ASSERT_TRUE(archive.finish());
  const zipContent found = content();
  EXPECT_EQ(found.problem, "");
  ASSERT_EQ(found.members.size(), std::size(stored) + std::size(deflated));
  for (std::size_t i = 0; i < found.members.size(); ++i)
    EXPECT_EQ(found.members[i].method, i < std::size(stored) ? 0u : 8u) << found.members[i].name;
}

TEST_F(zipWriting, namesAreUtf8) {
  const std::wstring file = folder_.write(L"f", "x");
  zipWriter archive(packageDisk::real());
  ASSERT_TRUE(archive.create(target_));
  ASSERT_TRUE(archive.add(L"\x0416.xml", file));
  ASSERT_TRUE(archive.add(L"plain.xml", file));
  ASSERT_TRUE(archive.finish());
  const zipContent found = content();
  EXPECT_EQ(found.names(), "\xD0\x96.xml plain.xml");
  EXPECT_EQ(found.members[0].flags, 0x800u) << "the mark of UTF-8";
  EXPECT_EQ(found.members[1].flags, 0u);
}

TEST_F(zipWriting, timesAreThoseOfTheFiles) {
  const std::wstring file = folder_.write(L"f", "x");
  // 2001-09-09 01:46:40 UTC
  const std::chrono::sys_seconds moment{std::chrono::seconds{1000000000}};
  std::filesystem::last_write_time(file, std::chrono::file_clock::from_sys(moment));
  zipWriter archive(packageDisk::real());
  ASSERT_TRUE(archive.create(target_));
  ASSERT_TRUE(archive.add(L"f", file));
  ASSERT_TRUE(archive.finish());
  const zipContent found = content();
  ASSERT_EQ(found.members.size(), 1u);
  EXPECT_EQ(found.members[0].date, (2001u - 1980u) << 9 | 9u << 5 | 9u);
  EXPECT_EQ(found.members[0].time, 1u << 11 | 46u << 5 | 40u / 2);
}

TEST_F(zipWriting, timesBeforeDos) {
  const std::wstring file = folder_.write(L"f", "x");
  const std::chrono::sys_seconds moment{std::chrono::seconds{86400}};  // 1970-01-02
  std::filesystem::last_write_time(file, std::chrono::file_clock::from_sys(moment));
  zipWriter archive(packageDisk::real());
  ASSERT_TRUE(archive.create(target_));
  ASSERT_TRUE(archive.add(L"f", file));
  ASSERT_TRUE(archive.finish());
  EXPECT_EQ(content().members.at(0).date >> 9, 0u) << "1980, the first year there is";
}

TEST_F(zipWriting, anOldFileIsReplaced) {
  folder_.write(L"out.zip", std::string(100000, 'x'));
  zipWriter archive(packageDisk::real());
  ASSERT_TRUE(archive.create(target_));
  ASSERT_TRUE(archive.finish());
  EXPECT_EQ(readFile(target_)->size(), 22u);
}

TEST_F(zipWriting, whatIsNoFileIsRefused) {
  ASSERT_TRUE(platform::createFolder(folder_.file(L"d")));
  zipWriter archive(packageDisk::real());
  ASSERT_TRUE(archive.create(target_));
  EXPECT_FALSE(archive.add(L"a", folder_.file(L"gone")));
  EXPECT_FALSE(archive.add(L"a", folder_.file(L"d")));
  EXPECT_FALSE(archive.add(std::wstring(65536, L'n'), folder_.write(L"f", "x")));
  EXPECT_FALSE(zipWriter(packageDisk::real()).create(folder_.file(L"gone/out.zip")));
}

TEST_F(zipWriting, moreMembersThanTheLimitAreRefused) {
  const std::wstring file = folder_.write(L"f", "x");
  zipLimits limits;
  limits.members = 300;
  zipWriter archive(packageDisk::real(), limits);
  ASSERT_TRUE(archive.create(target_));
  for (std::size_t i = 0; i < limits.members; ++i)
    ASSERT_TRUE(archive.add(std::to_wstring(i), file));
  EXPECT_FALSE(archive.add(L"one more", file));
  ASSERT_TRUE(archive.finish());
  EXPECT_EQ(content().problem, "");
  EXPECT_EQ(content().members.size(), limits.members);
}

TEST_F(zipWriting, aMemberAboveTheLimitIsRefused) {
  zipLimits limits;
  limits.memberSize = 1000;
  zipWriter archive(packageDisk::real(), limits);
  ASSERT_TRUE(archive.create(target_));
  EXPECT_TRUE(archive.add(L"a", folder_.write(L"a", std::string(1000, 'x'))));
  EXPECT_FALSE(archive.add(L"b", folder_.write(L"b", std::string(1001, 'x'))));
}

TEST_F(zipWriting, aMemberThatGrowsAboveTheLimitIsRefused) {
  testSupport::randomNumbers random(7);
  std::string noise(1000, '\0');
  for (char& byte : noise) byte = static_cast<char>(random.bits());
  zipLimits limits;
  limits.memberSize = noise.size();
  zipWriter archive(packageDisk::real(), limits);
  ASSERT_TRUE(archive.create(target_));
  EXPECT_FALSE(archive.add(L"a", folder_.write(L"a", noise))) << "noise deflates to more";
  EXPECT_TRUE(archive.add(L"a.zip", folder_.file(L"a"))) << "stored it fits";
}

TEST_F(zipWriting, anArchiveAboveTheLimitIsRefused) {
  // A stored member of 100 bytes: 30 + 5 for its header, 46 + 5 in the directory.
  constexpr std::uint64_t exact = 30 + 5 + 100 + 46 + 5;
  const std::wstring file = folder_.write(L"a", std::string(100, 'x'));
  zipLimits limits;
  limits.archiveSize = exact;
  zipWriter fitting(packageDisk::real(), limits);
  ASSERT_TRUE(fitting.create(target_));
  EXPECT_TRUE(fitting.add(L"a.zip", file));
  EXPECT_TRUE(fitting.finish());
  limits.archiveSize = exact - 1;
  zipWriter tooSmall(packageDisk::real(), limits);
  ASSERT_TRUE(tooSmall.create(target_));
  EXPECT_FALSE(tooSmall.add(L"a.zip", file));
}

TEST_F(zipWriting, everyFailingOperationIsTold) {
  const std::wstring file = folder_.write(L"f", std::string(100000, 'x'));
  bool failed = true;
  std::size_t good = 0;
  for (; failed; ++good) {
    failingDisk disk(good);
    zipWriter archive(disk);
    const bool isWhole = archive.create(target_) && archive.add(L"a", file) &&
                         archive.add(L"b.zip", file) && archive.finish();
    failed = disk.hasFailed();
    EXPECT_EQ(isWhole, !failed) << good;
  }
  EXPECT_GT(good, 8u);
}

}  // namespace

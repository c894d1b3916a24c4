// The directory of a ZIP archive, its numbers of 64 bits included, and a reader that is used more than once. What
// damage does to whole workbooks is in workbook_damage_test.cpp.
#include "converter/container/zipArchive.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include "tests/support/temporaryFolder.h"
#include "tests/support/workbookBuilders.h"

namespace {

using namespace std::string_literals;
using testSupport::le16;
using testSupport::le32;

constexpr std::uint32_t saturated = 0xFFFFFFFF;
const std::string content = "bytes of the member";

std::string le64(std::uint64_t value) {
  return le32(static_cast<std::uint32_t>(value)) + le32(static_cast<std::uint32_t>(value >> 32));
}

// An archive of one stored member, "a". What is saturated stands in 64 bits elsewhere.
struct wideArchive {
  bool hasWideSize = false;
  bool hasWidePackedSize = false;
  bool hasWidePlace = false;
  std::string extraBefore = {};      // fields of other programs
  std::uint32_t directoryPlace = 0;  // 0: where it is
  std::uint32_t directorySize = 0;
  unsigned entries = 1;
  bool hasEnd64 = true;
  std::uint64_t end64Place = 0;  // 0: where it is

  std::string bytes() const {
    const std::uint32_t front = 10;  // of bytes that are nobody's, so that no place is 0
    const auto size = static_cast<std::uint32_t>(content.size());
    const auto sum = static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(size)));
    const std::string begin = le16(45) + le16(0) + le16(0) + le32(0) + le32(sum);
    std::string archive(front, '-');
    archive += "PK\3\4" + begin + le32(size) + le32(size) + le16(1) + le16(0) + "a" + content;
    std::string numbers;
    if (hasWideSize) numbers += le64(size);
    if (hasWidePackedSize) numbers += le64(size);
    if (hasWidePlace) numbers += le64(front);
    std::string extra = extraBefore;
    if (!numbers.empty()) extra += le16(1) + le16(static_cast<unsigned>(numbers.size())) + numbers;
    const std::string directory =
        "PK\1\2" + le16(45) + begin + le32(hasWidePackedSize ? saturated : size) +
        le32(hasWideSize ? saturated : size) + le16(1) + le16(static_cast<unsigned>(extra.size())) +
        le16(0) + std::string(8, '\0') + le32(hasWidePlace ? saturated : front) + "a" + extra;
    const std::uint64_t place = archive.size();
    archive += directory;
    if (hasEnd64) {
      const std::uint64_t end64 = end64Place == 0 ? archive.size() : end64Place;
      archive += "PK\6\6" + le64(44) + le16(45) + le16(45) + le32(0) + le32(0) + le64(1) + le64(1) +
                 le64(directory.size()) + le64(place);
      archive += "PK\6\7" + le32(0) + le64(end64) + le32(1);
    }
    return archive + "PK\5\6" + le32(0) + le16(entries) + le16(entries) +
           le32(directorySize == 0 ? static_cast<std::uint32_t>(directory.size()) : directorySize) +
           le32(directoryPlace == 0 ? static_cast<std::uint32_t>(place) : directoryPlace) + le16(0);
  }
};

struct openedArchive {
  explicit openedArchive(const std::string& bytes) {
    if (file.openForReading(folder.write(L"a.zip", bytes))) archive.open(file, problem);
  }

  testSupport::temporaryFolder folder;
  platform::binaryFile file;
  converter::zipArchive archive;
  std::string problem;
};

// The rest of a member, or the problem.
std::string rest(converter::zipMemberReader& reader) {
  std::string text;
  std::string problem;
  std::string buffer(7, '\0');
  for (;;) {
    const std::ptrdiff_t count = reader.read(buffer.data(), buffer.size(), problem);
    if (count < 0) return problem;
    if (count == 0) return text;
    text.append(buffer, 0, static_cast<std::size_t>(count));
  }
}

// What the member "a" holds, or the problem.
std::string contentOf(const std::string& bytes) {
  openedArchive opened(bytes);
  const converter::zipMember* const member = opened.archive.find("a");
  if (!opened.problem.empty() || member == nullptr) return opened.problem;
  converter::zipMemberReader reader;
  if (!reader.open(opened.archive, *member, opened.problem)) return opened.problem;
  return rest(reader);
}

struct directoryRow {
  const char* name;
  wideArchive archive;
  std::string expected;
  int line = __builtin_LINE();
};

TEST(zipArchive, directories) {
  const std::string broken = "the ZIP archive is damaged: its directory is missing or broken";
  const std::string misplaced =
      "the ZIP archive is damaged: a member does not lie where its directory says";
  const std::string other = le16(0x5455) + le16(5) + "\1time";
  // clang-format off
  const directoryRow rows[] = {
      directoryRow{"nothing in 64 bits", {.hasEnd64 = false}, content},
      directoryRow{"an end in 64 bits that nothing refers to", {.end64Place = 1u << 30}, content},
      directoryRow{"the member's size", {.hasWideSize = true}, content},
      directoryRow{"its size in the archive", {.hasWidePackedSize = true}, content},
      directoryRow{"its place", {.hasWidePlace = true}, content},
      directoryRow{"all of them behind another field",
                   {.hasWideSize = true, .hasWidePackedSize = true, .hasWidePlace = true, .extraBefore = other}, content},
      directoryRow{"the directory's place", {.directoryPlace = saturated}, content},
      directoryRow{"the directory's size", {.directorySize = saturated}, content},
      directoryRow{"the number of members", {.entries = 0xFFFF}, content},
      directoryRow{"a place in 64 bits behind a field that is longer than all of them",
                   {.hasWidePlace = true, .extraBefore = le16(0x5455) + le16(500)}, misplaced},
      directoryRow{"a size in 64 bits that is cut",
                   {.hasWideSize = true, .extraBefore = le16(1) + le16(4) + "cut!"},
                   "the ZIP archive is damaged: a member's checksum is wrong"},
      directoryRow{"a directory's place without its 64 bits", {.directoryPlace = saturated, .hasEnd64 = false}, broken},
      directoryRow{"an end in 64 bits behind the file", {.directoryPlace = saturated, .end64Place = 1u << 30}, broken},
      directoryRow{"an end in 64 bits at its very end", {.directoryPlace = saturated, .end64Place = 150}, broken},
      directoryRow{"an end in 64 bits that is none", {.directoryPlace = saturated, .end64Place = 1}, broken},
      directoryRow{"a directory behind the file", {.directoryPlace = 1u << 20}, broken},
      directoryRow{"a directory that leads out of the file", {.directorySize = 1u << 20}, broken},
      directoryRow{"a directory of gigabytes", {.directorySize = 1u << 31}, broken},
      directoryRow{"more members than there are", {.entries = 2}, broken},
  };
  // clang-format on
  for (const directoryRow& row : rows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    EXPECT_EQ(contentOf(row.archive.bytes()), row.expected);
  }
}

// There is no room for the locator of an end in 64 bits before it.
TEST(zipArchive, anEndAloneThatRefersTo64Bits) {
  EXPECT_EQ(
      contentOf("PK\5\6"s + le32(0) + le16(1) + le16(1) + le32(46) + le32(saturated) + le16(0)),
      "the ZIP archive is damaged: its directory is missing or broken");
}

TEST(zipArchive, aReaderGoesFromMemberToMember) {
  const std::string text(3000, 'x');
  for (const bool isDeflated : {true, false}) {
    openedArchive opened(testSupport::zipOf(
        {
            {"a", text     },
            {"b", "another"}
    },
        isDeflated));
    converter::zipMemberReader reader;
    for (const char* const name : {"a", "b", "a"}) {
      ASSERT_TRUE(reader.open(opened.archive, *opened.archive.find(name), opened.problem));
      EXPECT_EQ(rest(reader), name == "b"s ? "another" : text);
    }
  }
}

TEST(zipArchive, nothingIsReadBehindTheEndOrForNothing) {
  openedArchive opened(testSupport::zipOf({
      {"a", "text"}
  }));
  converter::zipMemberReader reader;
  ASSERT_TRUE(reader.open(opened.archive, *opened.archive.find("a"), opened.problem));
  char buffer[8];
  EXPECT_EQ(reader.read(buffer, 0, opened.problem), 0);
  EXPECT_EQ(rest(reader), "text");
  EXPECT_EQ(reader.read(buffer, sizeof buffer, opened.problem), 0);
  EXPECT_EQ(opened.problem, "");
}

}  // namespace

// Streams of compound files whose sector chains are damaged: they end, and nothing stands at another place in them
// than it had.
#include "converter/container/compoundFile.h"

#include <gtest/gtest.h>

#include "tests/support/temporaryFolder.h"
#include "tests/support/workbookBuilders.h"

namespace {

using testSupport::le32;

constexpr std::size_t sectorSize = 512;
constexpr const char* broken =
    "the compound file is damaged: its header or its sector table is broken";
constexpr std::size_t streamSize = 10 * sectorSize;  // sectors 3 to 12

// A file with one stream whose sector table is changed: (sector, the next one).
struct damagedFile {
  std::string bytes = testSupport::compoundOf("Workbook", std::string(streamSize, 'x'));

  damagedFile& chain(std::size_t sector, std::uint32_t next) {
    bytes.replace(sectorSize + 4 * sector, 4, le32(next));
    return *this;
  }
  damagedFile& cut(std::size_t count) {
    bytes.resize(bytes.size() - count);
    return *this;
  }

  // Bytes that can be read from the beginning, and whether any can be read behind them.
  std::string describe() const {
    const testSupport::temporaryFolder folder;
    platform::binaryFile file;
    if (!file.openForReading(folder.write(L"a.ole", bytes))) return "not opened";
    converter::compoundFile compound;
    std::string problem;
    if (!compound.open(file, problem)) return problem;
    const auto stream = compound.stream("Workbook");
    if (stream == nullptr) return "no stream";
    std::string buffer(2 * streamSize, '\0');
    const std::size_t size = stream->readAt(0, buffer.data(), buffer.size());
    bool hasMore = false;
    for (std::size_t at = size; at < buffer.size(); at += 100)
      hasMore = hasMore || stream->readAt(at, buffer.data(), 1) > 0;
    return std::to_string(size) + (hasMore ? " and more" : "") + " of " +
           std::to_string(stream->statedSize().value_or(0));
  }
};

TEST(compoundFile, chainsOfSectors) {
  EXPECT_EQ(damagedFile().describe(), "5120 of 5120");
  EXPECT_EQ(damagedFile().cut(100).describe(), "5020 of 5120");
  EXPECT_EQ(damagedFile().cut(600).describe(), "4520 of 5120");
}

// The cut sector has others behind it in the stream, which stand whole in the file.
TEST(compoundFile, aChainEndsBehindASectorThatIsCutShort) {
  EXPECT_EQ(damagedFile().chain(3, 12).chain(12, 4).cut(100).describe(), "924 of 5120");
}

TEST(compoundFile, aChainEndsWhereItLeadsOutOfTheFile) {
  EXPECT_EQ(damagedFile().chain(3, 13).chain(13, 4).describe(), "512 of 5120");
}

TEST(compoundFile, aChainEndsWhereItComesBack) {
  EXPECT_EQ(damagedFile().chain(5, 4).describe(), "1536 of 5120");
}

// FORMAT: the header lists 109 sectors of the table; more of them stand in sectors of their own.
TEST(compoundFile, aSectorTableThatIsListedOutsideTheHeader) {
  damagedFile file;
  file.bytes.replace(76, 4, le32(0xFFFFFFFF));
  file.bytes.replace(68, 4, le32(13));
  file.bytes +=
      le32(0xFFFFFFFF) + le32(0) + std::string(sectorSize - 12, '\xFF') + le32(0xFFFFFFFE);
  EXPECT_EQ(file.describe(), "5120 of 5120");
  file.bytes.replace(68, 4, le32(500));
  EXPECT_EQ(file.describe(), broken);
}

TEST(compoundFile, anotherFile) {
  damagedFile file;
  file.bytes[0] = 'x';
  EXPECT_EQ(file.describe(), broken);
  file.bytes.resize(100);
  EXPECT_EQ(file.describe(), broken);
}

}  // namespace

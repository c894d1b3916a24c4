// Places in the file of the bytes that a text was folded from.
#include "table_rw/text/sourcePositions.h"

#include <gtest/gtest.h>

#include <string_view>

#include "table_rw/text/textModeFile.h"
#include "tests/support/randomNumbers.h"
#include "tests/support/temporaryFolder.h"

namespace {

using namespace std::string_literals;
using tableRW::sourcePositions;
using testSupport::temporaryFolder;

// The same answer, one byte after the other.
std::uint64_t slowPosition(std::string_view bytes, std::uint64_t folded) {
  std::size_t at = 0;
  for (std::uint64_t count = 0; count < folded && at < bytes.size(); ++at) {
    const bool isTaken = bytes.substr(at, 2) == "\r\n";
    if (!isTaken) ++count;
  }
  return at;
}

struct Row {
  const char* name;
  std::string bytes;
  int line = __builtin_LINE();
};

const Row rows[] = {
    Row{"empty file",       ""s                },
    Row{"nothing is taken", "a\nb\n"s          },
    Row{"CR LF",            "a\r\nb\r\n\r\nc"s },
    Row{"a lone CR counts", "a\rb\r\rc"s       },
    Row{"one CR is taken",  "a\r\r\nb\r\r\r\n"s},
    Row{"CR at the end",    "ab\r"s            },
    Row{"NUL bytes count",  "a\0\r\n\0\n"s     },
};

TEST(sourcePositions, everyPlaceInBlocksOfEverySize) {
  const temporaryFolder folder;
  for (const Row& row : rows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    const std::wstring path = folder.write(L"text", row.bytes);
    for (std::size_t blockSize = 1; blockSize <= row.bytes.size() + 1; ++blockSize) {
      sourcePositions positions(blockSize);
      ASSERT_TRUE(positions.open(path));
      for (std::uint64_t folded = 0; folded <= row.bytes.size() + 1; ++folded)
        EXPECT_EQ(positions.of(folded), slowPosition(row.bytes, folded)) << folded;
    }
  }
}

// What textModeInput counts is what is asked for here: each LF that it hands out stands at the place told.
TEST(sourcePositions, agreeWithTheTextThatIsRead) {
  const temporaryFolder folder;
  testSupport::randomNumbers random(20);
  for (int round = 0; round < 200; ++round) {
    std::string bytes;
    for (std::size_t length = random.below(60); length > 0; --length)
      bytes.push_back("ab\r\r\n\0"[random.below(6)]);
    const std::wstring path = folder.write(L"text", bytes);
    tableRW::textModeInput text(1 + random.below(9));
    sourcePositions positions(1 + random.below(9));
    ASSERT_TRUE(text.open(path) && positions.open(path));
    char chunk[7];
    std::uint64_t read = 0;
    while (const std::size_t got = text.getChunk(chunk, sizeof chunk)) {
      read += got;
      ASSERT_EQ(text.taken(), read);
      const std::uint64_t end = positions.of(read);
      ASSERT_GT(end, 0U);
      EXPECT_EQ(bytes[end - 1], chunk[got - 1]);
    }
    EXPECT_EQ(positions.of(read), bytes.size());
  }
}

TEST(sourcePositions, neverBehindTheEnd) {
  const temporaryFolder folder;
  sourcePositions positions;
  ASSERT_TRUE(positions.open(folder.write(L"text", "a\r\nb")));
  EXPECT_EQ(positions.of(100), 4U);
  EXPECT_EQ(positions.of(101), 4U);
}

TEST(sourcePositions, aMissingFile) {
  const temporaryFolder folder;
  sourcePositions positions;
  EXPECT_FALSE(positions.open(folder.file(L"missing")));
  EXPECT_EQ(positions.of(3), 0U);
}

}  // namespace

// Files in text mode: folding on the way in, line ends on the way out.
#include "table_rw/text/textModeFile.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "tests/reference/textTwin.h"
#include "tests/support/lostFile.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using namespace std::string_literals;
using tableRW::textModeInput;
using tableRW::textModeOutput;
using testSupport::temporaryFolder;

std::string readAll(const std::wstring& path, std::size_t capacity) {
  textModeInput file;
  EXPECT_TRUE(file.open(path));
  std::string all;
  std::string chunk(capacity, '\0');
  while (const std::size_t got = file.getChunk(chunk.data(), capacity)) {
    EXPECT_LE(got, capacity);
    EXPECT_EQ(chunk.substr(0, got - 1).find('\n'), std::string::npos);
    all.append(chunk, 0, got);
  }
  EXPECT_TRUE(file.atEnd());
  EXPECT_EQ(file.getChunk(chunk.data(), capacity), 0U);  // the end stays the end
  return all;
}

struct Row {
  const char* name;
  std::string bytes;
  std::string folded;
  int line = __builtin_LINE();
};

TEST(textModeInput, folds) {
  const temporaryFolder folder;
  for (const Row& row : {
           Row{"empty file",                   "",                 ""              },
           Row{"nothing to fold",              "a\nb",             "a\nb"          },
           Row{"CR LF",                        "a\r\nb\r\n",       "a\nb\n"        },
           Row{"lone CR stays",                "a\rb",             "a\rb"          },
           Row{"CR CR LF",                     "a\r\r\nb",         "a\r\nb"        },
           Row{"CR CR CR LF",                  "\r\r\r\n",         "\r\r\n"        },
           Row{"LF CR",                        "a\n\rb",           "a\n\rb"        },
           Row{"CR LF CR LF",                  "\r\n\r\n",         "\n\n"          },
           Row{"CR at the end",                "a\r",              "a\r"           },
           Row{"CR alone",                     "\r",               "\r"            },
           Row{"two CRs at the end",           "\r\r",             "\r\r"          },
           Row{"1A ends the file",             "ab\x1Ayz\n",       "ab"            },
           Row{"1A first",                     "\x1Ayz",           ""              },
           Row{"1A last",                      "ab\n\x1A",         "ab\n"          },
           Row{"1A behind CR",                 "a\r\x1A\nb",       "a\r"           },
           Row{"1A between CR and LF",         "a\r\x1A\n",        "a\r"           },
           Row{"1A twice",                     "a\x1Ay\x1Az",      "a"             },
           Row{"NUL is a byte like any other", "a\0\r\nb\0"s,      "a\0\nb\0"s     },
           Row{"high bytes",                   "\xFF\r\n\x80\xFE", "\xFF\n\x80\xFE"},
  }) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    const std::wstring path = folder.write(L"input.txt", row.bytes);
    EXPECT_EQ(reference::foldTextMode(row.bytes), row.folded);
    for (const std::size_t capacity : {std::size_t{1}, std::size_t{2}, std::size_t{1023}})
      EXPECT_EQ(readAll(path, capacity), row.folded) << capacity;
  }
}

std::vector<std::string> stringsOver(std::string_view alphabet, std::size_t length) {
  std::vector<std::string> all = {""};
  for (std::size_t i = 0; i < all.size() && all[i].size() < length; ++i) {
    for (const char byte : alphabet) {
      std::string longer = all[i] + byte;
      all.push_back(std::move(longer));
    }
  }
  return all;
}

TEST(textModeInput, foldsEveryShortFile) {
  const temporaryFolder folder;
  for (const std::string& bytes : stringsOver("a\n\r\x1A\0"s, 5)) {
    const std::wstring path = folder.write(L"input.txt", bytes);
    const std::string folded = reference::foldTextMode(bytes);
    ASSERT_EQ(readAll(path, 3), folded) << ::testing::PrintToString(bytes);
  }
}

// Whatever the size of the blocks in which a file is read, it is a power of two.
TEST(textModeInput, foldsAcrossBlockBorders) {
  const temporaryFolder folder;
  for (const std::size_t border : {std::size_t{4096}, std::size_t{65536}, std::size_t{262144}}) {
    for (const std::string& middle : {"\r\n"s, "\r\r\n"s, "\r\n\r\n"s, "\rx"s, "\r\x1A"s,
                                      "\r\n\x1A"s, "\n\r\n\r"s, "\0\r\n"s}) {
      for (std::size_t before = 0; before <= middle.size(); ++before) {
        std::string bytes(border - before, 'a');
        bytes += middle;
        bytes.append(border + before - middle.size(), 'b');  // the next border lies at the very end
        const std::wstring path = folder.write(L"input.txt", bytes);
        ASSERT_TRUE(readAll(path, 100000) == reference::foldTextMode(bytes))
            << border << " " << before << " " << ::testing::PrintToString(middle);
      }
    }
  }
}

TEST(textModeInput, aCrThatEndsBothABlockAndTheFileStays) {
  const temporaryFolder folder;
  for (const std::size_t border : {std::size_t{4096}, std::size_t{65536}, std::size_t{262144}}) {
    const std::string bytes = std::string(border - 1, 'a') + '\r';
    EXPECT_TRUE(readAll(folder.write(L"input.txt", bytes), 100000) == bytes) << border;
  }
}

TEST(textModeInput, a1AFarBehindTheFirstBlockEndsTheFile) {
  const temporaryFolder folder;
  std::string bytes(1000000, 'a');
  bytes += "\n\x1Azzz\n";
  EXPECT_TRUE(readAll(folder.write(L"input.txt", bytes), 4096) == std::string(1000000, 'a') + "\n");
}

TEST(textModeInput, theEndIsMetOnlyByTheReadBehindTheLastLf) {
  const temporaryFolder folder;
  std::array<char, 10> buffer;
  textModeInput file;
  ASSERT_TRUE(file.open(folder.write(L"closed.txt", "ab\n")));
  EXPECT_FALSE(file.atEnd());
  EXPECT_EQ(file.getChunk(buffer.data(), buffer.size()), 3U);
  EXPECT_FALSE(file.atEnd());
  EXPECT_EQ(file.getChunk(buffer.data(), buffer.size()), 0U);
  EXPECT_TRUE(file.atEnd());

  ASSERT_TRUE(file.open(folder.write(L"open.txt", "ab")));
  EXPECT_EQ(file.getChunk(buffer.data(), buffer.size()), 2U);
  EXPECT_TRUE(file.atEnd());

  ASSERT_TRUE(file.open(folder.write(L"full.txt", "abcd")));
  EXPECT_EQ(file.getChunk(buffer.data(), 4), 4U);  // a full chunk does not look further
  EXPECT_FALSE(file.atEnd());
  EXPECT_EQ(file.getChunk(buffer.data(), 4), 0U);
  EXPECT_TRUE(file.atEnd());

  ASSERT_TRUE(file.open(folder.write(L"empty.txt", "")));
  EXPECT_FALSE(file.atEnd());
  EXPECT_EQ(file.getChunk(buffer.data(), 4), 0U);
  EXPECT_TRUE(file.atEnd());
}

TEST(textModeInput, opensAndCloses) {
  const temporaryFolder folder;
  const std::wstring first = folder.write(L"first.txt", "one\ntwo\r");
  const std::wstring second = folder.write(L"second.txt", "\nthree");
  std::array<char, 100> buffer;
  textModeInput file;
  EXPECT_FALSE(file.isOpen());
  EXPECT_EQ(file.taken(), 0U);
  EXPECT_EQ(file.getChunk(buffer.data(), buffer.size()), 0U);
  ASSERT_TRUE(file.open(first));
  EXPECT_TRUE(file.isOpen());
  file.getChunk(buffer.data(), buffer.size());
  file.getChunk(buffer.data(), buffer.size());
  ASSERT_TRUE(file.open(second));  // begins at its start, with nothing left of the first
  EXPECT_EQ(file.getChunk(buffer.data(), buffer.size()), 1U);
  EXPECT_EQ(file.getChunk(buffer.data(), buffer.size()), 5U);
  file.close();
  EXPECT_FALSE(file.isOpen());
  EXPECT_FALSE(file.open(folder.file(L"missing.txt")));
  EXPECT_FALSE(file.isOpen());
  EXPECT_FALSE(file.open(folder.path()));
}

TEST(textModeOutput, writesCrLfForEveryLf) {
  const temporaryFolder folder;
  for (const Row& row : {
           Row{"nothing",    "",           ""            },
           Row{"LF",         "a\nb\n",     "a\r\nb\r\n"  },
           Row{"CR LF",      "a\r\n",      "a\r\r\n"     },
           Row{"lone CR",    "a\rb",       "a\rb"        },
           Row{"only LFs",   "\n\n\n",     "\r\n\r\n\r\n"},
           Row{"NUL and 1A", "a\0\x1A\n"s, "a\0\x1A\r\n"s},
  }) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    const std::wstring path = folder.file(L"output.txt");
    textModeOutput file;
    ASSERT_TRUE(file.open(path));
    file.write(row.bytes);
    EXPECT_TRUE(file.close());
    EXPECT_EQ(testSupport::readFile(path), row.folded);
  }
}

TEST(textModeOutput, writesThroughItsBuffer) {
  const temporaryFolder folder;
  std::string wanted;
  {
    textModeOutput file;
    ASSERT_TRUE(file.open(folder.file(L"output.txt")));
    EXPECT_TRUE(file.isOpen());
    for (int i = 0; i < 30000; ++i) {
      const std::string number = std::to_string(i);
      file.write(number);
      file.write("\n");
      wanted += number + "\r\n";
    }
    const std::string longLine(200000, 'x');
    file.write(longLine);
    wanted += longLine;
  }  // its end closes the file
  EXPECT_TRUE(testSupport::readFile(folder.file(L"output.txt")) == wanted);
}

TEST(textModeOutput, openingReplacesAndClosesTheFileBefore) {
  const temporaryFolder folder;
  const std::wstring first = folder.write(L"first.txt", "old and long");
  textModeOutput file;
  ASSERT_TRUE(file.open(first));
  file.write("1\n");
  ASSERT_TRUE(file.open(folder.file(L"second.txt")));
  file.write("2\n");
  EXPECT_TRUE(file.close());
  EXPECT_FALSE(file.isOpen());
  EXPECT_TRUE(file.close());
  EXPECT_EQ(testSupport::readFile(first), "1\r\n");
  EXPECT_EQ(testSupport::readFile(folder.file(L"second.txt")), "2\r\n");
}

TEST(textModeOutput, linesOfAFileThatIsNotOpenGoNowhere) {
  textModeOutput file;
  *file.room(1) = 'x';
  file.writeLine(1);
  const testSupport::temporaryFolder folder;
  ASSERT_TRUE(file.open(folder.file(L"a.txt")));
  file.write("y");
  EXPECT_TRUE(file.close());
  EXPECT_EQ(testSupport::readFile(folder.file(L"a.txt")), "y");
}

TEST(textModeOutput, aFileThatCannotBeClosedHasLostBytes) {
  const temporaryFolder folder;
  const std::wstring path = folder.file(L"output.txt");
  textModeOutput file;
  ASSERT_TRUE(file.open(path));
  if (!testSupport::loseFile(path)) GTEST_SKIP() << "no file can be lost here";
  EXPECT_FALSE(file.close());
  EXPECT_FALSE(file.isOpen());
  EXPECT_FALSE(file.close()) << "it stays lost";
  ASSERT_TRUE(file.open(path));
  EXPECT_TRUE(file.close()) << "until the next one";
}

TEST(textModeOutput, aFileThatCannotBeCreated) {
  const temporaryFolder folder;
  textModeOutput file;
  EXPECT_FALSE(file.open(folder.file(L"missing/output.txt")));
  EXPECT_FALSE(file.isOpen());
  file.write("lost\n");
  EXPECT_EQ(testSupport::readFile(folder.file(L"missing/output.txt")), std::nullopt);
}

}  // namespace

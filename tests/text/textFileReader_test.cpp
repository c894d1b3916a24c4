// Reading text files line by line.
#include "table_rw/text/textFileReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "table_rw/text/textConversion.h"
#include "tests/reference/textTwin.h"
#include "tests/support/environmentSetter.h"
#include "tests/support/randomNumbers.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using namespace std::string_literals;
using testSupport::printable;
using testSupport::temporaryFolder;

constexpr std::int32_t utf8 = 0;
constexpr std::int32_t cp1251 = 8;
constexpr std::int32_t utf16le = 2;

std::string bracketed(std::string_view text) {
  std::string out = "[";
  out.append(text).append("]");
  return out;
}

// All lines as "[first][second]", or that the file cannot be opened.
std::string linesOf(const std::wstring& path, std::int32_t encoding) {
  tableRW::textFileReader reader;
  if (!reader.open(path, encoding)) return "not opened";
  std::string lines;
  std::wstring line = L"old";
  while (readTextLine(reader, line)) {
    lines += bracketed(printable(line));
    line = L"old";
  }
  EXPECT_EQ(line, L"");  // cleared at the end of the file too
  EXPECT_TRUE(reader.file.atEnd());
  EXPECT_FALSE(readTextLine(reader, line));
  return lines;
}

std::string twinLinesOf(std::string_view bytes, std::int32_t encoding) {
  reference::textStream stream(bytes);
  std::string lines;
  std::wstring line;
  while (reference::readTextLine(stream, encoding, line)) lines += bracketed(printable(line));
  return lines;
}

struct Row {
  const char* name;
  std::string bytes;
  std::string lines;
  std::int32_t encoding = utf8;
  int line = __builtin_LINE();
};

void expectLines(const std::vector<Row>& rows) {
  const temporaryFolder folder;
  for (const Row& row : rows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    EXPECT_EQ(linesOf(folder.write(L"input.txt", row.bytes), row.encoding), row.lines);
    EXPECT_EQ(twinLinesOf(row.bytes, row.encoding), row.lines) << "the twin";
  }
}

TEST(readTextLine, endsLinesAtLf) {
  expectLines({
      Row{"empty file",                    "",                 ""                   },
      Row{"one line",                      "a\n",              "[a]"                },
      Row{"no line end at the end",        "a\nb",             "[a][b]"             },
      Row{"only LF",                       "\n",               "[]"                 },
      Row{"empty lines",                   "\n\na\n\n",        "[][][a][]"          },
      Row{"blanks and tabs stay",          " a\t\n \n",        "[ a\\x{09}][ ]"     },
      Row{"VT and FF end no line",         "a\vb\fc\n",        "[a\\x{0B}b\\x{0C}c]"},
      Row{"U+0085 and U+2028 end no line", "a\u0085\u2028b\n", "[a\\x{85}\u2028b]"  },
  });
}

TEST(readTextLine, removesOneCr) {
  expectLines({
      Row{"CR LF",                          "a\r\nb\r\n",  "[a][b]"           },
      Row{"CR LF alone",                    "\r\n",        "[]"               },
      Row{"CR CR LF loses both",            "a\r\r\n",     "[a]"              },
      Row{"of three CRs one stays",         "a\r\r\r\n",   "[a\\x{0D}]"       },
      Row{"of four CRs two stay",           "a\r\r\r\r\n", "[a\\x{0D}\\x{0D}]"},
      Row{"CR inside stays",                "a\rb\n",      "[a\\x{0D}b]"      },
      Row{"CR first stays",                 "\ra\n",       "[\\x{0D}a]"       },
      Row{"CR at the end of the file",      "a\r",         "[a]"              },
      Row{"two CRs at the end of the file", "a\r\r",       "[a\\x{0D}]"       },
      Row{"a file of one CR",               "\r",          "[]"               },
      Row{"LF CR",                          "a\n\rb\n",    "[a][\\x{0D}b]"    },
  });
}

TEST(readTextLine, theByte1AEndsTheFile) {
  expectLines({
      Row{"in the middle of a line", "a\nb\x1A\nc\n", "[a][b]"},
      Row{"at the start of a line",  "a\n\x1A\nb\n",  "[a]"   },
      Row{"first",                   "\x1A\na\n",     ""      },
      Row{"last",                    "a\n\x1A",       "[a]"   },
      Row{"behind CR",               "a\r\x1A\n",     "[a]"   },
      Row{"behind NUL",              "a\0b\x1A\nc"s,  "[a]"   },
  });
}

TEST(readTextLine, aNulCutsItsChunk) {
  expectLines({
      Row{"inside a line the next line is joined on", "a\0b\nc\nd\n"s,       "[ac][d]"    },
      Row{"first in a line",                          "\0a\nb\n"s,           "[b]"        },
      Row{"before the LF",                            "a\0\nb\n"s,           "[ab]"       },
      Row{"three lines in a row",                     "a\0\nb\0\nc\0\nd\n"s, "[abcd]"     },
      Row{"in the last line",                         "a\nb\0c"s,            "[a][b]"     },
      Row{"in the last line, with LF",                "a\nb\0c\n"s,          "[a][b]"     },
      Row{"alone in the last line",                   "a\n\0\n"s,            "[a]"        },
      Row{"padding behind the text",                  "a\n\0\0\0\0"s,        "[a]"        },
      Row{"a file of NULs",                           "\0\0\0"s,             ""           },
      Row{"a file of NULs and an LF",                 "\0\0\n"s,             ""           },
      Row{"CR before it stays in the joined line",    "a\r\0\nb\n"s,         "[a\\x{0D}b]"},
      Row{"CR before it at the end of the file",      "a\r\0\n"s,            "[a]"        },
  });
}

TEST(readTextLine, decodesInTheGivenEncoding) {
  expectLines({
      Row{"UTF-8",                             "\xD0\x9F\n",         "[\u041F]",            utf8   },
      Row{"byte-order mark stays",             "\uFEFFa\nb",         "[\uFEFFa][b]",        utf8   },
      Row{"broken UTF-8 is replaced",          "a\xFFz\nc\xC3\n",    "[a\uFFFDz][c\uFFFD]", utf8   },
      Row{"CP1251",                            "\xCF\r\n\xFF",       "[\u041F][\u044F]",    cp1251 },
      Row{"CP866",                             "\x8F\n",             "[\u041F]",            16     },
      Row{"a CR in CP1250",                    "\xC8\r\n",           "[\u010C]",            7      },
      Row{"UTF-16LE is cut at its zero bytes", "a\0b\0\n\0c\0\n\0"s, "[a]",                 utf16le},
      Row{"UTF-16BE begins with a zero byte",  "\0a\0b\0\n\0c"s,     "",                    3      },
  });
}

// Files are cut at the byte LF before they are decoded, and only then decoded.
TEST(readTextLine, aCharacterMayLieAcrossTheEndOfAChunk) {
  const temporaryFolder folder;
  for (std::size_t before = 1018; before <= 1024; ++before) {
    const std::string bytes = std::string(before, 'a') + "\U0001F600 \u041F\nb\n";
    EXPECT_EQ(linesOf(folder.write(L"input.txt", bytes), utf8),
              bracketed(std::string(before, 'a') + "\U0001F600 \u041F") + "[b]");
  }
}

TEST(readTextLine, linesAroundTheLengthOfAChunk) {
  const temporaryFolder folder;
  std::vector<std::size_t> lengths;
  for (const std::size_t chunks : {1U, 2U, 3U, 64U})
    for (std::size_t i = 0; i < 9; ++i) lengths.push_back(chunks * 1023 - 5 + i);
  for (const std::size_t length : lengths) {
    std::string text(length, 'x');
    for (std::size_t i = 0; i < length; i += 7) text[i] = static_cast<char>('a' + i % 26);
    for (const std::string& end : {"\n"s, "\r\n"s}) {
      const std::string bytes = text + end + end + text + end + "z";
      EXPECT_EQ(linesOf(folder.write(L"input.txt", bytes), utf8),
                bracketed(text) + "[]" + bracketed(text) + "[z]")
          << length;
      EXPECT_EQ(linesOf(folder.write(L"input.txt", text), utf8), bracketed(text)) << length;
      EXPECT_EQ(linesOf(folder.write(L"input.txt", text + end), utf8), bracketed(text)) << length;
    }
  }
}

// The first three chunks of a line, with a NUL at every position of the first two.
TEST(readTextLine, aNulAtEveryPositionOfAChunk) {
  const temporaryFolder folder;
  std::string line;
  for (std::size_t i = 0; i < 3 * 1023; ++i) line += static_cast<char>('a' + i % 23);
  for (std::size_t position = 0; position < 2 * 1023 + 2; ++position) {
    std::string bytes = line + "\nnext\n";
    bytes[position] = '\0';
    ASSERT_EQ(linesOf(folder.write(L"input.txt", bytes), utf8), twinLinesOf(bytes, utf8))
        << position;
  }
}

TEST(readTextLine, aNulLosesTheRestOfItsChunkOnly) {
  const temporaryFolder folder;
  const std::string first(1023, 'a'), second(1023, 'b');
  std::string bytes = first + second + "c\n";
  bytes[10] = '\0';
  EXPECT_EQ(linesOf(folder.write(L"input.txt", bytes), utf8),
            bracketed(std::string(10, 'a') + second + "c"));
  bytes[10] = 'a';
  bytes[1023] = '\0';
  EXPECT_EQ(linesOf(folder.write(L"input.txt", bytes), utf8), bracketed(first + "c"));
}

TEST(readTextLine, everyShortFile) {
  const temporaryFolder folder;
  const std::string alphabet = "a\n\r\0\x1A\xD0"s;
  std::vector<std::string> files = {""};
  for (std::size_t i = 0; i < files.size() && files[i].size() < 4; ++i) {
    for (const char byte : alphabet) {
      std::string longer = files[i] + byte;
      files.push_back(std::move(longer));
    }
  }
  for (const std::string& bytes : files)
    ASSERT_EQ(linesOf(folder.write(L"input.txt", bytes), cp1251), twinLinesOf(bytes, cp1251))
        << ::testing::PrintToString(bytes);
}

TEST(readTextLine, randomFiles) {
  const temporaryFolder folder;
  testSupport::randomNumbers random(2);
  const std::vector<std::string> pieces = {
      "a"s,        "bc;"s,  "\n"s, "\r\n"s, "\r"s,       "\r\r\n"s,          "\0"s,
      "\xD0\x9F"s, "\xD0"s, " "s,  "\t"s,   "\xE2\x82"s, "\xF0\x9F\x98\x80"s};
  for (int round = 0; round < 300; ++round) {
    std::string bytes;
    for (std::size_t i = random.below(60); i > 0; --i) {
      bytes += random.oneOf(pieces);
      if (random.onceIn(8)) bytes.append(random.below(2100), 'x');
    }
    if (random.onceIn(6)) bytes.insert(random.below(bytes.size() + 1), 1, '\x1A');
    for (const std::int32_t encoding : {utf8, cp1251})
      ASSERT_EQ(linesOf(folder.write(L"input.txt", bytes), encoding), twinLinesOf(bytes, encoding))
          << round;
  }
}

TEST(readTextLine, filesOfManyBlocks) {
  const temporaryFolder folder;
  testSupport::randomNumbers random(3);
  for (int round = 0; round < 6; ++round) {
    std::string bytes;
    while (bytes.size() < 700000) {
      bytes.append(random.below(round % 2 == 0 ? 90 : 3000), 'x');
      bytes += random.onceIn(2) ? "\r\n" : "\n";
      if (random.onceIn(50)) bytes += '\0';
      if (random.onceIn(9)) bytes += '\r';
    }
    ASSERT_TRUE(linesOf(folder.write(L"input.txt", bytes), utf8) == twinLinesOf(bytes, utf8))
        << round;
  }
}

TEST(textFileReader, opensExistingFilesOnly) {
  const temporaryFolder folder;
  EXPECT_EQ(linesOf(folder.file(L"missing.txt"), utf8), "not opened");
  EXPECT_EQ(linesOf(folder.path(), utf8), "not opened");
  EXPECT_EQ(linesOf(L"", utf8), "not opened");
  const std::wstring cyrillic =
      folder.write(L"\u0421\u043A\u0432\u0430\u0436\u0438\u043D\u044B.txt", "a\n");
  EXPECT_EQ(linesOf(cyrillic, utf8), "[a]");
}

TEST(textFileReader, openingAgainBeginsAtTheStart) {
  const temporaryFolder folder;
  const std::wstring path = folder.write(L"input.txt", "\xCF\nb\n");
  tableRW::textFileReader reader;
  std::wstring line;
  ASSERT_TRUE(reader.open(path, utf8));
  readTextLine(reader, line);
  readTextLine(reader, line);
  EXPECT_EQ(reader.encoding, utf8);
  ASSERT_TRUE(reader.open(path, cp1251));
  EXPECT_EQ(reader.encoding, cp1251);
  EXPECT_TRUE(readTextLine(reader, line));
  EXPECT_EQ(line, L"\u041F");
}

TEST(textFileReader, asksForTheSystemsPageOnceAFile) {
  if (testSupport::fixedSystemCodePage())
    GTEST_SKIP() << "the system's code page cannot change here while a program runs";
  const temporaryFolder folder;
  const std::wstring path = folder.write(L"input.txt", "\xCF\n\xCF\n");
  tableRW::textFileReader reader;
  std::wstring line;
  const testSupport::environmentSetter before(L"LC_ALL", L"ru_RU.CP1251");
  ASSERT_TRUE(reader.open(path, 18));
  readTextLine(reader, line);
  EXPECT_EQ(line, L"\u041F");
  const testSupport::environmentSetter after(L"LC_ALL", L"C");
  readTextLine(reader, line);
  EXPECT_EQ(line, L"\u041F");
  ASSERT_TRUE(reader.open(path, 18));
  readTextLine(reader, line);
  EXPECT_EQ(line, L"\uFFFD");
}

}  // namespace

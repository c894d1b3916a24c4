// The CSV reader and its slow twin on random files: built to hit block borders, quotes, NUL bytes, CR before
// block ends, broken UTF-8 at block ends, and every length of a chunk. Fixed seeds: a failure repeats.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "tests/support/csvComparison.h"
#include "tests/support/randomNumbers.h"
#include "tests/support/temporaryFolder.h"

namespace {

using testSupport::csvOptions;
using testSupport::differenceFromTwin;
using testSupport::randomNumbers;
using testSupport::temporaryFolder;

constexpr std::size_t blockSize = std::size_t{256} * 1024;

const std::wstring delimiters[] = {L";", L"\t", L",", L" ", L";;", L"", L"\u0436", L"a"};
const std::wstring quotes[] = {L"\"", L"'", L"", L"\"\"", L";", L"\u00AB"};
// UTF-8 most often; then single bytes, ASCII, the system's page, and one that is treated as it.
constexpr std::int32_t encodings[] = {0, 0, 0, 8, 16, 17, 18, 9, 13, 1};

constexpr std::string_view characters[] = {"\xD0\xB6",         "\xD0\xAF",     "\xE2\x82\xAC",
                                           "\xF0\x9F\x98\x80", "\xE6\x97\xA5", "\xE0\xA4\x85",
                                           "\xED\x95\x9C"};
constexpr std::string_view brokenPieces[] = {"\xD0",       "\xE2\x82", "\xE1",         "\xF0\x90",
                                             "\x80",       "\xC0\xAF", "\xED\xA0\x80", "\xFF",
                                             "\xE1\n\x80", "\xD0\n"};

csvOptions randomOptions(randomNumbers& random) {
  csvOptions options;
  options.header = static_cast<std::int32_t>(random.below(6)) - 2;
  options.data = random.below(8);
  if (random.onceIn(3)) options.delimiter = random.oneOf(delimiters);
  if (random.onceIn(3)) options.quote = random.oneOf(quotes);
  options.encoding = random.oneOf(encodings);
  return options;
}

// What a kind of file holds beside letters, delimiters and line ends.
struct flavour {
  bool quoted;
  bool carriageReturns;
  bool nuls;
  bool endOfFileBytes;
  bool broken;
  bool anyBytes;
};

constexpr flavour flavours[] = {
    {false, false, false, false, false, false},
    {true,  false, false, false, false, false},
    {true,  true,  false, false, false, false},
    {true,  false, true,  false, false, false},
    {true,  true,  true,  true,  false, false},
    {true,  false, false, false, true,  false},
    {false, true,  false, false, true,  true },
};

void addPiece(std::string& bytes, randomNumbers& random, const flavour& kind) {
  const std::size_t choice = random.below(100);
  if (choice < 40)
    bytes += static_cast<char>('a' + random.below(26));
  else if (choice < 52)
    bytes += ';';
  else if (choice < 58)
    bytes += kind.carriageReturns && random.onceIn(2) ? "\r\n" : "\n";
  else if (choice < 62)
    bytes += kind.quoted ? '"' : '.';
  else if (choice < 66)
    bytes += ' ';
  else if (choice < 67)
    bytes += kind.nuls ? '\0' : '0';
  else if (choice < 68)
    bytes += kind.carriageReturns ? '\r' : '1';
  else if (choice < 69)
    bytes += kind.endOfFileBytes && random.onceIn(500) ? '\x1A' : '2';
  else if (choice < 80)
    bytes += random.oneOf(characters);
  else if (choice < 83)
    bytes += kind.broken ? random.oneOf(brokenPieces) : std::string_view("3");
  else if (choice < 85)
    bytes += kind.anyBytes ? static_cast<char>(random.below(256)) : '4';
  else if (choice < 88)
    bytes.append(random.below(30), 'x');
  else
    bytes += "1;2";
}

std::string randomBytes(randomNumbers& random, std::size_t size, const flavour& kind) {
  std::string bytes;
  while (bytes.size() < size) addPiece(bytes, random, kind);
  return bytes;
}

// Lines that mostly have the same number of values, so that rows are kept.
std::string randomTable(randomNumbers& random, std::size_t lines, const flavour& kind) {
  static constexpr std::string_view values[] = {
      "\xD0\xB6",
      " 12.5 ",
      "",
      "abc",
      "\t",
      "-9999",
      "\xD0\xA1\xD0\xB0\xD0\xBC\xD0\xBE\xD1\x82\xD0\xBB\xD0\xBE\xD1\x80",
      "a value of more than sixteen bytes",
      "another one, of more than thirty-two bytes",
      "\xF0\x9F\x98\x80"};
  static constexpr std::string_view quotedValues[] = {"\"q\"", "\"x", "y\"", "\"\"", "\"a\"\"b\""};
  const std::size_t columns = 1 + random.below(6);
  std::string bytes;
  for (std::size_t line = 0; line < lines; ++line) {
    for (std::size_t column = 0; column < columns; ++column) {
      if (column > 0) bytes += ';';
      if (kind.quoted && random.onceIn(6))
        bytes += random.oneOf(quotedValues);
      else if (kind.broken && random.onceIn(40))
        bytes += random.oneOf(brokenPieces);
      else
        bytes += random.oneOf(values);
      if (random.onceIn(60)) bytes += ';';
    }
    if (kind.nuls && random.onceIn(20)) bytes += '\0';
    bytes += kind.carriageReturns && random.onceIn(2) ? "\r\n" : "\n";
  }
  if (random.onceIn(4)) bytes += "the last line; without an end";
  return bytes;
}

std::size_t lineCount(std::string_view bytes) {
  return static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '\n'));
}

TEST(csvTwin, agreesOnAMillionRandomLines) {
  const temporaryFolder folder;
  randomNumbers random(20261);
  std::size_t lines = 0;
  for (int round = 0; lines < 1000000; ++round) {
    const flavour& kind = random.oneOf(flavours);
    const std::string bytes = random.onceIn(4) ? randomBytes(random, random.below(20000), kind)
                                               : randomTable(random, random.below(2000), kind);
    lines += lineCount(bytes);
    const std::wstring path = folder.write(L"random.csv", bytes);
    ASSERT_EQ(differenceFromTwin(path, bytes, randomOptions(random)), "") << "round " << round;
  }
}

TEST(csvTwin, agreesAcrossBlockBorders) {
  const temporaryFolder folder;
  randomNumbers random(20262);
  for (int round = 0; round < 24; ++round) {
    const flavour& kind = random.oneOf(flavours);
    std::string bytes = randomTable(random, 100, kind);
    // One long value up to a few bytes before the border, then whatever the flavour has, over it.
    const std::size_t border = blockSize * (1 + random.below(2)) - random.below(80);
    if (bytes.size() < border) bytes.append(border - bytes.size(), 'v');
    bytes += randomBytes(random, 400, kind);
    bytes += randomTable(random, 50, kind);
    const std::wstring path = folder.write(L"random.csv", bytes);
    ASSERT_EQ(differenceFromTwin(path, bytes, randomOptions(random)), "") << "round " << round;
  }
}

struct borderRow {
  const char* name;
  std::string_view bytes;  // stands over the border
};

TEST(csvTwin, agreesOnEveryPositionOfWhatStandsOverABorder) {
  using namespace std::string_view_literals;
  const temporaryFolder folder;
  for (const borderRow& row : {
           borderRow{"CR LF",                             "1;2\r\n3;4\r\n"sv         },
           borderRow{"CR CR LF",                          "1;2\r\r\n3;4\r\r\n"sv     },
           borderRow{"characters of two and three bytes", "\xD0\xB6;\xE2\x82\xAC\n"sv},
           borderRow{"a character of four bytes",         "1;\xF0\x9F\x98\x80\n"sv   },
           borderRow{"a broken one",                      "1;\xE2\x82\n\x80;2\n"sv   },
           borderRow{"quotes",                            "\"1;2\";\"3\"\n"sv        },
           borderRow{"a NUL",                             "1;2\0\n3;4\n5;6\n"sv      },
           borderRow{"the end of the file",               "1;2\x1A\n3;4\n"sv         },
  }) {
    for (std::size_t before = 0; before <= row.bytes.size(); ++before) {
      std::string bytes = "a;b\n";
      while (bytes.size() + 8 < blockSize - before) bytes += "123;456\n";
      bytes.insert(4, blockSize - before - bytes.size(), ' ');
      bytes += row.bytes;
      bytes += "7;8\n";
      const std::wstring path = folder.write(L"border.csv", bytes);
      ASSERT_EQ(differenceFromTwin(path, bytes, csvOptions()), "") << row.name << ", " << before;
    }
  }
}

TEST(csvTwin, agreesOnEveryLengthOfALine) {
  const temporaryFolder folder;
  std::string bytes = "a;b\n";
  for (std::size_t length = 1; length <= 4096; ++length) {
    bytes.append(length / 2, 'x');
    bytes += ';';
    bytes.append(length - length / 2, 'y');
    // A NUL here and there, so that chunks end at every length too.
    if (length % 7 == 0) bytes += '\0';
    bytes += length % 5 == 0 ? "\r\n" : "\n";
  }
  const std::wstring path = folder.write(L"lengths.csv", bytes);
  EXPECT_EQ(differenceFromTwin(path, bytes, csvOptions()), "");
}

}  // namespace

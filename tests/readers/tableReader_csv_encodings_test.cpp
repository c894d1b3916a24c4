// Delimited text in every encoding, and files far larger than usual.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "platform/codePages.h"
#include "platform/files.h"
#include "table_rw/readers/tableReader_csv.h"
#include "table_rw/text/textEncoding.h"
#include "tests/reference/textTwin.h"
#include "tests/reference/utf8.h"
#include "tests/support/codePageData.h"
#include "tests/support/csvComparison.h"
#include "tests/support/targetSystem.h"

namespace {

using namespace std::string_literals;
using tableRW::tableReader_csv;
using testSupport::csvOptions;
using testSupport::describe;
using testSupport::printable;
using testSupport::temporaryFolder;

csvOptions withEncoding(std::int32_t encoding) {
  csvOptions options;
  options.encoding = encoding;
  return options;
}

struct Row {
  const char* name;
  std::int32_t encoding;
  std::string bytes;
  std::string table;
  int line = __builtin_LINE();
};

TEST(tableReader_csv, cyrillicWhereTheEncodingHasIt) {
  const temporaryFolder folder;
  for (const Row& row : {
           Row{"UTF-8",                                  0,  "\xD0\x98;\xD0\xB8\n \xD0\x9F ;\xD1\x8F\n",
               "fields \u0418|\u0438  rows \u041F|\u044F  ok"},
           Row{"CP1251",                                 8,  "\xC8;\xE8\n \xCF ;\xFF\n",
               "fields \u0418|\u0438  rows \u041F|\u044F  ok"},
           Row{"CP866",                                  16, "\x88;\xA8\n \x8F ;\xEF\n",
               "fields \u0418|\u0438  rows \u041F|\u044F  ok"},
           Row{"CP1252 has none",                        9,  "\xC8;\xE8\n \xCF ;\xFF\n",
               "fields \u00C8|\u00E8  rows \u00CF|\u00FF  ok"},
           Row{"ASCII drops the highest bit",            17, "\xC8;\xE8\n \xCF ;\xFF\n",
               "fields H|h  rows O|\\x{7F}  ok"              },
           Row{"UTF-8 read as CP1251",                   8,  "\xD0\x98;b\n1;2\n",
               "fields \u0420\\x{98}|b  rows 1|2  ok"        },
           Row{"CP1251 read as UTF-8",                   0,  "\xC8;\xE8\n\xCF;\xFF\n",
               "fields \uFFFD|\uFFFD  rows \uFFFD|\uFFFD  ok"},
           Row{"the delimiter of CP1251 is decoded too", 8,  "\xC8\xBB\xE8\n",
               "fields \u0418\u00BB\u0438  ok"               },
  }) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    const std::wstring path = folder.write(L"table.csv", row.bytes);
    EXPECT_EQ(describe(testSupport::readCsvFile(path, withEncoding(row.encoding))), row.table);
    EXPECT_EQ(testSupport::differenceFromTwin(path, row.bytes, withEncoding(row.encoding)), "");
  }
}

TEST(tableReader_csv, aDelimiterAndAQuoteThatAreNotAscii) {
  const temporaryFolder folder;
  csvOptions options = withEncoding(8);
  options.delimiter = L"\u00A7";
  options.quote = L"\u00AB";
  const std::wstring path = folder.write(L"table.csv",
                                         "a\xA7"
                                         "b\n\xABx\xA7y\xAB\xA7z\n");
  EXPECT_EQ(describe(testSupport::readCsvFile(path, options)), "fields a|b  rows x\u00A7y|z  ok");
}

// One line for every byte above ASCII, in all nineteen encodings. As many bytes follow as a lead byte may
// ask for: at the end of a text, emulations of Windows swallow what is left.
TEST(tableReader_csv, everyByteInEveryEncoding) {
  const temporaryFolder folder;
  std::string bytes = "key;value\n";
  for (int byte = 0x80; byte <= 0xFF; ++byte)
    bytes += std::to_string(byte) + ";x" + static_cast<char>(byte) + "....\n";
  const std::wstring path = folder.write(L"table.csv", bytes);
  for (std::int32_t encoding = 0; encoding <= 18; ++encoding) {
    const auto content = testSupport::readCsvFile(path, withEncoding(encoding));
    // ASCII drops the eighth bit, and BB then is the delimiter: its line has a value too many.
    const bool isAscii = tableRW::codePageOf(encoding) == 20127;
    ASSERT_EQ(content.rows.size(), isAscii ? 127U : 128U) << encoding;
    EXPECT_EQ(content.errors.size(), isAscii ? 1U : 0U) << encoding;
    EXPECT_EQ(testSupport::differenceFromTwin(path, bytes, withEncoding(encoding)), "");

    const unsigned page = platform::resolveCodePage(tableRW::codePageOf(encoding));
    if (page == platform::utf8CodePage) {
      for (const auto& row : content.rows) EXPECT_EQ(row[1], L"x\uFFFD....") << printable(row[0]);
    } else if (std::count(std::begin(testSupport::singleByteCodePages),
                          std::end(testSupport::singleByteCodePages), page) > 0) {
      const auto units = testSupport::recordedDecoding(page);
      for (const auto& row : content.rows) {
        const std::size_t byte = std::stoul(row[0]);
        const std::wstring wanted = {L'x', static_cast<wchar_t>(units[byte]), L'.', L'.', L'.',
                                     L'.'};
        EXPECT_EQ(row[1], wanted) << encoding << ", byte " << byte;
      }
    }
  }
}

TEST(tableReader_csv, aFileThatIsUtf16IsNotUnderstood) {
  const temporaryFolder folder;
  const std::string littleEndian =
      "\xFF\xFE"
      "a\0;\0b\0\n\0"
      "1\0;\0"
      "2\0\n\0"s;
  const std::string bigEndian =
      "\xFE\xFF\0a\0;\0b\0\n\0"
      "1\0;\0"
      "2\0\n"s;
  for (const std::string& bytes : {littleEndian, bigEndian, littleEndian.substr(2)}) {
    const std::wstring path = folder.write(L"table.csv", bytes);
    for (const std::int32_t encoding : {0, 1, 2, 3, 4, 5, 6, 8, 18}) {
      EXPECT_EQ(testSupport::differenceFromTwin(path, bytes, withEncoding(encoding)), "");
      EXPECT_EQ(testSupport::readCsvFile(path, withEncoding(encoding)).fields.size(), 1U);
      EXPECT_TRUE(testSupport::readCsvFile(path, withEncoding(encoding)).rows.empty());
    }
  }
  // Each chunk ends at its first zero byte, so nothing but the first byte of each is left.
  const std::wstring path = folder.write(L"table.csv", littleEndian.substr(2));
  EXPECT_EQ(describe(testSupport::readCsvFile(path, withEncoding(0))), "fields a  ok");
}

TEST(tableReader_csv, aByteOrderMarkStaysInTheFirstName) {
  const temporaryFolder folder;
  const std::wstring path = folder.write(L"table.csv", "\xEF\xBB\xBF\"a\";b\n\xEF\xBB\xBF;2\n");
  EXPECT_EQ(describe(testSupport::readCsvFile(path, {})), "fields \uFEFF\"a|b  rows \uFEFF|2  ok");
  EXPECT_EQ(testSupport::readCsvFile(path, withEncoding(8)).fields[0], L"\u043F\u00BB\u0457\"a");
}

// A value holds every kind of broken UTF-8; `suffix` follows it in the line.
void expectBrokenUtf8(const std::string& suffix) {
  const temporaryFolder folder;
  std::size_t compared = 0;
  for (const std::vector<std::string>& row : testSupport::recordedRows("utf8_strings.tsv")) {
    const std::string broken = testSupport::bytesOf(row[0]);
    const bool isSwallowedByWine = testSupport::wideIsUtf16 && !row[2].empty() && suffix.empty();
    if (isSwallowedByWine || broken.find('\0') != std::string::npos) continue;
    const std::string line = "x;y" + broken + suffix;
    std::wstring value = testSupport::joinedWideOf(reference::decodeUtf8("y" + broken + suffix));
    value = reference::trimText(value.substr(0, value.find(L';')));
    const std::wstring path =
        folder.write(L"table.csv", suffix.empty() ? "a;b\n" + line : "a;b;c\n" + line);
    tableReader_csv reader(csvOptions().forFile(path));
    ASSERT_TRUE(reader.read());
    ASSERT_EQ(reader.count(), 1U) << row[0];
    EXPECT_EQ(printable(reader.value(1, 0)), printable(value)) << row[0];
    ++compared;
  }
  EXPECT_GT(compared, 100U);
}

TEST(tableReader_csv, brokenUtf8InsideALine) { expectBrokenUtf8(";and more text\n"); }

TEST(tableReader_csv, brokenUtf8AtTheEndOfTheFile) { expectBrokenUtf8(""); }

// 64 bytes are looked at together: what the end of the file cuts behind them is noticed all the same.
TEST(tableReader_csv, aCharacterCutByTheEndOfTheFile) {
  const temporaryFolder folder;
  for (const std::string cut : {"\xC3", "\xE4\xB8", "\xE4"}) {
    for (std::size_t whole = 58; whole < 66; ++whole) {
      const std::string bytes = "a\n" + std::string(whole, 'x') + cut;
      const std::wstring path = folder.write(L"table.csv", bytes);
      tableReader_csv reader(csvOptions().forFile(path));
      ASSERT_TRUE(reader.read());
      ASSERT_EQ(reader.count(), 1U);
      EXPECT_EQ(reader.value(std::size_t{0}, 0), std::wstring(whole, L'x') + L"\xFFFD");
      EXPECT_EQ(testSupport::differenceFromTwin(path, bytes, csvOptions()), "");
    }
  }
}

TEST(tableReader_csv, charactersBeyondTheBmp) {
  const temporaryFolder folder;
  const std::wstring path = folder.write(L"table.csv", "\U0001F600;\U0010FFFF\n\U00010000;x\n");
  tableReader_csv reader(csvOptions().forFile(path));
  ASSERT_TRUE(reader.read());
  EXPECT_EQ(reader.fieldNum(L"\U0001F600"), 0);
  EXPECT_EQ(reader.value(L"\U0001F600", 0), L"\U00010000");
  EXPECT_EQ(reader.fieldName(1), L"\U0010FFFF");
}

TEST(tableReader_csv, manyFields) {
  const temporaryFolder folder;
  constexpr std::size_t count = 100000;
  const std::string delimiters(count - 1, ';');
  const std::wstring path = folder.write(L"table.csv", delimiters + "\n" + delimiters + "\nx" +
                                                           delimiters + "\n;" + delimiters + "y\n");
  tableReader_csv reader(csvOptions().forFile(path));
  ASSERT_TRUE(reader.read());
  EXPECT_EQ(reader.fieldCount(), count);
  EXPECT_EQ(reader.fieldName(count - 1), std::to_wstring(count - 1));
  EXPECT_EQ(reader.count(), 1U);
  EXPECT_EQ(reader.value(0, 0), L"x");
  EXPECT_EQ(reader.errorCount(), 1U);
  EXPECT_EQ(reader.getError(0), 3U);
}

TEST(tableReader_csv, manyShortLines) {
  const temporaryFolder folder;
  constexpr std::size_t count = 300000;
  std::string bytes = "a;b\n";
  for (std::size_t i = 0; i < count; ++i) bytes += i % 1000 == 999 ? "1\n" : "1;2\n";
  tableReader_csv reader(csvOptions().forFile(folder.write(L"table.csv", bytes)));
  ASSERT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), count - count / 1000);
  EXPECT_EQ(reader.errorCount(), count / 1000);
  EXPECT_EQ(reader.getError(0), 1000U);
  EXPECT_EQ(reader.getError(reader.errorCount() - 1), count);
  EXPECT_EQ(reader.value(1, reader.count() - 1), L"2");
}

// 200 million bytes between two line ends: one value of them, and a neighbour.
TEST(tableReader_csv, aVeryLongLine) {
  const temporaryFolder folder;
  const std::wstring path = folder.file(L"table.csv");
  constexpr std::size_t pieceSize = 1000000, pieces = 200;
  {
    const std::string piece(pieceSize, 'x');
    platform::binaryFile file;
    ASSERT_TRUE(file.openForWriting(path));
    ASSERT_TRUE(file.write("a;b\n", 4));
    for (std::size_t i = 0; i < pieces; ++i) ASSERT_TRUE(file.write(piece.data(), piece.size()));
    ASSERT_TRUE(file.write(";end\n1;2\n", 9));
    ASSERT_TRUE(file.close());
  }
  tableReader_csv reader(csvOptions().forFile(path));
  ASSERT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 2U);
  EXPECT_EQ(reader.errorCount(), 0U);
  EXPECT_EQ(reader.value(1, 0), L"end");
  EXPECT_EQ(reader.value(1, 1), L"2");
  const std::wstring value = reader.value(0, 0);
  EXPECT_EQ(value.size(), pieceSize * pieces);
  EXPECT_EQ(value.find_first_not_of(L'x'), std::wstring::npos);
}

}  // namespace

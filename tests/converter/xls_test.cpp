// .xls workbooks as text: the records of BIFF8 and BIFF5, and the compound file around them.
#include <gtest/gtest.h>

#include <limits>

#include "converter/syntax/biffRecords.h"
#include "tests/support/conversion.h"
#include "tests/support/workbookBuilders.h"

namespace {

using namespace std::string_literals;
using testSupport::biff5;
using testSupport::biff8;
using testSupport::compoundOf;
using testSupport::conversion;
using testSupport::le16;
using testSupport::le32;
using testSupport::leDouble;
using testSupport::record;
namespace biff = converter::biff;

std::string place(unsigned row, unsigned column, unsigned style = 0) {
  return le16(row) + le16(column) + le16(style);
}

std::string number(unsigned row, unsigned column, double value, unsigned style = 0) {
  return record(biff::number, place(row, column, style) + leDouble(value));
}

// A BIFF8 string with its length in two bytes.
std::string latin(const std::string& text) {
  return le16(static_cast<unsigned>(text.size())) + "\0"s + text;
}

std::string units(const std::u16string& text) {
  std::string bytes;
  for (const char16_t unit : text) bytes += le16(unit);
  return bytes;
}

std::string wide(const std::u16string& text) {
  return le16(static_cast<unsigned>(text.size())) + "\1"s + units(text);
}

// Two runs of formatting and three bytes of phonetic text behind one character.
std::string richAndPhonetic() {
  return le16(1) + "\x0C"s + le16(2) + le32(3) + "a" + std::string(8, '!') + "???";
}

std::string sharedCell(unsigned column, std::uint32_t index) {
  return record(biff::sharedLabel, place(0, column) + le32(index));
}

std::string sharedStrings(const std::string& strings, std::uint32_t count) {
  return record(biff::sharedStrings, le32(9) + le32(count) + strings);
}

// The result of a formula that is no number.
std::string special(unsigned column, char kind, char value = 0) {
  return record(biff::formula, place(0, column) +
                                   std::string{kind, 0, value, 0, 0, 0, '\xFF', '\xFF'} +
                                   std::string(8, '\0'));
}

std::string booleanOrError(unsigned column, char value, char isError) {
  return record(biff::booleanOrError, place(0, column) + std::string{value, isError});
}

std::string styles(const std::vector<unsigned>& formats) {
  std::string all;
  for (const unsigned format : formats)
    all += record(biff::extendedFormat, le16(0) + le16(format) + std::string(16, '\0'));
  return all;
}

std::string poked(std::string bytes, std::size_t offset, const std::string& with) {
  return bytes.replace(offset, with.size(), with);
}

struct recordRow {
  const char* name;
  std::string globals;
  std::string cells;
  const char* expected;
  int line = __builtin_LINE();
};

// WHY: it would set the columns of this table hundreds of characters apart.
// clang-format off
const recordRow recordRows[] = {
    recordRow{"numbers", "", number(0, 0, 0.1) + number(0, 1, -7), "0.1$-7\n"},
    recordRow{"numbers that are none", "",
              number(0, 0, std::numeric_limits<double>::quiet_NaN()) +
                  number(0, 1, -std::numeric_limits<double>::infinity(), 1),
              "#NUM!$#NUM!\n"},
    recordRow{"RK in all four kinds", "",
              record(biff::rk, place(0, 0) + le32(0x3FF00000)) +
                  record(biff::rk, place(0, 1) + le32(0x3FF00001)) +
                  record(biff::rk, place(0, 2) + le32(0xFFFFFFF6)) +
                  record(biff::rk, place(0, 3) + le32(123u << 2 | 3)),
              "1$0.01$-3$1.23\n"},
    recordRow{"several RK", "",
              record(biff::multipleRk,le16(1) + le16(1) + le16(0) + le32(5u << 2 | 2) + le16(0) +
                                           le32(6u << 2 | 2) + le16(2)),
              "$$\n$5$6\n"},
    recordRow{"several RK that are cut", "", record(biff::multipleRk, le16(0) + le16(0) + le16(0)),
              ""},
    recordRow{"several RK that are cut before the first", "", record(biff::multipleRk, le16(0) + le16(0)),
              "problem: the sheet is damaged: it has a cell that is too short"},
    recordRow{"several RK that lead out of the sheet", "",
              record(biff::multipleRk, le16(0) + le16(16383) + le16(0) + le32(5u << 2 | 2) + le16(0) +
                                           le32(6u << 2 | 2) + le16(16384)),
              "problem: the sheet is damaged: it has too many columns"},
    recordRow{"labels", "",
              record(biff::label, place(0, 0) + latin("a$b")) +
                  record(biff::label, place(0, 1) + wide(u"\u0416")),
              "a\xEF\xBC\x84"
              "b$\xD0\x96\n"},
    recordRow{"shared strings", sharedStrings(latin("a\xE9") + wide(u"\u0416") + latin(""),3),
              sharedCell(0, 1) + sharedCell(1, 0) + sharedCell(2, 2), "\xD0\x96$a\xC3\xA9\n"},
    recordRow{"rich and phonetic strings",
              sharedStrings(richAndPhonetic() + latin("b"), 2),
              sharedCell(0,0) + sharedCell(1, 1), "a$b\n"},
    recordRow{"characters cut by a record, width changed",
              sharedStrings(le16(4) + "\0ab"s, 2) +
                  record(biff::continued, "\1"s + units(u"\u0416\u0417") + latin("c")),
              sharedCell(0, 0) + sharedCell(1, 1), "ab\xD0\x96\xD0\x97$c\n"},
    recordRow{"a string begins with a record, its header and runs are cut without a flag",
              sharedStrings(latin("a"), 3) + record(biff::continued, le16(1) + "\x08"s + "\1"s) +
                  record(biff::continued, "\0"s + "b" + "!!") +
                  record(biff::continued, "!!" + latin("c")),
              sharedCell(0, 0) + sharedCell(1, 1) + sharedCell(2, 2), "a$b$c\n"},
    recordRow{"a string over many records",
              sharedStrings(le16(3) + "\0a"s, 1) + record(biff::continued, "\0b"s) +
                  record(biff::continued, "\0c"s),
              sharedCell(0, 0), "abc\n"},
    recordRow{"a record without data within a string",
              sharedStrings(le16(3) + "\0a"s, 1) + record(biff::continued, "") +
                  record(biff::continued, "\0bc"s),
              sharedCell(0, 0), "abc\n"},
    recordRow{"empty labels, also without their flags", "",
              record(biff::label, place(0, 0) + latin("")) + record(biff::label, place(0, 1) + le16(0)) +
                  number(0, 2, 1),
              "$$1\n"},
    recordRow{"shared strings without their counts", record(biff::sharedStrings, le32(1) + "\1\0\0"s),
              sharedCell(0, 0), "problem: the sheet is damaged: a cell of row 1 refers to shared string 0 of 0"},
    recordRow{"shared strings without any count", record(biff::sharedStrings, "\1\0\0"s), number(0, 0, 1), "1\n"},
    recordRow{"more strings announced than there are",
              record(biff::sharedStrings, le32(0) + le32(0xFFFFFFFF) + latin("a")),
              sharedCell(0, 0), "a\n"},
    recordRow{"formulas: number, boolean, error, nothing", "",
              record(biff::formula, place(0, 0) + leDouble(2.5) + std::string(8,'\0')) +
                  special(1, 1, 1) + special(2, 2, 0x2A) + special(3, 3) + number(0, 4, 1),
              "2.5$TRUE$#N/A$$1\n"},
    recordRow{"a formula's number whose last byte but one is FF", "",
              record(biff::formula, place(0, 0) + leDouble(1.9375) + std::string(8, '\0')), "1.9375\n"},
    recordRow{
              "a formula's text, also behind other records and going on", "",
              special(0, 0) + record(0x04BC, "x") + record(biff::string, le16(2) + "\0a"s) +
            record(biff::continued, "\0b"s) +
            record(biff::formula4, place(0, 1) + "\0\0\0\0\0\0\xFF\xFF"s + std::string(8, '\0')) +
            record(biff::string, latin("c")),
              "ab$c\n"},
    recordRow{"a text without a formula", "", number(0, 0, 1) + record(biff::string, latin("lost")),
              "1\n"},
    recordRow{"booleans and errors", "",
              booleanOrError(0, 0, 0) + booleanOrError(1, 1, 0) + booleanOrError(2, 0x07, 1) +
                  booleanOrError(3, 0x63, 1),
              "FALSE$TRUE$#DIV/0!$#UNKNOWN!\n"},
    recordRow{"all errors", "",
              booleanOrError(0, 0x00, 1) + booleanOrError(1, 0x0F, 1) + booleanOrError(2, 0x17, 1) +
                  booleanOrError(3, 0x1D, 1) + booleanOrError(4, 0x24, 1) + booleanOrError(5, 0x2A, 1) +
                  booleanOrError(6, 0x2B, 1),
              "#NULL!$#VALUE!$#REF!$#NAME?$#NUM!$#N/A$#GETTING_DATA\n"},
    recordRow{"dates by their style",
              record(biff::format, le16(164) + latin("dd/mm/yy hh:mm")) + styles({0, 14, 164}),
              number(0, 0, 41684, 1) + number(0, 1, 41684.5, 2) + number(0, 2, 41684, 0) +
                  number(0, 3, 5, 77),
              "2014-02-14$2014-02-14T12:00:00$41684$5\n"},
    recordRow{"dates from 1904", record(biff::date1904, le16(1)) + styles({14}),
              number(0, 0, 40222), "2014-02-14\n"},
    recordRow{"dates from 1900", record(biff::date1904, le16(0)) + record(biff::date1904, "\1") + styles({14}),
              number(0, 0, 41684), "2014-02-14\n"},
    recordRow{"a format that is cut", record(biff::format, le16(164) + le16(8) + "\0dd"s) +
                  record(biff::format, "\xA4") + styles({164}),
              number(0, 0, 41684), "41684\n"},
    recordRow{"records inside a chart of the workbook are not the workbook's",
              styles({14}) + record(biff::beginOfFile, le16(0x600) + le16(0x20)) +
                  record(biff::date1904, le16(1)) + record(biff::endOfFile, ""),
              number(0, 0, 41684), "2014-02-14\n"},
    recordRow{"records inside a chart are no cells", "",
              number(0, 0,1) + record(biff::beginOfFile, le16(0x600) + le16(0x20)) +
                  number(0, 1, 2) + record(biff::endOfFile, "") + number(0, 2, 3),
              "1$$3\n"},
    recordRow{"rows from below", "", number(1, 0, 2) + number(0, 1, 1), "$1\n2$\n"},
    recordRow{"zeros between records", "", number(0, 0, 1) + "\0\0\0\0"s + number(0, 1, 2),
              "1$2\n"},
    recordRow{"a cell that is too short", "", record(biff::number, place(0, 0)),
              "problem: the sheet is damaged: it has a cell that is too short"},
    recordRow{"an RK that is too short", "", record(biff::rk, place(0, 0) + "\0\0\0"s),
              "problem: the sheet is damaged: it has a cell that is too short"},
    recordRow{"a label that is too short", "", record(biff::label, place(0, 0) + "\1"),
              "problem: the sheet is damaged: it has a cell that is too short"},
    recordRow{"a boolean that is too short", "", record(biff::booleanOrError, place(0, 0) + "\1"),
              "problem: the sheet is damaged: it has a cell that is too short"},
    recordRow{"a formula that is too short", "", record(biff::formula, place(0, 0) + "\0\0\0"s),
              "problem: the sheet is damaged: it has a cell that is too short"},
    recordRow{"too many columns", "", number(0, 16384, 1),
              "problem: the sheet is damaged: it has too many columns"},
    recordRow{"a shared string that does not exist", sharedStrings(latin("a"), 1), sharedCell(0, 1),
              "problem: the sheet is damaged: a cell of row 1 refers to shared string 1 of 1"},
    recordRow{"shared strings that are cut", sharedStrings(le16(9) + "\0abc"s, 1), "",
              "problem: the workbook is damaged: its shared strings are cut"},
    recordRow{"a label that is cut", "", record(biff::label, place(2, 0) + le16(9) + "\0abc"s),
              "problem: the sheet is damaged: a text of row 3 is cut"},
    recordRow{"a password", record(biff::filePass, le16(0)), "",
              "problem: the workbook is protected by a password"},
};
// clang-format on

TEST(xls, records) {
  for (const recordRow& row : recordRows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    EXPECT_EQ(conversion().run(compoundOf("Workbook", biff8(row.globals, row.cells))),
              row.expected);
  }
}

// Wherever a record ends in a text, the text is not taken for a shorter one.
TEST(xls, textsThatAreCutAnywhere) {
  const std::string text = richAndPhonetic();
  EXPECT_EQ(conversion().run(biff8("", record(biff::label, place(0, 0) + text))), "a\n");
  for (std::size_t size = 2; size < text.size(); ++size)
    EXPECT_EQ(conversion().run(biff8("", record(biff::label, place(0, 0) + text.substr(0, size)))),
              "problem: the sheet is damaged: a text of row 1 is cut")
        << size;
}

TEST(xls, aTextOfSeveralRecordsInAFileThatIsCut) {
  const std::string whole = biff8(
      "", record(biff::label, place(0, 0) + le16(3) + "\0a"s) + record(biff::continued, "\0bc"s));
  EXPECT_EQ(conversion().run(whole), "abc\n");
  for (std::size_t size = 4; size < whole.size(); ++size)
    EXPECT_EQ(conversion().run(whole.substr(0, size)).substr(0, 8), "problem:") << size;
}

// Without it another sheet would be taken for the first one.
TEST(xls, aListOfSheetsThatIsCut) {
  const std::string entry = le32(0) + le16(0) + "\1\0S"s;
  for (std::size_t size = 0; size < entry.size(); ++size)
    EXPECT_EQ(conversion().run(biff8(record(biff::boundSheet, entry.substr(0, size)), "")),
              "problem: the workbook is damaged: its list of sheets is cut")
        << size;
}

TEST(xls, aSheetThatWasSavedAlone) {
  const std::string bytes =
      record(biff::beginOfFile, le16(0x600) + le16(0x10) + std::string(12, '\0')) +
      number(0, 0, 1) + record(biff::endOfFile, "");
  EXPECT_EQ(conversion().run(bytes), "1\n");
  conversion listing;
  listing.request.listsTables = true;
  EXPECT_EQ(listing.run(bytes), "Sheet1\n");
}

TEST(xls, timesBetweenColons) {
  conversion converting;
  converting.request.delimiter = ':';
  const std::string colon = "\xEF\xBC\x9A";
  EXPECT_EQ(converting.run(biff8(styles({20, 14}), number(0, 0, 0.25, 0) + number(0, 1, 41684, 1))),
            "06" + colon + "00" + colon + "00:2014-02-14\n");
}

TEST(xls, mergedCells) {
  conversion copying;
  copying.request.copyMerged = true;
  const std::string ranges =
      record(biff::mergedCells, le16(1000) + le16(0) + le16(1) + le16(0) + le16(1)) +
      record(biff::mergedCells, le16(1) + le16(2) + le16(1) + le16(0) + le16(1));  // upside down
  EXPECT_EQ(
      copying.run(compoundOf("Workbook", biff8("", number(0, 0, 1) + number(2, 0, 2) + ranges))),
      "1$1\n1$1\n2$\n");
}

TEST(xls, biff5TextIsInItsCodePage) {
  const auto label = [](const std::string& bytes) {
    return record(biff::label, place(0, 0) + le16(static_cast<unsigned>(bytes.size())) + bytes) +
           record(biff::richString, place(0, 1) + le16(1) + "x" + "\1\0\0"s);
  };
  const std::pair<unsigned, const char*> cases[] = {
      {1251,  "\xD0\x96$x\n"    },
      {1252,  "\xC3\x86$x\n"    },
      {10000, "\xE2\x88\x86$x\n"},
      {32768, "\xE2\x88\x86$x\n"},
      {32769, "\xC3\x86$x\n"    },
      {866,   "\xE2\x95\x9E$x\n"},
      {932,   "\xEF\xBF\xBD$x\n"},
      {20866, "\xEF\xBF\xBD$x\n"},
  };
  for (const auto& [page, expected] : cases)
    EXPECT_EQ(conversion().run(
                  compoundOf("Book", biff5(record(biff::codePage, le16(page)), label("\xC6")))),
              expected)
        << page;
  EXPECT_EQ(
      conversion().run(compoundOf("Book", biff5(record(biff::codePage, "\xE3"), label("\xC6")))),
      "\xC3\x86$x\n");
}

TEST(xls, biff5Formats) {
  const std::string globals = record(biff::format, le16(164) + "\x08" + "yy-mm-dd") + styles({164});
  EXPECT_EQ(conversion().run(compoundOf("Book", biff5(globals, number(0, 0, 41684)))),
            "2014-02-14\n");
}

TEST(xls, formatsWithSections) {
  const std::string globals =
      record(biff::format, le16(164) + latin("[<1]h:mm;dd.mm.yyyy")) + styles({164});
  const std::string cells = number(0, 0, 45000.75) + number(0, 1, 0.75);
  EXPECT_EQ(conversion().run(compoundOf("Workbook", biff8(globals, cells))),
            "2023-03-15$18:00:00\n");
}

TEST(xls, streamsAreFoundInAnyLetters) {
  EXPECT_EQ(conversion().run(compoundOf("WORKBOOK", biff8("", number(0, 0, 1)))), "1\n");
  EXPECT_EQ(conversion().run(compoundOf("book", biff8("", number(0, 0, 1)))), "1\n");
}

TEST(xls, aStreamOfItsOwnSectorsAndABareOne) {
  std::string cells;
  std::string expected;
  for (unsigned row = 0; row < 600; ++row) {
    cells += number(row, 0, row);
    expected += std::to_string(row) + "\n";
  }
  EXPECT_EQ(conversion().run(compoundOf("Workbook", biff8("", cells))), expected);
  EXPECT_EQ(conversion().run(biff8("", cells)), expected);
}

TEST(xls, aSheetWithoutItsLastRecord) {
  std::string stream = biff8("", number(0, 0, 1));
  stream.resize(stream.size() - 4);
  EXPECT_EQ(conversion().run(compoundOf("Workbook", stream)), "1\n");
  EXPECT_EQ(conversion().run(stream),
            "problem: the workbook is damaged: its records end too early");
  std::string inChart =
      biff8("", number(0, 0, 1) + record(biff::beginOfFile, le16(0x600) + le16(0x20)));
  inChart.resize(inChart.size() - 4);
  EXPECT_EQ(conversion().run(compoundOf("Workbook", inChart)),
            "problem: the workbook is damaged: its records end too early");
}

TEST(xls, aSheetThatDoesNotStandWhereTheWorkbookSays) {
  const std::string whole = biff8("", number(0, 0, 1));
  constexpr std::size_t placeOfSheet = 20 + 4;  // behind the first record and the next one's header
  for (const std::uint32_t wrong : {20u, 0x7FFFFFFFu})
    EXPECT_EQ(conversion().run(poked(whole, placeOfSheet, le32(wrong))),
              "problem: the workbook is damaged: the sheet does not stand where the workbook says");
}

struct fileRow {
  const char* name;
  std::string bytes;
  std::string expected;
  int line = __builtin_LINE();
};

TEST(xls, refusedFiles) {
  const std::string whole = compoundOf("Workbook", biff8("", number(0, 0, 1)));
  const std::string broken =
      "problem: the compound file is damaged: its header or its sector table is broken";
  const std::string noBiff =
      "problem: the workbook is damaged, or of Excel 4 or older, which is not read: save it as "
      ".xlsx";
  const std::string text =
      "problem: the file is no Excel workbook but looks like text: read it as delimited text";
  // clang-format off
  const fileRow rows[] = {
      fileRow{"an encrypted package", compoundOf("EncryptedPackage", "secret"),
              "problem: the workbook is protected by a password"},
      fileRow{"another compound file", compoundOf("WordDocument", "text"),
              "problem: the compound file holds no Excel workbook"},
      fileRow{"a header alone", whole.substr(0, 512), broken},
      fileRow{"absurd sectors", poked(whole, 30, le16(31)), broken},
      fileRow{"a list of table sectors that loops",
              poked(poked(poked(whole, 76, le32(0xFFFFFFFF)), 68, le32(3)), 512 * 4, std::string(508, '\xFF') + le32(3)),
              broken},
      fileRow{"a directory that loops and holds nothing",
              poked(poked(whole, 512 + 4, le32(1)), 512 * 2, std::string(256, '\0')), broken},
      fileRow{"a mini stream that is not there", poked(whole, 512 * 2 + 116, le32(0xFFFFFFFE)), noBiff},
      fileRow{"Excel 3", "\x09\x02\x06\0\0\0\x10\0\0\0"s, noBiff},
      fileRow{"a first record that is too short", "\x09\x08\2\0\0\6"s, noBiff},
      fileRow{"a first record without its data", "\x09\x08\x10\0"s, noBiff},
      fileRow{"text that begins with a TAB", "\ta\tb\n1\t2\t3\n", text},
      fileRow{"text that begins with a TAB and is short", "\t;\n", text},
      fileRow{"what begins like BIFF by chance", "\x09\x08\2\1\0"s, "problem: the file is no Excel workbook"},
      fileRow{"delimited text", "a;b\n1;2\n", text},
      fileRow{"a web page", "\xEF\xBB\xBF\n<html><table>",
              "problem: the file is no Excel workbook but a web page or XML: save it as .xlsx in a spreadsheet program"},
      fileRow{"nothing", "", "problem: the file is empty"},
      fileRow{"something else", "\x7F" "ELF\0\0"s, "problem: the file is no Excel workbook"},
  };
  // clang-format on
  for (const fileRow& row : rows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    EXPECT_EQ(conversion().run(row.bytes), row.expected);
  }
}

// A chain of sectors that comes back to itself ends there.
TEST(xls, sectorChainsThatLoop) {
  std::string cells;
  for (unsigned row = 0; row < 600; ++row) cells += number(row, 0, row);
  const std::string whole = compoundOf("Workbook", biff8("", cells));
  const std::string looping = poked(whole, 512 + 4 * 8, le32(4));
  EXPECT_EQ(conversion().run(looping).substr(0, 8), "problem:");
  const std::string longStream = poked(whole, 512 * 2 + 128 + 120, le32(0x7FFFFFFF));
  EXPECT_EQ(conversion().run(longStream).substr(0, 4), "0\n1\n");  // ends with its last record
}

}  // namespace

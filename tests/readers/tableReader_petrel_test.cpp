// tableReader_petrel: every rule of the header, of the split and of the values, and how reads follow each other.
#include "table_rw/readers/tableReader_petrel.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/support/ownedReader.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using namespace std::string_literals;
using tableRW::tableReader_petrel;
using tableRW::tableReaderOptions;
using testSupport::describe;
using testSupport::temporaryFolder;

const std::string header = "# Petrel well tops\nVERSION 1\nBEGIN HEADER\nA\nB\nEND HEADER\n";

class petrelReader : public testing::Test {
 protected:
  tableReaderOptions optionsFor(const std::string& bytes) const {
    return tableReaderOptions(folder_.write(L"tops", bytes));
  }
  tableReader_petrel readerOf(const std::string& bytes) const {
    return tableReader_petrel(optionsFor(bytes));
  }
  std::string readOf(const std::string& bytes) const {
    tableReader_petrel reader = readerOf(bytes);
    EXPECT_TRUE(reader.read());
    return describe(reader);
  }
  std::vector<std::wstring> tablesOf(const std::string& bytes, std::int32_t encoding = 0) const {
    tableReaderOptions options = optionsFor(bytes);
    options.encoding = encoding;
    tableReader_petrel reader(options);
    std::vector<std::wstring> tables = {L"old"};
    reader.tableList(tables);
    EXPECT_TRUE(reader.isOK());
    return tables;
  }

  temporaryFolder folder_;
};

struct fileRow {
  const char* name;
  std::string bytes;
  const char* expected;
  int line = __builtin_LINE();
};

// ---- the split of a data line and the mapping of its values --------------------------------------

// clang-format off
const fileRow lineRows[] = {
    fileRow{"three values, a blank at the end", "\"A 1\" 1200.5 -999 \n"s, "A 1|1200.5|"},
    fileRow{"no blank at the end: the last value is lost", "\"A 1\" 1200.5 -999\n"s, "A 1|1200.5"},
    fileRow{"the null marker in quotes", "\"NULL\" x \n"s, "|x"},
    fileRow{"the same without quotes is text", "NULL x \n"s, "NULL|x"},
    fileRow{"the quoted null in other letters", "\"Null\" \"NULL1\" \n"s, "Null|NULL1"},
    fileRow{"a TAB is no separator", "1\t2 3 \n"s, "1\\x{09}2|3"},
    fileRow{"a TAB alone is a value", "\t 3 \n"s, "\\x{09}|3"},
    fileRow{"blanks in front and in runs", "   1    2   \n"s, "1|2"},
    fileRow{"a quoted value keeps its runs of blanks", "\"a  b   c\" 1 \n"s, "a  b   c|1"},
    fileRow{"only the exact -999 is null", "-999 -999.0 -999.25 -9999 999 --999 \n"s, "|-999.0|-999.25|-9999|999|--999"},
    fileRow{"-999 in quotes is text", "\"-999\" x \n"s, "-999|x"},
    fileRow{"a quoted text that is empty", "\"\" x \n"s, "|x"},
    fileRow{"a quote alone is a whole value, and empty", "\" x \n"s, "|x"},
    fileRow{"a quote alone before text does not hold blanks", "\" abc\" x \n"s, "|abc\"|x"},
    fileRow{"a quote inside does not end a value", "\"a\"b c\" x \n"s, "a\"b c|x"},
    fileRow{"a quote inside that ends a word ends the value", "\"a\" b\" x \n"s, "a|b\"|x"},
    fileRow{"two quotes in front", "\"\"a b\" x \n"s, "\"a b|x"},
    fileRow{"three quotes", "\"\"\" x \n"s, "\"|x"},
    fileRow{"quotes in the middle of a bare value", "a\"b c\"d \n"s, "a\"b|c\"d"},
    fileRow{"a value that only ends in a quote", "ab\" x \n"s, "ab\"|x"},
    fileRow{"quotes that never close take the rest of the line", "1 \"a b c \n2 3 \n"s, "1 / 2|3"},
    fileRow{"a blank line is a row without values", "\n1 2 \n"s, "() / 1|2"},
    fileRow{"a line of blanks too", "   \n"s, "()"},
    fileRow{"one value without a blank: none", "1\n"s, "()"},
    fileRow{"rows of any length", "1 \n1 2 3 4 \n1 2 \n"s, "1 / 1|2|3|4 / 1|2"},
    fileRow{"the last line without a line end", "1 2 \n3 4 "s, "1|2 / 3|4"},
    fileRow{"and without a blank", "1 2 \n3 4"s, "1|2 / 3"},
    fileRow{"CR LF", "1 2 \r\n3 4 \r\n"s, "1|2 / 3|4"},
    fileRow{"CR LF without a blank", "1 2\r\n"s, "1"},
    fileRow{"a CR at the end of the file", "1 2 \r"s, "1|2"},
    fileRow{"two CRs: the second stands behind the blank", "1 2 \r\r\n"s, "1|2"},
    fileRow{"a CR before the last blank is a value", "1 2 \r \n"s, "1|2|\\x{0D}"},
    fileRow{"a CR inside a value", "1\r2 3 \n"s, "1\\x{0D}2|3"},
    fileRow{"another vertical space is text", "1\v2\f3 \n"s, "1\\x{0B}2\\x{0C}3"},
    fileRow{"a no-break space is text", "1\xA0""2 3 \n"s, "1\xC2\xA0""2|3"},
    fileRow{"a NUL takes what follows it and joins the next line", "1 2\0x\n3 4 \n5 6 \n"s, "1|23|4 / 5|6"},
    fileRow{"a NUL at the beginning", "\0 1 2 \n3 4 \n"s, "3|4"},
    fileRow{"a NUL and nothing behind its line", "1 2 \n\0 3 \n"s, "1|2"},
    fileRow{"the byte that ends a text file", "1 2 \n3 \x1A 4 \n"s, "1|2 / 3"},
    fileRow{"a comment is a row", "# 1 \n"s, "#|1"},
    fileRow{"a second end of the header is a row", "END HEADER \n"s, "END|HEADER"},
    fileRow{"text is Windows-1251", "\xCF\xE5\xF1\xEE\xEA \"\xC3 \x98\" \n"s, "\xD0\x9F\xD0\xB5\xD1\x81\xD0\xBE\xD0\xBA|\xD0\x93 \\x{98}"},
};
// clang-format on

TEST_F(petrelReader, linesOfData) {
  for (const fileRow& row : lineRows)
    EXPECT_EQ(readOf(header + row.bytes), "fields A|B  rows "s + row.expected + "  ok")
        << row.name << ", line " << row.line;
}

// ---- the header ----------------------------------------------------------------------------------

// clang-format off
const fileRow headerRows[] = {
    fileRow{"names are not trimmed", "BEGIN HEADER\n MD\nMD\n\tMD \nEND HEADER\n"s, "fields  MD|MD|\\x{09}MD   ok"},
    fileRow{"an empty line is a name", "BEGIN HEADER\nA\n\nB\nEND HEADER\n"s, "fields A||B  ok"},
    fileRow{"a comment is a name", "BEGIN HEADER\n# A\nEND HEADER\n"s, "fields # A  ok"},
    fileRow{"prefixes of attributes stay", "BEGIN HEADER\nFLOAT,Net\nEND HEADER\n"s, "fields FLOAT,Net  ok"},
    fileRow{"the preamble is ignored", "x\n\nEND\nEND HEADERS\nBEGIN HEADER\nA\nEND HEADER\n"s, "fields A  ok"},
    fileRow{"the markers in the first line", "BEGIN HEADER\nA\nEND HEADER\n1 \n"s, "fields A  rows 1  ok"},
    fileRow{"no beginning", "A\nB\nEND HEADER\n1 2 \n"s, "rows 1|2  ok"},
    fileRow{"the end before the beginning", "END HEADER\nBEGIN HEADER\nA\nEND HEADER\n1 2 \n"s,
            "rows BEGIN / () / END / 1|2  ok"},
    fileRow{"no end: every line is a name", "BEGIN HEADER\nA\n1 2 \n3 4 \n"s, "fields A|1 2 |3 4   ok"},
    fileRow{"no end, no line end", "BEGIN HEADER\nA"s, "fields A  ok"},
    fileRow{"no markers", "1 2 \n3 4 \n"s, "ok"},
    fileRow{"an empty file", ""s, "ok"},
    fileRow{"the beginning in small letters", "begin header\nA\nEND HEADER\n1 \n"s, "rows 1  ok"},
    fileRow{"the beginning with blanks", "BEGIN HEADER \n BEGIN HEADER\nBEGIN  HEADER\nA\nEND HEADER\n1 \n"s, "rows 1  ok"},
    fileRow{"the end in small letters", "BEGIN HEADER\nA\nend header\nEND HEADER\n1 \n"s, "fields A|end header  rows 1  ok"},
    fileRow{"the end with blanks", "BEGIN HEADER\nA\nEND HEADER \n END HEADER\nEND HEADER\n1 \n"s,
            "fields A|END HEADER | END HEADER  rows 1  ok"},
    fileRow{"a second beginning is a name", "BEGIN HEADER\nA\nBEGIN HEADER\nB\nEND HEADER\n"s, "fields A|BEGIN HEADER|B  ok"},
    fileRow{"CR LF", "BEGIN HEADER\r\nA\r\nEND HEADER\r\n1 \r\n"s, "fields A  rows 1  ok"},
    fileRow{"CR CR LF ends a line too", "BEGIN HEADER\r\r\nA\nEND HEADER\n"s, "fields A  ok"},
    fileRow{"three CRs leave one", "BEGIN HEADER\r\r\r\nA\nEND HEADER\n"s, "ok"},
    fileRow{"the end without a line end", "BEGIN HEADER\nA\nEND HEADER"s, "fields A  ok"},
    fileRow{"the end and an empty line", "BEGIN HEADER\nA\nEND HEADER\n\n"s, "fields A  rows ()  ok"},
    fileRow{"a byte-order mark hides a beginning", "\xEF\xBB\xBF""BEGIN HEADER\nA\nEND HEADER\n"s, "ok"},
    fileRow{"names in Windows-1251", "BEGIN HEADER\n\xCC\xC4\nEND HEADER\n"s, "fields \xD0\x9C\xD0\x94  ok"},
    fileRow{"two fields of one name", "BEGIN HEADER\nA\nA\nEND HEADER\n1 2 \n"s, "fields A|A  rows 1|2  ok"},
};
// clang-format on

TEST_F(petrelReader, headers) {
  for (const fileRow& row : headerRows)
    EXPECT_EQ(readOf(row.bytes), row.expected) << row.name << ", line " << row.line;
}

// ---- table names ---------------------------------------------------------------------------------

struct nameRow {
  const char* name;
  std::string bytes;
  std::wstring expected;
  int line = __builtin_LINE();
};

TEST_F(petrelReader, theListOfTablesIsTheFirstLinesName) {
  for (const nameRow& row : {
           nameRow{"a title",                                                     "# Petrel well tops\n"s,   L"well tops"   },
           nameRow{"CR LF",                                                       "# Petrel well tops\r\n"s, L"well tops"   },
           nameRow{"another first line",                                          "VERSION 1\n"s,            L"petrel"      },
           nameRow{"the marker without its blank",                                "# Petrel\n"s,             L"petrel"      },
           nameRow{"the marker and a TAB",                                        "# Petrel\twell tops\n"s,  L"petrel"      },
           nameRow{"nothing behind the marker",                                   "# Petrel \n"s,            L""            },
           nameRow{"blanks stay",                                                 "# Petrel  tops \n"s,      L" tops "      },
           nameRow{"the marker elsewhere: from the tenth character all the same",
                   "made by # Petrel tops\n"s,                                                               L" Petrel tops"},
           nameRow{"small letters",                                               "# petrel well tops\n"s,   L"petrel"      },
           nameRow{"in the second line",                                          "\n# Petrel well tops\n"s, L"petrel"      },
           nameRow{"no line end",                                                 "# Petrel x"s,             L"x"           },
           nameRow{"an empty file",                                               ""s,                       L"petrel"      },
  })
    EXPECT_EQ(tablesOf(row.bytes), std::vector<std::wstring>{row.expected})
        << row.name << ", line " << row.line;
}

TEST_F(petrelReader, theTablesNameIsDecodedAsTheOptionsSay) {
  EXPECT_EQ(tablesOf("# Petrel \xD0\x96\n", 0), std::vector<std::wstring>{L"\u0416"});
  EXPECT_EQ(tablesOf("# Petrel \xC6\n", 8), std::vector<std::wstring>{L"\u0416"});
  EXPECT_EQ(tablesOf("# Petrel \x86\n", 16), std::vector<std::wstring>{L"\u0416"});
}

TEST_F(petrelReader, theTableIsReadAsWindows1251WhateverTheOptionsSay) {
  for (const std::int32_t encoding : {0, 8, 9, 16, 17, 18}) {
    tableReaderOptions options = optionsFor(header + "\xC6 \n");
    options.encoding = encoding;
    tableReader_petrel reader(options);
    EXPECT_TRUE(reader.read());
    EXPECT_EQ(reader.value(std::size_t{0}, 0), L"\u0416") << encoding;
  }
}

// ---- reads that follow each other ----------------------------------------------------------------

const std::string fiveLines = header + "1 1 \n2 2 \n3 3 \n4 4 \n5 5 \n";

TEST_F(petrelReader, aLimitPersists) {
  tableReader_petrel reader = readerOf(fiveLines);
  EXPECT_TRUE(reader.readDemo(2));
  EXPECT_EQ(describe(reader), "fields A|B  rows 1|1 / 2|2  ok");
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields A|B  rows 1|1 / 2|2  ok");
}

TEST_F(petrelReader, limits) {
  tableReader_petrel reader = readerOf(fiveLines);
  for (const auto& [limit, rows] : std::vector<std::pair<int, std::uint64_t>>{
           {0,           1},
           {1,           1},
           {3,           3},
           {5,           5},
           {6,           5},
           {-1,          5},
           {-2,          5},
           {-2147483647, 5},
           {2147483647,  5}
  }) {
    EXPECT_TRUE(reader.readDemo(limit));
    EXPECT_EQ(reader.count(), rows) << limit;
  }
}

TEST_F(petrelReader, aLimitCountsRowsThatWereReadAroundANul) {
  tableReader_petrel reader = readerOf(header + "1 \n2\0x\n 3 \n4 \n5 \n"s);
  EXPECT_TRUE(reader.readDemo(2));
  EXPECT_EQ(describe(reader), "fields A|B  rows 1 / 2|3  ok");
  EXPECT_TRUE(reader.readDemo(3));
  EXPECT_EQ(describe(reader), "fields A|B  rows 1 / 2|3 / 4  ok");
}

TEST_F(petrelReader, headersOnlyPersistsUntilAPreview) {
  tableReader_petrel reader = readerOf(fiveLines);
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(describe(reader), "fields A|B  ok");
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields A|B  ok");
  EXPECT_TRUE(reader.readDemo(-1));
  EXPECT_EQ(reader.count(), 5u);
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 5u);
}

TEST_F(petrelReader, headersOnlyLeavesTheLimit) {
  tableReader_petrel reader = readerOf(fiveLines);
  EXPECT_TRUE(reader.readDemo(2));
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(reader.count(), 0u);
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 0u);
}

// read() is called through the virtual table, so a derived reader's own read is used.
TEST_F(petrelReader, headersAndPreviewReadThroughTheVirtualRead) {
  class counting : public tableReader_petrel {
   public:
    using tableReader_petrel::tableReader_petrel;
    bool read() override {
      ++reads;
      return false;
    }
    int reads = 0;
  };
  counting reader(optionsFor(fiveLines));
  EXPECT_FALSE(reader.readOnlyHeaders());
  EXPECT_FALSE(reader.readDemo(1));
  EXPECT_EQ(reader.reads, 2);
}

TEST_F(petrelReader, everyReadBeginsAnew) {
  tableReader_petrel reader = readerOf(fiveLines);
  EXPECT_TRUE(reader.read());
  folder_.write(L"tops", "BEGIN HEADER\nC\nEND HEADER\n9 \n");
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields C  rows 9  ok");
}

TEST_F(petrelReader, aFileThatCannotBeOpened) {
  tableReader_petrel reader = readerOf(fiveLines);
  EXPECT_TRUE(reader.read());
  tableReader_petrel missing{tableReaderOptions(folder_.file(L"missing"))};
  EXPECT_FALSE(missing.read());
  EXPECT_FALSE(missing.readDemo(1));
  EXPECT_FALSE(missing.readOnlyHeaders());
  EXPECT_EQ(describe(missing), "failed");
  std::vector<std::wstring> tables = {L"old"};
  missing.tableList(tables);
  EXPECT_TRUE(tables.empty());
  EXPECT_FALSE(missing.isOK());
}

TEST_F(petrelReader, aReadThatFailsLeavesNothingOfTheOneBefore) {
  const std::wstring path = folder_.write(L"gone", fiveLines);
  tableReader_petrel reader{tableReaderOptions(path)};
  EXPECT_TRUE(reader.read());
  ASSERT_TRUE(testSupport::readFile(path).has_value());
  folder_.write(L"gone", "");
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "ok");
}

TEST_F(petrelReader, fieldsHaveNoTypesAndAreText) {
  tableReader_petrel reader = readerOf(fiveLines);
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.fieldType(0), tableRW::fldText);
  EXPECT_EQ(reader.fieldType(L"B"), tableRW::fldText);
  EXPECT_EQ(reader.errorCount(), 0u);
}

TEST_F(petrelReader, cellsBeyondAShortRowAreEmptyText) {
  tableReader_petrel reader = readerOf(header + "1 \n\n1 2 3 \n");
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.value(std::size_t{1}, 0), L"");
  EXPECT_EQ(reader.value(L"B", 1), L"");
  EXPECT_EQ(reader.value(std::size_t{2}, 2), L"")
      << "a value without a field is reached by its row";
  std::vector<std::wstring> column;
  reader.values(L"B", column);
  EXPECT_EQ(column, (std::vector<std::wstring>{L"", L"", L"2"}));
  EXPECT_EQ(reader.searchValue(L"A",
                               {
                                   {1, L"2"}
  }),
            L"1");
}

TEST_F(petrelReader, capabilities) {
  tableReader_petrel reader{tableReaderOptions()};
  const tableRW::capability_options offered = reader.get_capabilities();
  EXPECT_TRUE(offered.offersTables);
  EXPECT_TRUE(offered.offersPreview);
  EXPECT_FALSE(offered.offersTextOptions);
  EXPECT_FALSE(offered.offersPositions);
}

TEST_F(petrelReader, theTablesNameIsIgnored) {
  tableReader_petrel reader = readerOf(fiveLines);
  reader.setTable(L"other");
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 5u);
  EXPECT_TRUE(reader.isSameFile(tableReaderOptions(reader.path())));
}

TEST_F(petrelReader, positionsAndDirectionHaveNoSay) {
  tableReaderOptions options = optionsFor(fiveLines);
  options.header_position = 3;
  options.data_position = 9;
  options.direction = 1;
  options.delimiter = L",";
  options.quote = L"'";
  tableReader_petrel reader(options);
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 5u);
}

TEST_F(petrelReader, isChosenByFirstLineAndByNumber) {
  tableReaderOptions options = optionsFor(fiveLines);
  testSupport::ownedReader byLine = testSupport::openReader(options);
  EXPECT_TRUE(byLine->readDemo(1));
  EXPECT_EQ(describe(*byLine), "fields A|B  rows 1|1  ok");
  options.path = folder_.write(L"tops.csv", "BEGIN HEADER\nA\nEND HEADER\n1 \n");
  options.file_type = tableRW::fileTypePetrel;
  testSupport::ownedReader byNumber = testSupport::openReader(options);
  EXPECT_TRUE(byNumber->read());
  EXPECT_EQ(describe(*byNumber), "fields A  rows 1  ok");
}

}  // namespace

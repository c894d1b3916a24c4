// .xlsx workbooks as text: what becomes of every kind of cell, and what is refused.
#include <gtest/gtest.h>

#include "tests/support/conversion.h"
#include "tests/support/workbookBuilders.h"

namespace {

using namespace std::string_literals;
using testSupport::conversion;
using testSupport::xlsxBuilder;
using testSupport::zipMembers;
using testSupport::zipOf;

std::string manyNamespaces() {
  std::string declarations;
  for (int i = 0; i < 100; ++i) {
    const std::string number = std::to_string(i);
    declarations += " xmlns:p" + number + "='u" + number + "'";
  }
  return declarations;
}

struct sheetRow {
  const char* name;
  std::string rows;  // in sheetData
  const char* expected;
  int line = __builtin_LINE();
};

// WHY: version 14 crashes on this table and the other one.
// clang-format off
const sheetRow sheetRows[] = {
    sheetRow{"numbers", "<row><c><v>1</v></c><c><v>-2.50</v></c><c><v>1E3</v></c><c><v>12345.678900000001</v></c></row>",
             "1$-2.5$1000$12345.6789\n"},
    sheetRow{"blanks around a number", "<row><c><v> 7\n</v></c></row>", "7\n"},
    sheetRow{"no number at all", "<row><c><v>abc$</v></c></row>", "abc\xEF\xBC\x84\n"},
    sheetRow{"shared strings", "<row><c t='s'><v>1</v></c><c t='s'><v>0</v></c></row>", "rich text$first\n"},
    sheetRow{"phonetic guides are left out", "<row><c t='s'><v>2</v></c></row>", "\xE6\xBC\xA2\n"},
    sheetRow{"an empty shared string", "<row><c t='s'><v>3</v></c><c><v>1</v></c></row>", "$1\n"},
    sheetRow{"inline text", "<row><c t='inlineStr'><is><r><t>a</t></r><r><t> b</t></r></is></c></row>", "a b\n"},
    sheetRow{"inline text as a value", "<row><c t='inlineStr'><v>a</v></c></row>", "a\n"},
    sheetRow{"text of a formula", "<row><c t='str'><f>A2</f><v>a</v></c></row>", "a\n"},
    sheetRow{"CDATA", "<row><c t='str'><v><![CDATA[a<b]]></v></c></row>", "a<b\n"},
    sheetRow{"a formula without a value", "<row><c><f>A2</f></c><c><v>1</v></c></row>", "$1\n"},
    sheetRow{"booleans", "<row><c t='b'><v>1</v></c><c t='b'><v>0</v></c><c t='b'><v>true</v></c></row>",
             "TRUE$FALSE$TRUE\n"},
    sheetRow{"other booleans", "<row><c t='b'><v>false</v></c><c t='b'><v>2$</v></c><c t='b'><v> </v></c></row>",
             "FALSE$2\xEF\xBC\x84\n"},
    sheetRow{"inline text of nothing", "<row><c t='inlineStr'><is><t></t></is></c><c><v>1</v></c><c><is><t/></is></c></row>",
             "$1\n"},
    sheetRow{"errors", "<row><c t='e'><v>#DIV/0!</v></c><c t='e'><v>#N/A</v></c></row>", "#DIV/0!$#N/A\n"},
    sheetRow{"an ISO date", "<row><c t='d'><v>2014-02-14T08:27:48Z</v></c></row>", "2014-02-14T08:27:48Z\n"},
    sheetRow{"dates by their style",
             "<row><c s='1'><v>41684</v></c><c s='2'><v>41684.5</v></c><c s='3'><v>0.25</v></c><c s='0'><v>1</v></c></row>",
             "2014-02-14$2014-02-14T12:00:00$06:00:00$1\n"},
    sheetRow{"a style that does not exist", "<row><c s='99'><v>41684</v></c><c s=''><v>2</v></c></row>", "41684$2\n"},
    sheetRow{"line breaks, tabs, delimiters",
             "<row><c t='str'><v>a&#10;b&#13;&#10;c&#9;d$e</v></c></row>", "a b c d\xEF\xBC\x84" "e\n"},
    sheetRow{"escapes", "<row><c t='str'><v>a_x000D__x000A_b_x005F_x0041__x0041_</v></c></row>", "a b_x0041_A\n"},
    sheetRow{"escapes of a pair and of its half", "<row><c t='str'><v>_xD83D__xDE00__xD83D_</v></c></row>",
             "\xF0\x9F\x98\x80\xEF\xBF\xBD\n"},
    sheetRow{"an escape of a pair's other half", "<row><c t='str'><v>_xDE00_a_xE000_</v></c></row>",
             "\xEF\xBF\xBD" "a\xEE\x80\x80\n"},
    sheetRow{"what only looks like an escape", "<row><c t='str'><v>_xZZZZ_ _x41_ _x0041 _x0041</v></c></row>",
             "_xZZZZ_ _x41_ _x0041 _x0041\n"},
    sheetRow{"what would end the file", "<row><c t='str'><v>a_x0000_b_x001A_c_x00ZZ_</v></c></row>",
             "a\xEF\xBF\xBD" "b\xEF\xBF\xBD" "c_x00ZZ_\n"},
    sheetRow{"empty rows and cells", "<row r='2'><c r='B2'><v>1</v></c></row><row r='4'><c r='A4'><v>2</v></c></row>",
             "$\n$1\n$\n2$\n"},
    sheetRow{"no references", "<row><c/><c><v>1</v></c></row><row/><row><c><v>2</v></c></row>", "$1\n$\n2$\n"},
    sheetRow{"references go on", "<row r='2'><c r='C2'><v>1</v></c><c><v>2</v></c></row><row><c><v>3</v></c></row>",
             "$$$\n$$1$2\n3$$$\n"},
    sheetRow{"small letters", "<row><c r='b1'><v>1</v></c></row>", "$1\n"},
    sheetRow{"cells from right to left", "<row><c r='B1'><v>2</v></c><c r='A1'><v>1</v></c></row>", "1$2\n"},
    sheetRow{"rows from below", "<row r='2'><c><v>2</v></c></row><row r='1'><c><v>1</v></c></row>", "1\n2\n"},
    sheetRow{"a cell that comes twice", "<row r='1'><c r='A1'><v>1</v></c><c r='A1'><v>2</v></c></row>", "2\n"},
    sheetRow{"the widest line comes last", "<row><c><v>1</v></c></row><row><c/><c/><c><v>2</v></c></row>", "1$$\n$$2\n"},
    sheetRow{"formatted cells without a value are not used",
             "<row><c><v>1</v></c><c s='1'/></row><row><c s='1'/></row>", "1\n"},
    sheetRow{"an empty sheet", "", ""},
    sheetRow{"alternate content", "<mc:AlternateContent xmlns:mc='m'><mc:Choice><row><c><v>1</v></c></row></mc:Choice>"
             "<mc:Fallback><row><c><v>2</v></c></row></mc:Fallback></mc:AlternateContent>", "2\n"},
    sheetRow{"more namespaces than anybody needs",
             "<row" + manyNamespaces() + "><c><v>1</v></c><p0:c><p0:v>2</p0:v></p0:c><c><v>3</v></c></row>", "1$3\n"},
    sheetRow{"what stands in an extension of a cell",
             "<row><c><v>2</v><extLst><ext><v>77</v><is><t>x</t></is><c><v>7</v></c></ext></extLst></c><c><v>3</v></c></row>",
             "2$3\n"},
    sheetRow{"in that of inline text",
             "<row><c t='inlineStr'><is><t>a</t><extLst><ext><t>x</t></ext></extLst></is></c></row>", "a\n"},
    sheetRow{"in that of a row, and of all rows",
             "<row><c><v>1</v></c><extLst><ext><c><v>7</v></c></ext></extLst></row>"
             "<extLst><ext><row><c><v>8</v></c></row></ext></extLst><row><c><v>2</v></c></row>", "1\n2\n"},
    sheetRow{"in that of a shared string", "<row><c t='s'><v>4</v></c></row>", "b\n"},
    sheetRow{"the last column", "<row><c r='XFD1'><v>1</v></c></row>", nullptr},
    sheetRow{"a row that is none", "<row r='0'><c><v>1</v></c></row>", "problem: the sheet is damaged: it has a row 0"},
    sheetRow{"a row behind the last", "<row r='1048577'><c><v>1</v></c></row>",
             "problem: the sheet is damaged: it has a row 1048577"},
    sheetRow{"a column behind the last", "<row><c r='XFE1'><v>1</v></c></row>",
             "problem: the sheet is damaged: it has a cell XFE1"},
    sheetRow{"an absurd reference", "<row><c r='ZZZZZZ99999999'><v>1</v></c></row>",
             "problem: the sheet is damaged: it has a cell ZZZZZZ99999999"},
    sheetRow{"a reference of too many digits", "<row><c r='A10000001'><v>1</v></c></row>",
             "problem: the sheet is damaged: it has a cell A10000001"},
    sheetRow{"a reference that goes on", "<row><c r='A1x'><v>1</v></c></row>",
             "problem: the sheet is damaged: it has a cell A1x"},
    sheetRow{"a shared string that does not exist", "<row r='7'><c r='AB7' t='s'><v>5</v></c></row>",
             "problem: the sheet is damaged: cell AB7 refers to shared string 5 of 5"},
    sheetRow{"a shared string of no number", "<row><c t='s'><v>-1</v></c></row>",
             "problem: the sheet is damaged: cell A1 refers to shared string -1 of 5"},
    sheetRow{"one cell in the last corner", "<row r='1048576'><c r='XFD1048576'><v>1</v></c></row>",
             "problem: the sheet has 1048576 rows and 16384 columns, but only 1 cells with a value: it is no table"},
    sheetRow{"cells in the first and the last corner",
             "<row><c r='A1'><v>1</v></c><c r='XFD1'><v>1</v></c></row><row r='1048576'><c r='A1048576'><v>1</v></c></row>",
             "problem: the sheet has 1048576 rows and 16384 columns, but only 3 cells with a value: it is no table"},
};
// clang-format on

xlsxBuilder bookWith(const std::string& rows, const std::string& behind = {}) {
  xlsxBuilder book;
  book.worksheet = "<sheetData>" + rows + "</sheetData>" + behind;
  book.sharedStrings =
      "<si><t>first</t></si><si><r><t>rich</t></r><r><t xml:space='preserve'> text</t></r></si>"
      "<si><t>\xE6\xBC\xA2</t><rPh sb='0' eb='1'><t>kan</t></rPh><phoneticPr/></si><si/>"
      "<si><t>b</t><extLst><ext><t>x</t></ext></extLst></si>";
  book.formats = "<numFmt numFmtId='164' formatCode='dd.mm.yyyy\\ hh:mm'/>";
  book.styles = "<xf numFmtId='0'/><xf numFmtId='14'/><xf numFmtId='164'/><xf numFmtId='20'/>";
  return book;
}

TEST(xlsx, cells) {
  for (const sheetRow& row : sheetRows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    const std::string expected =
        row.expected != nullptr ? row.expected : std::string(16383, '$') + "1\n";
    EXPECT_EQ(conversion().run(bookWith(row.rows).bytes()), expected);
  }
}

TEST(xlsx, dates1904) {
  xlsxBuilder book = bookWith("<row><c s='1'><v>0</v></c><c s='1'><v>40222</v></c></row>");
  for (const char* const properties : {"date1904='1'", "date1904='true'", "date1904='on'"}) {
    book.properties = properties;
    EXPECT_EQ(conversion().run(book.bytes()), "1904-01-01$2014-02-14\n") << properties;
  }
  for (const char* const properties : {"", "date1904='0'", "date1904='false'"}) {
    book.properties = properties;
    EXPECT_EQ(conversion().run(book.bytes()), "1900-01-00$2010-02-13\n") << properties;
  }
}

TEST(xlsx, timesBetweenColons) {
  conversion converting;
  converting.request.delimiter = ':';
  const std::string colon = "\xEF\xBC\x9A";
  EXPECT_EQ(converting.run(
                bookWith("<row><c s='3'><v>0.25</v></c><c s='1'><v>41684</v></c></row>").bytes()),
            "06" + colon + "00" + colon + "00:2014-02-14\n");
}

TEST(xlsx, formatsWithSections) {
  xlsxBuilder book = bookWith(
      "<row><c s='4'><v>45000.75</v></c><c s='4'><v>.75</v></c><c s='5'><v>5.0</v></c>"
      "<c s='5'><v>45000</v></c><c s='5'><v>x</v></c></row>");
  book.formats +=
      "<numFmt numFmtId='165' formatCode='[&lt;1]h:mm;dd.mm.yyyy'/>"
      "<numFmt numFmtId='166' formatCode='[&gt;=100]dd.mm.yyyy;0.0'/>";
  book.styles += "<xf numFmtId='165'/><xf numFmtId='166'/>";
  EXPECT_EQ(conversion().run(book.bytes()), "2023-03-15$18:00:00$5$2023-03-15$x\n");
}

// Conditional formats define theirs anew, and number them as they like.
TEST(xlsx, numberFormatsOfConditionalFormatsAreOthers) {
  zipMembers members = bookWith("<row><c s='2'><v>41684.5</v></c></row>").members();
  const std::string end = "</cellXfs>";
  for (auto& [name, bytes] : members)
    if (name == "xl/styles.xml")
      bytes.replace(bytes.find(end), end.size(),
                    end + "<dxfs><dxf><numFmt numFmtId='164' formatCode='0.00'/></dxf></dxfs>");
  EXPECT_EQ(conversion().run(zipOf(members)), "2014-02-14T12:00:00\n");
}

// --- merged cells ---

const std::string merged =
    "<mergeCells><mergeCell ref='A1:B2'/><mergeCell ref='D4:C3'/></mergeCells>";

TEST(xlsx, mergedCellsAreCopied) {
  conversion copying;
  copying.request.copyMerged = true;
  const std::string rows =
      "<row><c><v>1</v></c><c><v>9</v></c></row><row r='3'><c r='A3'><v>2</v></c><c "
      "r='C3'><v>3</v></c></row>";
  EXPECT_EQ(copying.run(bookWith(rows, merged).bytes()), "1$1$$\n1$1$$\n2$$3$3\n$$3$3\n");
}

TEST(xlsx, withoutTheSwitchTheFirstCellAloneHasTheValue) {
  EXPECT_EQ(conversion().run(bookWith("<row><c><v>1</v></c></row>", merged).bytes()), "1\n");
}

TEST(xlsx, mergedCellsWithoutAValueAreNotUsed) {
  conversion copying;
  copying.request.copyMerged = true;
  EXPECT_EQ(copying.run(bookWith("<row r='3'><c><v>1</v></c></row>", merged).bytes()), "\n\n1\n");
}

TEST(xlsx, ofOverlappingRangesTheFirstCounts) {
  conversion copying;
  copying.request.copyMerged = true;
  const std::string ranges =
      "<mergeCells><mergeCell ref='B1:C2'/><mergeCell ref='A1:B3'/><mergeCell "
      "ref='A9'/><mergeCell/><mergeCell ref='A1:B'/><mergeCell ref='1:B9'/></mergeCells>";
  EXPECT_EQ(copying.run(bookWith("<row><c><v>1</v></c><c><v>2</v></c></row>", ranges).bytes()),
            "1$1$\n1$1$\n1$1$\n");
}

TEST(xlsx, mergedCellsOfAnExtensionAreNone) {
  conversion copying;
  copying.request.copyMerged = true;
  const std::string ranges =
      "<extLst><ext><mergeCells><mergeCell ref='A1:B2'/></mergeCells></ext></extLst>";
  EXPECT_EQ(copying.run(bookWith("<row><c><v>1</v></c></row>", ranges).bytes()), "1\n");
}

TEST(xlsx, aMergedSheetIsNoTable) {
  conversion copying;
  copying.request.copyMerged = true;
  const std::string ranges = "<mergeCells><mergeCell ref='A1:XFD1048576'/></mergeCells>";
  EXPECT_EQ(copying.run(bookWith("<row><c><v>1</v></c></row>", ranges).bytes()).substr(0, 37),
            "problem: the sheet has 1048576 rows a");
}

// --- the header row alone ---

TEST(xlsx, headerRow) {
  const std::string rows =
      "<row><c><v>1</v></c></row><row><c><v>2</v></c></row><row><c/><c/><c><v>3</v></c></row>";
  const std::pair<std::int32_t, const char*> cases[] = {
      {-5,         "1$$\n"},
      {-1,         "1$$\n"},
      {0,          "1$$\n"},
      {1,          "2$$\n"},
      {2,          "$$3\n"},
      {3,          ""     },
      {2147483647, ""     }
  };
  for (const auto& [position, expected] : cases) {
    conversion heading;
    heading.request.headerPosition = position;
    EXPECT_EQ(heading.run(bookWith(rows).bytes()), expected) << position;
  }
}

TEST(xlsx, headerRowOfMergedCells) {
  conversion heading;
  heading.request.headerPosition = 1;
  heading.request.copyMerged = true;
  EXPECT_EQ(heading.run(bookWith("<row><c><v>1</v></c></row>", merged).bytes()), "1$1\n");
}

// --- packages ---

// The members of a workbook, one of them changed.
zipMembers changed(const std::string& name, const std::string& from, const std::string& to) {
  zipMembers members = bookWith("<row><c t='s'><v>0</v></c></row>").members();
  for (auto& [member, bytes] : members)
    if (member == name) bytes.replace(bytes.find(from), from.size(), to);
  return members;
}

TEST(xlsx, strictNamespacesAndPrefixes) {
  zipMembers members =
      changed("xl/_rels/workbook.xml.rels", "worksheets/sheet1", "/xl/worksheets/sheet1");
  for (auto& [member, bytes] : members) {
    if (member != "xl/worksheets/sheet1.xml") continue;
    bytes =
        "<x:worksheet xmlns:x='http://purl.oclc.org/ooxml/spreadsheetml/main'><x:sheetData><x:row>"
        "<x:c t='s'><x:v>0</x:v></x:c></x:row></x:sheetData></x:worksheet>";
  }
  EXPECT_EQ(conversion().run(zipOf(members)), "first\n");
}

struct namespaceRow {
  const char* name;
  const char* root;
  const char* rows;
  const char* expected;
  int line = __builtin_LINE();
};

// WHY: it would set the columns of this table hundreds of characters apart.
// clang-format off
const namespaceRow namespaceRows[] = {
    {"a value by a prefix", "<worksheet xmlns='m'>",
     "<row><c><y:v xmlns:y='y'>7</y:v><v>2</v></c><c><v>3</v></c></row>", "2$3\n"},
    {"a value by a prefix of the root", "<worksheet xmlns='m' xmlns:y='y'>",
     "<row><c><v>2</v><y:v>7</y:v></c></row>", "2\n"},
    {"a value by another default", "<worksheet xmlns='m'>", "<row><c><v xmlns='y'>7</v><v>2</v></c></row>", "2\n"},
    {"a row by another default", "<worksheet xmlns='m'>",
     "<row xmlns=\"y\"><c><v>7</v></c></row><row><c><v>2</v></c></row>", "2\n"},
    {"what stands in it", "<worksheet xmlns='m'>",
     "<y:x xmlns:y='y'><row><c><v>7</v></c></row></y:x><row><c><v>2</v></c></row>", "2\n"},
    {"the same namespace by a prefix", "<worksheet xmlns='m' xmlns:x='m'>", "<row><x:c><x:v>2</x:v></x:c></row>", "2\n"},
    {"the same by a prefix that was another's", "<worksheet xmlns='m' xmlns:x='y'>",
     "<row><x:c xmlns:x='m'><x:v>2</x:v></x:c><c><x:v>7</x:v><v>3</v></c></row>", "2$3\n"},
    {"no namespace within one", "<worksheet xmlns='m'>", "<row xmlns=''><c><v>2</v></c></row>", "2\n"},
    {"a prefix that is not declared", "<worksheet xmlns='m'>", "<row><c><y:v>2</y:v></c></row>", "2\n"},
    {"a root without a namespace", "<worksheet>", "<row><c><y:v xmlns:y='y'>2</y:v></c></row>", "2\n"},
    {"a name that begins like a declaration", "<worksheet xmlns='m' xmlnsy='y'>",
     "<row><c><v>2</v></c></row>", "2\n"},
    {"alternate content", "<worksheet xmlns='m' xmlns:mc='mc'>",
     "<mc:AlternateContent><mc:Choice><row><c><v>7</v></c></row></mc:Choice>"
     "<mc:Fallback><row><c><v>2</v></c></row></mc:Fallback></mc:AlternateContent>", "2\n"},
};
// clang-format on

TEST(xlsx, elementsOfOtherNamespacesAreLeftOut) {
  for (const namespaceRow& row : namespaceRows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    zipMembers members = bookWith("").members();
    for (auto& [member, bytes] : members)
      if (member == "xl/worksheets/sheet1.xml")
        bytes = row.root + "<sheetData>"s + row.rows + "</sheetData></worksheet>";
    EXPECT_EQ(conversion().run(zipOf(members)), row.expected);
  }
}

TEST(xlsx, namespacesBehindTheFirstManyCountAsTheRoots) {
  std::string rows;
  for (int i = 0; i < 70; ++i) rows += " xmlns:y" + std::to_string(i) + "='y'";
  rows = "<row" + rows + "><c><y9:v>7</y9:v><y69:v>2</y69:v></c></row>";
  zipMembers members = bookWith("").members();
  for (auto& [member, bytes] : members)
    if (member == "xl/worksheets/sheet1.xml")
      bytes = "<worksheet xmlns='m'><sheetData>" + rows + "</sheetData></worksheet>";
  EXPECT_EQ(conversion().run(zipOf(members)), "2\n");
}

TEST(xlsx, targetsWithTheOtherSeparator) {
  EXPECT_EQ(conversion().run(zipOf(changed("xl/_rels/workbook.xml.rels", "worksheets/sheet1",
                                           "\\xl\\worksheets\\sheet1"))),
            "first\n");
}

TEST(xlsx, otherPartsOfThePackage) {
  EXPECT_EQ(
      conversion().run(zipOf(changed(
          "_rels/.rels", "</Relationships>",
          "<Relationship Id='r2' Type='t/core-properties' Target='core.xml'/></Relationships>"))),
      "first\n");
}

TEST(xlsx, partsWithALineForEachElement) {
  zipMembers members = bookWith("<row><c t='s'><v>0</v></c><c t='s'><v>1</v></c></row>").members();
  for (auto& [member, bytes] : members)
    for (std::size_t at = bytes.find("><"); at != std::string::npos; at = bytes.find("><", at))
      bytes.insert(at + 1, "\n ");
  EXPECT_EQ(conversion().run(zipOf(members)), "first$rich text\n");
}

TEST(xlsx, targetsOutsideThePackage) {
  const std::string part = "xl/_rels/workbook.xml.rels";
  const std::string target = "Target=\"worksheets/sheet1.xml\"";
  EXPECT_EQ(conversion().run(zipOf(changed(part, target, target + " TargetMode=\"Internal\""))),
            "first\n");
  EXPECT_EQ(conversion().run(zipOf(changed(part, target, target + " TargetMode=\"External\""))),
            "problem: the workbook is damaged: the sheet's part is not in it");
  EXPECT_EQ(conversion().run(zipOf(changed(part, target, ""))),
            "problem: the workbook is damaged: the sheet's part xl is missing");
}

TEST(xlsx, partsInUtf16) {
  zipMembers members = changed("_rels/.rels", "r1", "r1");
  for (auto& [member, bytes] : members) {
    if (member != "xl/worksheets/sheet1.xml") continue;
    std::string units = "\xFF\xFE";
    for (const char c : bytes) units += std::string{c, '\0'};
    bytes = units;
  }
  EXPECT_EQ(conversion().run(zipOf(members)), "first\n");
}

TEST(xlsx, namesOfPartsInOtherLetters) {
  zipMembers members = changed("_rels/.rels", "xl/workbook.xml", "./xl/sub/../workbook.xml");
  for (auto& [member, bytes] : members) {
    if (member == "xl/worksheets/sheet1.xml") member = "XL\\Worksheets\\Sheet1.XML";
  }
  EXPECT_EQ(conversion().run(zipOf(members)), "first\n");
}

TEST(xlsx, storedMembersAndDuplicates) {
  zipMembers members = changed("_rels/.rels", "r1", "r1");
  members.insert(members.begin(), {"xl/worksheets/sheet1.xml", "<worksheet/>"});
  members.emplace_back("../../outside.xml", "x");
  members.emplace_back("nested.xlsx", zipOf(members));
  EXPECT_EQ(conversion().run(zipOf(members, false)), "first\n");
}

// Names are compared, never used as paths; an archive within the archive is bytes of a member like any.
TEST(xlsx, namesThatLeadOutAndArchivesWithin) {
  zipMembers members = changed("xl/_rels/workbook.xml.rels", "worksheets/sheet1.xml",
                               "../../../xl/drawings/../worksheets/./sheet1.xml");
  members.insert(members.begin(), {"../../source.csv", "stolen"});
  members.emplace_back("xl/embeddings/../../out/source.csv", "stolen");
  members.emplace_back("xl/embeddings/package.zip", zipOf(members));
  EXPECT_EQ(conversion().run(zipOf(members)), "first\n");
  EXPECT_EQ(conversion().run(zipOf({
                {"a.xlsx", zipOf(members)}
  })),
            "problem: the ZIP archive holds no Excel workbook");
}

struct refusalRow {
  const char* name;
  zipMembers members;
  const char* expected;
  int line = __builtin_LINE();
};

TEST(xlsx, refusals) {
  const std::string sheetPart = "xl/worksheets/sheet1.xml";
  zipMembers doctype = changed(sheetPart, "<v>0</v>", "<v>&b;</v>");
  for (auto& [name, bytes] : doctype)
    if (name == sheetPart) bytes.insert(0, "<!DOCTYPE worksheet SYSTEM 'sheet.dtd'>");
  // clang-format off
  const refusalRow rows[] = {
      refusalRow{"no workbook", {{"a.txt", "a"}}, "problem: the ZIP archive holds no Excel workbook"},
      refusalRow{"a binary workbook", changed("_rels/.rels", "workbook.xml", "workbook.bin"),
                 "problem: the workbook is of the binary kind .xlsb, which is not read: save it as .xlsx"},
      refusalRow{"a sheet's part is missing", changed("xl/_rels/workbook.xml.rels", "sheet1", "sheet2"),
                 "problem: the workbook is damaged: the sheet's part xl/worksheets/sheet2.xml is missing"},
      refusalRow{"broken XML", changed(sheetPart, "</row>", ""),
                 "problem: an XML part is damaged: mismatched tag in line 1"},
      refusalRow{"declared entities",
                 changed(sheetPart, "<worksheet", "<!DOCTYPE w [<!ENTITY a 'b'>]><worksheet"),
                 "problem: an XML part is refused: it declares entities"},
      refusalRow{"entities of another file",
                 changed(sheetPart, "<sheetData>", "&b;"), "problem: an XML part is damaged: undefined entity in line 1"},
      refusalRow{"entities of a document type elsewhere",
                 doctype,
                 "problem: an XML part is refused: it refers to an entity outside the package"},
      refusalRow{"nesting without end", changed(sheetPart, "<sheetData>", []() {
                   std::string deep;
                   for (int i = 0; i < 300; ++i) deep += "<a>";
                   return deep;
                 }()), "problem: an XML part is refused: elements are nested too deeply"},
      refusalRow{"an item without end", changed(sheetPart, "<sheetData>", "<!--" + std::string(40u << 20, 'x') + "-->"),
                 "problem: an XML part is refused: a single item of it is longer than 16 MiB"},
  };
  // clang-format on
  for (const refusalRow& row : rows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    EXPECT_EQ(conversion().run(zipOf(row.members)), row.expected);
  }
}

TEST(xlsx, aProblemIsShort) {
  std::string name;
  for (int i = 0; i < 50000; ++i) name += "\xC3\xA9";
  for (const std::string& text : {name, "x" + name}) {  // of one of them a character would be cut
    conversion named;
    const std::string answer =
        named.run(zipOf(changed("xl/worksheets/sheet1.xml", "<v>0</v>", "<v>" + text + "</v>")));
    EXPECT_TRUE(
        answer.starts_with("problem: the sheet is damaged: cell A1 refers to shared string"));
    EXPECT_TRUE(answer.ends_with("\xC3\xA9...")) << answer;
    EXPECT_LT(answer.size(), 420u);
  }
}

// A part of a few hundred bytes can hold millions of these.
TEST(xlsx, partsThatAreNoWorkbooks) {
  const auto times = [](std::size_t count, const std::string& item) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) all += item;
    return all;
  };
  const std::string longText((16u << 20) + 1, 'x');
  const std::string longTextProblem =
      "problem: the workbook is refused: it has a text longer than 16 MiB";
  const std::string sheetPart = "xl/worksheets/sheet1.xml";
  const std::string stringsPart = "xl/sharedStrings.xml";
  // clang-format off
  const refusalRow rows[] = {
      refusalRow{"sheets", changed("xl/workbook.xml", "<sheets>", "<sheets>" + times(65537, "<sheet/>")),
                 "problem: the workbook is refused: it has too many sheets"},
      refusalRow{"relationships",
                 changed("_rels/.rels", "<Relationship ", times(65537, "<Relationship/>") + "<Relationship "),
                 "problem: the workbook is refused: it has too many relationships"},
      refusalRow{"styles", changed("xl/styles.xml", "<cellXfs>", "<cellXfs>" + times(1048577, "<xf/>")),
                 "problem: the workbook is refused: it has too many cell styles"},
      refusalRow{"shared strings", changed(stringsPart, "<si>", times((4u << 20) + 1, "<si/>") + "<si>"),
                 "problem: the workbook is refused: it has too many shared strings"},
      refusalRow{"a shared text", changed(stringsPart, "first", longText), longTextProblem.c_str()},
      refusalRow{"a shared text that is still going on", changed(stringsPart, "first", longText + longText),
                 longTextProblem.c_str()},
      refusalRow{"a value", changed(sheetPart, "<v>0</v>", "<v>" + longText + "</v>"), longTextProblem.c_str()},
      refusalRow{"an inline text", changed(sheetPart, "<v>0</v>", "<is><t>" + longText + "</t></is>"),
                 longTextProblem.c_str()},
  };
  // clang-format on
  for (const refusalRow& row : rows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    EXPECT_EQ(conversion().run(zipOf(row.members)), row.expected);
  }
}

// --- sheets ---

const zipMembers& threeSheets() {
  static const zipMembers members = [] {
    zipMembers all = changed(
        "xl/workbook.xml", "<sheets>",
        "<sheets><sheet name='chart' r:id='r9'/><sheet name='hidden' state='hidden' r:id='r8'/>"
        "<sheet name='a$&quot;b' state='veryHidden' r:id='r8'/>");
    for (auto& [name, bytes] : all)
      if (name == "xl/_rels/workbook.xml.rels")
        bytes.insert(bytes.find("<Relationship "),
                     "<Relationship Id='r9' Type='t/chartsheet' Target='c.xml'/>"
                     "<Relationship Id='r8' Type='t/worksheet' Target='hidden.xml'/>");
    all.emplace_back("xl/hidden.xml",
                     "<worksheet><sheetData><row><c><v>8</v></c></row></sheetData></worksheet>");
    return all;
  }();
  return members;
}

TEST(xlsx, listOfSheets) {
  conversion listing;
  listing.request.listsTables = true;
  EXPECT_EQ(listing.run(zipOf(threeSheets())), "hidden$a\xEF\xBC\x84\"b$S\n");
}

TEST(xlsx, theFirstVisibleSheetIsTheDefault) {
  EXPECT_EQ(conversion().run(zipOf(threeSheets())), "first\n");
}

TEST(xlsx, sheetsByName) {
  const std::pair<const wchar_t*, const char*> cases[] = {
      {L"S",          "first\n"                                                            },
      {L"hidden",     "8\n"                                                                },
      {L"a$\"b",      "8\n"                                                                },
      {L"a\uFF04\"b", "8\n"                                                                },
      {L"a\uFF04"
       L"b",   "8\n"                                                                },
      {L"s",          "problem: the workbook has no sheet \"s\""                           },
      {L"",           "problem: the workbook has no sheet \"\""                            },
      {L"chart",      "problem: the sheet \"chart\" has no cells: it is a chart or a macro"},
  };
  for (const auto& [name, expected] : cases) {
    conversion named;
    named.request.table = name;
    EXPECT_EQ(named.run(zipOf(threeSheets())), expected);
  }
}

}  // namespace

// The XLSX writer, judged by the package on the disk. Every test has a folder of its own for the variable TEMP,
// and finds it empty at its end.
#include "table_rw/writers/tableWriter_xls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "platform/environment.h"
#include "platform/files.h"
#include "table_rw/writers/tableWriter.h"
#include "tests/support/environmentSetter.h"
#include "tests/support/failingAllocations.h"
#include "tests/support/localeSetter.h"
#include "tests/support/tableText.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"
#include "tests/support/workbookContent.h"

namespace {

using tableRW::tableWriter;
using tableRW::tableWriter_xls;
using tableRW::tableWriterOptions;
using testSupport::allBetween;
using testSupport::cellsOf;
using testSupport::countOf;
using testSupport::environmentSetter;
using testSupport::readPackage;
using testSupport::temporaryFolder;
using testSupport::textRow;
using testSupport::zipContent;

static_assert(std::is_base_of_v<tableWriter, tableWriter_xls>);
static_assert(std::is_copy_constructible_v<tableWriter_xls>);
static_assert(std::is_copy_assignable_v<tableWriter_xls>);

constexpr const char* sheetPart = "xl/worksheets/sheet1.xml";
constexpr const char* stringsPart = "xl/sharedStrings.xml";
constexpr const char* fixedParts =
    "[Content_Types].xml _rels/.rels docProps/core.xml docProps/app.xml xl/workbook.xml "
    "xl/styles.xml "
    "xl/_rels/workbook.xml.rels xl/theme/theme1.xml";

class tableWriterXls : public testing::Test {
 protected:
  tableWriterXls() { std::filesystem::create_directory(temp()); }
  ~tableWriterXls() override {
    EXPECT_TRUE(temporaryEntries().empty()) << "a temporary folder was left behind";
  }

  std::filesystem::path temp() const { return std::filesystem::path(folder_.file(L"temp")); }

  std::vector<std::filesystem::path> temporaryEntries() const {
    std::vector<std::filesystem::path> entries;
    for (const auto& entry : std::filesystem::directory_iterator(temp()))
      entries.push_back(entry.path());
    return entries;
  }

  tableWriterOptions options(const textRow& names, const std::wstring& name = L"out.xlsx") const {
    tableWriterOptions options;
    options.fileName = folder_.file(name);
    for (const std::wstring& each : names) options.fields.push_back({each});
    return options;
  }

  // Writes a table and takes its package apart.
  zipContent written(const textRow& names, const std::vector<textRow>& rows,
                     const std::wstring& name = L"out.xlsx") const {
    tableWriter* const writer = tableWriter::open(options(names, name));
    EXPECT_NE(dynamic_cast<tableWriter_xls*>(writer), nullptr);
    for (const textRow& row : rows) EXPECT_TRUE(writer->addRow(row));
    tableWriter::close(writer);
    return readPackage(folder_.file(name));
  }

  temporaryFolder folder_;
  environmentSetter temp_{L"TEMP", folder_.file(L"temp")};
  std::size_t leftBehind_ = 0;
};

// ---- cells --------------------------------------------------------------------------------------

struct row {
  const char* name;
  std::wstring value;
  const char* cell;
  int line = __builtin_LINE();
};

const row rows[] = {
    row{"plain text",                                        L"abc",                  "abc"                        },
    row{"an empty value",                                    L"",                     ""                           },
    row{"first ampersand and blank",                         L"a & b & c",            "a&#160;&amp; b & c"         },
    row{"less than",                                         L"1<2",                  "1&lt;2"                     },
    row{"second less than stays",                            L"1<2<3",                "1&lt;2<3"                   },
    row{"greater than",                                      L"1>2>3",                "1&gt;2>3"                   },
    row{"one blank",                                         L"a b",                  "a&#160;b"                   },
    row{"two blanks",                                        L"a b c",                "a&#160;b c"                 },
    row{"one quotation mark",                                L"9\"",                  "9&quot; "                   },
    row{"two quotation marks",                               L"say\"x\"",             "say&quot; x\""              },
    row{"the blank behind a quotation mark is not replaced", L"\"",                   "&quot; "                    },
    row{"a quotation mark and a blank",                      L"a\"b c",               "a&quot; b&#160;c"           },
    row{"all five",                                          L"\" <>&",               "&quot; &#160;&lt;&gt;&amp;" },
    row{"an entity is text",                                 L"&lt;",                 "&amp;lt;"                   },
    row{"apostrophe, tab",                                   L"it's\tso",             "it's\tso"                   },
    row{"blanks of other kinds stay",
        L"a\xA0"
        L"b\x2003"
        L"c d",                                                                       "a\xC2\xA0"
        "b\xE2\x80\x83"
        "c&#160;d"                                                                                  },
    row{"Cyrillic",                                          L"\x0421\x043A\x0432",   "\xD0\xA1\xD0\xBA\xD0\xB2"   },
    row{"beyond the BMP",                                    L"x\U0001F600",          "x\xF0\x9F\x98\x80"          },
    row{"a lone surrogate is no character",                  {L'x', L'\xD83D', L'y'}, "x\xEF\xBF\xBDy"             },
    row{"a line break",                                      L"x\ny",                 "x\ny"                       },
    row{"a number is text",                                  L"12.50",                "12.50"                      },
    row{"a formula",                                         L"=SUM(A1:A3)",          "=SUM(A1:A3)"                },
    row{"a formula is escaped",                              L"=A1<\"x\"&B1&C1",      "=A1&lt;&quot; x\"&amp;B1&C1"},
    row{"an equals sign alone",                              L"=",                    "="                          },
    row{"an equals sign inside",                             L"a=b",                  "a=b"                        },
    row{"a blank before the equals sign",                    L" =A1",                 "&#160;=A1"                  },
};

TEST_F(tableWriterXls, cells) {
  for (const row& r : rows) {
    const testing::ScopedTrace trace(__FILE__, r.line, r.name);
    const zipContent package = written({L"A"}, {{r.value}});
    EXPECT_EQ(cellsOf(package), std::string("A/") + r.cell);
  }
}

TEST_F(tableWriterXls, theHeaderIsRowOneOfList1) {
  const zipContent package = written(
      {
          L"Name", L"Depth"
  },
      {{L"a & b & c", L"1<2"}});
  EXPECT_EQ(cellsOf(package), "Name|Depth/a&#160;&amp; b & c|1&lt;2");
  EXPECT_NE(
      package.of("xl/workbook.xml").find("<sheet name=\"List1\" sheetId=\"1\" r:id=\"rId3\"/>"),
      std::string::npos);
  EXPECT_EQ(package.names(), std::string(fixedParts) + " " + stringsPart + " " + sheetPart);
}

TEST_F(tableWriterXls, namesAreEscapedLikeValues) {
  EXPECT_EQ(cellsOf(written({L"A & B", L"=X"}, {})), "A&#160;&amp; B|=X");
}

TEST_F(tableWriterXls, aFormulaIsACellWithoutSharedText) {
  const zipContent package = written({L"A"}, {{L"=SUM(A1:A3)"}});
  EXPECT_NE(package.of(sheetPart).find("<c r=\"A2\"><f>SUM(A1:A3)</f></c>"), std::string::npos);
  EXPECT_NE(package.of(stringsPart).find("count=\"1\" uniqueCount=\"1\""), std::string::npos);
}

TEST_F(tableWriterXls, equalTextsShareAnIndex) {
  const zipContent package = written(
      {
          L"A", L"B"
  },
      {{L"x", L"y"}, {L"y", L"x"}, {L"X", L"x"}});
  EXPECT_EQ(cellsOf(package), "A|B/x|y/y|x/X|x");
  EXPECT_EQ(allBetween(package.of(sheetPart), "t=\"s\"><v>", "</v>"),
            (std::vector<std::string>{"0", "1", "2", "3", "3", "2", "4", "2"}));
  EXPECT_NE(package.of(stringsPart).find("count=\"8\" uniqueCount=\"5\""), std::string::npos);
  EXPECT_EQ(allBetween(package.of(stringsPart), "<t>", "</t>"),
            (std::vector<std::string>{"A", "B", "x", "y", "X"}));
}

TEST_F(tableWriterXls, spansEndOneColumnBehindTheLastCell) {
  const std::string sheet = written(
                                {
                                    L"A", L"B", L"C"
  },
                                {{L"1"}, {L"1", L"2", L"3", L"4"}})
                                .of(sheetPart);
  EXPECT_EQ(allBetween(sheet, "<row ", ">"),
            (std::vector<std::string>{"r=\"1\" spans=\"1:4\" x14ac:dyDescent=\"0.25\"",
                                      "r=\"2\" spans=\"1:2\" x14ac:dyDescent=\"0.25\"",
                                      "r=\"3\" spans=\"1:5\" x14ac:dyDescent=\"0.25\""}));
}

TEST_F(tableWriterXls, rowsOfAllLengths) {
  EXPECT_EQ(cellsOf(written(
                {
                    L"A", L"B"
  },
                {{L"1"}, {L"1", L"2", L"3"}, {L"", L""}})),
            "A|B/1/1|2|3/|");
}

TEST_F(tableWriterXls, withoutFieldsTheFirstRowIsRowOne) {
  EXPECT_EQ(cellsOf(written(
                {
  },
                {{L"1", L"2"}, {L"3"}})),
            "1|2/3");
}

TEST_F(tableWriterXls, anEmptyRowIsRefused) {
  tableWriter* writer = tableWriter::open(options({L"A"}));
  EXPECT_FALSE(writer->addRow({}));
  EXPECT_TRUE(writer->addRow({L"1"}));
  EXPECT_FALSE(writer->addRow({}));
  tableWriter::close(writer);
  EXPECT_EQ(cellsOf(readPackage(folder_.file(L"out.xlsx"))), "A/1");
}

TEST_F(tableWriterXls, withoutFieldsAndRowsThereIsNoSheet) {
  const zipContent package = written({}, {});
  EXPECT_EQ(package.problem, "");
  EXPECT_EQ(package.names(), fixedParts);
  EXPECT_NE(package.of("xl/workbook.xml").find("<sheets/>"), std::string::npos);
  EXPECT_EQ(countOf(package.of("[Content_Types].xml"), "<Override "), 5u);
}

TEST_F(tableWriterXls, formulasAloneNeedNoSharedStrings) {
  const zipContent package = written({L"=1"}, {{L"=2"}});
  EXPECT_EQ(package.names(), std::string(fixedParts) + " " + sheetPart);
  EXPECT_EQ(cellsOf(package), "=1/=2");
  EXPECT_EQ(package.of("[Content_Types].xml").find("sharedStrings"), std::string::npos);
  EXPECT_EQ(package.of("xl/_rels/workbook.xml.rels").find("sharedStrings"), std::string::npos);
}

TEST_F(tableWriterXls, manyRows) {
  std::vector<textRow> table;
  std::string expected = "N|T";
  for (int i = 0; i < 20000; ++i) {
    table.push_back({std::to_wstring(i), L"\x0441\x043B\x043E\x0439"});
    expected += "/" + std::to_string(i) + "|\xD1\x81\xD0\xBB\xD0\xBE\xD0\xB9";
  }
  EXPECT_TRUE(cellsOf(written({L"N", L"T"}, table)) == expected);
}

TEST_F(tableWriterXls, longValues) {
  std::vector<textRow> table;
  std::string expected = "A";
  for (const std::size_t size : {254u, 255u, 256u, 32767u, 300000u}) {
    table.push_back({std::wstring(size, L'\x0416'), L"=" + std::wstring(size, L'1')});
    expected += "/";
    for (std::size_t i = 0; i < size; ++i) expected += "\xD0\x96";
    expected += "|=" + std::string(size, '1');
  }
  EXPECT_TRUE(cellsOf(written({L"A"}, table)) == expected);
}

// ---- the file and its life ----------------------------------------------------------------------

TEST_F(tableWriterXls, anXlsTargetReceivesAPackage) {
  EXPECT_EQ(cellsOf(written({L"A"}, {{L"1"}}, L"out.xls")), "A/1");
  EXPECT_EQ(cellsOf(written({L"A"}, {{L"1"}}, L"OUT2.XLSX")), "A/1");
}

TEST_F(tableWriterXls, theTargetAppearsWhenTheWriterIsClosed) {
  const std::wstring path = folder_.write(L"out.xlsx", "old");
  tableWriter* writer = tableWriter::open(options({L"A"}));
  EXPECT_TRUE(writer->addRow({L"1"}));
  EXPECT_EQ(testSupport::readFile(path), "old");
  tableWriter::close(writer);
  EXPECT_EQ(cellsOf(readPackage(path)), "A/1");
  EXPECT_TRUE(platform::removeFile(path)) << "the file was closed";
}

TEST_F(tableWriterXls, deleteSavesToo) {
  tableWriter* writer = tableWriter::open(options({L"A"}));
  delete writer;
  EXPECT_EQ(cellsOf(readPackage(folder_.file(L"out.xlsx"))), "A");
}

TEST_F(tableWriterXls, theTemporaryFolderComesWithTheFirstRow) {
  const long before = platform::clockCount();
  tableWriter* writer = tableWriter::open(options({}));
  const long after = platform::clockCount();
  EXPECT_TRUE(temporaryEntries().empty());
  {
    const environmentSetter tooLate(L"TEMP", folder_.file(L"gone"));
    EXPECT_TRUE(writer->addRow({L"1"}));
  }
  ASSERT_EQ(temporaryEntries().size(), 1u) << "the name is older than the row";
  const std::filesystem::path made = temporaryEntries().front();
  const std::string name = made.filename().string();
  const std::size_t clock = name.rfind('_');
  EXPECT_EQ(name.substr(0, clock), "xlsx_" + std::to_string(platform::currentThreadId()));
  EXPECT_LE(before, std::stol(name.substr(clock + 1)));
  EXPECT_LE(std::stol(name.substr(clock + 1)), after);
  EXPECT_TRUE(std::filesystem::exists(made / sheetPart));
  tableWriter::close(writer);
}

TEST_F(tableWriterXls, delimiterTypesAndWidthsHaveNoSay) {
  tableWriterOptions given = options({L"N", L"T"});
  given.delimiter = L"|";
  given.fields[0] = {L"N", tableRW::fldNumber, 3, 1};
  tableWriter* writer = tableWriter::open(given);
  EXPECT_TRUE(writer->addRow({L"12345.678", L"a;b"}));
  tableWriter::close(writer);
  EXPECT_EQ(cellsOf(readPackage(given.fileName)), "N|T/12345.678|a;b");
}

TEST_F(tableWriterXls, cyrillicTargetsInTheLocaleC) {
  const testSupport::localeSetter inC("C");
  ASSERT_TRUE(platform::createFolder(folder_.file(L"\x041F\x0430\x043F\x043A\x0430 1")));
  EXPECT_EQ(cellsOf(written({L"A"}, {{L"1"}},
                            L"\x041F\x0430\x043F\x043A\x0430 1/\x0421\x043A\x0432.xlsx")),
            "A/1");
}

TEST_F(tableWriterXls, withoutTempTheFolderIsMadeInTheCurrentOne) {
  for (const std::optional<std::wstring>& value :
       {std::optional<std::wstring>(), std::optional(std::wstring())}) {
    const environmentSetter noTemp(L"TEMP", value);
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(temp());
    tableWriter* writer = tableWriter::open(options({L"A"}));
    EXPECT_EQ(temporaryEntries().size(), 1u);
    tableWriter::close(writer);
    std::filesystem::current_path(before);
    EXPECT_EQ(cellsOf(readPackage(folder_.file(L"out.xlsx"))), "A");
    EXPECT_TRUE(platform::removeFile(folder_.file(L"out.xlsx")));
  }
}

// ---- copies -------------------------------------------------------------------------------------

TEST_F(tableWriterXls, aCopyGoesOnByItself) {
  const std::wstring path = folder_.file(L"out.xlsx");
  auto first = std::make_unique<tableWriter_xls>(options({L"A", L"B"}));
  EXPECT_TRUE(first->addRow({L"1", L"x"}));
  auto second = std::make_unique<tableWriter_xls>(*first);
  EXPECT_EQ(temporaryEntries().size(), 2u);
  EXPECT_TRUE(first->addRow({L"2", L"first"}));
  EXPECT_TRUE(second->addRow({L"2", L"second", L"1"}));
  first.reset();
  EXPECT_EQ(cellsOf(readPackage(path)), "A|B/1|x/2|first");
  second.reset();
  EXPECT_EQ(cellsOf(readPackage(path)), "A|B/1|x/2|second|1") << "the last one closed wins";
}

// Without columns there is no sheet yet.
TEST_F(tableWriterXls, aCopyOfNothingBeginsItsOwnSheet) {
  auto first = std::make_unique<tableWriter_xls>(options({}));
  auto second = std::make_unique<tableWriter_xls>(*first);
  auto third = std::make_unique<tableWriter_xls>(options({L"A"}));
  *third = *first;
  EXPECT_TRUE(second->addRow({L"second"}));
  EXPECT_TRUE(third->addRow({L"third"}));
  const std::wstring path = folder_.file(L"out.xlsx");
  first.reset();
  second.reset();
  EXPECT_EQ(cellsOf(readPackage(path)), "second");
  third.reset();
  EXPECT_EQ(cellsOf(readPackage(path)), "third");
}

TEST_F(tableWriterXls, aCopyOfLargeContent) {
  auto first = std::make_unique<tableWriter_xls>(options({L"A"}));
  std::string expected = "A";
  for (int i = 0; i < 20000; ++i) {
    EXPECT_TRUE(first->addRow({std::to_wstring(i)}));
    expected += "/" + std::to_string(i);
  }
  auto second = std::make_unique<tableWriter_xls>(*first);
  first.reset();
  EXPECT_TRUE(second->addRow({L"last"}));
  second.reset();
  EXPECT_TRUE(cellsOf(readPackage(folder_.file(L"out.xlsx"))) == expected + "/last");
}

TEST_F(tableWriterXls, assignmentDiscardsTheOldRows) {
  auto first = std::make_unique<tableWriter_xls>(options({L"A"}, L"1.xlsx"));
  auto second = std::make_unique<tableWriter_xls>(options({L"B"}, L"2.xlsx"));
  EXPECT_TRUE(second->addRow({L"2"}));
  *first = *second;
  EXPECT_TRUE(first->addRow({L"3"}));
  tableWriter_xls& same = *first;
  *first = same;
  second.reset();
  EXPECT_EQ(cellsOf(readPackage(folder_.file(L"2.xlsx"))), "B/2");
  first.reset();
  EXPECT_EQ(cellsOf(readPackage(folder_.file(L"2.xlsx"))), "B/2/3");
  EXPECT_FALSE(platform::fileExists(folder_.file(L"1.xlsx")));
}

// ---- several at once ----------------------------------------------------------------------------

TEST_F(tableWriterXls, twoWritersInTwoThreads) {
  std::vector<std::thread> threads;
  for (const wchar_t* name : {L"0.xlsx", L"1.xlsx"}) {
    threads.emplace_back([given = options({L"A"}, name), name] {
      tableWriter* writer = tableWriter::open(given);
      for (int i = 0; i < 2000; ++i) writer->addRow({name + std::to_wstring(i)});
      tableWriter::close(writer);
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::string digit : {"0", "1"}) {
    std::string expected = "A";
    for (int i = 0; i < 2000; ++i) expected += "/" + digit + ".xlsx" + std::to_string(i);
    EXPECT_TRUE(cellsOf(readPackage(folder_.file(testSupport::wide(digit) + L".xlsx"))) ==
                expected);
  }
}

TEST_F(tableWriterXls, manyWritersInOneThread) {
  std::vector<std::unique_ptr<tableWriter_xls>> writers;
  for (int i = 0; i < 20; ++i)
    writers.push_back(
        std::make_unique<tableWriter_xls>(options({L"A"}, std::to_wstring(i) + L".xlsx")));
  EXPECT_EQ(temporaryEntries().size(), writers.size()) << "each has a folder of its own";
  for (std::size_t i = 0; i < writers.size(); ++i) writers[i]->addRow({std::to_wstring(i)});
  writers.clear();
  for (int i = 0; i < 20; ++i)
    EXPECT_EQ(cellsOf(readPackage(folder_.file(std::to_wstring(i) + L".xlsx"))),
              "A/" + std::to_string(i));
}

// ---- what cannot be written ---------------------------------------------------------------------

// The rows are accepted as if all were well; closing says nothing either.
void writeInVain(const tableWriterOptions& given) {
  tableWriter* writer = tableWriter::open(given);
  ASSERT_NE(writer, nullptr);
  EXPECT_TRUE(writer->addRow({L"1", L"2"}));
  EXPECT_FALSE(writer->addRow({}));
  for (int i = 0; i < 50; ++i) EXPECT_TRUE(writer->addRow({std::wstring(10000, L'x')}));
  tableWriter::close(writer);
}

TEST_F(tableWriterXls, tempInAMissingFolder) {
  const environmentSetter missing(L"TEMP", folder_.file(L"gone/deeper"));
  writeInVain(options({L"A"}));
  EXPECT_FALSE(platform::fileExists(folder_.file(L"out.xlsx")));
  EXPECT_FALSE(platform::fileExists(folder_.file(L"gone")));
}

TEST_F(tableWriterXls, tempThatIsAFile) {
  const environmentSetter file(L"TEMP", folder_.write(L"file", "kept"));
  writeInVain(options({L"A"}));
  EXPECT_FALSE(platform::fileExists(folder_.file(L"out.xlsx")));
  EXPECT_EQ(testSupport::readFile(folder_.file(L"file")), "kept");
}

TEST_F(tableWriterXls, aReadOnlyTemp) {
  const std::wstring path = folder_.file(L"readonly");
  ASSERT_TRUE(platform::createFolder(path));
  std::filesystem::permissions(
      path, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
  const bool isProtected = !platform::createFolder(path + L"/probe");
  if (!isProtected)
    platform::removeFolder(path + L"/probe");  // a superuser may, and Windows lets anybody
  const environmentSetter readOnly(L"TEMP", path);
  writeInVain(options({L"A"}));
  EXPECT_EQ(platform::fileExists(folder_.file(L"out.xlsx")), !isProtected);
  EXPECT_TRUE(std::filesystem::is_empty(path));
  std::filesystem::permissions(path, std::filesystem::perms::all);
}

TEST_F(tableWriterXls, aCyrillicTempHasNoNarrowPathInTheLocaleC) {
  const testSupport::localeSetter inC("C");
  const std::wstring path = folder_.file(L"\x0412\x0440\x0435\x043C");
  ASSERT_TRUE(platform::createFolder(path));
  const environmentSetter cyrillic(L"TEMP", path);
  writeInVain(options({L"A"}));
  EXPECT_FALSE(platform::fileExists(folder_.file(L"out.xlsx")));
  EXPECT_TRUE(platform::removeFolder(path)) << "it is empty";
}

TEST_F(tableWriterXls, aTempThatIsTooLong) {
  // Long enough for the parts to have no narrow path, short enough for the folder to be made everywhere.
  constexpr std::size_t length = 225;
  std::wstring path = folder_.file(L"long");
  while (path.size() < length) {
    ASSERT_TRUE(platform::createFolder(path));
    path += L"/" + std::wstring(std::min<std::size_t>(60, length - path.size()), L'x');
  }
  ASSERT_TRUE(platform::createFolder(path));
  const environmentSetter longTemp(L"TEMP", path);
  writeInVain(options({L"A"}));
  EXPECT_FALSE(platform::fileExists(folder_.file(L"out.xlsx")));
  EXPECT_TRUE(platform::removeFolder(path)) << "it is empty";
}

TEST_F(tableWriterXls, aTargetInAMissingFolder) {
  writeInVain(options({L"A"}, L"gone/out.xlsx"));
  EXPECT_FALSE(platform::fileExists(folder_.file(L"gone")));
}

TEST_F(tableWriterXls, aTargetThatIsAFolder) {
  ASSERT_TRUE(platform::createFolder(folder_.file(L"out.xlsx")));
  writeInVain(options({L"A"}));
  EXPECT_TRUE(std::filesystem::is_empty(folder_.file(L"out.xlsx")));
}

TEST_F(tableWriterXls, aTargetOpenElsewhere) {
  const std::wstring path = folder_.write(L"out.xlsx", "old");
  platform::binaryFile other;
  ASSERT_TRUE(other.openForReading(path));
  writeInVain(options({L"A"}));
  other.close();
  // Windows keeps a file for whoever reads it; elsewhere it is replaced.
  if (testSupport::onWindows)
    EXPECT_EQ(testSupport::readFile(path), "old");
  else
    EXPECT_EQ(readPackage(path).problem, "");
}

TEST_F(tableWriterXls, partsThatDisappear) {
  tableWriter* writer = tableWriter::open(options({L"A"}));
  if (testSupport::onWindows) {
    tableWriter::close(writer);  // nobody can take away a file that is open
    return;
  }
  std::filesystem::remove_all(temporaryEntries().front());
  tableWriter::close(writer);
  EXPECT_FALSE(platform::fileExists(folder_.file(L"out.xlsx")));
}

TEST_F(tableWriterXls, aWriterOutOfMemory) {
  constexpr std::size_t mostAllocations = 20000;
  bool failed = true;
  std::size_t number = 0;
  for (; failed; ++number) {
    ASSERT_LT(number, mostAllocations);
    const std::wstring path = folder_.file(std::to_wstring(number) + L".xlsx");
    const tableWriterOptions given = options({L"A", L"B"}, std::to_wstring(number) + L".xlsx");
    bool thrown = false;
    {
      const testSupport::failingAllocation failing(number);
      try {
        const std::unique_ptr<tableWriter> writer(tableWriter::open(given));
        for (int i = 0; i < 3; ++i) writer->addRow({L"x" + std::to_wstring(i), L"=1+1"});
      } catch (const std::bad_alloc&) {
        thrown = true;
      }
      failed = failing.hasFailed();
    }
    const zipContent package = readPackage(path);
    if (!failed) {
      EXPECT_EQ(cellsOf(package), "A|B/x0|=1+1/x1|=1+1/x2|=1+1");
    } else if (package.problem.empty()) {
      // The rows before the one that failed, each of them whole.
      const std::string all = "A|B/x0|=1+1/x1|=1+1/x2|=1+1";
      const std::string sheet = package.of(sheetPart);
      EXPECT_EQ(countOf(sheet, "<row "), countOf(sheet, "</row>")) << number;
      EXPECT_TRUE(cellsOf(package) == all || (thrown && all.starts_with(cellsOf(package))))
          << number << ": " << cellsOf(package);
    } else {
      EXPECT_EQ(package.problem, "no file") << "half a file taken for whole, " << number;
    }
    platform::removeFile(path);
    // A failure in the removal itself may leave the folder; the process has no memory then.
    for (const std::filesystem::path& left : temporaryEntries()) {
      EXPECT_TRUE(failed) << number;
      std::filesystem::remove_all(left);
      ++leftBehind_;
    }
  }
  EXPECT_GT(number, 100u);
  EXPECT_EQ(leftBehind_, 0u);
}

}  // namespace

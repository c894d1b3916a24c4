// The workbook: its parts word by word, several sheets, and a disk that fills at every write.
#include "table_rw/writers/xlsx/workbook.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <future>
#include <memory>
#include <new>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "platform/files.h"
#include "table_rw/writers/xlsx/coreProperties.h"
#include "tests/support/environmentSetter.h"
#include "tests/support/failingAllocations.h"
#include "tests/support/failingDisk.h"
#include "tests/support/namedPipe.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"
#include "tests/support/workbookContent.h"

namespace {

using SimpleXlsx::CellDataStr;
using SimpleXlsx::CWorkbook;
using SimpleXlsx::CWorksheet;
using testSupport::allBetween;
using testSupport::cellsOf;
using testSupport::countOf;
using testSupport::environmentSetter;
using testSupport::failingDisk;
using testSupport::readPackage;
using testSupport::zipContent;

const std::string declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";

class workbook : public testing::Test {
 protected:
  workbook() { std::filesystem::create_directory(folder_.file(L"temp")); }
  ~workbook() override {
    EXPECT_TRUE(std::filesystem::is_empty(folder_.file(L"temp"))) << "a temporary folder was left";
  }

  static std::vector<CellDataStr> cells(const std::vector<std::wstring>& values) {
    std::vector<CellDataStr> made;
    for (const std::wstring& value : values) made.push_back({value});
    return made;
  }

  zipContent saved(CWorkbook& book) const {
    EXPECT_TRUE(book.Save(path_));
    return readPackage(path_);
  }

  testSupport::temporaryFolder folder_;
  environmentSetter temp_{L"TEMP", folder_.file(L"temp")};
  environmentSetter user_{L"USERNAME", L"I <&> \"me\""};
  std::wstring path_ = folder_.file(L"out.xlsx");
};

// ---- parts --------------------------------------------------------------------------------------

TEST_F(workbook, everyPartBeginsWithTheDeclaration) {
  CWorkbook book;
  book.AddSheet(L"S").AddRow(cells({L"x"}));
  const zipContent package = saved(book);
  ASSERT_EQ(package.members.size(), 10u);
  for (const auto& member : package.members)
    EXPECT_TRUE(member.content.starts_with(declaration)) << member.name;
}

TEST_F(workbook, contentTypesAndRelationships) {
  CWorkbook book;
  book.AddSheet(L"First").AddRow(cells({L"x"}));
  book.AddSheet(L"Second");
  const zipContent package = saved(book);
  const std::string types = package.of("[Content_Types].xml");
  EXPECT_EQ(allBetween(types, "Extension=\"", "\""), (std::vector<std::string>{"rels", "xml"}));
  EXPECT_EQ(
      allBetween(types, "PartName=\"", "\""),
      (std::vector<std::string>{"/xl/workbook.xml", "/xl/theme/theme1.xml", "/xl/styles.xml",
                                "/docProps/core.xml", "/docProps/app.xml", "/xl/sharedStrings.xml",
                                "/xl/worksheets/sheet1.xml", "/xl/worksheets/sheet2.xml"}));
  const std::string root = package.of("_rels/.rels");
  EXPECT_EQ(allBetween(root, "Id=\"", "\""), (std::vector<std::string>{"rId1", "rId2", "rId3"}));
  EXPECT_EQ(allBetween(root, "Target=\"", "\""),
            (std::vector<std::string>{"xl/workbook.xml", "docProps/core.xml", "docProps/app.xml"}));
  const std::string inner = package.of("xl/_rels/workbook.xml.rels");
  EXPECT_EQ(allBetween(inner, "Id=\"", "\""),
            (std::vector<std::string>{"rId1", "rId2", "rId3", "rId4", "rId5"}));
  EXPECT_EQ(allBetween(inner, "Target=\"", "\""),
            (std::vector<std::string>{"styles.xml", "theme/theme1.xml", "worksheets/sheet1.xml",
                                      "worksheets/sheet2.xml", "sharedStrings.xml"}));
}

TEST_F(workbook, coreProperties) {
  CWorkbook book;
  const std::string core = saved(book).of("docProps/core.xml");
  const std::string user = "I &lt;&amp;&gt; &quot;me&quot;";
  EXPECT_EQ(allBetween(core, "<dc:creator>", "</dc:creator>"), std::vector{user});
  EXPECT_EQ(allBetween(core, "<cp:lastModifiedBy>", "</cp:lastModifiedBy>"), std::vector{user});
  const std::regex time(
      "<dcterms:(created|modified) xsi:type=\"dcterms:W3CDTF\">"
      "20\\d\\d-[01]\\d-[0-3]\\dT[0-2]\\d:[0-5]\\d:[0-6]\\dZ</dcterms:\\1>");
  EXPECT_EQ(
      std::distance(std::sregex_iterator(core.begin(), core.end(), time), std::sregex_iterator()),
      2);
}

TEST_F(workbook, coreTimesAreLocal) {
  // A zone whose clock differs from UTC, where the environment chooses it.
  std::optional<environmentSetter> zone;
  if (!testSupport::onWindows) zone.emplace(L"TZ", L"VOK-05:30");
  std::tm before = {};
  std::tm after = {};
  const auto now = [](std::tm& time) {
    const std::time_t seconds = std::time(nullptr);
    time = *std::localtime(&seconds);
  };
  const auto text = [](const std::tm& time) {
    char formatted[32];
    return std::string(formatted,
                       std::strftime(formatted, sizeof formatted, "%Y-%m-%dT%H:%M", &time));
  };
  now(before);
  CWorkbook book;
  const std::string core = saved(book).of("docProps/core.xml");
  now(after);
  for (const char* name : {"created", "modified"}) {
    const std::string end = std::string("</dcterms:") + name + ">";
    const std::string found = allBetween(core, "\"dcterms:W3CDTF\">", end).back();
    const std::string minute = found.substr(found.rfind('>') + 1, text(before).size());
    EXPECT_TRUE(minute == text(before) || minute == text(after)) << minute;
  }
}

TEST(coreProperties, timesHaveTheirZeros) {
  const testSupport::temporaryFolder folder;
  SimpleXlsx::xmlPart part(SimpleXlsx::packageDisk::real());
  ASSERT_TRUE(part.open(folder.file(L"core.xml")));
  SimpleXlsx::writeCoreProperties(part, {2026, 1, 2, 3, 4, 5});
  EXPECT_TRUE(part.close());
  EXPECT_EQ(countOf(testSupport::readFile(folder.file(L"core.xml")).value_or(""),
                    ">2026-01-02T03:04:05Z</dcterms:"),
            2u);
}

TEST_F(workbook, theUserIsUnknownWithoutItsVariable) {
  const environmentSetter nobody(L"USERNAME", std::nullopt);
  CWorkbook book;
  EXPECT_EQ(allBetween(saved(book).of("docProps/core.xml"), "<dc:creator>", "</dc:creator>"),
            std::vector<std::string>{"Unknown"});
}

TEST_F(workbook, appProperties) {
  CWorkbook book;
  book.AddSheet(L"A & B");
  book.AddSheet(L"C");
  const std::string app = saved(book).of("docProps/app.xml");
  EXPECT_NE(app.find("<Application>Microsoft Excel</Application>"), std::string::npos);
  EXPECT_NE(app.find("<vt:lpstr>Worksheets</vt:lpstr></vt:variant><vt:variant><vt:i4>2</vt:i4>"),
            std::string::npos);
  EXPECT_NE(app.find("<vt:lpstr>Diagramms</vt:lpstr></vt:variant><vt:variant><vt:i4>0</vt:i4>"),
            std::string::npos);
  EXPECT_NE(app.find("<TitlesOfParts><vt:vector size=\"2\" baseType=\"lpstr\"><vt:lpstr>A &amp; B"
                     "</vt:lpstr><vt:lpstr>C</vt:lpstr></vt:vector></TitlesOfParts>"),
            std::string::npos);
  for (const char* element : {"ScaleCrop", "LinksUpToDate", "SharedDoc", "HyperlinksChanged"})
    EXPECT_EQ(countOf(app, std::string("<") + element + ">false</"), 1u) << element;
  for (const char* element : {"DocSecurity", "Company", "AppVersion"})
    EXPECT_EQ(countOf(app, std::string("<") + element + ">"), 1u) << element;
}

TEST_F(workbook, workbookPart) {
  CWorkbook book;
  book.AddSheet(L"A & B");
  book.AddSheet(L"C");
  const std::string part = saved(book).of("xl/workbook.xml");
  EXPECT_NE(part.find("<sheets><sheet name=\"A &amp; B\" sheetId=\"1\" r:id=\"rId3\"/>"
                      "<sheet name=\"C\" sheetId=\"2\" r:id=\"rId4\"/></sheets>"),
            std::string::npos);
  for (const char* text : {"<fileVersion appName=", " lastEdited=", " lowestEdited=", " rupBuild=",
                           "<workbookPr codeName=\"ThisWorkbook\" defaultThemeVersion=",
                           "<bookViews><workbookView xWindow=", " yWindow=", " windowWidth=",
                           " windowHeight=", "<calcPr calcId="})
    EXPECT_EQ(countOf(part, text), 1u) << text;
}

TEST_F(workbook, worksheetPart) {
  CWorkbook book;
  book.AddSheet(L"S").AddRow(cells({L"x", L"y"}));
  const std::string sheet = saved(book).of("xl/worksheets/sheet1.xml");
  std::size_t last = 0;
  for (const char* text :
       {"<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\"",
        "xmlns:r=", "xmlns:mc=", "mc:Ignorable=\"x14ac\"",
        "xmlns:x14ac=", "<dimension ref=\"A1:B1\"/>",
        "<sheetViews><sheetView tabSelected=\"1\" workbookViewId=\"0\"/></sheetViews>",
        "<sheetFormatPr defaultRowHeight=", "x14ac:dyDescent=", "<sheetData><row ", "</sheetData>",
        "<pageMargins left=", " right=", " top=", " bottom=", " header=", " footer=",
        "</worksheet>"}) {
    const std::size_t found = sheet.find(text, last);
    ASSERT_NE(found, std::string::npos) << text;
    last = found;
  }
  EXPECT_EQ(sheet.find("<cols"), std::string::npos);
}

TEST_F(workbook, stylesAndTheme) {
  CWorkbook book;
  const zipContent package = saved(book);
  const std::string styles = package.of("xl/styles.xml");
  std::size_t last = 0;
  for (const char* text :
       {"<fonts", "\"Calibri\"", "<fills", "<borders", "<cellStyleXfs", "<cellXfs count=\"2\">",
        "<cellStyles count=\"1\"><cellStyle name=\"Normal\"", "<dxfs",
        "defaultTableStyle=\"TableStyleMedium2\"", "defaultPivotStyle=\"PivotStyleLight16\"",
        "<extLst>", "defaultSlicerStyle=\"SlicerStyleLight1\""}) {
    const std::size_t found = styles.find(text, last);
    ASSERT_NE(found, std::string::npos) << text;
    last = found;
  }
  const std::string theme = package.of("xl/theme/theme1.xml");
  EXPECT_NE(theme.find("<a:theme xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\" "
                       "name=\"Office Theme\">"),
            std::string::npos);
  const std::string colours =
      allBetween(theme, "<a:clrScheme name=\"Office\">", "</a:clrScheme>").at(0);
  EXPECT_EQ(allBetween(colours, "<a:srgbClr val=\"", "\"/>"),
            (std::vector<std::string>{"1F497D", "EEECE1", "4F81BD", "C0504D", "9BBB59", "8064A2",
                                      "4BACC6", "F79646", "0000FF", "800080"}));
  EXPECT_EQ(countOf(theme, "<a:latin typeface=\"Cambria\"/>"), 2u);
  EXPECT_NE(theme.find("<a:dk1><a:sysClr val=\"windowText\""), std::string::npos);
  EXPECT_NE(theme.find("<a:lt1><a:sysClr val=\"window\""), std::string::npos);
  EXPECT_EQ(countOf(theme, "<a:fmtScheme "), 1u);
  EXPECT_EQ(countOf(theme, "<a:font script=\"Jpan\""), 2u) << "major and minor";
}

// ---- sheets -------------------------------------------------------------------------------------

TEST_F(workbook, columnsAreNamedInLetters) {
  CWorkbook book;
  CWorksheet& sheet = book.AddSheet(L"S");
  sheet.AddRow(std::vector<CellDataStr>(16385, CellDataStr{L"x"}));
  sheet.AddRow(std::vector<CellDataStr>(2, CellDataStr{L"x"}));
  const zipContent package = saved(book);
  const std::vector<std::string> names =
      allBetween(package.of("xl/worksheets/sheet1.xml"), "<c r=\"", "\"");
  ASSERT_EQ(names.size(), 16387u);
  const std::pair<std::size_t, const char*> expected[] = {
      {0,     "A1"  },
      {25,    "Z1"  },
      {26,    "AA1" },
      {51,    "AZ1" },
      {52,    "BA1" },
      {701,   "ZZ1" },
      {702,   "AAA1"},
      {16383, "XFD1"},
      {16384, "XFE1"},
      {16385, "A2"  }
  };
  for (const auto& [at, name] : expected) EXPECT_EQ(names[at], name);
  EXPECT_NE(package.of("xl/worksheets/sheet1.xml").find("<dimension ref=\"A1:XFE2\"/>"),
            std::string::npos);
}

TEST_F(workbook, stylesOfCells) {
  CWorkbook book;
  book.AddSheet(L"S").AddRow({
      {L"x",  0 },
      {L"x",  1 },
      {L"=1", 12}
  });
  EXPECT_EQ(
      allBetween(saved(book).of("xl/worksheets/sheet1.xml"), "<c ", "</c>"),
      (std::vector<std::string>{"r=\"A1\" t=\"s\"><v>0</v>", "r=\"B1\" s=\"1\" t=\"s\"><v>0</v>",
                                "r=\"C1\" s=\"12\"><f>1</f>"}));
}

TEST_F(workbook, sheetsShareTheirTexts) {
  CWorkbook book;
  CWorksheet& first = book.AddSheet(L"1");
  CWorksheet& second = book.AddSheet(L"2");
  first.AddRow(cells({L"x"}));
  second.AddRow(cells({L"y", L"x"}));
  first.AddRow(cells({L"y"}));
  const zipContent package = saved(book);
  EXPECT_EQ(package.problem, "");
  EXPECT_NE(package.of("xl/sharedStrings.xml").find("count=\"4\" uniqueCount=\"2\""),
            std::string::npos);
  EXPECT_EQ(allBetween(package.of("xl/worksheets/sheet2.xml"), "<v>", "</v>"),
            (std::vector<std::string>{"1", "0"}));
}

TEST_F(workbook, aSheetWithoutRows) {
  CWorkbook book;
  book.AddSheet(L"S");
  const zipContent package = saved(book);
  EXPECT_EQ(package.problem, "");
  EXPECT_NE(package.of("xl/worksheets/sheet1.xml").find("<sheetData></sheetData>"),
            std::string::npos);
  EXPECT_NE(package.of("xl/worksheets/sheet1.xml").find("<dimension ref=\"A1\"/>"),
            std::string::npos);
  EXPECT_EQ(package.of("xl/sharedStrings.xml"), "(missing)");
}

TEST_F(workbook, aRowWithoutCells) {
  CWorkbook book;
  CWorksheet& sheet = book.AddSheet(L"S");
  sheet.AddRow({});
  const zipContent package = saved(book);
  EXPECT_NE(package.of("xl/worksheets/sheet1.xml").find("<dimension ref=\"A1\"/>"),
            std::string::npos);
}

// ---- life and failures --------------------------------------------------------------------------

TEST_F(workbook, withoutSavingNothingIsLeft) {
  CWorkbook book;
  book.AddSheet(L"S").AddRow(cells({L"x"}));
  EXPECT_FALSE(std::filesystem::is_empty(folder_.file(L"temp")));
}

TEST_F(workbook, isSavedOnce) {
  CWorkbook book;
  book.AddSheet(L"S").AddRow(cells({L"x"}));
  EXPECT_EQ(cellsOf(saved(book)), "x");
  EXPECT_TRUE(std::filesystem::is_empty(folder_.file(L"temp")));
}

TEST_F(workbook, aTargetThatCannotBeCreated) {
  CWorkbook book;
  book.AddSheet(L"S").AddRow(cells({L"x"}));
  EXPECT_FALSE(book.Save(folder_.file(L"gone/out.xlsx")));
  EXPECT_TRUE(std::filesystem::is_empty(folder_.file(L"temp")))
      << "removed at once, not at the end";
}

// A package needs positions, which a pipe has not. Who reads it is gone when that is found out: opening the pipe
// once more would wait for the next reader for ever.
TEST_F(workbook, aTargetThatIsAPipeIsNotOpenedTwice) {
  if (!testSupport::makeNamedPipe(path_)) GTEST_SKIP() << "no file is a pipe here";
  CWorkbook book;
  book.AddSheet(L"S").AddRow(cells({L"x"}));
  std::future<bool> answer = std::async(std::launch::async, [&] { return book.Save(path_); });
  platform::binaryFile reader;
  ASSERT_TRUE(reader.openForReading(path_));
  std::string bytes(100000, '\0');
  EXPECT_GT(reader.read(bytes.data(), bytes.size()), 0u);
  reader.close();
  while (answer.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
    EXPECT_FALSE(testSupport::releaseWriter(path_)) << "it waited for another reader";
  EXPECT_FALSE(answer.get());
  EXPECT_TRUE(platform::isPipeOrDevice(path_));
}

TEST_F(workbook, anOldTargetSurvivesPartsThatCannotBeWritten) {
  folder_.write(L"out.xlsx", "old");
  const environmentSetter missing(L"TEMP", folder_.file(L"gone"));
  CWorkbook book;
  book.AddSheet(L"S").AddRow(cells({L"x"}));
  EXPECT_FALSE(book.Save(path_));
  EXPECT_EQ(testSupport::readFile(path_), "old");
}

// A disk that notes what is opened for writing, by its path in the package.
class notingDisk : public SimpleXlsx::packageDisk {
 public:
  bool openForWriting(platform::binaryFile& file, const std::wstring& path) override {
    const std::size_t folder = path.find(L"/xlsx_");
    opened_.push_back(folder == std::wstring::npos ? path.substr(path.find_last_of(L"/\\") + 1)
                                                   : path.substr(path.find(L'/', folder + 1) + 1));
    return packageDisk::openForWriting(file, path);
  }
  const std::vector<std::wstring>& opened() const { return opened_; }

 private:
  std::vector<std::wstring> opened_;
};

TEST_F(workbook, partsAreWrittenInTheirOrder) {
  notingDisk disk;
  CWorkbook book(disk);
  book.AddSheet(L"S").AddRow(cells({L"x"}));
  EXPECT_TRUE(book.Save(path_));
  const std::vector<std::wstring> expected = {L"xl/worksheets/sheet1.xml",
                                              L"docProps/core.xml",
                                              L"_rels/.rels",
                                              L"docProps/app.xml",
                                              L"[Content_Types].xml",
                                              L"xl/theme/theme1.xml",
                                              L"xl/sharedStrings.xml",
                                              L"xl/styles.xml",
                                              L"xl/workbook.xml",
                                              L"xl/_rels/workbook.xml.rels",
                                              L"out.xlsx"};
  EXPECT_EQ(disk.opened(), expected);
}

// A row that memory ends in its midst would make a sheet that no program reads.
TEST_F(workbook, aRowThatRanOutOfMemoryEndsTheSaving) {
  folder_.write(L"out.xlsx", "old");
  // An element to replace needs memory for a while; the cell before it has been written by then.
  const std::vector<CellDataStr> row = cells({L"x", std::wstring(50, L'\xD83D')});
  bool failed = true;
  std::size_t number = 0;
  for (; failed; ++number) {
    ASSERT_LT(number, 100u);
    CWorkbook book;
    CWorksheet& sheet = book.AddSheet(L"S");
    sheet.AddRow(cells({L"A", L"B"}));
    {
      const testSupport::failingAllocation failing(number);
      try {
        sheet.AddRow(row);
      } catch (const std::bad_alloc&) {
      }
      failed = failing.hasFailed();
    }
    if (failed) {
      sheet.AddRow(cells({L"next"}));
      EXPECT_FALSE(CWorkbook(book).Save(path_)) << "nor does a copy";
    }
    EXPECT_EQ(book.Save(path_), !failed) << number;
    EXPECT_EQ(testSupport::readFile(path_) == "old", failed) << number;
  }
  EXPECT_GT(number, 1u) << "the sweep has met an allocation";
}

TEST_F(workbook, aSheetThatRanOutOfMemoryIsNone) {
  bool failed = true;
  std::size_t number = 0;
  for (; failed; ++number) {
    ASSERT_LT(number, 1000u);
    CWorkbook book;
    {
      const testSupport::failingAllocation failing(number);
      try {
        book.AddSheet(L"A title that is longer than what a string holds by itself");
      } catch (const std::bad_alloc&) {
      }
      failed = failing.hasFailed();
    }
    if (!failed) break;
    book.AddSheet(L"S").AddRow(cells({L"x"}));
    const zipContent package = saved(book);
    EXPECT_EQ(cellsOf(package), "x") << number;
    EXPECT_EQ(countOf(package.of("xl/workbook.xml"), "<sheet "), 1u) << number;
  }
  EXPECT_GT(number, 5u);
}

// Whatever operation finds the disk full, from the first part to the end of the archive: there is no file, and no
// temporary folder (the destructor of the test looks after that).
TEST_F(workbook, aDiskThatFills) {
  bool failed = true;
  std::size_t good = 0;
  std::size_t lostDirectories = 0;
  for (; failed; ++good) {
    failingDisk disk(good);
    CWorkbook book(disk);
    CWorksheet& sheet = book.AddSheet(L"S");
    for (int i = 0; i < 3000; ++i)
      sheet.AddRow(
          cells({std::to_wstring(i) + std::wstring(100, L'x'), L"=" + std::to_wstring(i)}));
    const bool answer = book.Save(path_);
    failed = disk.hasFailed();
    EXPECT_EQ(platform::fileExists(path_), !failed) << good;
    EXPECT_TRUE(std::filesystem::is_empty(folder_.file(L"temp"))) << good;
    // The end of the archive alone may be lost without a word.
    if (failed && answer) ++lostDirectories;
    EXPECT_TRUE(failed || answer);
  }
  EXPECT_EQ(lostDirectories, 2u) << "writing the directory, closing the file";
  EXPECT_GT(good, 60u);
}

// What stands behind the link goes, as with any target; the link itself is not the writer's.
TEST_F(workbook, aLinkStaysWhenTheDiskFills) {
  const std::wstring real = folder_.write(L"real.xlsx", "old");
  std::error_code failure;
  std::filesystem::create_symlink(real, path_, failure);
  if (failure) GTEST_SKIP() << "links cannot be created here";
  bool failed = true;
  bool wasEmptied = false;
  for (std::size_t good = 0; failed; ++good) {
    failingDisk disk(good);
    CWorkbook book(disk);
    book.AddSheet(L"S").AddRow(cells({L"x"}));
    book.Save(path_);
    failed = disk.hasFailed();
    EXPECT_TRUE(platform::isLink(path_)) << good;
    const std::string content = testSupport::readFile(real).value_or("gone");
    EXPECT_TRUE(!failed || content == "old" || content.empty()) << good;
    wasEmptied = wasEmptied || content.empty();
  }
  EXPECT_TRUE(wasEmptied);
  EXPECT_EQ(testSupport::readZip(testSupport::readFile(real).value_or("")).problem, "");
}

// A disk on which every name is taken the first time that it is asked for.
class takenNames : public SimpleXlsx::packageDisk {
 public:
  bool createFolder(const std::wstring& path) override {
    if (!first_.empty()) return packageDisk::createFolder(path);
    first_ = path;
    packageDisk::createFolder(path);
    return false;
  }
  const std::wstring& first() const { return first_; }

 private:
  std::wstring first_;
};

TEST_F(workbook, aNameThatIsTakenIsLeftAlone) {
  takenNames disk;
  {
    CWorkbook book(disk);
    book.AddSheet(L"S").AddRow(cells({L"x"}));
    EXPECT_TRUE(platform::folderExists(disk.first() + L"_1"));
    EXPECT_EQ(cellsOf(saved(book)), "x");
  }
  EXPECT_FALSE(platform::folderExists(disk.first() + L"_1"));
  EXPECT_TRUE(platform::folderExists(disk.first()));
  EXPECT_TRUE(platform::removeFolder(disk.first())) << "nothing was put into it";
}

TEST_F(workbook, filesOfOthersInTheFolderStay) {
  std::filesystem::path made;
  {
    CWorkbook book;
    book.AddSheet(L"S");
    made = std::filesystem::directory_iterator(folder_.file(L"temp"))->path();
    testSupport::writeFile((made / L"other").wstring(), "kept");
    EXPECT_TRUE(book.Save(path_));
  }
  EXPECT_EQ(testSupport::readFile((made / L"other").wstring()), "kept");
  EXPECT_EQ(std::filesystem::remove_all(made), 2u) << "the folder and that file";
}

}  // namespace

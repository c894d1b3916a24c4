// The spreadsheet reader over the converter: its command lines, its files, and what it makes of the lines.
// A fake converter that does what the test says stands beside a made-up main module;
// tests/converter/ and tests/tool/xls_test.py go through the real one.
#include "table_rw/readers/tableReader_xlsOLE.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

#include "platform/environment.h"
#include "platform/files.h"
#include "tests/support/environmentSetter.h"
#include "tests/support/failingAllocations.h"
#include "tests/support/mainModule.h"
#include "tests/support/ownedReader.h"
#include "tests/support/tableText.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"

namespace {

using tableRW::tableReader_xlsOLE;
using tableRW::tableReaderOptions;
using testSupport::describe;
using testSupport::environmentSetter;
using testSupport::mainModule;
using testSupport::printable;
using testSupport::temporaryFolder;
using testSupport::wide;

// --- command lines ---

tableReaderOptions optionsFor(const std::wstring& path, const std::wstring& table = L"",
                              std::int32_t header = 0) {
  tableReaderOptions options(path);
  options.table = table;
  options.header_position = header;
  options.data_position = static_cast<std::uint64_t>(header + 1);
  return options;
}

TEST(tableReader_xlsOLE, listCommandLine) {
  EXPECT_EQ(printable(tableRW::sheetListCommandLine(L"D:/my data/a.xlsx", L"T:/")),
            " \"D:/my data/a.xlsx\"  -destFolder T:/ -tablelist -delimiter $");
}

struct sheetLineRow {
  const char* name;
  tableReaderOptions options;
  bool headersOnly;
  const char* expected;
  int line = __builtin_LINE();
};

const sheetLineRow sheetLineRows[] = {
    sheetLineRow{"the default sheet", optionsFor(L"D:/a.xlsx"), false,
                 " \"D:/a.xlsx\"  -destFolder T:/my temp/ -copyMerged -delimiter $"                      },
    sheetLineRow{
                 "a sheet by its name",                                                                                                                                optionsFor(L"D:/a.xlsx",                          L"my sheet"), false,
                 " \"D:/a.xlsx\"  -destFolder T:/my temp/ -copyMerged -delimiter $ -table \"my sheet\""},
    sheetLineRow{    "headers only", optionsFor(L"D:/a.xlsx",                                     L"",          3),          true,
                 " \"D:/a.xlsx\"  -destFolder T:/my temp/ -copyMerged -delimiter $ -headers 3"},
    sheetLineRow{ "headers of a named sheet",  optionsFor(L"D:/a.xlsx",                                    L"s",                                                                          -1),                                                                          true,
                 " \"D:/a.xlsx\"  -destFolder T:/my temp/ -copyMerged -delimiter $ -table \"s\" "
                 "-headers -1"},
};

TEST(tableReader_xlsOLE, sheetCommandLines) {
  for (const sheetLineRow& row : sheetLineRows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    EXPECT_EQ(printable(tableRW::sheetCommandLine(row.options, row.headersOnly, L"T:/my temp/")),
              row.expected);
  }
}

// --- with a converter ---

// Shows what the base keeps for itself.
class watchedReader : public tableReader_xlsOLE {
 public:
  using tableReader::fieldTypes_;
  using tableReader::options_;
  using tableReader::rowLimit_;
  using tableReader_xlsOLE::tableReader_xlsOLE;
};

class converterReader : public testing::Test {
 protected:
  converterReader() {
    platform::createFolder(temporary_);
    namespace fs = std::filesystem;
    const fs::path tests = fs::path(platform::executablePath()).parent_path();
    fs::copy_file(tests / (testSupport::onWindows ? "fake_converter.exe" : "fake_converter"),
                  fs::path(folder_.file(L"vok_xls2csv.exe")));
  }

  // The converter leaves a file of this name and text.
  void converterWrites(const std::wstring& name, const std::wstring& text) {
    target_.emplace(L"VOK_FAKE_TARGET", temporary_ + name);
    text_.emplace(L"VOK_FAKE_TEXT", text);
  }

  std::wstring temporaryFile(const std::wstring& name) const { return temporary_ + name; }
  std::string arguments() const {
    return testSupport::readFile(folder_.file(L"log")).value_or("none");
  }
  bool temporaryFolderIsEmpty() const {
    return std::filesystem::is_empty(std::filesystem::path(temporary_));
  }

  // A read of lines with the header at a position, as one line of text.
  std::string readLines(const std::wstring& text, std::int32_t header = 0,
                        std::optional<std::uint64_t> data = std::nullopt) {
    converterWrites(L"a.csv", text);
    tableReaderOptions options = optionsFor(L"a.xlsx", L"", header);
    if (data) options.data_position = *data;
    tableReader_xlsOLE reader(options);
    EXPECT_TRUE(reader.read());
    EXPECT_TRUE(temporaryFolderIsEmpty());
    return describe(reader);
  }

  temporaryFolder folder_;
  std::wstring temporary_ = folder_.file(L"my temp/");
  mainModule module_{folder_.file(L"suite.exe")};
  environmentSetter temporarySetters_[2] = {
      {testSupport::onWindows ? L"TMP" : L"TMPDIR", temporary_          },
      {L"VOK_FAKE_LOG",                             folder_.file(L"log")}
  };
  std::optional<environmentSetter> target_;
  std::optional<environmentSetter> text_;
};

std::wstring systemTemporary() { return platform::temporaryFolder(); }

TEST_F(converterReader, aSourceWithBlanksIsPassedWhole) {
  converterWrites(L"my book.csv", L"a$b\n1$2\n");
  tableReader_xlsOLE reader(optionsFor(L"D:/my data/my book.xlsx", L"Sheet 1"));
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields a|b  rows 1|2  ok");
  // The folder has a blank and is not quoted: it falls into two words.
  const std::string folder = printable(systemTemporary());
  const std::size_t blank = folder.rfind(' ');
  std::string folderWords = folder;
  folderWords[blank] = '\n';
  std::string plain;
  for (std::size_t i = 0; i < folderWords.size(); ++i) {
    plain += folderWords[i];
    if (folderWords[i] == '\\' && i + 1 < folderWords.size() && folderWords[i + 1] == '\\') ++i;
  }
  EXPECT_EQ(arguments(), "D:/my data/my book.xlsx\n-destFolder\n" + plain +
                             "\n-copyMerged\n-delimiter\n$\n-table\nSheet 1\n");
}

TEST_F(converterReader, headersOnlyAsksForTheHeaderRow) {
  converterWrites(L"a.csv", L"a$$c\n1$2$3\n");
  watchedReader reader(optionsFor(L"a.xlsx", L"", 4));
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(describe(reader), "fields a|field_1|c  ok");
  EXPECT_NE(arguments().find("\n-headers\n4\n"), std::string::npos);
  EXPECT_EQ(reader.rowLimit_, -1);
  EXPECT_TRUE(temporaryFolderIsEmpty());
}

TEST_F(converterReader, headersOnlySetsTheHeaderPositionForLaterReads) {
  converterWrites(L"a.csv", L"a$b\n1$2\n3$4\n");
  watchedReader reader(optionsFor(L"a.xlsx", L"", 1));
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(reader.options_.header_position, 0);
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields a|b  rows 3|4  ok");  // the data position stays behind row 1
}

TEST_F(converterReader, headersOnlyWithANegativePosition) {
  converterWrites(L"a.csv", L"a$$\n1$2$3\n");
  watchedReader reader(optionsFor(L"a.xlsx", L"", -1));
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(describe(reader), "fields a|field_1|field_2  ok");
  EXPECT_NE(arguments().find("\n-headers\n-1\n"), std::string::npos);
  EXPECT_EQ(reader.options_.header_position, 0);
}

TEST_F(converterReader, headersOnlyDoesNotLookForTheOutputButCannotReadIt) {
  watchedReader reader(optionsFor(L"a.xlsx", L"", 3));
  EXPECT_FALSE(reader.readOnlyHeaders());
  EXPECT_EQ(describe(reader), "failed");
  EXPECT_EQ(reader.options_.header_position, 3);
}

TEST_F(converterReader, readDemoKeepsEveryRow) {
  converterWrites(L"a.csv", L"a\n1\n2\n3\n4\n5\n6\n7\n");
  watchedReader reader(optionsFor(L"a.xlsx"));
  EXPECT_TRUE(reader.readDemo(5));
  EXPECT_EQ(describe(reader), "fields a  rows 1 / 2 / 3 / 4 / 5 / 6 / 7  ok");
  EXPECT_EQ(reader.rowLimit_, 5);
  EXPECT_EQ(arguments().find("-headers"), std::string::npos);
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.rowLimit_, -1);
  EXPECT_EQ(reader.count(), 7u);
}

struct lineRow {
  const char* name;
  std::wstring text;
  std::int32_t header;
  std::uint64_t data;
  const char* expected;
  int line = __builtin_LINE();
};

const lineRow lineRows[] = {
    lineRow{"an empty name is numbered",       L"a$b$$d\n1$2$3$4\n",                0,  1,
            "fields a|b|field_2|d  rows 1|2|3|4  ok"                                                                    },
    lineRow{"one value too many",              L"a$b\n1$2\n1$2$3\n5$6\n",           0,  1,
            "fields a|b  rows 1|2 / 5|6  errors 2  ok"                                                                  },
    lineRow{"one value too few",               L"a$b\n1\n",                         0,  1,  "fields a|b  errors 1  ok"  },
    lineRow{"no header, data from the first",  L"a$b\n1$2\n",                       -1, 0,
            "fields field_0|field_1  rows a|b / 1|2  ok"                                                                },
    lineRow{"no header, data from the second", L"a$b\n1$2\n",                       -1, 1,
            "fields field_0|field_1  rows 1|2  ok"                                                                      },
    lineRow{"lines above the header",          L"title$\nx\na$b\n1$2\n",            2,  3,  "fields a|b  rows 1|2  ok"  },
    lineRow{"lines between header and data",   L"a$b\nm$m\nbad\n1$2\n",             0,  3,
            "fields a|b  rows 1|2  ok"                                                                                  },
    lineRow{"empty rows are left out",         L"a$b\n$\n1$2\n\n$$$\n3$4\n",        0,  1,
            "fields a|b  rows 1|2 / 3|4  ok"                                                                            },
    lineRow{"empty values at the end stay",    L"a$b$c\n1$$\n",                     0,  1,  "fields a|b|c  rows 1||  ok"},
    lineRow{"values are not trimmed",          L" a $b\n 1 $\"2\"\n",               0,  1,
            "fields  a |b  rows  1 |\"2\"  ok"                                                                          },
    lineRow{"the header behind the end",       L"a$b\n1$2\n",                       9,  10, "ok"                        },
    lineRow{"UTF-8",                           L"Скважина$\u20AC\nД1$2\n", 0,  1,
            "fields Скважина|\xE2\x82\xAC  rows Д1|2  ok"                                                      },
    lineRow{"an empty file",                   L"",                                 0,  1,  "fields field_0  ok"        },
    lineRow{"no line end at the end",          L"a\n1",                             0,  1,  "fields a  rows 1  ok"      },
};

TEST_F(converterReader, lines) {
  for (const lineRow& row : lineRows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    EXPECT_EQ(readLines(row.text, row.header, row.data), row.expected);
  }
}

TEST_F(converterReader, fieldTypesAreLeftAlone) {
  converterWrites(L"a.csv", L"a$b\n1$2\n");
  watchedReader reader(optionsFor(L"a.xlsx"));
  reader.fieldTypes_ = {tableRW::fldNumber};
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.fieldTypes_, std::vector<tableRW::fldType>{tableRW::fldNumber});
}

TEST_F(converterReader, rejectedRecordsAreHandedOver) {
  converterWrites(L"a.csv", L"a$b\n1\n1$2\n1$2$3\n");
  tableReader_xlsOLE reader(optionsFor(L"a.xlsx"));
  ASSERT_TRUE(reader.read());
  std::string found;
  EXPECT_TRUE(reader.rejectedRecords([&](const tableRW::rejectedRecord& record) {
    found += std::to_string(record.line) + " " + std::to_string(record.valueCount) + " " +
             printable(record.text) + "\n";
    // A row of a sheet has no bytes of its own in the workbook.
    EXPECT_EQ(record.offset, tableRW::rejectedRecord::noOffset);
    EXPECT_EQ(record.size, 0U);
    return true;
  }));
  EXPECT_EQ(found, "1 1 1\n3 3 1$2$3\n");
  EXPECT_TRUE(temporaryFolderIsEmpty());
}

// They are looked for in the workbook as it is then.
TEST_F(converterReader, rejectedRecordsOfAWorkbookThatChanges) {
  converterWrites(L"a.csv", L"a$b\n1\n1$2\n1$2$3\n");
  tableReader_xlsOLE reader(optionsFor(L"a.xlsx"));
  ASSERT_TRUE(reader.read());
  int count = 0;
  const auto takeOne = [&count](const tableRW::rejectedRecord&) { return ++count > 1; };
  EXPECT_TRUE(reader.rejectedRecords(takeOne));
  EXPECT_EQ(count, 1) << "no more were wanted";
  converterWrites(L"a.csv", L"a$b\n1\n");
  const auto take = [&count](const tableRW::rejectedRecord&) { return ++count > 0; };
  EXPECT_TRUE(reader.rejectedRecords(take));
  EXPECT_EQ(count, 2) << "the other row is gone";
  EXPECT_TRUE(temporaryFolderIsEmpty());
  converterWrites(L"b.csv", L"");
  EXPECT_FALSE(reader.rejectedRecords(take)) << "no workbook";
  EXPECT_EQ(count, 2);
}

TEST_F(converterReader, noRejectedRecords) {
  converterWrites(L"a.csv", L"a$b\n1$2\n");
  tableReader_xlsOLE reader(optionsFor(L"a.xlsx"));
  const auto take = [](const tableRW::rejectedRecord&) { return true; };
  EXPECT_FALSE(reader.rejectedRecords(take)) << "nothing has been read";
  ASSERT_TRUE(reader.read());
  EXPECT_FALSE(reader.rejectedRecords(take)) << "there are none";
  converterWrites(L"a.csv", L"a$b\n1\n");
  tableReaderOptions turned = optionsFor(L"a.xlsx");
  turned.direction = 1;
  tableReader_xlsOLE sideways(turned);
  sideways.read();
  EXPECT_FALSE(sideways.rejectedRecords(take));
}

// --- files ---

TEST_F(converterReader, withoutAnOutputTheReadFails) {
  tableReader_xlsOLE reader(optionsFor(L"a.xlsx"));
  EXPECT_FALSE(reader.read());
  EXPECT_FALSE(reader.isOK());
}

TEST_F(converterReader, aFailedReadOfAnXlsDeletesTheIntermediate) {
  const environmentSetter leftover(L"VOK_FAKE_LEFTOVER", temporaryFile(L"a.xlsx"));
  tableReader_xlsOLE reader(optionsFor(L"D:\\x\\a.xls"));
  EXPECT_FALSE(reader.read());
  EXPECT_EQ(arguments().substr(0, 11), "D:\\x\\a.xls\n");
  EXPECT_TRUE(temporaryFolderIsEmpty());
}

TEST_F(converterReader, aReadOfAnXlsDeletesBothFiles) {
  converterWrites(L"a.csv", L"a\n1\n");
  const environmentSetter leftover(L"VOK_FAKE_LEFTOVER", temporaryFile(L"a.xlsx"));
  tableReader_xlsOLE reader(optionsFor(L"a.xls"));
  EXPECT_TRUE(reader.read());
  EXPECT_TRUE(temporaryFolderIsEmpty());
}

TEST_F(converterReader, onlyAnXlsHasAnIntermediate) {
  converterWrites(L"a.csv", L"a\n1\n");
  for (const wchar_t* const path : {L"a.xlsx", L"a.xlsm", L"a.XLS"}) {
    testSupport::writeFile(temporaryFile(L"a.xlsx"), "somebody's");
    tableReader_xlsOLE reader{optionsFor(path)};
    EXPECT_TRUE(reader.read());
    EXPECT_TRUE(platform::fileExists(temporaryFile(L"a.xlsx"))) << printable(path);
    EXPECT_FALSE(platform::fileExists(temporaryFile(L"a.csv")));
  }
}

struct nameRow {
  const wchar_t* path;
  const wchar_t* sheetFile;
  int line = __builtin_LINE();
};

const nameRow nameRows[] = {
    nameRow{L"a.xlsx",         L"a.csv"    },
    nameRow{L"d.x/a.b.xlsx",   L"a.b.csv"  },
    nameRow{L"D:\\d/e\\a.xls", L"a.csv"    },
    nameRow{L"d/book",         L"book.csv" },
    nameRow{L"d/.xlsx",        L".xlsx.csv"},
    nameRow{L"d/a.",           L"a.csv"    },
};

TEST_F(converterReader, namesOfTheSheetFile) {
  for (const nameRow& row : nameRows) {
    const testing::ScopedTrace trace(__FILE__, row.line, printable(row.path));
    converterWrites(row.sheetFile, L"a\n1\n");
    tableReader_xlsOLE reader(optionsFor(row.path));
    EXPECT_TRUE(reader.read());
    EXPECT_TRUE(temporaryFolderIsEmpty());
  }
}

TEST_F(converterReader, anotherDirectionFailsAfterTheConversion) {
  converterWrites(L"a.csv", L"a\n1\n");
  const environmentSetter leftover(L"VOK_FAKE_LEFTOVER", temporaryFile(L"a.xlsx"));
  for (const std::int32_t direction : {1, 2, -1}) {
    tableReaderOptions options = optionsFor(L"a.xls");
    options.direction = direction;
    tableReader_xlsOLE reader(options);
    EXPECT_FALSE(reader.read());
    EXPECT_EQ(describe(reader), "failed");
    EXPECT_EQ(arguments().substr(0, 6), "a.xls\n");
    EXPECT_TRUE(temporaryFolderIsEmpty());
  }
}

TEST_F(converterReader, withoutAConverterNothingIsRead) {
  converterWrites(L"a.csv", L"a\n1\n");
  testSupport::writeFile(temporaryFile(L"a.csv"), "stale\n1\n");
  const mainModule elsewhere(folder_.file(L"none/suite.exe"));
  tableReader_xlsOLE reader(optionsFor(L"a.xlsx"));
  EXPECT_FALSE(reader.read());
  EXPECT_FALSE(reader.readOnlyHeaders());
  EXPECT_TRUE(platform::fileExists(temporaryFile(L"a.csv")));
  std::vector<std::wstring> tables = {L"before"};
  reader.tableList(tables);
  EXPECT_TRUE(tables.empty());
}

// --- sheets ---

TEST_F(converterReader, tableListTakesTheFirstLine) {
  converterWrites(L"a_tabList.csv", L"Лист1$$two words$\nsecond$line\n");
  tableReader_xlsOLE reader(optionsFor(L"d/a.xlsx"));
  std::vector<std::wstring> tables = {L"before"};
  reader.tableList(tables);
  EXPECT_EQ(describe(tables), "Лист1|two words");
  EXPECT_TRUE(reader.isOK());
  EXPECT_TRUE(temporaryFolderIsEmpty());
  EXPECT_NE(arguments().find("\n-tablelist\n-delimiter\n$\n"), std::string::npos);
}

TEST_F(converterReader, tableListWithoutAList) {
  tableReader_xlsOLE reader(optionsFor(L"a.xlsx"));
  std::vector<std::wstring> tables = {L"before"};
  reader.tableList(tables);
  EXPECT_TRUE(tables.empty());
}

TEST_F(converterReader, setTableNamesTheSheetOfLaterReads) {
  converterWrites(L"a.csv", L"a\n1\n");
  tableReader_xlsOLE reader(optionsFor(L"a.xlsx", L"one"));
  reader.setTable(L"two");
  EXPECT_TRUE(reader.read());
  EXPECT_NE(arguments().find("\n-table\ntwo\n"), std::string::npos);
  EXPECT_TRUE(reader.isSameFile(optionsFor(L"a.xlsx", L"two")));
}

TEST(tableReader_xlsOLE, capabilities) {
  tableReader_xlsOLE reader(optionsFor(L"a.xlsx"));
  const tableRW::capability_options flags = reader.get_capabilities();
  const auto& [first, second, third, fourth] = flags;
  EXPECT_EQ(std::vector<bool>({first, second, third, fourth}),
            std::vector<bool>({true, false, false, true}));
}

TEST(tableReader_xlsOLE, isBuiltForItsNumber) {
  tableReaderOptions options = optionsFor(L"a.xlsx");
  options.file_type = tableRW::fileTypeXlsConverter;
  const testSupport::ownedReader reader = testSupport::openReader(options);
  EXPECT_NE(dynamic_cast<tableReader_xlsOLE*>(reader.get()), nullptr);
}

// --- short memory ---

TEST_F(converterReader, nothingIsLeftWhateverAllocationFails) {
  converterWrites(L"a.csv", L"a value that needs memory of its own$b\n1$2\n3\n");
  tableReader_xlsOLE reader(optionsFor(L"a.xls"));
  std::vector<std::wstring> list;
  const std::function<void()> calls[] = {
      [&] { reader.read(); },
      [&] { reader.tableList(list); },
      [&] { reader.rejectedRecords([](const tableRW::rejectedRecord&) { return true; }); },
  };
  // A process for each number takes its time under Wine.
  const std::size_t step = testSupport::onWindows ? 9 : 1;
  for (std::size_t call = 0; call < std::size(calls); ++call) {
    converterWrites(call == 1 ? L"a_tabList.csv" : L"a.csv", L"a$b\n1$2\n3\n");
    if (call == 2) {
      ASSERT_TRUE(reader.read());
    }
    bool failed = true;
    for (std::size_t number = 0; failed; number += step) {
      ASSERT_LT(number, 10000u);
      {
        const testSupport::failingAllocation failing(number);
        try {
          calls[call]();
        } catch (const std::bad_alloc&) {
          EXPECT_TRUE(failing.hasFailed());
        }
        failed = failing.hasFailed();
      }
      ASSERT_TRUE(temporaryFolderIsEmpty()) << call << ' ' << number;
    }
  }
  converterWrites(L"a.csv", L"a$b\n1$2\n3\n");
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 1u);
}

}  // namespace

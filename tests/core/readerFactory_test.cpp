// The reader factory: which variant a source gets. readerFactory_options_test.cpp has the options.
//
// A variant is told apart by its dynamic type: the reader that a path got must have the type that
// the expected file type number builds. What stands behind a number, these tests need not know.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <limits>
#include <string>
#include <thread>
#include <typeindex>
#include <vector>

#include "platform/files.h"
#include "table_rw/core/converterProgram.h"
#include "table_rw/core/readerVariants.h"
#include "table_rw/core/tableReader.h"
#include "table_rw/readers/tableReader_csv.h"
#include "table_rw/readers/tableReader_dummy.h"
#include "tests/support/mainModule.h"
#include "tests/support/ownedReader.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using namespace std::string_literals;

using tableRW::tableReader;
using tableRW::tableReaderOptions;
using testSupport::describe;
using testSupport::mainModule;
using testSupport::ownedReader;
using testSupport::printable;
using testSupport::temporaryFolder;

ownedReader open(const std::wstring& path, std::int32_t fileType = 0, std::int32_t encoding = 0) {
  tableReaderOptions options(path);
  options.file_type = fileType;
  options.encoding = encoding;
  return testSupport::openReader(options);
}

std::type_index typeOf(const tableReader& reader) { return typeid(reader); }

std::type_index typeBuiltFor(std::int32_t fileType, const std::wstring& path = L"nowhere") {
  return typeOf(*open(path, fileType));
}

constexpr std::int32_t csvType = 1;
constexpr std::int32_t converterType = 2;
constexpr std::int32_t odbcType = 3;
constexpr std::int32_t petrelType = 9;
constexpr std::int32_t dummyType = 12;

// ---- explicit file types ------------------------------------------------------------------------

const tableRW::readerVariant* variantOf(std::int32_t fileType) {
  for (const tableRW::readerVariant& variant : tableRW::readerVariants())
    if (variant.fileType == fileType) return &variant;
  return nullptr;
}

TEST(readerFactory, everyNumberBuildsItsVariant) {
  temporaryFolder folder;
  const std::wstring petrel = folder.write(L"tops.txt", "# Petrel well tops\n");
  for (std::int32_t fileType = 1; fileType <= 9; ++fileType) {
    const tableRW::readerVariant* variant = variantOf(fileType);
    ASSERT_NE(variant, nullptr) << fileType;
    const ownedReader made(variant->make(tableReaderOptions(L"nowhere")));
    // Neither the extension nor the content nor the absence of a file has a say.
    for (const std::wstring& path : {std::wstring(L"nowhere"), std::wstring(L"nowhere.csv"),
                                     std::wstring(L"nowhere.dbf"), petrel})
      EXPECT_EQ(typeBuiltFor(fileType, path), typeOf(*made)) << fileType << printable(path);
  }
}

TEST(readerFactory, threeAndFourAreTheSameVariant) {
  EXPECT_EQ(typeBuiltFor(3), typeBuiltFor(4));
  EXPECT_EQ(typeBuiltFor(3, L"base.mdb"), typeBuiltFor(4, L"book.xlsx"));
}

TEST(readerFactory, oneIsDelimitedText) {
  EXPECT_EQ(typeBuiltFor(1), std::type_index(typeid(tableRW::tableReader_csv)));
}

TEST(readerFactory, anyOtherNumberBuildsTheDummy) {
  temporaryFolder folder;
  const std::wstring path = folder.write(L"table.csv", "a;b\n1;2\n");
  using limits = std::numeric_limits<std::int32_t>;
  for (const std::int32_t fileType :
       {-1, -2, 10, 11, 12, 256, 65537, limits::max(), limits::min()}) {
    EXPECT_EQ(variantOf(fileType), nullptr) << fileType;
    const ownedReader reader = open(path, fileType);
    EXPECT_EQ(typeOf(*reader), std::type_index(typeid(tableRW::tableReader_dummy))) << fileType;
    EXPECT_FALSE(reader->read()) << fileType;
    EXPECT_EQ(describe(*reader), "failed") << fileType;
  }
}

TEST(readerFactory, anExplicitTypeFailsOnlyWhenItReads) {
  temporaryFolder folder;
  const ownedReader reader = open(folder.file(L"gone.txt"), csvType);
  EXPECT_EQ(typeOf(*reader), std::type_index(typeid(tableRW::tableReader_csv)));
  EXPECT_EQ(reader->path(), folder.file(L"gone.txt"));
  EXPECT_FALSE(reader->read());
  EXPECT_FALSE(reader->readDemo(1));
  EXPECT_FALSE(reader->readOnlyHeaders());
  EXPECT_FALSE(reader->isOK());
}

// ---- choice by extension ------------------------------------------------------------------------

struct extensionRow {
  const wchar_t* extension;
  std::int32_t fileType;
  int line = __builtin_LINE();
};

// Spreadsheets have a choice of their own, below. MICROMINE shows that no Turkish rules are at
// work, which would make a dotless i of its capital I.
const extensionRow extensionRows[] = {
    extensionRow{L"dbf",       5},
    extensionRow{L"csv",       1},
    extensionRow{L"mdb",       3},
    extensionRow{L"accdb",     3},
    extensionRow{L"sqlite",    6},
    extensionRow{L"well2",     6},
    extensionRow{L"micromine", 7},
    extensionRow{L"dhdb",      8},
    extensionRow{L"DBF",       5},
    extensionRow{L"CSV",       1},
    extensionRow{L"Mdb",       3},
    extensionRow{L"ACCDB",     3},
    extensionRow{L"SQLite",    6},
    extensionRow{L"WELL2",     6},
    extensionRow{L"MICROMINE", 7},
    extensionRow{L"DhDb",      8},
};

// The variant that the table gives an extension to, whatever is asked besides.
std::vector<std::int32_t> variantsWith(const std::wstring& extension) {
  std::vector<std::int32_t> numbers;
  for (const tableRW::readerVariant& variant : tableRW::readerVariants())
    for (const wchar_t* known : variant.extensions)
      if (known != nullptr && known == extension) numbers.push_back(variant.fileType);
  return numbers;
}

TEST(readerFactory, extensions) {
  temporaryFolder folder;
  for (const extensionRow& r : extensionRows) {
    const testing::ScopedTrace trace(__FILE__, r.line, printable(r.extension));
    // A text file that names Petrel: what is not known by its extension would become that.
    const std::wstring present = folder.write(std::wstring(L"t.") + r.extension, "# Petrel\n");
    const std::wstring missing = folder.file(std::wstring(L"gone.") + r.extension);
    for (const std::wstring& path : {present, missing})
      EXPECT_EQ(typeOf(*open(path)), typeBuiltFor(r.fileType, path)) << printable(path);
    EXPECT_FALSE(platform::fileExists(missing)) << "opening a reader creates nothing";
  }
}

TEST(readerFactory, extensionsInTheTable) {
  using numbers = std::vector<std::int32_t>;
  EXPECT_EQ(variantsWith(L"dbf"), numbers{5});
  EXPECT_EQ(variantsWith(L"csv"), numbers{1});
  EXPECT_EQ(variantsWith(L"xls"), (numbers{2, 3}));
  EXPECT_EQ(variantsWith(L"xlsx"), (numbers{2, 3}));
  EXPECT_EQ(variantsWith(L"mdb"), numbers{3});
  EXPECT_EQ(variantsWith(L"accdb"), numbers{3});
  EXPECT_EQ(variantsWith(L"sqlite"), numbers{6});
  EXPECT_EQ(variantsWith(L"well2"), numbers{6});
  EXPECT_EQ(variantsWith(L"micromine"), numbers{7});
  EXPECT_EQ(variantsWith(L"dhdb"), numbers{8});
  EXPECT_EQ(variantsWith(L""), numbers{});

  std::size_t words = 0;
  for (const tableRW::readerVariant& variant : tableRW::readerVariants())
    for (const wchar_t* known : variant.extensions) words += known != nullptr ? 1 : 0;
  EXPECT_EQ(words, 12u) << "no other extension is known";
}

// Names that no extension fits: the content decides, so the same name gives three answers.
struct unknownRow {
  const char* name;
  std::wstring fileName;
  int line = __builtin_LINE();
};

const unknownRow unknownRows[] = {
    unknownRow{"another extension",                  L"table.txt"               },
    unknownRow{"no dot",                             L"table"                   },
    unknownRow{"the dot comes last",                 L"table."                  },
    unknownRow{"only the last dot counts",           L"table.csv.dat"           },
    unknownRow{"the beginning of a known one",       L"table.cs"                },
    unknownRow{"more than a known one",              L"table.csvx"              },
    unknownRow{"a spreadsheet with macros",          L"table.xlsm"              },
    unknownRow{"a known one without its digit",      L"table.well"              },
    unknownRow{"a blank before it",                  L"table. csv"              },
    unknownRow{"an extension without a dot",         L"dbf"                     },
    unknownRow{"a Cyrillic letter that looks alike", L"table.\u0441sv"          },
    unknownRow{"Cyrillic capitals",                  L"table.\u0414\u0411\u0424"},
    unknownRow{"the Turkish capital I with a dot",   L"table.M\u0130CROMINE"    },
    unknownRow{"the dotless i",                      L"table.m\u0131cromine"    },
    unknownRow{"the long s",                         L"table.c\u017Fv"          },
    unknownRow{"full-width letters",                 L"table.\uFF23\uFF33\uFF36"},
};

TEST(readerFactory, unknownExtensionsAreDecidedByTheContent) {
  for (const unknownRow& r : unknownRows) {
    const testing::ScopedTrace trace(__FILE__, r.line, r.name);
    temporaryFolder folder;
    const std::wstring path = folder.file(r.fileName);
    EXPECT_EQ(typeOf(*open(path)), typeBuiltFor(dummyType)) << "missing";
    testSupport::writeFile(path, "a;b\n");
    EXPECT_EQ(typeOf(*open(path)), typeBuiltFor(csvType)) << "delimited text";
    testSupport::writeFile(path, "# Petrel\n");
    EXPECT_EQ(typeOf(*open(path)), typeBuiltFor(petrelType)) << "a Petrel table";
  }
}

TEST(readerFactory, aDotInAFolderNameIsNoExtension) {
  temporaryFolder folder;
  for (const std::wstring name : {L"data.csv", L"data.dbf", L"data.xlsx"}) {
    ASSERT_TRUE(platform::createFolder(folder.file(name)));
    testSupport::writeFile(folder.file(name + L"/tops"), "# Petrel\n");
    testSupport::writeFile(folder.file(name + L"/table"), "a;b\n");
    for (const wchar_t* separator : {L"/", L"\\"}) {
      const std::wstring inside = folder.file(name + separator);
      EXPECT_EQ(typeOf(*open(inside + L"tops")), typeBuiltFor(petrelType)) << printable(inside);
      EXPECT_EQ(typeOf(*open(inside + L"table")), typeBuiltFor(csvType)) << printable(inside);
      EXPECT_EQ(typeOf(*open(inside + L"gone")), typeBuiltFor(dummyType)) << printable(inside);
    }
  }
}

TEST(readerFactory, aNameThatIsOnlyAnExtension) {
  EXPECT_EQ(typeOf(*open(L".csv")), typeBuiltFor(csvType));
  EXPECT_EQ(typeOf(*open(L"dir/.dbf")), typeBuiltFor(5));
}

TEST(readerFactory, aFolderIsNoSource) {
  temporaryFolder folder;
  ASSERT_TRUE(platform::createFolder(folder.file(L"wells")));
  ASSERT_TRUE(platform::createFolder(folder.file(L"wells.csv")));
  EXPECT_EQ(typeOf(*open(folder.file(L"wells"))), typeBuiltFor(dummyType));
  EXPECT_EQ(typeOf(*open(folder.file(L"wells/"))), typeBuiltFor(dummyType));
  const ownedReader reader = open(folder.file(L"wells.csv"));
  EXPECT_EQ(typeOf(*reader), typeBuiltFor(csvType));
  EXPECT_FALSE(reader->read());
  EXPECT_FALSE(reader->isOK());
}

TEST(readerFactory, anEmptyPathIsNoSource) {
  EXPECT_EQ(typeOf(*open(L"")), typeBuiltFor(dummyType));
  EXPECT_EQ(typeOf(*open(L".")), typeBuiltFor(dummyType));
}

// ---- choice by content --------------------------------------------------------------------------

struct sniffRow {
  const char* name;
  std::string bytes;
  std::int32_t fileType;
  int line = __builtin_LINE();
};

const std::string shortOfAChunk(1020, 'x');
const std::string wholeChunk(1023, 'x');
const std::string manyChunks(5000, 'x');

const sniffRow sniffRows[] = {
    sniffRow{"an empty file",                         "",                            csvType   },
    sniffRow{"an empty line",                         "\n",                          csvType   },
    sniffRow{"no marker",                             "a;b\n1;2\n",                  csvType   },
    sniffRow{"the marker at the beginning",           "# Petrel well tops\n1 2\n",   petrelType},
    sniffRow{"the marker alone, no line end",         "# Petrel",                    petrelType},
    sniffRow{"the marker in the middle",              "VERSION 1 # Petrel 2016\n",   petrelType},
    sniffRow{"the marker at the end, CR LF",          "made by # Petrel\r\n1 2\r\n", petrelType},
    sniffRow{"the marker inside a value",             "a;x# PetrelX;c\n",            petrelType},
    sniffRow{"two signs",                             "## Petrel\n",                 petrelType},
    sniffRow{"no blank",                              "#Petrel\n",                   csvType   },
    sniffRow{"two blanks",                            "#  Petrel\n",                 csvType   },
    sniffRow{"a TAB for the blank",                   "#\tPetrel\n",                 csvType   },
    sniffRow{"small letters",                         "# petrel\n",                  csvType   },
    sniffRow{"capitals",                              "# PETREL\n",                  csvType   },
    sniffRow{"cut short",                             "# Petre\n",                   csvType   },
    sniffRow{"over two lines",                        "# \nPetrel\n",                csvType   },
    sniffRow{"only in the second line",               "a;b\n# Petrel\n",             csvType   },
    sniffRow{"below an empty line",                   "\n# Petrel\n",                csvType   },
    sniffRow{"below an empty line, CR LF",            "\r\n# Petrel\r\n",            csvType   },
    sniffRow{"behind a CR, which ends no line",       "a\r# Petrel\n",               petrelType},
    sniffRow{"behind the byte that ends a text file", "\x1A# Petrel\n",              csvType   },
    sniffRow{"before the byte that ends a text file", "# Petrel\x1A",                petrelType},
    sniffRow{"far behind in a long line",             manyChunks + "# Petrel\n",     petrelType},
    sniffRow{"across the end of the first chunk",     shortOfAChunk + "# Petrel\n",  petrelType},
    sniffRow{"below a line of exactly one chunk",     wholeChunk + "\n# Petrel\n",   csvType   },
    sniffRow{"behind a NUL, lost with its chunk",     "a\0# Petrel\nb\n"s,           csvType   },
    sniffRow{"below a NUL, which joins the lines",    "a\0b\n# Petrel\n"s,           petrelType},
    sniffRow{"behind a byte-order mark",              "\xEF\xBB\xBF# Petrel\n",      petrelType},
    sniffRow{"behind a byte that is no UTF-8",        "\xFF# Petrel\n",              petrelType},
};

struct encodedRow {
  const char* name;
  std::int32_t encoding;
  std::string bytes;
  std::int32_t fileType;
  int line = __builtin_LINE();
};

// The seven-bit page drops the eighth bit, so only under it the bytes A3 A0 ... name Petrel.
// Declared UTF-16 is read in the system's page: the NUL behind the first letter cuts the line.
const encodedRow encodedRows[] = {
    encodedRow{"behind Cyrillic in 1251",    8,  "\xD1\xEA\xE2 # Petrel\n",            petrelType},
    encodedRow{"decoded as ASCII",           17, "\xA3\xA0\xD0\xE5\xF4\xF2\xE5\xEC\n", petrelType},
    encodedRow{"the same bytes as UTF-8",    0,  "\xA3\xA0\xD0\xE5\xF4\xF2\xE5\xEC\n", csvType   },
    encodedRow{"the same bytes in 1251",     8,  "\xA3\xA0\xD0\xE5\xF4\xF2\xE5\xEC\n", csvType   },
    encodedRow{"UTF-16 is not decoded",      2,  "#\0 \0P\0e\0t\0r\0e\0l\0\n\0"s,      csvType   },
    encodedRow{"declared UTF-16 and narrow", 1,  "# Petrel\n",                         petrelType},
    encodedRow{"declared UTF-32 and narrow", 6,  "# Petrel\n",                         petrelType},
    encodedRow{"in the system's page",       18, "# Petrel\n",                         petrelType},
};

TEST(readerFactory, firstLine) {
  temporaryFolder folder;
  for (const sniffRow& r : sniffRows) {
    const testing::ScopedTrace trace(__FILE__, r.line, r.name);
    const std::wstring path = folder.write(L"table.txt", r.bytes);
    EXPECT_EQ(typeOf(*open(path)), typeBuiltFor(r.fileType));
    EXPECT_TRUE(platform::removeFile(path)) << "the file was closed again";
  }
}

TEST(readerFactory, firstLineInTheEncodingOfTheOptions) {
  temporaryFolder folder;
  for (const encodedRow& r : encodedRows) {
    const testing::ScopedTrace trace(__FILE__, r.line, r.name);
    const std::wstring path = folder.write(L"table.txt", r.bytes);
    EXPECT_EQ(typeOf(*open(path, 0, r.encoding)), typeBuiltFor(r.fileType));
  }
}

TEST(readerFactory, onlyThePetrelRowLooksAtTheFirstLine) {
  for (const tableRW::readerVariant& variant : tableRW::readerVariants()) {
    const std::wstring marker = variant.firstLineMarker == nullptr ? L"" : variant.firstLineMarker;
    EXPECT_EQ(marker, variant.fileType == petrelType ? L"# Petrel" : L"") << variant.fileType;
  }
}

TEST(readerFactory, aKnownExtensionIsNotSniffed) {
  temporaryFolder folder;
  const ownedReader reader = open(folder.write(L"tops.csv", "# Petrel;b\n1;2\n"));
  EXPECT_EQ(typeOf(*reader), typeBuiltFor(csvType));
  EXPECT_TRUE(reader->read());
  EXPECT_EQ(describe(*reader), "fields # Petrel|b  rows 1|2  ok");
}

TEST(readerFactory, theDirectionHasNoSay) {
  temporaryFolder folder;
  tableReaderOptions options(folder.write(L"table.txt", "a;b\n"));
  options.direction = 1;
  const ownedReader reader = testSupport::openReader(options);
  EXPECT_EQ(typeOf(*reader), typeBuiltFor(csvType));
  EXPECT_FALSE(reader->read());
}

// ---- spreadsheets -------------------------------------------------------------------------------

bool isUsable(const tableRW::readerVariant& variant) {
  return variant.usable == nullptr || variant.usable();
}

void expectSpreadsheetsGoTo(std::int32_t fileType) {
  for (const wchar_t* name : {L"gone.xls", L"gone.xlsx", L"gone.XLSX", L"Gone.Xls"})
    EXPECT_EQ(typeOf(*open(name)), typeBuiltFor(fileType)) << printable(name);
  // The table tells it too, and of both variants apart even where one class stands for both.
  ASSERT_NE(variantOf(converterType), nullptr);
  ASSERT_NE(variantOf(odbcType), nullptr);
  EXPECT_EQ(isUsable(*variantOf(converterType)), fileType == converterType);
  EXPECT_TRUE(isUsable(*variantOf(odbcType)));
}

TEST(readerFactory, spreadsheetsGoToTheConverterWhileItIsThere) {
  temporaryFolder folder;
  const mainModule module(folder.file(L"suite.exe"));
  expectSpreadsheetsGoTo(odbcType);
  // It is looked for at every opening; nothing is remembered.
  const std::wstring converter = folder.write(L"vok_xls2csv.exe", "");
  expectSpreadsheetsGoTo(converterType);
  ASSERT_TRUE(platform::removeFile(converter));
  expectSpreadsheetsGoTo(odbcType);
}

TEST(readerFactory, theConverterStandsBesideTheMainModule) {
  temporaryFolder folder;
  ASSERT_TRUE(platform::createFolder(folder.file(L"bin")));
  folder.write(L"bin/vok_xls2csv.exe", "");
  {
    const mainModule module(folder.file(L"suite.exe"));  // one folder above
    expectSpreadsheetsGoTo(odbcType);
  }
  {
    const mainModule module(folder.file(L"bin/suite.exe"));
    expectSpreadsheetsGoTo(converterType);
  }
  {
    const mainModule module(folder.file(L"bin\\suite.exe"));
    expectSpreadsheetsGoTo(converterType);
  }
  {
    const mainModule module(folder.file(L"bin"));  // names the module, not its folder
    expectSpreadsheetsGoTo(odbcType);
  }
}

TEST(readerFactory, theConverterIsOnlyForSpreadsheets) {
  temporaryFolder folder;
  const mainModule module(folder.file(L"suite.exe"));
  folder.write(L"vok_xls2csv.exe", "");
  for (const wchar_t* name : {L"gone.mdb", L"gone.accdb", L"gone.MDB"})
    EXPECT_EQ(typeOf(*open(name)), typeBuiltFor(odbcType)) << printable(name);
  EXPECT_EQ(typeOf(*open(L"gone.csv")), typeBuiltFor(csvType));
  for (const tableRW::readerVariant& variant : tableRW::readerVariants())
    EXPECT_TRUE(variant.usable == nullptr || variant.fileType == converterType) << variant.fileType;
}

TEST(readerFactory, anExplicitTypeDoesNotAskForTheConverter) {
  temporaryFolder folder;
  const std::type_index converterReader = typeBuiltFor(converterType);
  const std::type_index odbcReader = typeBuiltFor(odbcType);
  const mainModule module(folder.file(L"suite.exe"));
  EXPECT_EQ(typeBuiltFor(converterType, L"gone.xlsx"), converterReader);
  folder.write(L"vok_xls2csv.exe", "");
  EXPECT_EQ(typeBuiltFor(odbcType, L"gone.xlsx"), odbcReader);
}

struct converterRow {
  const char* name;
  const wchar_t* module;
  const wchar_t* converter;
  int line = __builtin_LINE();
};

const converterRow converterRows[] = {
    converterRow{"backslashes",             L"C:\\suite\\main.exe", L"C:\\suite\\vok_xls2csv.exe"},
    converterRow{"slashes",                 L"/opt/suite/main",     L"/opt/suite/vok_xls2csv.exe"},
    converterRow{"the last is a slash",     L"C:\\suite/main.exe",  L"C:\\suite/vok_xls2csv.exe" },
    converterRow{"the last is a backslash", L"/suite\\main",        L"/suite\\vok_xls2csv.exe"   },
    converterRow{"a dot and a blank",       L"C:\\a b.c\\main",     L"C:\\a b.c\\vok_xls2csv.exe"},
    converterRow{"nothing but a folder",    L"/opt/suite/",         L"/opt/suite/vok_xls2csv.exe"},
    converterRow{"no separator",            L"main.exe",            L"vok_xls2csv.exe"           },
    converterRow{"Cyrillic",                L"/\u0414/main",        L"/\u0414/vok_xls2csv.exe"   },
};

TEST(readerFactory, whereTheConverterIsLookedFor) {
  for (const converterRow& r : converterRows) {
    const testing::ScopedTrace trace(__FILE__, r.line, r.name);
    const mainModule module(r.module);
    EXPECT_EQ(printable(tableRW::converterProgramPath()), printable(r.converter));
  }
}

// ---- the end of a reader ------------------------------------------------------------------------

TEST(readerFactory, closeAcceptsNull) { tableReader::close(nullptr); }

TEST(readerFactory, closeDestroysTheDerivedReader) {
  class witness : public tableRW::tableReader_dummy {
   public:
    explicit witness(bool& gone) : tableReader_dummy(tableReaderOptions()), gone_(gone) {}
    witness(const witness&) = delete;
    witness& operator=(const witness&) = delete;
    ~witness() override { gone_ = true; }

   private:
    bool& gone_;
  };
  bool gone = false;
  tableReader::close(new witness(gone));
  EXPECT_TRUE(gone);
}

TEST(readerFactory, threadsDoNotMeet) {
  temporaryFolder folder;
  folder.write(L"tops.txt", "# Petrel\n");
  folder.write(L"table.txt", "a;b\n1;2\n");
  const std::type_index csv = typeBuiltFor(csvType);
  const std::type_index petrel = typeBuiltFor(petrelType);
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int n = 0; n < 50; ++n) {
        const ownedReader table = open(folder.file(L"table.txt"));
        if (typeOf(*table) != csv || !table->read() || table->count() != 1) ++wrong;
        if (typeOf(*open(folder.file(L"tops.txt"))) != petrel) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace

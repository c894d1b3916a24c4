// tableReader_micromineDat: what a host sees of a data file, and how reads follow each other. What the bytes
// mean is tested at vok_file_micromine.
#include "table_rw/readers/tableReader_micromineDat.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/vok_basic.h"
#include "tests/support/micromineBuilder.h"
#include "tests/support/ownedReader.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using namespace std::string_literals;
using tableRW::tableReader_micromineDat;
using tableRW::tableReaderOptions;
using testSupport::describe;
using testSupport::micromineBuilder;

class micromineReader : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(vo_options_set_system_code_page(1251), 1); }
  void TearDown() override { vo_options_set_system_code_page(0); }

  tableReader_micromineDat readerOf(const std::string& bytes) {
    return tableReader_micromineDat(tableReaderOptions(folder_.write(L"t.dat", bytes)));
  }
  static micromineBuilder twoWells() {
    return micromineBuilder("WELL C5, DEPTH N8.2, X R8.3").row("W-1|1.50|2.5").row("W-2||");
  }

  testSupport::temporaryFolder folder_;
};

TEST_F(micromineReader, namesTypesAndRows) {
  tableReader_micromineDat reader = readerOf(twoWells().bytes());
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields WELL|DEPTH:number|X:number  rows W-1|1.50|2.5 / W-2||  ok");
}

TEST_F(micromineReader, everyKindOfNumberIsNumericAndTextIsNot) {
  tableReader_micromineDat reader =
      readerOf(micromineBuilder("C C1, N N1, R R8, F F4, L L4, S S2").bytes());
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields C|N:number|R:number|F:number|L:number|S:number  ok");
}

TEST_F(micromineReader, valuesAreTrimmed) {
  tableReader_micromineDat reader =
      readerOf(micromineBuilder("A C12, B C12").record(" \t\n\r\v\fa b \t\r  \xA0x   ").bytes());
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields A|B  rows a b|\xC2\xA0x  ok");
}

TEST_F(micromineReader, noRecordsSetsTheFlagAndOnlyHeadersDoesNot) {
  tableReader_micromineDat reader = readerOf(micromineBuilder("A C3, B N4").bytes());
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields A|B:number  ok");
  tableReader_micromineDat other = readerOf(micromineBuilder("A C3, B N4").bytes());
  EXPECT_TRUE(other.readOnlyHeaders());
  EXPECT_EQ(describe(other), "fields A|B:number  failed");
  EXPECT_FALSE(other.isOK());
}

TEST_F(micromineReader, noFieldsLeavesTheFlagToo) {
  tableReader_micromineDat reader = readerOf(micromineBuilder("").bytes() + "rubbish");
  EXPECT_TRUE(reader.read());
  EXPECT_FALSE(reader.isOK());
  EXPECT_EQ(reader.fieldCount(), 0u);
  EXPECT_EQ(reader.count(), 0u);
}

TEST_F(micromineReader, aRecordOfEmptyValuesIsKept) {
  tableReader_micromineDat reader =
      readerOf(micromineBuilder("A C3, B N4, X R8").row("||").row("a||").row("||").bytes());
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields A|B:number|X:number  rows || / a|| / ||  ok");
}

TEST_F(micromineReader, aSecondReadDoublesTheTypesAlone) {
  class peeking : public tableReader_micromineDat {
   public:
    using tableReader_micromineDat::tableReader_micromineDat;
    std::size_t types() const { return fieldTypes_.size(); }
  };
  peeking reader(tableReaderOptions(folder_.write(L"t.dat", twoWells().bytes())));
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.types(), 3u);
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.types(), 6u);
  EXPECT_EQ(reader.fieldCount(), 3u);
  EXPECT_EQ(reader.count(), 2u);
  EXPECT_EQ(reader.fieldType(3), tableRW::fldText) << "the first field's type once more";
  EXPECT_EQ(reader.fieldType(4), tableRW::fldNumber);
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(reader.types(), 9u);
}

TEST_F(micromineReader, aPreviewReadsEverything) {
  tableReader_micromineDat reader = readerOf(twoWells().bytes());
  for (const int limit : {1, 0, -1, -2}) {
    EXPECT_TRUE(reader.readDemo(limit));
    EXPECT_EQ(reader.count(), 2u) << limit;
    EXPECT_TRUE(reader.isOK());
  }
}

TEST_F(micromineReader, headersOnlyPersistsUntilAPreview) {
  tableReader_micromineDat reader = readerOf(twoWells().bytes());
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 0u);
  EXPECT_FALSE(reader.isOK());
  EXPECT_TRUE(reader.readDemo(1));
  EXPECT_EQ(reader.count(), 2u);
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 2u);
  EXPECT_TRUE(reader.isOK());
}

TEST_F(micromineReader, headersAndPreviewReadThroughTheVirtualRead) {
  class counting : public tableReader_micromineDat {
   public:
    using tableReader_micromineDat::tableReader_micromineDat;
    bool read() override {
      ++reads;
      return false;
    }
    int reads = 0;
  };
  counting reader{tableReaderOptions()};
  EXPECT_FALSE(reader.readOnlyHeaders());
  EXPECT_FALSE(reader.readDemo(1));
  EXPECT_EQ(reader.reads, 2);
}

TEST_F(micromineReader, headersLeaveTheFileOpenAndCopiesShareIt) {
  tableReader_micromineDat reader = readerOf(twoWells().bytes());
  EXPECT_TRUE(reader.readOnlyHeaders());
  {
    tableReader_micromineDat copy = reader;
    EXPECT_EQ(copy.fieldCount(), 3u);
    EXPECT_TRUE(copy.readDemo(-1));
    EXPECT_EQ(copy.count(), 2u);
  }
  EXPECT_TRUE(reader.readOnlyHeaders()) << "others may read the open file";
  EXPECT_EQ(reader.fieldCount(), 3u);
}

TEST_F(micromineReader, textIsInTheFilesCodePageElseInTheSystems) {
  tableReader_micromineDat named =
      readerOf(micromineBuilder("\xC3 C2").codePage("ibm-5348_P100-1997").row("\xC6").bytes());
  EXPECT_TRUE(named.read());
  EXPECT_EQ(describe(named), "fields \xC3\x83  rows \xC3\x86  ok");
  tableReader_micromineDat system =
      readerOf(micromineBuilder("\xC3 C2").standard().row("\xC6").bytes());
  EXPECT_TRUE(system.read());
  EXPECT_EQ(describe(system), "fields \xD0\x93  rows \xD0\x96  ok");
  tableReader_micromineDat utf8 =
      readerOf(micromineBuilder("A C9").codePage("UTF-8").row("\xD0\x96\xFFz").bytes());
  EXPECT_TRUE(utf8.read());
  EXPECT_EQ(describe(utf8), "fields A  rows \xD0\x96\xEF\xBF\xBDz  ok") << "broken UTF-8";
}

TEST_F(micromineReader, aFileThatIsNone) {
  tableReader_micromineDat reader = readerOf("no table at all");
  EXPECT_FALSE(reader.read());
  EXPECT_FALSE(reader.readDemo(1));
  EXPECT_FALSE(reader.readOnlyHeaders());
  EXPECT_EQ(describe(reader), "failed");
}

TEST_F(micromineReader, aReadThatFailsLeavesNothingOfTheOneBeforeButItsTypes) {
  tableReader_micromineDat reader = readerOf(twoWells().bytes());
  EXPECT_TRUE(reader.read());
  folder_.write(L"t.dat", "broken");
  EXPECT_FALSE(reader.read());
  EXPECT_FALSE(reader.isOK());
  EXPECT_EQ(reader.fieldCount(), 0u);
  EXPECT_EQ(reader.count(), 0u);
  EXPECT_EQ(reader.fieldType(1), tableRW::fldNumber);
}

TEST_F(micromineReader, theListOfTablesNeedsNoFile) {
  tableReader_micromineDat reader{tableReaderOptions(folder_.file(L"missing.dat"))};
  std::vector<std::wstring> tables = {L"old"};
  reader.tableList(tables);
  EXPECT_EQ(tables, std::vector<std::wstring>{L"micromine_dat"});
  EXPECT_FALSE(reader.read());
}

TEST_F(micromineReader, capabilities) {
  tableReader_micromineDat reader{tableReaderOptions()};
  const tableRW::capability_options offered = reader.get_capabilities();
  EXPECT_TRUE(offered.offersTables);
  EXPECT_TRUE(offered.offersPreview);
  EXPECT_FALSE(offered.offersTextOptions);
  EXPECT_FALSE(offered.offersPositions);
}

TEST_F(micromineReader, theTablesNameIsIgnored) {
  tableReader_micromineDat reader = readerOf(twoWells().bytes());
  reader.setTable(L"other");
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 2u);
  EXPECT_TRUE(reader.isSameFile(tableReaderOptions(reader.path())));
}

TEST_F(micromineReader, isChosenByExtensionAndByNumber) {
  const std::string bytes = micromineBuilder("A C1").row("x").bytes();
  tableReaderOptions options(folder_.write(L"T.MICROMINE", bytes));
  testSupport::ownedReader byExtension = testSupport::openReader(options);
  EXPECT_TRUE(byExtension->read());
  EXPECT_EQ(describe(*byExtension), "fields A  rows x  ok");
  options.path = folder_.write(L"t.dat", bytes);
  options.file_type = tableRW::fileTypeMicromineData;
  testSupport::ownedReader byNumber = testSupport::openReader(options);
  EXPECT_TRUE(byNumber->read());
  EXPECT_EQ(describe(*byNumber), "fields A  rows x  ok");
}

}  // namespace

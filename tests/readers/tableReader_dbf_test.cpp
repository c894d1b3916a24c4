// tableReader_dbf: what a host sees of a table. What the bytes of each field mean is tested at vok_file_dbf.
#include "table_rw/readers/tableReader_dbf.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/vok_basic.h"
#include "tests/support/dbfBuilder.h"
#include "tests/support/openedDbf.h"
#include "tests/support/ownedReader.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using tableRW::tableReader_dbf;
using tableRW::tableReaderOptions;
using testSupport::dbfBuilder;
using testSupport::describe;

class dbfReader : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(vo_options_set_system_code_page(1251), 1); }
  void TearDown() override { vo_options_set_system_code_page(0); }

  tableReader_dbf readerOf(const std::string& bytes) {
    return tableReader_dbf(tableReaderOptions(folder_.write(L"t.dbf", bytes)));
  }

  static std::string tenRecords() {
    dbfBuilder builder("A N4");
    for (int i = 0; i < 10; ++i) builder.row(std::to_string(i));
    return builder.bytes();
  }

  testSupport::temporaryFolder folder_;
};

TEST_F(dbfReader, namesTypesAndRows) {
  tableReader_dbf reader =
      readerOf(dbfBuilder("WELL C5, DEPTH N8.2").row("W-1|1.50").row("W-2|").bytes());
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields WELL|DEPTH:number  rows W-1|1.50 / W-2|  ok");
}

TEST_F(dbfReader, numericTypesAreTheCodes2And6To8) {
  tableReader_dbf reader = readerOf(
      dbfBuilder(
          "C C1, N N1, D D8, L L1, M M4, F F1, I I4, P +4, B B8, O O8, Y Y8, T T8, Q @8, X X1",
          0x30)
          .bytes());
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(
      describe(reader),
      "fields C|N:number|D|L|M|F:number|I:number|P:number|B:number|O:number|Y:number|T|Q|X  ok");
}

TEST_F(dbfReader, noRecords) {
  tableReader_dbf reader = readerOf(dbfBuilder("A C3, B N4").bytes());
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields A|B:number  ok");
}

TEST_F(dbfReader, noFields) {
  tableReader_dbf reader = readerOf(dbfBuilder("").record("").record("").bytes());
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "rows () / ()  ok");
}

TEST_F(dbfReader, noValueIsAnEmptyTextAndNeverAMissingCell) {
  tableReader_dbf reader =
      readerOf(dbfBuilder("A C3, B N4, D D8").row("||").row("|****|00000000").bytes());
  EXPECT_TRUE(reader.read());
  std::vector<std::wstring> row;
  for (std::size_t i = 0; i < 2; ++i) {
    reader.getRow(i, row);
    EXPECT_EQ(row, std::vector<std::wstring>(3));
  }
}

TEST_F(dbfReader, aDemoOfSomeRecords) {
  tableReader_dbf reader = readerOf(tenRecords());
  EXPECT_TRUE(reader.readDemo(3));
  EXPECT_EQ(describe(reader), "fields A:number  rows 0 / 1 / 2  ok");
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 10u) << "the limit does not outlive its read";
}

TEST_F(dbfReader, aDemoOfNothingIsTheWholeTable) {
  for (const int n : {0, -5, 10, 11, 2147483647}) {
    tableReader_dbf reader = readerOf(tenRecords());
    EXPECT_TRUE(reader.readDemo(n));
    EXPECT_EQ(reader.count(), 10u) << n;
  }
}

TEST_F(dbfReader, deletedRecordsDoNotCountForTheLimit) {
  tableReader_dbf reader =
      readerOf(dbfBuilder("A C1").row("1", '*').row("2").row("3", '*').row("4").row("5").bytes());
  EXPECT_TRUE(reader.readDemo(2));
  EXPECT_EQ(describe(reader), "fields A  rows 2 / 4  ok");
}

TEST_F(dbfReader, valuesAreNotTrimmed) {
  tableReader_dbf reader = readerOf(dbfBuilder("A C6").row("  x").bytes());
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.value(std::size_t{0}, 0), L"  x");
}

TEST_F(dbfReader, textIsDecodedFromTheSystemsCodePage) {
  tableReader_dbf reader =
      readerOf(dbfBuilder("\xC6 C34").row("\xC6\xC8\xCB\xC0 1, a text longer than a step").bytes());
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields Ж  rows ЖИЛА 1, a text longer than a step  ok");
  ASSERT_EQ(vo_options_set_system_code_page(866), 1);
  tableReader_dbf other = readerOf(dbfBuilder("\x86 C4").row("\x86\x88\x8B\x80").bytes());
  EXPECT_TRUE(other.read());
  EXPECT_EQ(describe(other), "fields Ж  rows ЖИЛА  ok");
}

TEST_F(dbfReader, utf8AndWhatIsBrokenInIt) {
  ASSERT_EQ(vo_options_set_system_code_page(65001), 1);
  tableReader_dbf reader =
      readerOf(dbfBuilder("A C30").row("Жила").row("\xD0").row("a\xFFz").row("\U0001F600").bytes());
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(describe(reader), "fields A  rows Жила / \uFFFD / a\uFFFDz / \U0001F600  ok");
}

TEST_F(dbfReader, asciiReplacesWhatItLacks) {
  ASSERT_EQ(vo_options_set_system_code_page(20127), 1);
  tableReader_dbf reader = readerOf(dbfBuilder("A C30").row("ab\xC6").bytes());
  EXPECT_TRUE(reader.read());
  std::wstring decoded;
  Tvo_std_wstring_adapter(decoded).receive_narrow("ab\xC6");
  EXPECT_EQ(reader.value(std::size_t{0}, 0), decoded);
}

// The rows are those of the steps that were agreed on: one vo_dbf_get_str after the other, each decoded.
TEST_F(dbfReader, agreesWithTheOperationsOneByOne) {
  std::string bytes = dbfBuilder("A C40, B N8.2, D D8, L L1").row("x|1").bytes();
  bytes.pop_back();
  for (int byte = 0; byte < 256; ++byte)
    bytes += " \xC6" + std::string(1, static_cast<char>(byte)) +
             "text that goes on and on and on for long " + "  12.5  20240229T";
  tableReader_dbf reader = readerOf(bytes + "\x1A");
  EXPECT_TRUE(reader.read());
  const testSupport::ownedDbf table = testSupport::openDbf(reader.path());
  ASSERT_EQ(static_cast<std::int32_t>(reader.count()), vo_dbf_get_nr(table.get()));
  for (std::int32_t record = 0; record < vo_dbf_get_nr(table.get()); ++record) {
    for (std::uint32_t field = 0; field < vo_dbf_get_nf(table.get()); ++field) {
      std::wstring wide;
      unsigned char has = 0;
      const std::string text = vo_dbf_get_str(table.get(), field, record, &has);
      if (has != 0) Tvo_std_wstring_adapter(wide).receive_narrow(text.c_str());
      ASSERT_EQ(reader.value(field, static_cast<std::size_t>(record)), wide) << record;
    }
  }
}

TEST_F(dbfReader, headersReadTwiceDoubleTheFields) {
  tableReader_dbf reader = readerOf(dbfBuilder("A C1, B N1").row("x|1").bytes());
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(describe(reader), "fields A|B:number|A|B:number  ok");
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.fieldCount(), 2u) << "the names begin anew";
  EXPECT_EQ(reader.fieldType(std::size_t{1}), tableRW::fldNumber);
  EXPECT_EQ(describe(reader), "fields A|B:number  rows x|1  ok");
}

class exposedReader : public tableReader_dbf {
 public:
  using tableReader_dbf::tableReader_dbf;
  std::size_t typeCount() const { return fieldTypes_.size(); }
};

TEST_F(dbfReader, typesPileUpOverReads) {
  exposedReader reader(
      tableReaderOptions(folder_.write(L"t.dbf", dbfBuilder("A C1, B N1").bytes())));
  for (std::size_t run = 1; run < 4; ++run) {
    EXPECT_TRUE(reader.read());
    EXPECT_EQ(reader.fieldCount(), 2u);
    EXPECT_EQ(reader.typeCount(), 2 * run);
  }
}

TEST_F(dbfReader, headersBehindRowsLeaveCellsPastTheirEnd) {
  tableReader_dbf reader = readerOf(dbfBuilder("A C1").row("x").bytes());
  EXPECT_TRUE(reader.read());
  EXPECT_TRUE(reader.readOnlyHeaders());
  EXPECT_EQ(reader.fieldCount(), 2u);
  EXPECT_EQ(reader.value(std::size_t{0}, 0), L"x");
  EXPECT_EQ(reader.value(std::size_t{1}, 0), L"");
}

TEST_F(dbfReader, aSecondReadBeginsAnew) {
  tableReader_dbf reader = readerOf(dbfBuilder("A C1").row("x").bytes());
  EXPECT_TRUE(reader.read());
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 1u);
}

TEST_F(dbfReader, aFileThatIsNone) {
  tableReader_dbf reader = readerOf("no table at all");
  EXPECT_FALSE(reader.read());
  EXPECT_FALSE(reader.readDemo(1));
  EXPECT_FALSE(reader.readOnlyHeaders());
  EXPECT_EQ(describe(reader), "failed");
}

TEST_F(dbfReader, aReadThatFailsLeavesNothingOfTheOneBefore) {
  tableReader_dbf reader = readerOf(dbfBuilder("A C1").row("x").bytes());
  EXPECT_TRUE(reader.read());
  folder_.write(L"t.dbf", "broken");
  EXPECT_FALSE(reader.read());
  EXPECT_FALSE(reader.isOK());
  EXPECT_EQ(reader.fieldCount(), 0u);
  EXPECT_EQ(reader.count(), 0u);
}

TEST_F(dbfReader, headersThatFailLeaveTheFields) {
  tableReader_dbf reader = readerOf(dbfBuilder("A C1").row("x").bytes());
  EXPECT_TRUE(reader.read());
  folder_.write(L"t.dbf", "broken");
  EXPECT_FALSE(reader.readOnlyHeaders());
  EXPECT_EQ(describe(reader), "fields A  rows x  failed");
}

TEST_F(dbfReader, theListOfTablesNeedsNoFile) {
  tableReader_dbf reader{tableReaderOptions(folder_.file(L"missing.dbf"))};
  std::vector<std::wstring> tables = {L"old"};
  reader.tableList(tables);
  EXPECT_EQ(tables, std::vector<std::wstring>{L"dbf"});
  EXPECT_FALSE(reader.read());
}

TEST_F(dbfReader, capabilities) {
  tableReader_dbf reader{tableReaderOptions()};
  const tableRW::capability_options offered = reader.get_capabilities();
  EXPECT_FALSE(offered.offersTables);
  EXPECT_TRUE(offered.offersPreview);
  EXPECT_FALSE(offered.offersTextOptions);
  EXPECT_FALSE(offered.offersPositions);
}

TEST_F(dbfReader, theTablesNameIsIgnored) {
  tableReader_dbf reader = readerOf(dbfBuilder("A C1").row("x").bytes());
  reader.setTable(L"other");
  EXPECT_TRUE(reader.read());
  EXPECT_EQ(reader.count(), 1u);
  EXPECT_TRUE(reader.isSameFile(tableReaderOptions(reader.path())));
}

TEST_F(dbfReader, isChosenByExtensionAndByNumber) {
  const std::string bytes = dbfBuilder("A C1").row("x").bytes();
  tableReaderOptions options(folder_.write(L"T.DBF", bytes));
  testSupport::ownedReader byExtension = testSupport::openReader(options);
  EXPECT_TRUE(byExtension->read());
  EXPECT_EQ(describe(*byExtension), "fields A  rows x  ok");
  options.path = folder_.write(L"t.bin", bytes);
  options.file_type = tableRW::fileTypeDbf;
  testSupport::ownedReader byNumber = testSupport::openReader(options);
  EXPECT_TRUE(byNumber->read());
  EXPECT_EQ(describe(*byNumber), "fields A  rows x  ok");
}

}  // namespace

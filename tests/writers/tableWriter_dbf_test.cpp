// tableWriter_dbf: how a table's fields become those of a DBF file, and its oddities. What the values become
// is tested at vok_file_dbf.
#include "table_rw/writers/tableWriter_dbf.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/files.h"
#include "platform/vok_basic.h"
#include "table_rw/readers/tableReader_dbf.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using tableRW::tableWriter;
using tableRW::tableWriterOptions;
using tableRW::writerField;
using testSupport::describe;
using wideRow = std::vector<std::wstring>;
constexpr auto dateType = static_cast<tableRW::fldType>(2);
constexpr auto unknownType = static_cast<tableRW::fldType>(77);

struct writerCloser {
  void operator()(tableWriter* writer) const { tableWriter::close(writer); }
};
using ownedWriter = std::unique_ptr<tableWriter, writerCloser>;

class dbfWriter : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(vo_options_set_system_code_page(1251), 1); }
  void TearDown() override { vo_options_set_system_code_page(0); }

  ownedWriter open(std::vector<writerField> fields) {
    tableWriterOptions options;
    options.fileName = path_;
    options.fields = std::move(fields);
    return ownedWriter(tableWriter::open(options));
  }

  std::string content() {
    tableRW::tableReader_dbf reader{tableRW::tableReaderOptions(path_)};
    reader.read();
    return describe(reader);
  }

  // Letter, length and decimals of a field, as the header has them.
  std::string definition(std::size_t field) {
    const std::string bytes = testSupport::readFile(path_).value_or("");
    const std::size_t at = 32 + 32 * field;
    if (bytes.size() < at + 18) return "none";
    return bytes[at + 11] + std::to_string(static_cast<unsigned char>(bytes[at + 16])) + "." +
           std::to_string(static_cast<unsigned char>(bytes[at + 17]));
  }

  testSupport::temporaryFolder folder_;
  std::wstring path_ = folder_.file(L"t.dbf");
};

TEST_F(dbfWriter, isChosenByExtension) {
  EXPECT_NE(dynamic_cast<tableRW::tableWriter_dbf*>(open({}).get()), nullptr);
}

TEST_F(dbfWriter, fieldsAndRows) {
  ownedWriter writer = open({
      {L"WELL",             tableRW::fldText, 5},
      { L"DEPTH", tableRW::fldNumber,                8, 2}
  });
  EXPECT_TRUE(writer->addRow({L"W-1", L"1.5"}));
  EXPECT_TRUE(writer->addRow({L"W-2", L"abc"}));
  writer.reset();
  EXPECT_EQ(content(), "fields WELL|DEPTH:number  rows W-1|1.50 / W-2|  ok");
}

TEST_F(dbfWriter, types) {
  open({
           {L"A", tableRW::fldText,   5},
           {L"B", tableRW::fldNumber, 8, 2},
           {L"C",    dateType,                   8        },
           {L"D",    unknownType,                   4}
  })
      .reset();
  EXPECT_EQ(definition(0), "C5.0");
  EXPECT_EQ(definition(1), "N8.2");
  EXPECT_EQ(definition(2), "D8.0");
  EXPECT_EQ(definition(3), "C4.0");
}

TEST_F(dbfWriter, theLengthIsTheLowByteOfTheWidth) {
  open({
           {L"A", tableRW::fldText, 300},
           {L"B", tableRW::fldText, 256},
           {L"C", tableRW::fldText, -1 }
  })
      .reset();
  EXPECT_EQ(definition(0), "C44.0");
  EXPECT_EQ(definition(1), "C0.0");
  EXPECT_EQ(definition(2), "C255.0");
}

TEST_F(dbfWriter, cyrillicNamesBecomeLatinOfAtMostTenBytes) {
  open(
      {
          {L"\x0413\x043B\x0443\x0431\x0438\x043D\x0430",                                            tableRW::fldText, 5},
          {L"\x041C\x043E\x0449\x043D\x043E\x0441\x0442\x044C \x043F\x043B\x0430\x0441\x0442\x0430",
           tableRW::fldText,                                                                                           5}
  })
      .reset();
  EXPECT_EQ(content(), "fields Glubina|Moshchnost  ok");
}

TEST_F(dbfWriter, namesThatCollideAreMadeDistinct) {
  open({
           {L"Depth from top",    tableRW::fldText, 5},
           {L"DEPTH FROM bottom", tableRW::fldText, 5},
           {L"",                  tableRW::fldText, 5},
           {L"2",                 tableRW::fldText, 5}
  })
      .reset();
  EXPECT_EQ(content(), "fields Depth_from|DEPTH_FR_1|FIELD3|_2  ok");
}

TEST_F(dbfWriter, aRowOfAsManyValuesFewerAndMore) {
  ownedWriter writer = open({
      {L"A", tableRW::fldText, 2},
      {L"B", tableRW::fldText, 2}
  });
  EXPECT_TRUE(writer->addRow({L"1", L"2"}));
  EXPECT_TRUE(writer->addRow({L"3"}));
  EXPECT_FALSE(writer->addRow({L"4", L"5", L"6"}));
  EXPECT_TRUE(writer->addRow({L"7", L"8"}));
  writer.reset();
  EXPECT_EQ(content(), "fields A|B  rows 1|2 / 3| / 7|8  ok");
}

TEST_F(dbfWriter, anEmptyRowIsABlankRecord) {
  ownedWriter writer = open({
      {L"A", tableRW::fldText, 2}
  });
  EXPECT_TRUE(writer->addRow({}));
  EXPECT_TRUE(writer->addRow({L"x"}));
  writer.reset();
  EXPECT_EQ(content(), "fields A  rows  / x  ok");
}

TEST_F(dbfWriter, noFields) {
  ownedWriter writer = open({});
  EXPECT_FALSE(writer->addRow({L"x"}));
  EXPECT_TRUE(writer->addRow({}));
  writer.reset();
  EXPECT_EQ(content(), "rows ()  ok");
}

TEST_F(dbfWriter, rowsGoNowhereWhenTheFileCannotBeCreated) {
  path_ = folder_.file(L"missing/t.dbf");
  ownedWriter writer = open({
      {L"A", tableRW::fldText, 2}
  });
  ASSERT_NE(writer, nullptr);
  EXPECT_TRUE(writer->addRow({L"x"}));
  EXPECT_TRUE(writer->addRow({}));
  EXPECT_FALSE(writer->addRow({L"x", L"y"}));
  writer.reset();
  EXPECT_FALSE(platform::fileExists(path_));
}

TEST_F(dbfWriter, aNulEndsAValue) {
  ownedWriter writer = open({
      {L"A", tableRW::fldText, 4}
  });
  EXPECT_TRUE(writer->addRow({std::wstring(L"a\0b", 3)}));
  writer.reset();
  EXPECT_EQ(content(), "fields A  rows a  ok");
}

TEST_F(dbfWriter, manyRows) {
  ownedWriter writer = open({
      {L"A", tableRW::fldNumber, 6 },
      {L"B", tableRW::fldText,   40}
  });
  for (int i = 0; i < 20000; ++i) ASSERT_TRUE(writer->addRow({std::to_wstring(i), L"text"}));
  writer.reset();
  tableRW::tableReader_dbf reader{tableRW::tableReaderOptions(path_)};
  ASSERT_TRUE(reader.read());
  ASSERT_EQ(reader.count(), 20000u);
  for (std::size_t i = 0; i < 20000; ++i)
    ASSERT_EQ(reader.value(std::size_t{0}, i), std::to_wstring(i));
}

}  // namespace

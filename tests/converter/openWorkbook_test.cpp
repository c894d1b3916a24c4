// Workbooks of both formats through their interface: one sheet after the other, and a receiver that wants no more.
#include <gtest/gtest.h>

#include "converter/syntax/biffRecords.h"
#include "converter/workbook/workbook.h"
#include "tests/support/temporaryFolder.h"
#include "tests/support/workbookBuilders.h"

namespace {

using testSupport::le16;
using testSupport::le32;
using testSupport::record;

constexpr unsigned rows = 20000;

class collector final : public converter::sheetReceiver {
 public:
  explicit collector(std::size_t most) : most_(most) {}
  void cell(std::uint32_t, std::uint32_t, std::string_view text) override {
    ++cells;
    last = text;
  }
  void mergedCells(const converter::cellRange&) override {}
  std::string stopReason() override { return cells < most_ ? "" : "it is enough"; }

  std::size_t cells = 0;
  std::string last;

 private:
  std::size_t most_;
};

std::string xlsx() {
  testSupport::xlsxBuilder book;
  book.sharedStrings = "<si><t>a</t></si><si><t>b</t></si>";
  book.worksheet = "<sheetData>";
  for (unsigned row = 0; row < rows; ++row)
    book.worksheet += "<row><c t='s'><v>" + std::to_string(row % 2) + "</v></c></row>";
  book.worksheet += "</sheetData>";
  return book.bytes();
}

std::string xls() {
  const std::string strings = le16(1) + '\0' + "a" + le16(1) + '\0' + "b";
  std::string cells;
  for (unsigned row = 0; row < rows; ++row)
    cells += record(converter::biff::sharedLabel, le16(row) + le16(0) + le16(0) + le32(row % 2));
  return testSupport::biff8(record(converter::biff::sharedStrings, le32(rows) + le32(2) + strings),
                            cells);
}

class openedWorkbook : public testing::TestWithParam<std::string (*)()> {
 protected:
  void SetUp() override {
    ASSERT_TRUE(file_.openForReading(folder_.write(L"a.xls", GetParam()())));
    book_ = converter::openWorkbook(file_, '$', problem_);
    ASSERT_NE(book_, nullptr) << problem_;
    ASSERT_EQ(book_->sheets().size(), 1u);
  }
  bool read(collector& cells) { return book_->readSheet(book_->sheets()[0], cells, problem_); }

  std::string problem_;

 private:
  testSupport::temporaryFolder folder_;
  platform::binaryFile file_;
  std::unique_ptr<converter::workbook> book_;
};

TEST_P(openedWorkbook, aSheetCanBeReadAgain) {
  for (int time = 0; time < 2; ++time) {
    collector cells(rows + 1);
    EXPECT_TRUE(read(cells)) << problem_;
    EXPECT_EQ(cells.cells, rows);
    EXPECT_EQ(cells.last, "b");
  }
}

TEST_P(openedWorkbook, aReceiverThatWantsNoMoreIsHeardSoon) {
  collector cells(1);
  EXPECT_FALSE(read(cells));
  EXPECT_EQ(problem_, "it is enough");
  EXPECT_LT(cells.cells, rows / 2);
}

INSTANTIATE_TEST_SUITE_P(formats, openedWorkbook, testing::Values(&xlsx, &xls),
                         [](const auto& each) { return each.index == 0 ? "xlsx" : "xls"; });

}  // namespace

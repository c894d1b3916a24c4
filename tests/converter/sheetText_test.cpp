// The text file of a sheet: what is refused, so that no workbook fills the disk or the memory, and that
// nothing is left behind then. What the text looks like is tested through workbooks (xlsx_test.cpp).
#include "converter/text/sheetText.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/temporaryFolder.h"

namespace {

using converter::sheetText;
using converter::sheetTextOptions;

constexpr std::uint64_t unlimited = ~std::uint64_t{0};

// The text of a sheet, or the reason why there is none.
template <class Fill>
std::string textOf(const sheetTextOptions& options, Fill fill) {
  const testSupport::temporaryFolder folder;
  const std::wstring target = folder.file(L"a.csv");
  std::string problem;
  {
    sheetText text(target, options);
    EXPECT_TRUE(text.open());
    fill(text);
    problem = text.stopReason();
    if (problem.empty() && text.finish(problem)) problem.clear();
  }
  const std::string written = testSupport::readFile(target).value_or("");
  std::filesystem::remove(std::filesystem::path(target));
  EXPECT_TRUE(std::filesystem::is_empty(std::filesystem::path(folder.path())));
  EXPECT_TRUE(problem.empty() || written.empty()) << "a file in spite of: " << problem;
  return problem.empty() ? written : problem;
}

void threeRows(sheetText& text) {
  for (std::uint32_t row = 0; row < 3; ++row) text.cell(row, 0, "1234567");
}

TEST(sheetText, aTextThatIsTooLong) {
  sheetTextOptions options;
  options.mostBytes = 24;
  EXPECT_EQ(textOf(options, threeRows), "1234567\n1234567\n1234567\n");
  options.mostBytes = 23;
  EXPECT_EQ(
      textOf(options, threeRows),
      "the sheet is refused: its text would be longer than 23 bytes, far more than its workbook");
}

TEST(sheetText, cellsBehindTheLimitAreNotKept) {
  sheetTextOptions options;
  options.mostBytes = 1000;
  const std::string text = textOf(options, [](sheetText& sheet) {
    const std::string large(1000000, 'x');
    for (std::uint32_t column = 0; column < 16384; ++column) sheet.cell(0, column, large);
  });
  EXPECT_TRUE(text.starts_with("the sheet is refused: its text would be longer")) << text;
}

TEST(sheetText, copiesOfMergedCellsThatAreTooLong) {
  sheetTextOptions options;
  options.copyMerged = true;
  const auto merge = [](sheetText& text) {
    text.cell(0, 0, "1234567");
    text.mergedCells({0, 99, 0, 9});
  };
  EXPECT_EQ(textOf(options, merge).size(), 8000u);
  options.mostBytes = 7000;
  EXPECT_TRUE(textOf(options, merge).starts_with("the sheet is refused: its text would be longer"));
  options.mostBytes = unlimited;
  options.mostLineBytes = 79;
  EXPECT_EQ(textOf(options, merge), "the sheet is refused: it has a row that is too long");
  options.mostLineBytes = 80;
  EXPECT_EQ(textOf(options, merge).size(), 8000u);
}

TEST(sheetText, aRowThatIsTooLong) {
  sheetTextOptions options;
  options.mostLineBytes = 8;
  EXPECT_EQ(textOf(options, threeRows).size(), 24u);
  options.mostLineBytes = 7;
  EXPECT_EQ(textOf(options, threeRows), "the sheet is refused: it has a row that is too long");
}

TEST(sheetText, tooManyMergedRanges) {
  sheetTextOptions options;
  options.mostMerges = 2;
  const auto merge = [](sheetText& text) {
    text.cell(0, 0, "a");
    for (std::uint32_t i = 0; i < 3; ++i) text.mergedCells({i, i, 0, 1});
  };
  EXPECT_EQ(textOf(options, merge), "a\n") << "nothing is merged";
  options.copyMerged = true;
  EXPECT_EQ(textOf(options, merge), "the sheet is refused: it has too many merged ranges");
}

TEST(sheetText, tooManyCellsOutOfOrder) {
  const auto backwards = [](sheetText& text) {
    for (std::uint32_t row = 4; row-- > 0;) text.cell(row, 0, "1234567");
  };
  sheetTextOptions options;
  options.mostLateCells = 3;
  options.mostLateBytes = 21;
  EXPECT_EQ(textOf(options, backwards), "1234567\n1234567\n1234567\n1234567\n");
  constexpr const char* refusal = "the sheet is refused: too many of its cells come out of order";
  options.mostLateCells = 2;
  EXPECT_EQ(textOf(options, backwards), refusal);
  options.mostLateCells = 3;
  options.mostLateBytes = 20;
  EXPECT_EQ(textOf(options, backwards), refusal);
}

// More than 2^24 places, of which a hundredth has a value: no reason to put the padding off.
TEST(sheetText, aLargeSheetIsPaddedToItsWidth) {
  constexpr std::uint32_t rows = 1040;
  constexpr std::uint32_t columns = 200;
  const std::string text = textOf({}, [](sheetText& sheet) {
    sheet.cell(0, converter::mostColumns - 1, "x");
    for (std::uint32_t row = 1; row < rows; ++row)
      for (std::uint32_t column = 0; column < columns; ++column) sheet.cell(row, column, "1");
  });
  std::string line = "1";
  for (std::uint32_t column = 1; column < columns; ++column) line += "$1";
  line.append(converter::mostColumns - columns, '$');
  std::string expected = std::string(converter::mostColumns - 1, '$') + "x\n";
  for (std::uint32_t row = 1; row < rows; ++row) expected.append(line).append("\n");
  EXPECT_TRUE(text == expected);
}

TEST(sheetText, aSparseSheetIsNamedAsSuchThoughItIsTooLong) {
  sheetTextOptions options;
  options.mostBytes = 1000;
  EXPECT_EQ(textOf(options,
                   [](sheetText& text) {
                     text.cell(0, 0, "1");
                     text.cell(converter::mostRows - 1, converter::mostColumns - 1, "1");
                   }),
            "the sheet has 1048576 rows and 16384 columns, but only 2 cells with a value: it is no "
            "table");
}

TEST(sheetText, cellsOutOfOrderInSeveralRows) {
  EXPECT_EQ(textOf({},
                   [](sheetText& text) {
                     text.cell(0, 0, "a");
                     text.cell(2, 2, "i");
                     for (const std::uint32_t row : {2u, 1u}) {
                       text.cell(row, 1, row == 1 ? "e" : "h");
                       text.cell(row, 0, row == 1 ? "d" : "g");
                       text.cell(row, 1, row == 1 ? "E" : "H");  // the last one counts
                     }
                   }),
            "a$$\nd$E$\ng$H$i\n");
}

// The sheet's size is known only when the cells out of order have been put into the rows above the range.
TEST(sheetText, aMergedRangeBelowCellsThatComeOutOfOrder) {
  sheetTextOptions options;
  options.copyMerged = true;
  EXPECT_EQ(textOf(options,
                   [](sheetText& text) {
                     text.cell(2, 0, "a");
                     text.cell(0, 1, "late");
                     text.mergedCells({2, 3, 0, 2});
                   }),
            "$late$\n$$\na$a$a\na$a$a\n");
}

TEST(sheetText, mergedRangesBesideEachOther) {
  sheetTextOptions options;
  options.copyMerged = true;
  EXPECT_EQ(textOf(options,
                   [](sheetText& text) {
                     text.cell(0, 0, "a");
                     text.cell(0, 2, "b");
                     text.mergedCells({0, 1, 2, 3});
                     text.mergedCells({0, 1, 0, 1});
                   }),
            "a$a$b$b\na$a$b$b\n");
}

// Each merged range of such a sheet would be measured over all of its columns.
TEST(sheetText, aSparseSheetOfManyMergedRanges) {
  sheetTextOptions options;
  options.copyMerged = true;
  const std::string text = textOf(options, [](sheetText& sheet) {
    for (std::uint32_t row = 0; row < converter::mostRows; ++row) {
      sheet.cell(row, 0, "1");
      sheet.mergedCells({row, row, 0, 1});
    }
    sheet.cell(converter::mostRows - 1, converter::mostColumns - 1, "1");
    sheet.mergedCells({converter::mostRows - 1, converter::mostRows, 0, 1});
  });
  EXPECT_TRUE(text.ends_with("it is no table")) << text;
}

}  // namespace

// The rows of a table in memory: every wide string survives, rows of any shape, offsets of both
// widths.
#include "table_rw/core/valueTable.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "table_rw/text/splitText.h"
#include "tests/support/randomNumbers.h"
#include "tests/support/tableText.h"

namespace {

using tableRW::valueTable;
using testSupport::textRow;

void addRow(valueTable& table, const textRow& row) {
  for (const std::wstring& value : row) table.addValue(std::wstring_view(value));
  table.endRow();
}

std::vector<textRow> rowsOf(const valueTable& table) {
  std::vector<textRow> rows(table.rowCount());
  for (std::size_t row = 0; row < rows.size(); ++row)
    for (std::size_t column = 0; column < table.rowSize(row); ++column)
      rows[row].push_back(table.text(row, column));
  return rows;
}

std::string describe(const std::vector<textRow>& rows) {
  std::string out;
  for (const textRow& row : rows) out += (out.empty() ? "" : " / ") + testSupport::describe(row);
  return out.empty() ? "no rows" : out;
}

std::string describe(const valueTable& table) { return describe(rowsOf(table)); }

std::wstring elements(std::initializer_list<std::uint32_t> codes) {
  std::wstring text;
  for (const std::uint32_t code : codes) text += static_cast<wchar_t>(code);
  return text;
}

TEST(valueTable, isEmptyAtFirst) {
  const valueTable table;
  EXPECT_EQ(table.rowCount(), 0U);
  EXPECT_EQ(table.rowSize(0), 0U);
  EXPECT_EQ(table.text(0, 0), L"");
  EXPECT_TRUE(table.bytes(0, 0).empty());
}

TEST(valueTable, valuesOfAnUnclosedRowAreNotThereYet) {
  valueTable table;
  table.addValue(std::wstring_view(L"1"));
  EXPECT_EQ(describe(table), "no rows");
  EXPECT_EQ(table.text(0, 0), L"");
  table.endRow();
  EXPECT_EQ(describe(table), "1");
}

TEST(valueTable, keepsEqualRows) {
  valueTable table;
  addRow(table, {L"W-1", L"", L"sand"});
  addRow(table, {L"", L"", L""});
  addRow(table, {L"W-2", L"980", L"clay"});
  EXPECT_EQ(describe(table), "W-1||sand / || / W-2|980|clay");
  EXPECT_EQ(table.rowCount(), 3U);
}

TEST(valueTable, answersEmptyForWhatDoesNotExist) {
  constexpr std::size_t last = std::numeric_limits<std::size_t>::max();
  valueTable table;
  addRow(table, {L"a", L"b"});
  addRow(table, {L"c", L"d"});
  for (const auto& [row, column] : {
           std::pair<std::size_t, std::size_t>{0,        2   },
           {0,        last},
           {1,        2   },
           {2,        0   },
           {last,     0   },
           {last,     last},
           {last - 1, 1   }
  }) {
    EXPECT_EQ(table.text(row, column), L"") << row << ", " << column;
    EXPECT_TRUE(table.bytes(row, column).empty()) << row << ", " << column;
  }
  EXPECT_EQ(table.rowSize(2), 0U);
  EXPECT_EQ(table.rowSize(last), 0U);
}

// Rows as "1,2/3/-": separated by slashes, values separated by commas, `-` for a row without
// values.
std::vector<textRow> rowsFrom(const std::wstring& text) {
  std::vector<textRow> rows;
  for (const std::wstring& row : tableRW::splitText(text, L"/", false))
    rows.push_back(row == L"-" ? textRow() : tableRW::splitText(row, L",", false));
  return rows;
}

struct Shape {
  const char* name;
  std::vector<textRow> rows;
  int line = __builtin_LINE();
};

const std::vector<Shape>& shapes() {
  static const std::vector<Shape> all = {
      Shape{"no rows",                  {}                            },
      Shape{"one row without values",   rowsFrom(L"-")                },
      Shape{"only rows without values", rowsFrom(L"-/-/-")            },
      Shape{"only empty values",        rowsFrom(L",,/,,")            },
      Shape{"shorter row behind",       rowsFrom(L"1,2/3")            },
      Shape{"longer row behind",        rowsFrom(L"1/2,3")            },
      Shape{"row without values first", rowsFrom(L"-/1/-")            },
      Shape{"row without values last",  rowsFrom(L"1,2/-")            },
      Shape{"equal rows, then others",  rowsFrom(L"1,2/3,4/5/6,7/-/8")},
      Shape{"first row differs",        rowsFrom(L"1,2,3/4/5")        },
  };
  return all;
}

TEST(valueTable, keepsRaggedRows) {
  for (const Shape& shape : shapes()) {
    const testing::ScopedTrace trace(__FILE__, shape.line, shape.name);
    valueTable table;
    for (const textRow& row : shape.rows) addRow(table, row);
    EXPECT_EQ(rowsOf(table), shape.rows);
    EXPECT_EQ(table.text(0, 5), L"");
    EXPECT_EQ(table.rowSize(shape.rows.size()), 0U);
  }
}

TEST(valueTable, dropRowForgetsTheOpenRowOnly) {
  for (const Shape& shape : shapes()) {
    const testing::ScopedTrace trace(__FILE__, shape.line, shape.name);
    valueTable table;
    table.dropRow();
    for (const textRow& row : shape.rows) {
      table.addValue(std::wstring_view(L"unwanted"));
      table.addValue(std::wstring_view(L"values"));
      table.addValue(std::wstring_view(L""));
      table.dropRow();
      addRow(table, row);
      table.dropRow();  // no value is open
    }
    EXPECT_EQ(rowsOf(table), shape.rows);
  }
}

TEST(valueTable, aDroppedRowIsNotClosedByTheNextEnd) {
  valueTable table;
  addRow(table, {L"1"});
  table.addValue(std::wstring_view(L"x"));
  table.dropRow();
  table.endRow();
  EXPECT_EQ(describe(table), "1 / ()");
}

TEST(valueTable, clearForgetsEverything) {
  for (const Shape& shape : shapes()) {
    const testing::ScopedTrace trace(__FILE__, shape.line, shape.name);
    valueTable table(3);
    for (const textRow& row : shape.rows) addRow(table, row);
    table.addValue(std::wstring_view(L"open"));
    table.clear();
    EXPECT_EQ(describe(table), "no rows");
    EXPECT_EQ(table.rowSize(0), 0U);
    addRow(table, {L"a", L"b"});
    addRow(table, {L"cc"});
    EXPECT_EQ(describe(table), "a|b / cc");
  }
}

TEST(valueTable, copiesAreIndependent) {
  for (const Shape& shape : shapes()) {
    for (const std::uint64_t limit : {std::uint64_t{0}, std::uint64_t{2}, std::uint64_t{1000}}) {
      const testing::ScopedTrace trace(__FILE__, shape.line, shape.name);
      valueTable table(limit);
      for (const textRow& row : shape.rows) addRow(table, row);
      valueTable copy(table);
      addRow(copy, {L"more"});
      EXPECT_EQ(rowsOf(table), shape.rows);
      std::vector<textRow> longer = shape.rows;
      longer.push_back({L"more"});
      EXPECT_EQ(rowsOf(copy), longer);
      valueTable assigned;
      addRow(assigned, {L"old", L"older"});
      assigned = table;
      EXPECT_EQ(rowsOf(assigned), shape.rows);
      const valueTable& itself = assigned;
      assigned = itself;
      EXPECT_EQ(rowsOf(assigned), shape.rows);
      const valueTable moved(std::move(assigned));
      EXPECT_EQ(rowsOf(moved), shape.rows);
    }
  }
}

TEST(valueTable, copyKeepsAnOpenRow) {
  valueTable table;
  addRow(table, {L"1"});
  table.addValue(std::wstring_view(L"2"));
  valueTable copy(table);
  copy.endRow();
  EXPECT_EQ(describe(copy), "1 / 2");
}

// Limits around every arena size, so that the wide offsets begin at the first, a middle and the
// last value, in the middle of a row, with a dropped row behind, and never.
TEST(valueTable, offsetsWidenWhereTheArenaOutgrowsThem) {
  for (std::uint64_t limit = 0; limit <= 20; ++limit) {
    for (const bool ragged : {false, true}) {
      valueTable table(limit);
      std::vector<textRow> wanted;
      for (int i = 0; i < 5; ++i) {
        const std::wstring number = std::to_wstring(i);
        const textRow row =
            ragged && i == 2 ? textRow{number} : textRow{number, L"", number + number};
        table.addValue(std::wstring_view(L"dropped"));
        table.dropRow();
        addRow(table, row);
        wanted.push_back(row);
      }
      EXPECT_EQ(rowsOf(table), wanted) << "limit " << limit << ", ragged " << ragged;
    }
  }
}

// The same for rows that are put in whole; the room that is asked for counts, not what is used of it.
TEST(valueTable, offsetsWidenForWholeRows) {
  for (std::uint64_t limit = 0; limit <= 40; ++limit) {
    valueTable table(limit);
    std::vector<textRow> wanted;
    for (int i = 0; i < 5; ++i) {
      const std::string number = std::to_string(i);
      table.addRow(3, 8, [&number](std::size_t column, char* to) {
        return column == 1 ? to : std::copy(number.begin(), number.end(), to);
      });
      const std::wstring wide(number.begin(), number.end());
      wanted.push_back({wide, L"", wide});
    }
    EXPECT_EQ(rowsOf(table), wanted) << "limit " << limit;
  }
}

TEST(valueTable, takesUtf8AsItIs) {
  valueTable table;
  table.addValue(std::string_view("\xD0\x9F"));
  table.addValue(std::string_view());
  table.addValue(std::string_view("a\0b", 3));
  table.endRow();
  EXPECT_EQ(table.text(0, 0), L"\u041F");
  EXPECT_EQ(table.text(0, 1), L"");
  EXPECT_EQ(table.text(0, 2), std::wstring(L"a\0b", 3));
  EXPECT_EQ(table.bytes(0, 0), "\xD0\x9F");
}

TEST(valueTable, wideTextIsStoredAsUtf8) {
  valueTable table;
  table.addValue(std::wstring_view(L"a\u00E9\u041F\uFFFD"));
  table.addValue(std::wstring_view(L"\U0001F600"));
  table.endRow();
  EXPECT_EQ(table.bytes(0, 0), "a\xC3\xA9\xD0\x9F\xEF\xBF\xBD");
  EXPECT_EQ(table.bytes(0, 1), "\xF0\x9F\x98\x80");
}

std::vector<std::wstring> awkwardTexts() {
  std::vector<std::wstring> texts = {
      L"",
      L" ",
      L"a",
      elements({0}),
      elements({0, 0}),
      elements({'a', 0, 'b'}),
      elements({0x7F}),
      elements({0x80}),
      elements({0x7FF}),
      elements({0x800}),
      elements({0xD7FF}),
      elements({0xD800}),
      elements({0xDBFF}),
      elements({0xDC00}),
      elements({0xDFFF}),
      elements({0xE000}),
      elements({0xFEFF}),
      elements({0xFFFE}),
      elements({0xFFFF}),
      elements({0xD83D, 0xDE00}),
      elements({0xDE00, 0xD83D}),
      elements({0xD83D, 0xD83D, 0xDE00}),
      elements({0xD83D, 0xDE00, 0xDE00}),
      elements({0xD83D, 'a', 0xDE00}),
      elements({0xD83D, 0, 0xDE00}),
      elements({0xDBFF, 0xDFFF}),
      elements({0xD800, 0xDC00}),
      L"\U00010000",
      L"\U0001F600",
      L"\U0010FFFF",
      std::wstring(1000, L'\uFFFD'),
      std::wstring(1000, static_cast<wchar_t>(0xDC80)),
  };
  if constexpr (sizeof(wchar_t) > 2) {
    for (const std::uint32_t code : {0x110000U, 0x1FFFFFU, 0x200000U, 0x3FFFFFFU, 0x4000000U,
                                     0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
      texts.push_back(elements({code}));
      texts.push_back(elements({'a', code, 'b', code}));
    }
  }
  return texts;
}

TEST(valueTable, everyWideStringSurvives) {
  const std::vector<std::wstring> texts = awkwardTexts();
  valueTable table;
  for (const std::wstring& text : texts) addRow(table, {text, text + L"x", L"x" + text});
  for (std::size_t i = 0; i < texts.size(); ++i) {
    EXPECT_EQ(table.text(i, 0), texts[i]) << testSupport::printable(texts[i]);
    EXPECT_EQ(table.text(i, 1), texts[i] + L"x") << testSupport::printable(texts[i]);
    EXPECT_EQ(table.text(i, 2), L"x" + texts[i]) << testSupport::printable(texts[i]);
  }
}

TEST(valueTable, everyElementSurvives) {
  valueTable table;
  for (std::uint32_t unit = 0; unit <= 0xFFFF; ++unit)
    table.addValue(std::wstring_view(elements({unit})));
  table.endRow();
  for (std::uint32_t unit = 0; unit <= 0xFFFF; ++unit)
    ASSERT_EQ(table.text(0, unit), elements({unit})) << unit;
}

TEST(valueTable, equalBytesMeanEqualText) {
  std::vector<std::wstring> texts = awkwardTexts();
  testSupport::randomNumbers random(20);
  const std::uint32_t units[] = {
      0, 'a', 0x7FF, 0xD83D, 0xDE00, 0xFFFF, sizeof(wchar_t) > 2 ? 0x1F600U : 'b'};
  for (int i = 0; i < 400; ++i) {
    std::wstring text;
    for (std::size_t length = random.below(4); length > 0; --length)
      text += static_cast<wchar_t>(random.oneOf(units));
    texts.push_back(text);
  }
  valueTable table;
  for (const std::wstring& text : texts) table.addValue(std::wstring_view(text));
  table.endRow();
  for (std::size_t i = 0; i < texts.size(); ++i)
    for (std::size_t k = 0; k < texts.size(); ++k)
      ASSERT_EQ(table.bytes(0, i) == table.bytes(0, k), texts[i] == texts[k])
          << testSupport::printable(texts[i]) << " and " << testSupport::printable(texts[k]);
}

TEST(valueTable, randomTablesSurvive) {
  testSupport::randomNumbers random(4);
  for (int round = 0; round < 60; ++round) {
    const bool ragged = round % 2 == 1;
    valueTable table(random.onceIn(3) ? random.below(2000) : 0xFFFFFFFFU);
    std::vector<textRow> wanted;
    const std::size_t width = random.below(6);
    for (std::size_t rows = random.below(60); rows > 0; --rows) {
      textRow row(ragged && random.onceIn(4) ? random.below(9) : width);
      for (std::wstring& value : row)
        value.assign(random.below(12), static_cast<wchar_t>(L'a' + random.below(2000)));
      for (const std::wstring& value : row) table.addValue(std::wstring_view(value));
      if (random.onceIn(5)) {
        table.dropRow();
        continue;
      }
      table.endRow();
      wanted.push_back(row);
    }
    ASSERT_EQ(rowsOf(table), wanted) << "round " << round;
  }
}

}  // namespace

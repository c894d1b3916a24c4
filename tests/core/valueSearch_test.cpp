// Looking values up in the rows of a reader.
#include <gtest/gtest.h>

#include <limits>

#include "tests/support/filledReader.h"

namespace {

using testSupport::describe;
using testSupport::filledReader;
using testSupport::textRow;
using conditions = std::vector<tableRW::tableReader::indexCondition>;
using named = tableRW::tableReader::namedCondition;

filledReader samples() {
  return filledReader(
      {
          L"WELL", L"ROCK", L"PHI"
  },
      {{L"W-1", L"sand", L"1.0"},
       {L"W-2", L"clay", L"2"},
       {L"W-1", L"clay", L""},
       {L"W-1", L"sand", L"1.0"},
       {L"", L"sand", L" 1"}});
}

std::string all(const filledReader& reader, const std::wstring& field, const conditions& wanted) {
  textRow out = {L"old"};
  reader.searchValue(field, wanted, out);
  return out.empty() ? "nothing" : describe(out);
}

std::string all(const filledReader& reader, const std::wstring& field, const named& wanted) {
  textRow out = {L"old"};
  reader.searchValue(field, wanted, out);
  return out.empty() ? "nothing" : describe(out);
}

struct Row {
  const char* name;
  const wchar_t* field;
  conditions wanted;
  std::wstring first;
  std::string all;
  int line = __builtin_LINE();
};

TEST(searchValue, byIndexes) {
  constexpr std::size_t last = std::numeric_limits<std::size_t>::max();
  const filledReader reader = samples();
  for (const Row& row : {
           Row{"one condition",                       L"PHI",  {{0, L"W-2"}},               L"2",    "2"             },
           Row{"two conditions",                      L"PHI",  {{0, L"W-1"}, {1, L"clay"}}, L"",     ""              },
           Row{"duplicates are kept",                 L"PHI",  {{0, L"W-1"}, {1, L"sand"}}, L"1.0",  "1.0|1.0"       },
           Row{"rows in order",                       L"ROCK", {{0, L"W-1"}},               L"sand", "sand|clay|sand"},
           Row{"an empty value is a value",           L"ROCK", {{0, L""}},                  L"sand", "sand"          },
           Row{"the result field may be a condition", L"WELL", {{0, L"W-2"}},               L"W-2",  "W-2"           },
           Row{"the same column twice",               L"PHI",  {{0, L"W-2"}, {0, L"W-2"}},  L"2",    "2"             },
           Row{"contradiction",                       L"PHI",  {{0, L"W-2"}, {0, L"W-1"}},  L"",     "nothing"       },
           Row{"no conditions",                       L"PHI",  {},                          L"1.0",  "1.0|2||1.0| 1" },
           Row{"no row fits",                         L"PHI",  {{0, L"W-9"}},               L"",     "nothing"       },
           Row{"column is fieldCount",                L"PHI",  {{0, L"W-2"}, {3, L"x"}},    L"",     "nothing"       },
           Row{"bad column first",                    L"PHI",  {{3, L""}, {0, L"W-2"}},     L"",     "nothing"       },
           Row{"bad column wanted empty",             L"PHI",  {{3, L""}},                  L"",     "nothing"       },
           Row{"largest column",                      L"PHI",  {{last, L""}},               L"",     "nothing"       },
           Row{"result field in other case",          L"phi",  {{0, L"W-2"}},               L"",     "nothing"       },
           Row{"unknown result, no conditions",       L"NONE", {},                          L"",     "nothing"       },
           Row{"no numeric comparison",               L"WELL", {{2, L"1"}},                 L"",     "nothing"       },
           Row{"no trimming of the stored value",     L"WELL", {{2, L"1 "}},                L"",     "nothing"       },
           Row{"no trimming of the wanted value",     L"WELL", {{2, L" 1.0"}},              L"",     "nothing"       },
           Row{"no case folding",                     L"WELL", {{1, L"SAND"}},              L"",     "nothing"       },
           Row{"a prefix is not equal",               L"WELL", {{1, L"san"}},               L"",     "nothing"       },
           Row{"a longer text is not equal",          L"WELL", {{1, L"sands"}},             L"",     "nothing"       },
  }) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    EXPECT_EQ(reader.searchValue(row.field, row.wanted), row.first);
    EXPECT_EQ(all(reader, row.field, row.wanted), row.all);
  }
}

TEST(searchValue, aMatchWithoutTextLooksLikeNoMatchOnlyInTheFirstOverload) {
  const filledReader reader = samples();
  const conditions wanted = {
      {0, L"W-1" },
      {1, L"clay"}
  };
  EXPECT_EQ(reader.searchValue(L"PHI", wanted), L"");
  textRow out;
  reader.searchValue(L"PHI", wanted, out);
  EXPECT_EQ(out, textRow{L""});
}

TEST(searchValue, byOneNamedCondition) {
  const filledReader reader = samples();
  EXPECT_EQ(all(reader, L"PHI", named{L"WELL", L"W-2"}), "2");
  EXPECT_EQ(all(reader, L"WELL", named{L"ROCK", L"sand"}), "W-1|W-1|");
  EXPECT_EQ(all(reader, L"ROCK", named{L"PHI", L"1.0"}), "sand|sand");
  EXPECT_EQ(all(reader, L"WELL", named{L"PHI", L""}), "W-1");
  EXPECT_EQ(all(reader, L"WELL", named{L"WELL", L""}), "");
  EXPECT_EQ(all(reader, L"PHI", named{L"WELL", L"w-2"}), "nothing");
  EXPECT_EQ(all(reader, L"PHI", named{L"well", L"W-2"}), "nothing");
  EXPECT_EQ(all(reader, L"phi", named{L"WELL", L"W-2"}), "nothing");
  EXPECT_EQ(all(reader, L"phi", named{L"well", L"W-2"}), "nothing");
  EXPECT_EQ(all(reader, L"WELL", named{L"PHI", L"1"}), "nothing");
}

TEST(searchValue, withoutRowsFindsNothing) {
  const filledReader reader({L"a"}, {});
  EXPECT_EQ(reader.searchValue(L"a", conditions{}), L"");
  EXPECT_EQ(all(reader, L"a", conditions{}), "nothing");
  EXPECT_EQ(all(reader, L"a", named{L"a", L""}), "nothing");
}

TEST(searchValue, withoutFieldsFindsNothing) {
  const filledReader reader;
  EXPECT_EQ(reader.searchValue(L"", conditions{}), L"");
  EXPECT_EQ(all(reader, L"",
                conditions{
                    {0, L""}
  }),
            "nothing");
  EXPECT_EQ(all(reader, L"", named{L"", L""}), "nothing");
}

TEST(searchValue, theFirstOfEqualNamesWins) {
  const filledReader reader(
      {
          L"a", L"a"
  },
      {{L"1", L"2"}, {L"2", L"1"}});
  EXPECT_EQ(reader.searchValue(L"a",
                               conditions{
                                   {1, L"1"}
  }),
            L"2");
  EXPECT_EQ(all(reader, L"a", named{L"a", L"1"}), "1");
}

TEST(searchValue, comparesEveryElementOfWideText) {
  const std::wstring pair = {static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)};
  const std::wstring lone = {static_cast<wchar_t>(0xD83D)};
  const std::wstring withNul(L"a\0b", 3);
  const filledReader reader(
      {
          L"text", L"row"
  },
      {{pair, L"0"},
       {lone, L"1"},
       {withNul, L"2"},
       {L"a", L"3"},
       {L"\u00E9", L"4"},
       {L"e\u0301", L"5"},
       {L"\uFFFD", L"6"}});
  EXPECT_EQ(all(reader, L"row", named{L"text", pair}), "0");
  EXPECT_EQ(all(reader, L"row", named{L"text", lone}), "1");
  EXPECT_EQ(all(reader, L"row", named{L"text", withNul}), "2");
  EXPECT_EQ(all(reader, L"row", named{L"text", L"a"}), "3");
  EXPECT_EQ(all(reader, L"row", named{L"text", L"\u00E9"}), "4");
  EXPECT_EQ(all(reader, L"row", named{L"text", L"e\u0301"}), "5");
  EXPECT_EQ(all(reader, L"row", named{L"text", L"\uFFFD"}), "6");
}

TEST(searchValue, aCellThatARaggedRowLacksIsEmptyText) {
  const filledReader reader(
      {
          L"a", L"b"
  },
      {{L"1"}, {L"2", L"x"}, {L"3", L"", L"y"}});
  EXPECT_EQ(all(reader, L"a", named{L"b", L""}), "1|3");
  EXPECT_EQ(all(reader, L"b", conditions{}), "|x|");
}

TEST(searchValue, theOutputMayHoldWhatIsLookedFor) {
  const filledReader reader = samples();
  textRow out = {L"W-2", L"PHI"};
  reader.searchValue(out[1], named{L"WELL", out[0]}, out);
  EXPECT_EQ(describe(out), "2");
}

TEST(searchValue, leavesTheConditionsAsTheyWere) {
  const filledReader reader = samples();
  conditions wanted = {
      {0, L"W-2"}
  };
  textRow out;
  reader.searchValue(L"PHI", wanted);
  reader.searchValue(L"PHI", wanted, out);
  EXPECT_EQ(wanted, (conditions{
                        {0, L"W-2"}
  }));
}

}  // namespace

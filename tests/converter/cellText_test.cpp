// Values as text: numbers, number formats, dates and times, what cannot stand in a line.
#include "converter/workbook/cellText.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <random>

#include "converter/workbook/lineText.h"

namespace {

using namespace std::string_literals;
using converter::dateSystem;
using converter::numberKind;

std::string numberText(double number) {
  std::string text;
  converter::appendNumber(text, number);
  return text;
}

TEST(cellText, numbers) {
  const std::pair<double, const char*> cases[] = {
      {0,                   "0"                  },
      {-0.0,                "0"                  },
      {0.1,                 "0.1"                },
      {100000,              "100000"             },
      {-2.5,                "-2.5"               },
      {1e15,                "1000000000000000"   },
      {1e16,                "1e+16"              },
      {1.5e22,              "1.5e+22"            },
      {1e-5,                "1e-05"              },
      {0.00012,             "0.00012"            },
      {9e-6,                "9e-06"              },
      {5e-324,              "5e-324"             },
      {1.0 / 3,             "0.3333333333333333" },
      {0.30000000000000004, "0.30000000000000004"},
  };
  for (const auto& [number, expected] : cases)
    if (number == 1e-5)
      EXPECT_EQ(numberText(number), "0.00001");
    else
      EXPECT_EQ(numberText(number), expected);
}

std::string formatted(std::string_view number, numberKind kind = numberKind::number,
                      dateSystem system = dateSystem::from1900) {
  std::string text;
  converter::appendFormatted(text, number, kind, system);
  return text;
}

TEST(cellText, numbersInDecimalNotation) {
  const std::pair<const char*, const char*> cases[] = {
      {"1",                     "1"                     },
      {"-1.5",                  "-1.5"                  },
      {"1.50",                  "1.5"                   },
      {"007",                   "7"                     },
      {"-0",                    "0"                     },
      {"-0.0",                  "0"                     },
      {"+3",                    "3"                     },
      {"+.5",                   "0.5"                   },
      {"+-1",                   "+-1"                   },
      {"",                      ""                      },
      {"1.",                    "1"                     },
      {".5",                    "0.5"                   },
      {"1E2",                   "100"                   },
      {"0.1000000000000000055", "0.1"                   },
      {"123456789012345",       "123456789012345"       },
      {"1234567890123456789",   "1.2345678901234568e+18"},
      {"0.00001",               "0.00001"               },
      {"0.000001",              "1e-06"                 },
      {"0.1234567890123456",    "0.1234567890123456"    },
      {"1e999",                 "1e999"                 },
      {"nan",                   "nan"                   },
      {"inf",                   "inf"                   },
      {"1,5",                   "1,5"                   },
      {"-",                     "-"                     },
      {"+",                     "+"                     },
      {"abc",                   "abc"                   },
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(formatted(text), expected) << text;
}

// The short way, which copies decimals, against the long way over the number.
TEST(cellText, copiedDecimalsAreTheShortest) {
  std::mt19937 random(1);
  for (int round = 0; round < 200000; ++round) {
    std::string text = std::to_string(random() % 100000u);
    if (random() % 2 != 0) text += "." + std::to_string(random());
    if (random() % 2 != 0) text.insert(0, "-");
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    ASSERT_EQ(formatted(text), numberText(value)) << text;
  }
}

struct dateRow {
  const char* number;
  numberKind kind;
  dateSystem system;
  const char* expected;
  int line = __builtin_LINE();
};

constexpr auto from1900 = dateSystem::from1900;
constexpr auto from1904 = dateSystem::from1904;

const dateRow dateRows[] = {
    dateRow{"0",                  numberKind::date,     from1900, "1900-01-00"             },
    dateRow{"1",                  numberKind::date,     from1900, "1900-01-01"             },
    dateRow{"59",                 numberKind::date,     from1900, "1900-02-28"             },
    dateRow{"60",                 numberKind::date,     from1900, "1900-02-29"             },
    dateRow{"61",                 numberKind::date,     from1900, "1900-03-01"             },
    dateRow{"36585",              numberKind::date,     from1900, "2000-02-29"             },
    dateRow{"41684.99",           numberKind::date,     from1900, "2014-02-14"             },
    dateRow{"2958465",            numberKind::date,     from1900, "9999-12-31"             },
    dateRow{"2958466",            numberKind::date,     from1900, "2958466"                },
    dateRow{"-1",                 numberKind::date,     from1900, "-1"                     },
    dateRow{"0",                  numberKind::date,     from1904, "1904-01-01"             },
    dateRow{"2957003",            numberKind::date,     from1904, "9999-12-31"             },
    dateRow{"2957004",            numberKind::date,     from1904, "2957004"                },
    dateRow{"41684",              numberKind::dateTime, from1900, "2014-02-14T00:00:00"    },
    dateRow{"41684.3526361111",   numberKind::dateTime, from1900, "2014-02-14T08:27:47.760"},
    dateRow{"0.5",                numberKind::dateTime, from1900, "12:00:00"               },
    dateRow{"41684.9999999999",   numberKind::dateTime, from1900, "2014-02-15T00:00:00"    },
    dateRow{"2958465.9999999999", numberKind::dateTime, from1900, "2958466"                },
    dateRow{"0.75",               numberKind::time,     from1900, "18:00:00"               },
    dateRow{"1.75",               numberKind::time,     from1900, "18:00:00"               },
    dateRow{"0.000011574074",     numberKind::time,     from1900, "00:00:01"               },
    dateRow{"1.5",                numberKind::elapsed,  from1900, "36:00:00"               },
    dateRow{"1.5",                numberKind::elapsed,  from1904, "36:00:00"               },
    dateRow{"100.5",              numberKind::elapsed,  from1900, "2412:00:00"             },
    dateRow{"-0.5",               numberKind::time,     from1900, "-0.5"                   },
    dateRow{"text",               numberKind::date,     from1900, "text"                   },
};

TEST(cellText, dates) {
  for (const dateRow& row : dateRows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.number);
    EXPECT_EQ(formatted(row.number, row.kind, row.system), row.expected);
  }
}

struct formatRow {
  const char* code;
  numberKind kind;
  int line = __builtin_LINE();
};

const formatRow formatRows[] = {
    formatRow{"General",                  numberKind::number  },
    formatRow{"0.00E+00",                 numberKind::number  },
    formatRow{"#,##0",                    numberKind::number  },
    formatRow{"@",                        numberKind::number  },
    formatRow{"",                         numberKind::number  },
    formatRow{"0.00%",                    numberKind::number  },
    formatRow{"[Red]0.00;[Blue]-0.00",    numberKind::number  },
    formatRow{"#,##0\\ \"days\"",         numberKind::number  },
    formatRow{"#,##0.00\\ \"K\xC4\x8D\"", numberKind::number  },
    formatRow{"\"yyyy\"",                 numberKind::number  },
    formatRow{"\\d\\m",                   numberKind::number  },
    formatRow{"_d0*y",                    numberKind::number  },
    formatRow{"[$-419]0",                 numberKind::number  },
    formatRow{"[Red]General",             numberKind::number  },
    formatRow{"0;yyyy",                   numberKind::number  },
    formatRow{"# ?/?",                    numberKind::number  },
    formatRow{"yyyy?",                    numberKind::number  },
    formatRow{".0",                       numberKind::number  },
    formatRow{",0",                       numberKind::number  },
    formatRow{"h.00",                     numberKind::number  },
    formatRow{"[Magenta]0.00",            numberKind::number  },
    formatRow{"[Magenta]General",         numberKind::number  },
    formatRow{"[]General",                numberKind::number  },
    formatRow{"yyyy\\-mm\\-dd",           numberKind::date    },
    formatRow{"[$-419]d\\ mmmm\\ yyyy;@", numberKind::date    },
    formatRow{"[Red]dd.mm.yyyy",          numberKind::date    },
    formatRow{"mmm",                      numberKind::date    },
    formatRow{"yyyy",                     numberKind::date    },
    formatRow{"d",                        numberKind::date    },
    formatRow{"e",                        numberKind::date    },
    formatRow{"bbbb",                     numberKind::date    },
    formatRow{"[Magenta]yyyy",            numberKind::date    },
    formatRow{"mm",                       numberKind::date    },
    formatRow{"aaa",                      numberKind::date    },
    formatRow{"AAAA",                     numberKind::date    },
    formatRow{"\\aaa",                    numberKind::number  },
    formatRow{"DD/MM/YY",                 numberKind::date    },
    formatRow{"yyyy\"\xE5\xB9\xB4\"",     numberKind::date    },
    formatRow{"h:mm",                     numberKind::time    },
    formatRow{"hh:mm:ss AM/PM",           numberKind::time    },
    formatRow{"h A/P",                    numberKind::time    },
    formatRow{"mm:ss",                    numberKind::time    },
    formatRow{"mm:ss.0",                  numberKind::time    },
    formatRow{"ss.000",                   numberKind::time    },
    formatRow{"mm:ss,000",                numberKind::time    },
    formatRow{"s",                        numberKind::time    },
    formatRow{"dd.mm.yyyy\\ hh:mm",       numberKind::dateTime},
    formatRow{"m/d/yy h:mm;@",            numberKind::dateTime},
    formatRow{"mmm h:mm",                 numberKind::dateTime},
    formatRow{"[h]:mm:ss",                numberKind::elapsed },
    formatRow{"[mm]:ss",                  numberKind::elapsed },
    formatRow{"[SS].00",                  numberKind::elapsed },
    formatRow{"\"open",                   numberKind::number  },
    formatRow{"[open",                    numberKind::number  },
    formatRow{"\\",                       numberKind::number  },
};

TEST(numberFormat, codes) {
  for (const formatRow& row : formatRows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.code);
    EXPECT_EQ(converter::numberFormat(row.code).kindOf(1), row.kind);
  }
}

struct sectionRow {
  const char* code;
  double value;
  numberKind kind;
  int line = __builtin_LINE();
};

const sectionRow sectionRows[] = {
    sectionRow{"[<1]h:mm;dd.mm.yyyy",        0.5,   numberKind::time   },
    sectionRow{"[<1]h:mm;dd.mm.yyyy",        1,     numberKind::date   },
    sectionRow{"[<1]h:mm;dd.mm.yyyy;@",      45000, numberKind::date   },
    sectionRow{"[>=100]dd.mm.yyyy;0.0",      100,   numberKind::date   },
    sectionRow{"[>=100]dd.mm.yyyy;0.0",      99.9,  numberKind::number },
    sectionRow{"[<=1]h:mm;yyyy",             1,     numberKind::time   },
    sectionRow{"[<=1]h:mm;yyyy",             1.5,   numberKind::date   },
    sectionRow{"[>1]yyyy;0",                 1,     numberKind::number },
    sectionRow{"[>1]yyyy;0",                 1.5,   numberKind::date   },
    sectionRow{"[=0]\"-\";yyyy",             0,     numberKind::number },
    sectionRow{"[=0]\"-\";yyyy",             1,     numberKind::date   },
    sectionRow{"[<>0]yyyy;0",                0,     numberKind::number },
    sectionRow{"[<>0]yyyy;0",                -1,    numberKind::date   },
    sectionRow{"[Red][<-1.5]0;[Blue]yyyy",   -2,    numberKind::number },
    sectionRow{"[Red][<-1.5]0;[Blue]yyyy",   -1,    numberKind::date   },
    sectionRow{"[>=100]yyyy",                100,   numberKind::date   },
    sectionRow{"[>=100]yyyy",                5,     numberKind::number },
    sectionRow{"[<1]h:mm;[<100][h]:mm;yyyy", 0.5,   numberKind::time   },
    sectionRow{"[<1]h:mm;[<100][h]:mm;yyyy", 50,    numberKind::elapsed},
    sectionRow{"[<1]h:mm;[<100][h]:mm;yyyy", 100,   numberKind::date   },
    sectionRow{"[<1]h:mm;[>100]yyyy",        50,    numberKind::number },
    sectionRow{"[<1]h:mm;[>100]yyyy",        101,   numberKind::date   },
    sectionRow{"yyyy;[=0]h:mm",              0,     numberKind::time   },
    sectionRow{"yyyy;[=0]h:mm",              1,     numberKind::date   },
    sectionRow{"yyyy;[=0]h:mm",              -1,    numberKind::date   },
    sectionRow{"[>5]yyyy;h:mm;0",            6,     numberKind::date   },
    sectionRow{"[>5]yyyy;h:mm;0",            5,     numberKind::number },
    sectionRow{"[>5]yyyy;h:mm;0",            -1,    numberKind::time   },
    sectionRow{"yyyy;0",                     0,     numberKind::date   },
    sectionRow{"yyyy;0",                     -1,    numberKind::number },
    sectionRow{"yyyy;h:mm;0",                1,     numberKind::date   },
    sectionRow{"yyyy;h:mm;0",                -1,    numberKind::time   },
    sectionRow{"yyyy;h:mm;0",                0,     numberKind::number },
    sectionRow{"yyyy;;",                     0,     numberKind::number },
    sectionRow{"yyyy;@",                     -1,    numberKind::date   },
    sectionRow{"yyyy;h:mm;@",                0,     numberKind::date   },
    sectionRow{"0;0;0;yyyy",                 -1,    numberKind::number },
    sectionRow{"yyyy\";\";0",                -1,    numberKind::number },
    sectionRow{"yyyy\\;;0",                  -1,    numberKind::number },
    sectionRow{"[a;b]yyyy;0",                -1,    numberKind::number },
    sectionRow{"[<x]h:mm;yyyy",              5,     numberKind::time   },
    sectionRow{"[<1x]h:mm;yyyy",             5,     numberKind::time   },
};

TEST(numberFormat, theSectionOfTheValueCounts) {
  for (const sectionRow& row : sectionRows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.code);
    EXPECT_EQ(converter::numberFormat(row.code).kindOf(row.value), row.kind) << row.value;
  }
}

TEST(numberFormat, plainAreThoseOfNumbersAlone) {
  for (const char* const code : {"0.00", "[<1]0;0.0;General", ";;;@"})
    EXPECT_TRUE(converter::numberFormat(code).isPlain()) << code;
  for (const char* const code : {"yyyy", "yyyy;0", "0;yyyy", "0;yyyy;0", "0;0;yyyy"})
    EXPECT_FALSE(converter::numberFormat(code).isPlain()) << code;
}

TEST(numberFormat, builtIn) {
  const std::pair<unsigned, numberKind> cases[] = {
      {0,   numberKind::number  },
      {13,  numberKind::number  },
      {14,  numberKind::date    },
      {17,  numberKind::date    },
      {18,  numberKind::time    },
      {21,  numberKind::time    },
      {22,  numberKind::dateTime},
      {23,  numberKind::number  },
      {27,  numberKind::date    },
      {32,  numberKind::time    },
      {36,  numberKind::date    },
      {37,  numberKind::number  },
      {45,  numberKind::time    },
      {46,  numberKind::elapsed },
      {47,  numberKind::time    },
      {49,  numberKind::number  },
      {50,  numberKind::date    },
      {58,  numberKind::date    },
      {59,  numberKind::number  },
      {164, numberKind::number  },
  };
  for (const auto& [number, kind] : cases)
    EXPECT_EQ(converter::kindOfBuiltInFormat(number), kind) << number;
}

TEST(numberFormat, aDefinitionTakesTheBuiltInsPlace) {
  converter::numberFormats formats;
  formats.addStyle(14);
  formats.addStyle(20);
  formats.define(14, "0.00");
  formats.resolve();
  EXPECT_EQ(formats.ofStyle(0).kindOf(1), numberKind::number);
  EXPECT_EQ(formats.ofStyle(1).kindOf(1), numberKind::time);
  EXPECT_EQ(formats.ofStyle(2).kindOf(1), numberKind::number);
}

TEST(lineText, replacements) {
  const std::pair<std::string, std::string> cases[] = {
      {"plain",           "plain"    },
      {"a\nb\r\nc\rd\te", "a b c d e"},
      {"\n\n",            "  "       },
      {"a\r",             "a "       },
      {"$a$",
       "\xEF\xBC\x84"
       "a\xEF\xBC\x84"               },
      {"a\0b\x1A"s,
       "a\xEF\xBF\xBD"
       "b\xEF\xBF\xBD"               },
  };
  for (const auto& [text, expected] : cases) {
    std::string line;
    converter::lineText('$').append(line, text);
    EXPECT_EQ(line, expected);
  }
  std::string line;
  converter::lineText(';').append(line, "$;");
  EXPECT_EQ(line, "$\xEF\xBC\x9B");
}

}  // namespace

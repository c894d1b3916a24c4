// How SQL text is cut into tokens.
#include "suite/io/sqlText.h"

#include <gtest/gtest.h>

namespace {

using suiteIo::sqlTokens;
using suiteIo::tokenKind;

std::string tokensOf(std::string_view sql) {
  std::string list;
  sqlTokens tokens(sql);
  for (auto token = tokens.next(); token.kind != tokenKind::end; token = tokens.next()) {
    if (!list.empty()) list += ' ';
    list += token.kind == tokenKind::word ? 'w' : token.kind == tokenKind::quoted ? 'q' : 's';
    list += token.text;
  }
  return list;
}

struct row {
  const char* name;
  std::string sql;
  std::string tokens;
  int line = __builtin_LINE();
};

const row rows[] = {
    row{"nothing",                    "",             ""                 },
    row{"blanks alone",               " \t\r\n\f",    ""                 },
    row{"a vertical TAB is no blank", "a\vb",         "wa s\v wb"        },
    row{"words and signs",            "a(b,c)",       "wa s( wb s, wc s)"},
    row{"digits, _ and $ are words",  "a_1$ 10",      "wa_1$ w10"        },
    row{"bytes beyond ASCII",         "\xD0\x96 x",   "w\xD0\x96 wx"     },
    row{"double quotes",              "\"a b\"c",     "q\"a b\" wc"      },
    row{"a doubled quote",            "\"a\"\"b\" c", "q\"a\"\"b\" wc"   },
    row{"apostrophes",                "'it''s'",      "q'it''s'"         },
    row{"backquotes",                 "`a``b`",       "q`a``b`"          },
    row{"brackets close at once",     "[a]]",         "q[a] s]"          },
    row{"a quote that is not closed", "\"a b",        "q\"a b"           },
    row{"a comment up to the line",   "a--b\nc",      "wa wc"            },
    row{"a comment at the end",       "a--b",         "wa"               },
    row{"a comment inside",           "a/*b,\n*/c",   "wa wc"            },
    row{"a comment not closed",       "a/*b",         "wa"               },
    row{"the shortest of these",      "a/*",          "wa"               },
    row{"a comment in quotes",        "'--' \"/*\"",  "q'--' q\"/*\""    },
    row{"half a comment sign",        "a-b/c",        "wa s- wb s/ wc"   },
};

TEST(sqlText, isCutIntoTokens) {
  for (const row& each : rows) {
    const testing::ScopedTrace trace(__FILE__, each.line, each.name);
    EXPECT_EQ(tokensOf(each.sql), each.tokens);
  }
}

TEST(sqlText, wordsHaveNoCaseAndQuotedOnesAreNone) {
  EXPECT_TRUE(sqlTokens("Create").next().isWord("CREATE"));
  EXPECT_FALSE(sqlTokens("Creates").next().isWord("CREATE"));
  EXPECT_FALSE(sqlTokens("\"CREATE\"").next().isWord("CREATE"));
}

TEST(sqlText, aNameWithoutItsQuotes) {
  EXPECT_EQ(suiteIo::unquoted("a"), "a");
  EXPECT_EQ(suiteIo::unquoted("\"a\"\"b\""), "a\"b");
  EXPECT_EQ(suiteIo::unquoted("'a''b'"), "a'b");
  EXPECT_EQ(suiteIo::unquoted("`a``b`"), "a`b");
  EXPECT_EQ(suiteIo::unquoted("[a\"b]"), "a\"b");
  EXPECT_EQ(suiteIo::unquoted("\"a"), "a");
  EXPECT_EQ(suiteIo::unquoted("\"a\" (10)"), "a");
  EXPECT_EQ(suiteIo::unquoted(""), "");
}

TEST(sqlText, typesAreTheSameButForCaseAndBlanks) {
  EXPECT_TRUE(suiteIo::isSameType("decimal(10, 2)", "DECIMAL (10,2)"));
  EXPECT_TRUE(suiteIo::isSameType("", ""));
  EXPECT_FALSE(suiteIo::isSameType("INT", "INTEGER"));
}

}  // namespace

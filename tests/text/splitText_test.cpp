// Cutting and trimming of wide text.
#include "table_rw/text/splitText.h"

#include <gtest/gtest.h>

#include "tests/reference/textTwin.h"
#include "tests/support/tableText.h"

namespace {

using namespace std::string_literals;
using testSupport::describe;
using testSupport::printable;
using testSupport::textRow;

struct Row {
  const char* name;
  std::wstring text;
  std::wstring delimiter;
  std::string kept;
  std::string withoutEmpty;
  int line = __builtin_LINE();
};

TEST(splitText, cutsAtEveryDelimiter) {
  for (const Row& row : {
           Row{"two pieces",                 L"a;b",      L";",      "a|b",         "a|b"        },
           Row{"no delimiter",               L"ab",       L";",      "ab",          "ab"         },
           Row{"empty text",                 L"",         L";",      "",            "()"         },
           Row{"delimiter alone",            L";",        L";",      "|",           "()"         },
           Row{"adjacent delimiters",        L"a;;b",     L";",      "a||b",        "a|b"        },
           Row{"delimiter at both ends",     L";a;",      L";",      "|a|",         "a"          },
           Row{"n delimiters, n + 1 pieces", L";;;",      L";",      "|||",         "()"         },
           Row{"blanks are kept",            L" a ;\t",   L";",      " a |\\x{09}", " a |\\x{09}"},
           Row{"long delimiter",             L"a<->b",    L"<->",    "a|b",         "a|b"        },
           Row{"part of the delimiter",      L"a<-b<-",   L"<->",    "a<-b<-",      "a<-b<-"     },
           Row{"occurrences do not overlap", L"a;;;b",    L";;",     "a|;b",        "a|;b"       },
           Row{"found from left to right",   L";;;;;",    L";;",     "||;",         ";"          },
           Row{"text is the delimiter",      L"<->",      L"<->",    "|",           "()"         },
           Row{"text shorter than it",       L"<-",       L"<->",    "<-",          "<-"         },
           Row{"self-similar delimiter",     L"aabaaab",  L"aab",    "|a|",         "a"          },
           Row{"empty delimiter",            L"a;b",      L"",       "a;b",         "a;b"        },
           Row{"empty delimiter and text",   L"",         L"",       "",            "()"         },
           Row{"non-ASCII delimiter",        L"a\u2026b", L"\u2026", "a|b",         "a|b"        },
           Row{"case counts",                L"axbXc",    L"x",      "a|bXc",       "a|bXc"      },
           Row{"NUL in the text",            L"a\0;b"s,   L";",      "a\\x{00}|b",  "a\\x{00}|b" },
           Row{"NUL as delimiter",           L"a\0b"s,    L"\0"s,    "a|b",         "a|b"        },
  }) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    EXPECT_EQ(describe(tableRW::splitText(row.text, row.delimiter, false)), row.kept);
    EXPECT_EQ(describe(tableRW::splitText(row.text, row.delimiter, true)), row.withoutEmpty);
    textRow reused = {L"old", L"older", L"oldest", L"x", L"y", L"z"};
    tableRW::splitTextInto(row.text, row.delimiter, false, reused);
    EXPECT_EQ(describe(reused), row.kept);
    tableRW::splitTextInto(row.text, row.delimiter, true, reused);
    EXPECT_EQ(describe(reused), row.withoutEmpty);
  }
}

// Every text of up to `length` characters of an alphabet.
std::vector<std::wstring> textsOver(std::wstring_view alphabet, std::size_t length) {
  std::vector<std::wstring> texts = {L""};
  for (std::size_t i = 0; i < texts.size() && texts[i].size() < length; ++i) {
    for (const wchar_t character : alphabet) {
      std::wstring longer = texts[i] + character;
      texts.push_back(std::move(longer));
    }
  }
  return texts;
}

TEST(splitText, agreesWithTheTwin) {
  const std::vector<std::wstring> texts = textsOver(L"a;-", 7);
  for (const wchar_t* delimiter : {L";", L";;", L";-", L";-;", L"aa;", L""})
    for (const std::wstring& text : texts)
      for (const bool skipEmpty : {false, true})
        ASSERT_EQ(tableRW::splitText(text, delimiter, skipEmpty),
                  reference::splitText(text, delimiter, skipEmpty))
            << "'" << printable(text) << "' at '" << printable(delimiter) << "'";
}

TEST(trimText, removesSixCharactersAtBothEnds) {
  struct TrimRow {
    const char* name;
    std::wstring text;
    std::wstring trimmed;
    int line = __builtin_LINE();
  };
  for (const TrimRow& row : {
           TrimRow{"empty",                   L"",                        L""             },
           TrimRow{"nothing to trim",         L"a",                       L"a"            },
           TrimRow{"all six",                 L" \t\n\r\v\fa\f\v\r\n\t ", L"a"            },
           TrimRow{"only such characters",    L" \t\n\r\v\f",             L""             },
           TrimRow{"one blank",               L" ",                       L""             },
           TrimRow{"inside stays",            L" a \t b ",                L"a \t b"       },
           TrimRow{"left only",               L"\t a",                    L"a"            },
           TrimRow{"right only",              L"a \n",                    L"a"            },
           TrimRow{"no-break space stays",    L"\u00A0a\u00A0",           L"\u00A0a\u00A0"},
           TrimRow{"ideographic space stays", L"\u3000a\u2003",           L"\u3000a\u2003"},
           TrimRow{"next line stays",         L"\u0085a\u2028",           L"\u0085a\u2028"},
           TrimRow{"byte-order mark stays",   L"\uFEFF a ",               L"\uFEFF a"     },
           TrimRow{"NUL stays",               std::wstring(L" \0 ",       3),               std::wstring(1, L'\0')},
           TrimRow{"other controls stay",                   L"\b\x1Fz\x1C\x7F",                                             L"\b\x1Fz\x1C\x7F"                                        },
  }) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    EXPECT_EQ(tableRW::trimText(row.text), row.trimmed);
    EXPECT_EQ(tableRW::trimmed(row.text), row.trimmed);
    EXPECT_EQ(reference::trimText(row.text), row.trimmed);
  }
}

TEST(trimText, agreesWithTheTwin) {
  for (const std::wstring& text : textsOver(L"a \t\r", 6))
    ASSERT_EQ(tableRW::trimText(text), reference::trimText(text)) << printable(text);
}

}  // namespace

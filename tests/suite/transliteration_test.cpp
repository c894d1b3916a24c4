// vo_translit: every letter of the alphabets it knows, and what it does with everything else.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/vok_basic.h"
#include "tests/support/tableText.h"

namespace {

using testSupport::wide;

std::string transliterated(const wchar_t* text) {
  std::string latin = "untouched";
  Tvo_std_string_adapter target(latin);
  vo_string_adp* const adapter = vo_string_adp_create(&target);
  vo_translit(text, adapter);
  vo_string_adp_destroy(adapter);
  return latin;
}

struct row {
  const char* name;
  const char* text;  // UTF-8
  const char* latin;
  int line = __builtin_LINE();
};

const std::vector<row> rows = {
    row{"nothing",                                        "",                                                                   ""                },
    row{"ASCII as it is",                                 "Well 7_a-b!",                                                        "Well 7_a-b!"     },
    row{"small Russian letters",                          "абвгдеёжзийклмнопрстуфхцчшщъыьэюя",
        "abvgdeyozhziyklmnoprstufkhtschshshchyeyuya"                                                                                              },
    row{"Russian capitals",                               "АБВГДЕЁЖЗИЙКЛМНОПРСТУФХЦЧШЩЪЫЬЭЮЯ",
        "ABVGDEYoZhZIYKLMNOPRSTUFKhTsChShShchYEYuYa"                                                                                              },
    row{"case is kept letter by letter",                  "Глубина ДО",                                                "Glubina DO"      },
    row{"Ukrainian",                                      "ґєіїҐЄІЇ",                                                   "gyeiyiGYeIYi"    },
    row{"Belarusian",                                     "ўЎ",                                                               "uU"              },
    row{"Kazakh",                                         "әғқңөұүһӘҒҚҢӨҰҮҺ",                                   "agqnouuhAGQNOUUH"},
    row{"Latin letters with marks",                       "éÈñÜçžŁğőỆ",                                              "eEnUczLgoE"      },
    row{"Latin letters that are two",                     "ßæŒÞ",                                                           "ssaeOETh"        },
    row{"Latin letters with two marks",                   "ǢǽǾẛ",                                                          "AEaeOs"          },
    row{"a mark of its own belongs to the letter before", "e\u0301и\u0306",                                                    "ei"              },
    row{"other scripts and signs",                        "α№—中",                                                        "____"            },
    row{"one for a character beyond the BMP",             "a\U0001F600b",                                                       "a_b"             },
    row{"the first and the last of Latin-1",              "\u0080\u00FF",                                                       "_y"              },
};

TEST(transliteration, table) {
  for (const row& each : rows) {
    SCOPED_TRACE(std::string(each.name) + ", line " + std::to_string(each.line));
    EXPECT_EQ(transliterated(wide(each.text).c_str()), each.latin);
  }
}

TEST(transliteration, everythingBecomesAscii) {
  for (unsigned code = 1; code <= 0xFFFF; ++code) {
    const wchar_t text[] = {static_cast<wchar_t>(code), L'\0'};
    const std::string latin = transliterated(text);
    ASSERT_LE(latin.size(), 4u) << code;
    for (const char c : latin) ASSERT_LT(static_cast<unsigned char>(c), 0x80u) << code;
  }
}

TEST(transliteration, aPairOfSurrogatesIsOneCharacter) {
  const wchar_t text[] = {static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00), L'a', L'\0'};
  EXPECT_EQ(transliterated(text), "_a");
}

TEST(transliteration, aLoneSurrogateAtTheEnd) {
  const wchar_t text[] = {L'a', static_cast<wchar_t>(0xD83D), L'\0'};
  EXPECT_EQ(transliterated(text), "a_");
}

TEST(transliteration, aNullTextEmptiesTheTarget) { EXPECT_EQ(transliterated(nullptr), ""); }

TEST(transliteration, aNullReceiverIsAccepted) { vo_translit(L"text", nullptr); }

}  // namespace

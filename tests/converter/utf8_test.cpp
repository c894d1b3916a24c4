// Characters as UTF-8, at the borders of its lengths and behind the last one.
#include "converter/syntax/utf8.h"

#include <gtest/gtest.h>

namespace {

TEST(converterUtf8, characters) {
  const std::pair<char32_t, const char*> cases[] = {
      {0x7F,       "\x7F"            },
      {0x80,       "\xC2\x80"        },
      {0x7FF,      "\xDF\xBF"        },
      {0x800,      "\xE0\xA0\x80"    },
      {0xD7FF,     "\xED\x9F\xBF"    },
      {0xD800,     "\xEF\xBF\xBD"    },
      {0xDFFF,     "\xEF\xBF\xBD"    },
      {0xE000,     "\xEE\x80\x80"    },
      {0xFFFF,     "\xEF\xBF\xBF"    },
      {0x10000,    "\xF0\x90\x80\x80"},
      {0x10FFFF,   "\xF4\x8F\xBF\xBF"},
      {0x110000,   "\xEF\xBF\xBD"    },
      {0xFFFFFFFF, "\xEF\xBF\xBD"    },
  };
  for (const auto& [character, expected] : cases) {
    std::string text;
    converter::appendUtf8(text, character);
    EXPECT_EQ(text, expected) << std::hex << static_cast<std::uint32_t>(character);
  }
}

}  // namespace

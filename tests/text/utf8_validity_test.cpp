// isValidUtf8 and the faster widening.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/codePages.h"
#include "table_rw/text/textConversion.h"
#include "table_rw/text/utf8.h"
#include "tests/support/randomNumbers.h"

namespace {

using tableRW::isValidUtf8;

// Valid is what decodes and encodes to the same bytes.
bool survivesDecoding(const std::string& bytes) {
  const std::wstring text = tableRW::decodeText(
      bytes.data(), static_cast<std::int32_t>(bytes.size()), tableRW::encodingUtf8);
  return tableRW::encodeText(text.data(), static_cast<std::int32_t>(text.size()),
                             tableRW::encodingUtf8) == bytes;
}

TEST(isValidUtf8, knowsSequencesOfUpToFourBytes) {
  struct validityRow {
    const char* name;
    std::string_view bytes;
    bool valid;
  };
  for (const validityRow& row : {
           validityRow{"nothing",                         "",                 true },
           validityRow{"ASCII",                           "W-1;2.5",          true },
           validityRow{"the smallest of two",             "\xC2\x80",         true },
           validityRow{"overlong of two",                 "\xC1\xBF",         false},
           validityRow{"the smallest of three",           "\xE0\xA0\x80",     true },
           validityRow{"overlong of three",               "\xE0\x9F\xBF",     false},
           validityRow{"the last before the surrogates",  "\xED\x9F\xBF",     true },
           validityRow{"a surrogate",                     "\xED\xA0\x80",     false},
           validityRow{"the first behind the surrogates", "\xEE\x80\x80",     true },
           validityRow{"the smallest of four",            "\xF0\x90\x80\x80", true },
           validityRow{"overlong of four",                "\xF0\x8F\xBF\xBF", false},
           validityRow{"the last of all",                 "\xF4\x8F\xBF\xBF", true },
           validityRow{"beyond the last",                 "\xF4\x90\x80\x80", false},
           validityRow{"a lead that is none",             "\xF5\x80\x80\x80", false},
           validityRow{"a continuation alone",            "\x80",             false},
           validityRow{"cut after one",                   "\xD0",             false},
           validityRow{"cut after two",                   "\xE2\x82",         false},
           validityRow{"cut after three",                 "\xF0\x9F\x98",     false},
           validityRow{"cut by ASCII",                    "\xE2\x82;",        false},
  })
    EXPECT_EQ(isValidUtf8(row.bytes), row.valid) << row.name;
}

TEST(isValidUtf8, agreesWithDecodingOnAllPairsOfBytesBeforeContinuations) {
  for (int first = 0x80; first < 0x100; ++first) {
    for (int second = 0; second < 0x100; ++second) {
      for (std::size_t continuations = 0; continuations < 4; ++continuations) {
        std::string bytes = {static_cast<char>(first), static_cast<char>(second)};
        bytes.append(continuations, '\x80');
        bytes += "12345678";  // away from the end, where emulations of Windows differ
        ASSERT_EQ(isValidUtf8(bytes), survivesDecoding(bytes)) << first << " " << second;
      }
    }
  }
}

TEST(wideFromPaddedUtf8, agreesWithTheOtherOne) {
  testSupport::randomNumbers random(3);
  for (std::size_t size = 0; size <= 100; ++size) {
    for (int round = 0; round < 50; ++round) {
      std::wstring text;
      while (tableRW::utf8FromWide(text).size() < size)
        text += random.onceIn(5) ? static_cast<wchar_t>(0x400 + random.below(0x100))
                                 : static_cast<wchar_t>('0' + random.below(70));
      const std::string bytes = tableRW::utf8FromWide(text);
      // What lies behind must not matter: ASCII, and bytes that are none.
      for (const char behind : {'x', '\xFF'}) {
        const std::string padded = bytes + std::string(tableRW::utf8Padding, behind);
        const std::string_view view = std::string_view(padded).substr(0, bytes.size());
        ASSERT_EQ(tableRW::wideFromPaddedUtf8(view), text) << size;
        ASSERT_EQ(tableRW::wideFromUtf8(bytes), text) << size;
      }
    }
  }
  EXPECT_EQ(tableRW::wideFromPaddedUtf8({}), L"");
}

}  // namespace

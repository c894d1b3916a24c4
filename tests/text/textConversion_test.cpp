// Narrow text to wide text and back in every encoding of the table.
#include "table_rw/text/textConversion.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>

#include "tests/support/codePageData.h"
#include "tests/support/environmentSetter.h"
#include "tests/support/tableText.h"
#include "tests/support/targetSystem.h"

namespace {

using namespace std::string_literals;
using testSupport::printable;

std::wstring decode(std::string_view bytes, std::int32_t encoding) {
  return tableRW::decodeText(bytes.data(), static_cast<std::int32_t>(bytes.size()), encoding);
}

std::string encode(std::wstring_view text, std::int32_t encoding) {
  return tableRW::encodeText(text.data(), static_cast<std::int32_t>(text.size()), encoding);
}

std::string allBytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

// The rows of the table that have a code page of one byte a character.
constexpr std::int32_t firstSingleByte = 7;
constexpr std::int32_t lastSingleByte = 17;

// What every row with code page 0 stands for, and some values that are in no row.
constexpr std::int32_t systemLike[] = {1,  2,  3,  4,   5,    6,
                                       18, -1, 19, 100, 1251, std::numeric_limits<int>::min()};

TEST(decodeText, givesNothingForNothing) {
  for (std::int32_t encoding = -1; encoding <= 19; ++encoding) {
    EXPECT_EQ(tableRW::decodeText(nullptr, 0, encoding), L"") << encoding;
    EXPECT_EQ(tableRW::decodeText(nullptr, 5, encoding), L"") << encoding;
    EXPECT_EQ(tableRW::decodeText("abc", 0, encoding), L"") << encoding;
  }
}

TEST(decodeText, takesExactlyTheGivenLength) {
  EXPECT_EQ(tableRW::decodeText("abc", 2, 0), L"ab");
  EXPECT_EQ(tableRW::decodeText("a\0b", 3, 0), L"a\0b"s);
  EXPECT_EQ(tableRW::decodeText("a\0b", 3, 8), L"a\0b"s);
  EXPECT_EQ(tableRW::decodeText("\0\0", 2, 18), L"\0\0"s);
}

TEST(decodeText, decodesUtf8) {
  EXPECT_EQ(decode("a\xC3\xA9\xD0\x9F\xE2\x82\xAC", 0), L"a\u00E9\u041F\u20AC");
  EXPECT_EQ(decode("\xF0\x9F\x98\x80", 0), L"\U0001F600");
  EXPECT_EQ(decode("\xEF\xBB\xBF.", 0), L"\uFEFF.");
}

TEST(decodeText, replacesBrokenUtf8AsWindowsDoes) {
  for (const std::vector<std::string>& row : testSupport::recordedRows("utf8_strings.tsv")) {
    const bool isSwallowedByWine = !row[2].empty();
    if (testSupport::wideIsUtf16 && isSwallowedByWine) continue;
    EXPECT_EQ(printable(decode(testSupport::bytesOf(row[0]), 0)),
              printable(testSupport::joinedWideOf(testSupport::unitsOf(row[1]))))
        << row[0];
  }
}

TEST(decodeText, decodesEveryByteOfEveryPage) {
  const std::string bytes = allBytes();
  for (std::int32_t encoding = firstSingleByte; encoding <= lastSingleByte; ++encoding) {
    const auto units = testSupport::recordedDecoding(tableRW::codePageOf(encoding));
    EXPECT_EQ(decode(bytes, encoding), std::wstring(units.begin(), units.end())) << encoding;
  }
}

TEST(decodeText, decodesCyrillicWhereThePageHasIt) {
  EXPECT_EQ(decode("\xD0\x9F\xD1\x8F", 0), L"\u041F\u044F");
  EXPECT_EQ(decode("\xCF\xFF", 8), L"\u041F\u044F");
  EXPECT_EQ(decode("\x8F\xEF", 16), L"\u041F\u044F");
  EXPECT_EQ(decode("\xCF\xFF", 9), L"\u00CF\u00FF");
  EXPECT_EQ(decode("\xCF\xFF", 17), L"O\x7F");
}

// Runs a check under every system code page that this target lets a test choose.
template <class Check>
void underSystemCodePages(Check check) {
  if (const std::optional<unsigned> fixed = testSupport::fixedSystemCodePage()) {
    check(*fixed);
    return;
  }
  const testSupport::environmentSetter first(L"LC_ALL", L"ru_RU.CP1251");
  check(1251U);
  const testSupport::environmentSetter second(L"LC_ALL", L"en_US.CP1252");
  check(1252U);
  const testSupport::environmentSetter third(L"LC_ALL", L"C");
  check(65001U);
}

std::int32_t encodingWithPage(unsigned codePage) {
  for (std::int32_t encoding = 0; encoding < 18; ++encoding)
    if (tableRW::textEncodings[encoding].codePage == codePage) return encoding;
  return -1;
}

TEST(decodeText, utf16RowsAndValuesOutsideTheTableAreTheSystemsPage) {
  underSystemCodePages([](unsigned codePage) {
    const std::int32_t same = encodingWithPage(codePage);
    if (same < 0) GTEST_SKIP() << "no row of the table has code page " << codePage;
    for (const std::int32_t encoding : systemLike) {
      EXPECT_EQ(decode("a\0b\0"s, encoding), L"a\0b\0"s) << encoding;
      EXPECT_EQ(printable(decode(allBytes(), encoding)), printable(decode(allBytes(), same)))
          << encoding << " under " << codePage;
    }
  });
}

TEST(encodeText, utf16RowsAndValuesOutsideTheTableAreTheSystemsPage) {
  underSystemCodePages([](unsigned codePage) {
    const std::int32_t same = encodingWithPage(codePage);
    if (same < 0) GTEST_SKIP() << "no row of the table has code page " << codePage;
    for (const std::int32_t encoding : systemLike)
      EXPECT_EQ(encode(L"a\u041F\u00E9\u20AC\u4E00", encoding),
                encode(L"a\u041F\u00E9\u20AC\u4E00", same))
          << encoding << " under " << codePage;
  });
}

TEST(encodeText, givesNothingForNothing) {
  for (std::int32_t encoding = -1; encoding <= 19; ++encoding) {
    EXPECT_EQ(tableRW::encodeText(nullptr, 0, encoding), "") << encoding;
    EXPECT_EQ(tableRW::encodeText(nullptr, 5, encoding), "") << encoding;
    EXPECT_EQ(tableRW::encodeText(L"abc", 0, encoding), "") << encoding;
  }
}

TEST(encodeText, takesExactlyTheGivenLength) {
  EXPECT_EQ(tableRW::encodeText(L"abc", 2, 0), "ab");
  EXPECT_EQ(tableRW::encodeText(L"a\0b", 3, 0), "a\0b"s);
  EXPECT_EQ(tableRW::encodeText(L"a\0b", 3, 8), "a\0b"s);
}

TEST(encodeText, encodesUtf8) {
  EXPECT_EQ(encode(L"a\u00E9\u041F\u20AC\U0001F600", 0),
            "a\xC3\xA9\xD0\x9F\xE2\x82\xAC\xF0\x9F\x98\x80");
  const std::wstring lone = {static_cast<wchar_t>(0xD800), L'z'};
  EXPECT_EQ(encode(lone, 0), "\xEF\xBF\xBDz");
}

TEST(encodeText, takesBackEveryByteOfEveryPage) {
  for (std::int32_t encoding = firstSingleByte; encoding <= lastSingleByte; ++encoding) {
    const unsigned codePage = tableRW::codePageOf(encoding);
    const auto units = testSupport::recordedDecoding(codePage);
    const std::vector<unsigned char> bytes = testSupport::recordedEncoding(codePage);
    std::string wanted;
    for (const char16_t unit : units) wanted += static_cast<char>(bytes[unit]);
    EXPECT_EQ(encode(std::wstring(units.begin(), units.end()), encoding), wanted) << encoding;
  }
}

TEST(encodeText, substitutesWhatAPageLacks) {
  EXPECT_EQ(encode(L"\u4E00", 8), "?");
  EXPECT_EQ(encode(L"\U0001F600", 8), "??");
  EXPECT_EQ(encode(L"\u00E9", 8), "e");  // best fit
  EXPECT_EQ(encode(L"\u041F", 9), "?");
  EXPECT_EQ(encode(L"\u041F\u044F", 16), "\x8F\xEF");
}

TEST(decodeBytes, convertsInAKnownPage) {
  EXPECT_EQ(tableRW::decodeBytes("\xCF\xFF", 2, 1251), L"\u041F\u044F");
  EXPECT_EQ(tableRW::decodeBytes(nullptr, 2, 1251), L"");
  EXPECT_EQ(tableRW::decodeBytes("ab", 2, 4711), L"");  // there is no such page
}

}  // namespace

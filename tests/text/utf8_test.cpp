// The table's own text form.
#include "table_rw/text/utf8.h"

#include <gtest/gtest.h>

#include "tests/support/randomNumbers.h"
#include "tests/support/tableText.h"

namespace {

using tableRW::utf8FromWide;
using tableRW::wideFromUtf8;

std::wstring element(std::uint32_t code) { return std::wstring(1, static_cast<wchar_t>(code)); }

TEST(utf8, hasTheUsualBytes) {
  EXPECT_EQ(utf8FromWide(L""), "");
  EXPECT_EQ(utf8FromWide(std::wstring_view(L"a\0b", 3)), std::string("a\0b", 3));
  EXPECT_EQ(utf8FromWide(L"\x7F"), "\x7F");
  EXPECT_EQ(utf8FromWide(L"\u0080"), "\xC2\x80");
  EXPECT_EQ(utf8FromWide(L"\u07FF"), "\xDF\xBF");
  EXPECT_EQ(utf8FromWide(L"\u0800"), "\xE0\xA0\x80");
  EXPECT_EQ(utf8FromWide(L"\uFFFF"), "\xEF\xBF\xBF");
  EXPECT_EQ(utf8FromWide(L"\U00010000"), "\xF0\x90\x80\x80");
  EXPECT_EQ(utf8FromWide(L"\U0010FFFF"), "\xF4\x8F\xBF\xBF");
}

TEST(utf8, loneSurrogatesTakeThreeBytes) {
  EXPECT_EQ(utf8FromWide(element(0xD800)), "\xED\xA0\x80");
  EXPECT_EQ(utf8FromWide(element(0xDFFF)), "\xED\xBF\xBF");
  EXPECT_EQ(utf8FromWide(element(0xDC00) + element(0xD800)), "\xED\xB0\x80\xED\xA0\x80");
}

TEST(utf8, aPairIsOneCharacterOnlyWhereWideTextIsUtf16) {
  const std::string bytes = utf8FromWide(element(0xD83D) + element(0xDE00));
  EXPECT_EQ(bytes, sizeof(wchar_t) == 2 ? "\xF0\x9F\x98\x80" : "\xED\xA0\xBD\xED\xB8\x80");
  EXPECT_EQ(wideFromUtf8(bytes), element(0xD83D) + element(0xDE00));
}

TEST(utf8, elementsThatAreNoCharacterStandBehindAByteFF) {
  if (sizeof(wchar_t) == 2) GTEST_SKIP() << "every element is a unit of UTF-16 here";
  EXPECT_EQ(utf8FromWide(element(0x110000)), "\xFF\x80\x80\x84\x90\x80\x80");
  EXPECT_EQ(utf8FromWide(element(0xFFFFFFFF)), "\xFF\x83\xBF\xBF\xBF\xBF\xBF");
}

TEST(utf8, neverOutgrowsItsBound) {
  for (const std::uint32_t code : {0x61U, 0x7FFU, 0xFFFFU, 0xD800U, 0x10FFFFU, 0xFFFFFFFFU})
    EXPECT_LE(utf8FromWide(element(code)).size(), tableRW::longestUtf8Element) << code;
}

TEST(utf8, charactersBeyondTheBmpSurviveInLongText) {
  for (const wchar_t* const character :
       {L"\U00010000", L"\U0001F600", L"\U0003FFFF", L"\U00040000", L"\U0010FFFF"}) {
    const std::wstring text = std::wstring(100, L'a') + character + L'b';
    EXPECT_EQ(wideFromUtf8(utf8FromWide(text)), text) << testSupport::printable(character);
  }
}

TEST(utf8, randomTextSurvives) {
  testSupport::randomNumbers random(8);
  for (int round = 0; round < 2000; ++round) {
    std::wstring text;
    for (std::size_t length = random.below(40); length > 0; --length)
      text += static_cast<wchar_t>(random.bits() >> random.below(32));
    ASSERT_EQ(wideFromUtf8(utf8FromWide(text)), text) << testSupport::printable(text);
  }
}

}  // namespace

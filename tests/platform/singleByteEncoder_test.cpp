// The encoder of the writers against encodeText.
#include "platform/singleByteEncoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "table_rw/text/textConversion.h"
#include "tests/support/randomNumbers.h"
#include "tests/support/targetSystem.h"

namespace {

using platform::singleByteEncoder;

std::string encoded(singleByteEncoder& encoder, const std::wstring& text) {
  std::string bytes(text.size() * singleByteEncoder::mostBytes, 'x');
  const platform::encodedText result = encoder.encode(text, bytes.data());
  bytes.resize(static_cast<std::size_t>(result.end - bytes.data()));
  const bool plain = std::none_of(bytes.begin(), bytes.end(),
                                  [](char byte) { return static_cast<unsigned char>(byte) < ' '; });
  EXPECT_EQ(result.plain, plain);
  return bytes;
}

std::string expected(const std::wstring& text, tableRW::textEncoding encoding) {
  return tableRW::encodeText(text.data(), static_cast<std::int32_t>(text.size()), encoding);
}

TEST(singleByteEncoder, knowsEveryCharacterOfEveryPage) {
  for (const tableRW::textEncoding encoding : {7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17}) {
    singleByteEncoder encoder(tableRW::codePageOf(encoding));
    for (unsigned block = 0; block < 0x10000; block += 0x100) {
      if (block >= 0xD800 && block < 0xE000) continue;  // by themselves below
      std::wstring text;
      for (unsigned i = 0; i < 0x100; ++i) text += static_cast<wchar_t>(block + i);
      EXPECT_EQ(encoded(encoder, text), expected(text, encoding)) << encoding << " " << block;
    }
  }
}

TEST(singleByteEncoder, substitutesEachUnitOfAPair) {
  singleByteEncoder encoder(1251);
  EXPECT_EQ(encoded(encoder, L"a\U0001F600z"), "a??z");
  EXPECT_EQ(encoded(encoder, std::wstring{L'a', static_cast<wchar_t>(0xD83D), L'z'}), "a?z");
  EXPECT_EQ(
      encoded(encoder, std::wstring{static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)}),
      "??");
  EXPECT_EQ(encoded(encoder, L""), "");
  EXPECT_EQ(encoded(encoder, std::wstring(1, L'\0')), std::string(1, '\0'));
  if (testSupport::wideIsUtf16) return;
  EXPECT_EQ(encoded(encoder, std::wstring{L'a', static_cast<wchar_t>(0x110000), L'z'}), "a?z")
      << "no character, and no pair";
}

// One character that is odd, at every place of texts of every length around the encoder's steps.
TEST(singleByteEncoder, seesAnOddCharacterAtEveryPlace) {
  singleByteEncoder encoder(1251);
  for (std::size_t length = 1; length <= 13; ++length) {
    for (std::size_t at = 0; at < length; ++at) {
      for (const wchar_t odd :
           {L'\0', L'\n', L'\x1F', L' ', L'\x7F', L'\x80', L'\x416', L'\xFFFF'}) {
        std::wstring text(length, L'z');
        text[at] = odd;
        EXPECT_EQ(encoded(encoder, text), expected(text, 8)) << length << " " << at;
      }
    }
  }
}

TEST(singleByteEncoder, agreesOnRandomText) {
  testSupport::randomNumbers random(11);
  singleByteEncoder encoder(1251);
  for (int round = 0; round < 2000; ++round) {
    std::wstring text;
    for (std::size_t length = random.below(40); text.size() < length;)
      text += random.onceIn(2) ? static_cast<wchar_t>(' ' + random.below(95))
                               : static_cast<wchar_t>(random.below(0xD800));
    ASSERT_EQ(encoded(encoder, text), expected(text, 8));
  }
}

}  // namespace

// The steps of the processor at hand against the portable ones.
#include "platform/asciiSteps.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "tests/support/randomNumbers.h"

namespace {

void expectSameNarrowing(const wchar_t* text) {
  const platform::fourBytes found = platform::narrowFour(text);
  const platform::fourBytes wanted = platform::portable::narrowFour(text);
  ASSERT_EQ(found.ascii, wanted.ascii);
  if (wanted.ascii) {
    ASSERT_EQ(found.bytes, wanted.bytes);
  }
}

TEST(asciiSteps, narrowEveryUnitAtEveryPlace) {
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    for (int at = 0; at < 4; ++at) {
      wchar_t text[] = {L'a', L'b', L'c', L'd'};
      text[at] = static_cast<wchar_t>(unit);
      expectSameNarrowing(text);
    }
  }
}

TEST(asciiSteps, narrowAnyElement) {
  testSupport::randomNumbers random(31);
  for (int round = 0; round < 100000; ++round) {
    wchar_t text[4];
    for (wchar_t& element : text)
      element = static_cast<wchar_t>(random.onceIn(4) ? random.bits() : random.below(0x90));
    expectSameNarrowing(text);
  }
}

TEST(asciiSteps, putTheFirstCharacterIntoTheLowestBits) {
  EXPECT_EQ(platform::portable::narrowFour(L"1234").bytes, 0x34333231U);
  EXPECT_TRUE(platform::portable::narrowFour(L"12\x7F\0").ascii);
  EXPECT_FALSE(platform::portable::narrowFour(L"123\x80").ascii);
}

TEST(asciiSteps, findEveryControlCharacter) {
  for (unsigned byte = 0; byte < 0x80; ++byte)
    for (int shift = 0; shift < 32; shift += 8)
      for (const unsigned others : {0x20202020U, 0x7F7F7F7FU})
        EXPECT_EQ(platform::hasControl((others & ~(0xFFU << shift)) | byte << shift), byte < 0x20);
}

TEST(asciiSteps, widenEveryByte) {
  for (int first = 0; first < 256; first += 16) {
    unsigned char bytes[16];
    for (int i = 0; i < 16; ++i) bytes[i] = static_cast<unsigned char>(first + i);
    wchar_t found[16];
    wchar_t wanted[16];
    platform::widenSixteen(bytes, found);
    platform::portable::widenSixteen(bytes, wanted);
    EXPECT_TRUE(std::equal(std::begin(found), std::end(found), wanted));
    EXPECT_EQ(wanted[15], static_cast<wchar_t>(first + 15));
  }
}

}  // namespace

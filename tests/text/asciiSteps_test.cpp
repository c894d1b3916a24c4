// The steps of the processor at hand against the portable ones.
#include "table_rw/text/asciiSteps.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "tests/support/randomNumbers.h"

namespace {

void expectSameNarrowing(const wchar_t* text) {
  const tableRW::fourBytes found = tableRW::narrowFour(text);
  const tableRW::fourBytes wanted = tableRW::portable::narrowFour(text);
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
  EXPECT_EQ(tableRW::portable::narrowFour(L"1234").bytes, 0x34333231U);
  EXPECT_TRUE(tableRW::portable::narrowFour(L"12\x7F\0").ascii);
  EXPECT_FALSE(tableRW::portable::narrowFour(L"123\x80").ascii);
}

TEST(asciiSteps, findEveryControlCharacter) {
  for (unsigned byte = 0; byte < 0x80; ++byte)
    for (int shift = 0; shift < 32; shift += 8)
      for (const unsigned others : {0x20202020U, 0x7F7F7F7FU})
        EXPECT_EQ(tableRW::hasControl((others & ~(0xFFU << shift)) | byte << shift), byte < 0x20);
}

TEST(asciiSteps, widenEveryByte) {
  for (int first = 0; first < 256; first += 16) {
    unsigned char bytes[16];
    for (int i = 0; i < 16; ++i) bytes[i] = static_cast<unsigned char>(first + i);
    wchar_t found[16];
    wchar_t wanted[16];
    tableRW::widenSixteen(bytes, found);
    tableRW::portable::widenSixteen(bytes, wanted);
    EXPECT_TRUE(std::equal(std::begin(found), std::end(found), wanted));
    EXPECT_EQ(wanted[15], static_cast<wchar_t>(first + 15));
  }
}

}  // namespace

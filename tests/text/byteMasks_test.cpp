// The byte masks of the processor at hand against the portable ones.
#include "table_rw/text/byteMasks.h"

#include <gtest/gtest.h>

#include <array>

#include "tests/support/randomNumbers.h"

namespace {

using tableRW::maskedBytes;
using tableRW::textMarks;
using tableRW::textMasks;
using tableRW::utf8Masks;
using bytesOfABlock = std::array<unsigned char, maskedBytes>;

void expectSame(const bytesOfABlock& bytes, const textMarks& marks) {
  const textMasks found = tableRW::findMarks(bytes.data(), marks);
  const textMasks wanted = tableRW::portable::findMarks(bytes.data(), marks);
  EXPECT_EQ(found.delimiters, wanted.delimiters);
  EXPECT_EQ(found.lineEnds, wanted.lineEnds);
  EXPECT_EQ(found.quotes, wanted.quotes);
  EXPECT_EQ(found.nuls, wanted.nuls);
  EXPECT_EQ(found.nonAscii, wanted.nonAscii);
  const utf8Masks kinds = tableRW::findUtf8Kinds(bytes.data());
  const utf8Masks wantedKinds = tableRW::portable::findUtf8Kinds(bytes.data());
  EXPECT_EQ(kinds.continuations, wantedKinds.continuations);
  EXPECT_EQ(kinds.leadsOfTwo, wantedKinds.leadsOfTwo);
  EXPECT_EQ(kinds.leadsOfThree, wantedKinds.leadsOfThree);
}

TEST(byteMasks, knowEveryByteAtEveryPosition) {
  for (int byte = 0; byte < 256; ++byte) {
    for (std::size_t at = 0; at < maskedBytes; ++at) {
      bytesOfABlock bytes;
      bytes.fill('x');
      bytes[at] = static_cast<unsigned char>(byte);
      expectSame(bytes, {';', '"', true});
    }
  }
}

TEST(byteMasks, knowEveryMark) {
  for (int mark = 1; mark < 128; ++mark) {
    bytesOfABlock bytes;
    for (std::size_t i = 0; i < maskedBytes; ++i)
      bytes[i] = static_cast<unsigned char>(i * 7 % 128);
    bytes[5] = static_cast<unsigned char>(mark);
    expectSame(bytes, {static_cast<unsigned char>(mark), '"', true});
    expectSame(bytes, {';', static_cast<unsigned char>(mark), true});
    expectSame(bytes, {';', static_cast<unsigned char>(mark), false});
  }
}

TEST(byteMasks, portableOnesSayWhatTheyShould) {
  bytesOfABlock bytes;
  bytes.fill('x');
  bytes[0] = ';';
  bytes[1] = '\n';
  bytes[2] = '"';
  bytes[3] = 0;
  bytes[4] = 0x80;
  bytes[5] = 0xC2;
  bytes[6] = 0xE1;
  bytes[7] = 0xED;
  bytes[63] = ';';
  const textMasks masks = tableRW::portable::findMarks(bytes.data(), {';', '"', true});
  EXPECT_EQ(masks.delimiters, std::uint64_t{1} | std::uint64_t{1} << 63);
  EXPECT_EQ(masks.lineEnds, 2U);
  EXPECT_EQ(masks.quotes, 4U);
  EXPECT_EQ(masks.nuls, 8U);
  EXPECT_EQ(masks.nonAscii, 0xF0U);
  const utf8Masks kinds = tableRW::portable::findUtf8Kinds(bytes.data());
  EXPECT_EQ(kinds.continuations, 0x10U);
  EXPECT_EQ(kinds.leadsOfTwo, 0x20U);
  EXPECT_EQ(kinds.leadsOfThree, 0x40U);
}

TEST(byteMasks, agreeOnRandomBytes) {
  testSupport::randomNumbers random(7);
  for (int round = 0; round < 20000; ++round) {
    bytesOfABlock bytes;
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random.below(256));
    expectSame(bytes, {';', '"', random.onceIn(2)});
    if (HasFailure()) return;
  }
}

}  // namespace

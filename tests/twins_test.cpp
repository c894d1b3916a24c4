// What is fast in the library against what is slow and obvious, on random inputs of awkward lengths: around a chunk
// of 1,023 bytes, around the 64 bytes that are looked at together, and none at all. The comparing itself is that of
// the fuzz targets.
//
// An ordinary run tries some thousands; with VOK_FULL_SWEEP in the environment each tries a million, which takes
// half an hour altogether. Fixed seeds: a failure repeats.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <string_view>

#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "tests/support/randomNumbers.h"
#include "tests/support/targetSystem.h"

namespace {

using testSupport::randomNumbers;

// Fewer where each file costs most of the time.
int rounds() {
  if (std::getenv("VOK_FULL_SWEEP") != nullptr) return 1000000;
  return testSupport::onWindows ? 1000 : 4000;
}

std::size_t awkwardLength(randomNumbers& random) {
  constexpr std::size_t lengths[] = {0, 1, 15, 31, 63, 127, 1022, 2045};
  return random.onceIn(2) ? random.below(90) : random.oneOf(lengths) + random.below(4);
}

// Bytes of which most are plain, in a mixture that changes from input to input.
std::string awkwardBytes(randomNumbers& random, std::string_view marks) {
  static constexpr std::string_view odd[] = {
      "\n",           "\r\n",     "\r",           "\x1A",
      {"\0", 1},
                                 "\xD0\xB6", "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
      "\xED\xA0\x80", "\xC3",     "\xF0\x90",     "\xFF",
      "\t",           "\x0B",     "\xC0\xAF"
  };
  const std::size_t length = awkwardLength(random);
  const std::size_t rarity = 1 + random.below(40);
  const char filler = random.onceIn(3) ? '\x98' : 'x';
  std::string bytes;
  while (bytes.size() < length) {
    if (!random.onceIn(rarity))
      bytes += filler;
    else if (random.onceIn(2))
      bytes += random.oneOf(marks);
    else
      bytes += random.oneOf(odd);
  }
  return bytes;
}

// The choices that a target takes from its first bytes, then the input.
void tryMany(const char* name, std::uint32_t seed, std::size_t choices, std::string_view begin,
             std::string_view marks) {
  const fuzzing::target* const target = fuzzing::findTarget(name);
  ASSERT_NE(target, nullptr);
  randomNumbers random(seed);
  for (int round = 0; round < rounds(); ++round) {
    std::string bytes;
    for (std::size_t i = 0; i < choices; ++i) bytes += static_cast<char>(random.bits() & 0xFF);
    bytes += begin;
    bytes += awkwardBytes(random, marks);
    try {
      target->run(bytes);
    } catch (const fuzzing::doesNotHold& problem) {
      FAIL() << name << ", round " << round << ": " << problem.what();
    }
  }
}

TEST(twins, textModeLinesSplittingAndConversions) { tryMany("text", 41, 2, "", ";\n"); }
TEST(twins, csvLines) { tryMany("csv", 42, 5, "", ";;\"\"\n"); }
TEST(twins, petrelRows) {
  tryMany("petrel", 43, 1, "# Petrel\nBEGIN HEADER\nA\nB\nEND HEADER\n", "  \"\"\n");
}
TEST(twins, plainPetrelFiles) { tryMany("petrel", 44, 1, "", "#\n \""); }
TEST(twins, written) { tryMany("writers", 45, 4, "W", "\xFF\xFF=&< \""); }
TEST(twins, names) { tryMany("names", 46, 1, "", "A1_ "); }

}  // namespace

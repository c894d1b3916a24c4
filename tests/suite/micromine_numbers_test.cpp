// The text of real numbers against the standard library's shortest text, on numbers with few decimals, with
// many, of every size and on bit patterns at random. A fixed seed: a failure repeats.
#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>

#include "suite/file_micromine/micromineValues.h"
#include "tests/support/randomNumbers.h"

namespace {

std::string textOf(double number) {
  char record[sizeof(number)];
  std::memcpy(record, &number, sizeof(number));
  fileMicromine::variable column;
  column.type = 'R';
  column.width = sizeof(number);
  char digits[fileMicromine::longestNumber];
  return std::string(fileMicromine::textOf(column, record, digits));
}

std::string shortest(double number) {
  if (!std::isfinite(number)) return "";
  char text[40];
  return {text, std::to_chars(std::begin(text), std::end(text), number).ptr};
}

TEST(micromineNumbers, areTheShortestTextThatReadsBack) {
  testSupport::randomNumbers random(77);
  const double powers[] = {1, 10, 100, 1000, 10000, 100000, 1e6, 1e9};
  for (int round = 0; round < 100000; ++round) {
    const auto bits = static_cast<std::uint64_t>(random.bits()) << 32 | random.bits();
    const double sign = random.onceIn(2) ? -1 : 1;
    const double few =
        sign * static_cast<double>(bits >> (20 + random.below(44))) / random.oneOf(powers);
    const double zeros = sign * static_cast<double>(random.below(1000)) * random.oneOf(powers);
    for (const double number : {few, zeros, std::bit_cast<double>(bits), few + 1e-9,
                                std::nextafter(few, 1e300), std::nextafter(few, 0.0)})
      ASSERT_EQ(textOf(number), shortest(number)) << round;
  }
}

TEST(micromineNumbers, atTheEndsOfWhatIsWrittenPlainly) {
  for (const double number : {0.0,
                              -0.0,
                              0.001,
                              0.0009,
                              0.002,
                              0.0001,
                              0.00001,
                              0.1,
                              0.3,
                              1.0,
                              9.9999,
                              99999.0,
                              100000.0,
                              123400000.0,
                              1e9,
                              9999999999.0,
                              9999999999.9999,
                              1e10,
                              1e10 + 0.5,
                              1e15,
                              1e22,
                              5e-324,
                              1.7976931348623157e308})
    EXPECT_EQ(textOf(number), shortest(number));
}

}  // namespace

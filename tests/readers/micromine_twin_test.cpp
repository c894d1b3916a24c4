// The Micromine reader and its slow twin over random data files: both flavours, both line ends, descriptions,
// all types, records of any bytes, records whose end is damaged, files cut anywhere behind the header. Fixed
// seeds: a failure repeats.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>

#include "platform/codePages.h"
#include "table_rw/readers/tableReader_micromineDat.h"
#include "tests/reference/micromineTwin.h"
#include "tests/support/micromineBuilder.h"
#include "tests/support/randomNumbers.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using namespace std::string_view_literals;
using tableRW::tableReader_micromineDat;
using testSupport::contentOf;
using testSupport::describe;
using testSupport::micromineBuilder;
using testSupport::randomNumbers;
using testSupport::shortened;

// Empty when library and twin agree.
std::string differenceFromTwin(const testSupport::temporaryFolder& folder, const std::string& bytes,
                               unsigned codePage) {
  tableReader_micromineDat reader{tableRW::tableReaderOptions(folder.write(L"t", bytes))};
  if (!reader.read()) return "the read has failed";
  const testSupport::tableContent twin = reference::readMicromine(bytes, codePage);
  if (contentOf(reader) == twin) return "";
  return "library " + shortened(describe(reader)) + "\ntwin    " + shortened(describe(twin));
}

std::string randomVariables(randomNumbers& random, std::size_t count) {
  static constexpr std::string_view kinds[] = {"R8", "F4", "L4", "S2", "C1", "N12", "C40"};
  static constexpr std::string_view names[] = {"WELL", "TENLETTERS", "A_B", "\xC6\xE8", "X"};
  std::string all;
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) all += ", ";
    all.append(random.oneOf(names)).append(" ").append(random.oneOf(kinds));
  }
  return all;
}

std::string randomRecord(randomNumbers& random, std::size_t size) {
  static constexpr std::string_view pieces[] = {
      " "sv,        "   "sv,      "1.5"sv,  "-7"sv,       "W-1"sv,      "\0"sv,
      "\r\n"sv,     "\n"sv,       "\t"sv,   "\x1A"sv,     "\xC6\xA0"sv, "\xD0\x96"sv,
      "\0\0\0\0"sv, "\xF8\x7F"sv, "\x80"sv, "\xF0\xFF"sv, "\x0B\x0C"sv, "\0\0\0\x80"sv};
  std::string bytes;
  while (bytes.size() < size) {
    if (random.onceIn(3))
      bytes += static_cast<char>(random.bits());
    else
      bytes += random.oneOf(pieces);
  }
  bytes.resize(size);
  return bytes;
}

TEST(micromineTwin, agreesOnRandomFiles) {
  // WHY no UTF-8: of broken sequences Wine's converter, which the twin uses, makes other text than Windows'.
  static constexpr std::pair<std::string_view, unsigned> pages[] = {
      {"ibm-5347_P100-1998", 1251},
      {"windows-1252",       1252},
      {"ibm-5346_P100-1998", 1250},
      {"ibm-866_P100-1995",  866 }
  };
  static constexpr std::string_view descriptions[] = {"", "TENLETTERS and more", "TENLETTERS",
                                                      "\xC6 a text \xFF", " TENLETTERSX "};
  const testSupport::temporaryFolder folder;
  randomNumbers random(94);
  for (int round = 0; round < 400; ++round) {
    const std::size_t variables = 1 + random.below(12);
    const auto& [page, codePage] = random.oneOf(pages);
    micromineBuilder builder(randomVariables(random, variables));
    builder.codePage(page);
    if (random.onceIn(2)) builder.lineEnd("\n");
    if (random.onceIn(2))
      for (std::size_t i = 0; i < variables; ++i) builder.describe(i, random.oneOf(descriptions));
    const std::size_t headerSize = builder.header().size();
    const std::size_t size = builder.recordSize();
    for (std::size_t rows = random.onceIn(20) ? 4000 : random.below(30); rows > 0; --rows)
      builder.record(randomRecord(random, size));
    std::string bytes = builder.bytes();
    // Behind the first record, whose end tells what the file is.
    const std::size_t first = headerSize + size;
    if (bytes.size() > first && random.onceIn(2))
      for (int i = 0; i < 5; ++i)
        bytes[first + random.below(bytes.size() - first)] = static_cast<char>(random.bits());
    if (bytes.size() > first && random.onceIn(2))
      bytes.resize(first + random.below(bytes.size() - first));
    if (random.onceIn(4)) bytes += '\x1A';
    ASSERT_EQ(differenceFromTwin(folder, bytes, codePage), "") << "round " << round;
  }
}

TEST(micromineTwin, agreesOnBothFlavoursCutAtEveryByteOfTheRecords) {
  const testSupport::temporaryFolder folder;
  randomNumbers random(95);
  for (const bool isStandard : {false, true}) {
    micromineBuilder builder("A C3, X R8, N N5, L L4");
    builder.codePage("UTF-8");
    if (isStandard) builder.standard("a title");
    for (int row = 0; row < 6; ++row) builder.record("abc" + randomRecord(random, 17));
    const std::string whole = builder.bytes();
    const unsigned codePage = isStandard ? platform::resolveCodePage(0) : 65001;
    for (std::size_t size = builder.header().size(); size <= whole.size(); ++size)
      ASSERT_EQ(differenceFromTwin(folder, whole.substr(0, size), codePage), "") << size;
  }
}

}  // namespace

// The table of shared texts against the obvious one, and the part that it writes.
#include "table_rw/writers/xlsx/sharedStrings.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <new>
#include <string>
#include <vector>

#include "tests/support/failingAllocations.h"
#include "tests/support/randomNumbers.h"
#include "tests/support/temporaryFolder.h"

namespace {

using SimpleXlsx::sharedStrings;
using testSupport::temporaryFolder;

std::string partOf(const sharedStrings& strings) {
  const temporaryFolder folder;
  SimpleXlsx::xmlPart part(SimpleXlsx::packageDisk::real());
  EXPECT_TRUE(part.open(folder.file(L"part.xml")));
  strings.write(part);
  EXPECT_TRUE(part.close());
  return testSupport::readFile(folder.file(L"part.xml")).value_or("");
}

constexpr const char* begin =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
    "<sst xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\"";

TEST(sharedStrings, indexesFollowTheFirstAppearance) {
  sharedStrings strings;
  EXPECT_EQ(strings.indexOf(L"b"), 0u);
  EXPECT_EQ(strings.indexOf(L"a"), 1u);
  EXPECT_EQ(strings.indexOf(L""), 2u);
  EXPECT_EQ(strings.indexOf(L"a"), 1u);
  EXPECT_EQ(strings.indexOf(L"b"), 0u);
  EXPECT_EQ(strings.indexOf(L""), 2u);
  EXPECT_EQ(strings.count(), 6u);
  EXPECT_EQ(strings.uniqueCount(), 3u);
  EXPECT_EQ(partOf(strings), std::string(begin) +
                                 " count=\"6\" uniqueCount=\"3\"><si><t>b</t></si><si><t>a</t></si>"
                                 "<si><t></t></si></sst>");
}

TEST(sharedStrings, anEmptyTable) {
  EXPECT_EQ(partOf(sharedStrings()), std::string(begin) + " count=\"0\" uniqueCount=\"0\"/>");
}

TEST(sharedStrings, blanksAtTheEndsAreMarkedAsText) {
  sharedStrings strings;
  for (const wchar_t* text : {L" a", L"a\t", L"a\n", L"\r", L"a b"}) strings.indexOf(text);
  EXPECT_EQ(
      partOf(strings),
      std::string(begin) +
          " count=\"5\" uniqueCount=\"5\"><si><t xml:space=\"preserve\"> a</t></si>"
          "<si><t xml:space=\"preserve\">a\t</t></si><si><t xml:space=\"preserve\">a\n</t></si>"
          "<si><t xml:space=\"preserve\">\r</t></si><si><t>a b</t></si></sst>");
}

TEST(sharedStrings, nothingIsEscaped) {
  sharedStrings strings;
  strings.indexOf(L"a & b < c &amp;");
  EXPECT_NE(partOf(strings).find("<t>a & b < c &amp;</t>"), std::string::npos);
}

// Lengths around the ends of words and of the short record, many texts that differ in one place.
// VOK_FULL_SWEEP in the environment asks for a million.
TEST(sharedStrings, agreeWithAMap) {
  const int rounds = std::getenv("VOK_FULL_SWEEP") != nullptr ? 1000000 : 60000;
  testSupport::randomNumbers random(6);
  sharedStrings strings;
  std::map<std::wstring, std::uint32_t> expected;
  for (int i = 0; i < rounds; ++i) {
    std::wstring text(random.onceIn(500) ? 200 + random.below(120) : random.below(16), L'a');
    for (wchar_t& element : text) element = random.onceIn(2) ? L'\x0416' : L'a';
    const auto next = static_cast<std::uint32_t>(expected.size());
    const auto [entry, isNew] = expected.try_emplace(text, next);
    ASSERT_EQ(strings.indexOf(text), entry->second) << i;
  }
  EXPECT_EQ(strings.uniqueCount(), expected.size());
  EXPECT_EQ(strings.count(), static_cast<std::uint64_t>(rounds));
  EXPECT_GT(expected.size(), 5000u) << "the table has grown several times";
}

TEST(sharedStrings, textsOfAllLengths) {
  sharedStrings strings;
  std::uint32_t number = 0;
  for (std::size_t size = 0; size < 600; ++size, ++number)
    ASSERT_EQ(strings.indexOf(std::wstring(size, L'x')), number);
  for (const std::size_t size : {65535u, 65536u, 1000000u}) {
    ASSERT_EQ(strings.indexOf(std::wstring(size, L'y')), number);
    ASSERT_EQ(strings.indexOf(std::wstring(size, L'y')), number++);
  }
  for (std::size_t size = 0; size < 600; ++size)
    ASSERT_EQ(strings.indexOf(std::wstring(size, L'x')), size);
  EXPECT_NE(partOf(strings).find("<t>" + std::string(1000000, 'y') + "</t>"), std::string::npos);
}

TEST(sharedStrings, aCopyGoesOnByItself) {
  sharedStrings first;
  for (int i = 0; i < 3000; ++i) first.indexOf(std::to_wstring(i));
  sharedStrings second(first);
  EXPECT_EQ(first.indexOf(L"first"), 3000u);
  EXPECT_EQ(second.indexOf(L"second"), 3000u);
  EXPECT_EQ(second.indexOf(L"17"), 17u);
  const sharedStrings none;
  sharedStrings copyOfNone(none);
  EXPECT_EQ(copyOfNone.indexOf(L"x"), 0u);
}

// Their hashes agree in all that a table of this size looks at.
TEST(sharedStrings, textsWithTheSameHashAreTold) {
  sharedStrings strings;
  EXPECT_EQ(strings.indexOf(L"W-20261"), 0u);
  EXPECT_EQ(strings.indexOf(L"W-92142"), 1u);
  EXPECT_EQ(strings.indexOf(L"W-20261"), 0u);
  EXPECT_EQ(strings.indexOf(L"W-92142"), 1u);
  EXPECT_EQ(strings.indexOf(L"W-95051"), 2u);
  EXPECT_EQ(strings.indexOf(L"W-210665"), 3u);
}

TEST(sharedStrings, aTableOutOfMemoryIsAsBefore) {
  const std::wstring odd(20, L'\xD83D');
  bool failed = true;
  std::size_t number = 0;
  for (; failed; ++number) {
    ASSERT_LT(number, 100u);
    sharedStrings strings;
    strings.indexOf(L"a");
    {
      const testSupport::failingAllocation failing(number);
      try {
        strings.indexOf(odd);  // elements to replace need memory for a while
      } catch (const std::bad_alloc&) {
      }
      failed = failing.hasFailed();
    }
    EXPECT_EQ(strings.indexOf(L"a"), 0u);
    EXPECT_EQ(strings.indexOf(L"b"), failed ? 1u : 2u);
  }
  EXPECT_GT(number, 1u) << "the sweep has met an allocation";
}

}  // namespace

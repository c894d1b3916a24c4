// XML parts: what elements, attributes and texts become, and what a part remembers of its failures.
#include "table_rw/writers/xlsx/xmlPart.h"

#include <gtest/gtest.h>

#include <string>

#include "table_rw/writers/xlsx/xmlText.h"
#include "tests/support/failingDisk.h"
#include "tests/support/localeSetter.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"

namespace {

using SimpleXlsx::packageDisk;
using SimpleXlsx::xmlPart;
using testSupport::readFile;
using testSupport::temporaryFolder;

const std::string declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";

class xmlParts : public testing::Test {
 protected:
  // What stands behind the declaration.
  std::string written() const {
    const std::string bytes = readFile(path_).value_or("no file");
    return bytes.starts_with(declaration) ? bytes.substr(declaration.size()) : "? " + bytes;
  }

  temporaryFolder folder_;
  std::wstring path_ = folder_.file(L"part.xml");
  xmlPart part_{packageDisk::real()};
};

TEST_F(xmlParts, elementsAttributesAndTexts) {
  ASSERT_TRUE(part_.open(path_));
  part_.start("a").attribute("x", L"1").attribute("y", "two").attribute("z", 3);
  part_.start("b").end();
  part_.start("c").text(L"text").text(7).end();
  part_.raw("<d/>");
  part_.start("e").start("f").end().end().end();
  EXPECT_TRUE(part_.close());
  EXPECT_EQ(written(), "<a x=\"1\" y=\"two\" z=\"3\"><b/><c>text7</c><d/><e><f/></e></a>");
}

TEST_F(xmlParts, textAndAttributesAreEscaped) {
  ASSERT_TRUE(part_.open(path_));
  part_.start("a").attribute("x", L"<&>\"'").text(L"<&>\"' \t\n\r \x01\x1F\xFFFE\xFFFF\x0416");
  part_.end();
  EXPECT_TRUE(part_.close());
  EXPECT_EQ(written(),
            "<a x=\"&lt;&amp;&gt;&quot;'\">&lt;&amp;&gt;&quot;' \t\n\r "
            "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xD0\x96</a>");
}

TEST_F(xmlParts, bytesAreRewritten) {
  ASSERT_TRUE(part_.open(path_));
  part_.raw("<a>");
  const std::uint64_t position = part_.position();
  part_.raw("....").raw(std::string(600000, 'x'));
  part_.rewrite(position, "1234");
  part_.raw("</a>");
  EXPECT_TRUE(part_.close());
  EXPECT_TRUE(written() == "<a>1234" + std::string(600000, 'x') + "</a>");
}

TEST_F(xmlParts, roomIsWrittenWhenItIsUsed) {
  ASSERT_TRUE(part_.open(path_));
  for (int i = 0; i < 100000; ++i) {
    char* const room = part_.room(100);
    room[0] = static_cast<char>('a' + i % 26);
    part_.advance(1);
  }
  EXPECT_TRUE(part_.close());
  const std::string text = written();
  ASSERT_EQ(text.size(), 100000u);
  for (std::size_t i = 0; i < text.size(); ++i) ASSERT_EQ(text[i], static_cast<char>('a' + i % 26));
}

TEST_F(xmlParts, aPartThatWasNotOpenedIsNotWhole) {
  EXPECT_FALSE(part_.open(folder_.file(L"gone/part.xml")));
  part_.raw(std::string(1000000, 'x'));
  EXPECT_FALSE(part_.close());
  EXPECT_FALSE(xmlPart(packageDisk::real()).close());
}

TEST_F(xmlParts, pathsWithoutNarrowBytesAreRefused) {
  const testSupport::localeSetter inC("C");
  EXPECT_FALSE(part_.open(folder_.file(L"\x0416.xml")));
  EXPECT_FALSE(part_.close());
  EXPECT_FALSE(platform::fileExists(folder_.file(L"\x0416.xml")));
}

TEST_F(xmlParts, aCopyOfWhatIsNotWholeIsNotWhole) {
  testSupport::failingDisk disk(1);
  xmlPart part(disk);
  ASSERT_TRUE(part.open(path_));
  part.raw("<a>");
  xmlPart copy(packageDisk::real());
  part.copyTo(copy, folder_.file(L"copy.xml"));
  EXPECT_FALSE(copy.close());
  EXPECT_FALSE(part.close());
}

TEST_F(xmlParts, aCopyWithoutANarrowPathIsRefused) {
  const testSupport::localeSetter inC("C");
  ASSERT_TRUE(part_.open(path_));
  part_.raw("<a/>");
  xmlPart copy(packageDisk::real());
  part_.copyTo(copy, folder_.file(L"\x0416.xml"));
  EXPECT_FALSE(copy.close());
  EXPECT_FALSE(platform::fileExists(folder_.file(L"\x0416.xml")));
  EXPECT_TRUE(part_.close()) << "the part itself is whole";
  EXPECT_EQ(written(), "<a/>");
}

TEST_F(xmlParts, everyFailingOperationIsTold) {
  bool failed = true;
  for (std::size_t good = 0; failed; ++good) {
    testSupport::failingDisk disk(good);
    xmlPart part(disk);
    part.open(path_);
    part.raw(std::string(300000, 'x'));
    part.rewrite(0, "y");
    part.raw("z");
    const bool isWhole = part.close();
    failed = disk.hasFailed();
    EXPECT_EQ(isWhole, !failed) << good;
  }
}

// ---- text ---------------------------------------------------------------------------------------

std::string utf8(std::wstring_view text) {
  tableRW::growingArray<char> bytes;
  SimpleXlsx::appendUtf8(text, bytes);
  return std::string(bytes.data(), bytes.size());
}

TEST(xmlText, isValidUtf8WhateverItHolds) {
  EXPECT_EQ(utf8(L""), "");
  EXPECT_EQ(utf8(L"a\x7F\x80\x7FF\x800\xFFFD"), "a\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBD");
  EXPECT_EQ(utf8(L"\U0001F600\U0010FFFF"), "\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF");
  EXPECT_EQ(utf8(std::wstring{L'\xD83D'}), "\xEF\xBF\xBD");
  EXPECT_EQ(utf8(std::wstring{L'a', L'\xDE00', L'b'}),
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(utf8(std::wstring{L'\xDE00', L'\xD83D'}), "\xEF\xBF\xBD\xEF\xBF\xBD");
  // Where an element is a code point a pair is two things that are none.
  EXPECT_EQ(utf8(std::wstring{L'\xD83D', L'\xDE00'}),
            testSupport::wideIsUtf16 ? "\xF0\x9F\x98\x80" : "\xEF\xBF\xBD\xEF\xBF\xBD");
  if (!testSupport::wideIsUtf16) {
    EXPECT_EQ(utf8(std::wstring{static_cast<wchar_t>(0x110000)}), "\xEF\xBF\xBD");
    EXPECT_EQ(utf8(std::wstring{static_cast<wchar_t>(-1)}), "\xEF\xBF\xBD");
  }
}

TEST(xmlText, numbers) {
  char digits[SimpleXlsx::mostDigits];
  for (const std::uint64_t number : {std::uint64_t{0}, std::uint64_t{9}, std::uint64_t{10},
                                     std::uint64_t{1048576}, ~std::uint64_t{0}})
    EXPECT_EQ(std::string(digits, SimpleXlsx::putNumber(number, digits)), std::to_string(number));
}

}  // namespace

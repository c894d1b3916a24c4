// Narrow paths: one behaviour on both targets, in the locale "C".
#include "platform/narrowPath.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/localeSetter.h"

namespace {

using platform::hasNarrowPath;
using platform::longestNarrowPath;

class narrowPath : public testing::Test {
 protected:
  const testSupport::localeSetter inC_{"C"};
};

TEST_F(narrowPath, asciiHasOne) {
  EXPECT_TRUE(hasNarrowPath(L""));
  EXPECT_TRUE(hasNarrowPath(L"C:\\Temp\\a b/c.xml"));
  EXPECT_TRUE(hasNarrowPath(L"/tmp/x_~!.xml"));
}

TEST_F(narrowPath, otherLettersHaveNone) {
  EXPECT_FALSE(hasNarrowPath(L"/tmp/\x0416/a.xml"));
  EXPECT_FALSE(hasNarrowPath(L"/tmp/\x4E2D"));
  EXPECT_FALSE(hasNarrowPath(L"/tmp/\U0001F600"));
}

TEST_F(narrowPath, theTerminatorMustFit) {
  EXPECT_TRUE(hasNarrowPath(std::wstring(longestNarrowPath - 1, L'x')));
  EXPECT_FALSE(hasNarrowPath(std::wstring(longestNarrowPath, L'x')));
  EXPECT_FALSE(hasNarrowPath(std::wstring(longestNarrowPath + 1, L'x')));
}

}  // namespace

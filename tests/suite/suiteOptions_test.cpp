// The system's code page as a host chooses it, seen where narrow text is decoded.
#include <gtest/gtest.h>

#include <string>

#include "platform/vok_basic.h"

namespace {

std::wstring decoded(const char* bytes) {
  std::wstring text;
  Tvo_std_wstring_adapter target(text);
  target.receive_narrow(bytes);
  return text;
}

class suiteOptions : public testing::Test {
 protected:
  void TearDown() override { vo_options_set_system_code_page(0); }
};

TEST_F(suiteOptions, theChosenPageDecodesTheSystemsText) {
  EXPECT_EQ(vo_options_set_system_code_page(866), 1);
  EXPECT_EQ(decoded("\x87"), L"\x0417");
  EXPECT_EQ(vo_options_set_system_code_page(1251), 1);
  EXPECT_EQ(decoded("\xC7"), L"\x0417");
}

TEST_F(suiteOptions, anUnknownPageIsRefusedAndChangesNothing) {
  EXPECT_EQ(vo_options_set_system_code_page(866), 1);
  EXPECT_EQ(vo_options_set_system_code_page(12345678), 0);
  EXPECT_EQ(decoded("\x87"), L"\x0417");
}

TEST_F(suiteOptions, zeroGivesTheChoiceBackToTheSystem) {
  const std::wstring before = decoded("\x87");
  EXPECT_EQ(vo_options_set_system_code_page(866), 1);
  EXPECT_EQ(vo_options_set_system_code_page(0), 1);
  EXPECT_EQ(decoded("\x87"), before);
}

}  // namespace

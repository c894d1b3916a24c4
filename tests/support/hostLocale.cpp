// With VOK_TEST_LOCALE in the environment the test program takes over the locale of its environment, as hosts do:
// nothing that the library answers may depend on it. scripts/test_locales.sh runs the tests in several.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <locale>

#include "tests/support/targetSystem.h"

namespace {

class hostLocale : public testing::Environment {
 public:
  void SetUp() override {
    if (std::getenv("VOK_TEST_LOCALE") == nullptr) return;
    // A locale that is not installed would leave "C" where it is, and the run would prove nothing.
    ASSERT_NE(std::setlocale(LC_ALL, ""), nullptr) << "the locale of the environment is missing";
    // libstdc++ knows "C" alone there.
    if (!testSupport::onWindows) std::locale::global(std::locale(""));
  }
};

[[maybe_unused]] const testing::Environment* const installed =
    testing::AddGlobalTestEnvironment(new hostLocale);

}  // namespace

// Lower case: CharLowerW and CharLowerA as recorded, on both targets.
#include "platform/caseFolding.h"

#include <gtest/gtest.h>

#include "platform/codePages.h"
#include "tests/support/codePageData.h"
#include "tests/support/environmentSetter.h"

namespace {

using namespace std::string_literals;
using testSupport::digitsOf;
using testSupport::environmentSetter;
using testSupport::fixedSystemCodePage;
using testSupport::recordedDecoding;
using testSupport::recordedEncoding;
using testSupport::recordedLowerCase;
using testSupport::singleByteCodePages;

TEST(caseFolding, everyUnitOfTheBmp) {
  const std::vector<char16_t> small = recordedLowerCase();
  std::size_t differences = 0;
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const std::wstring text(1, static_cast<wchar_t>(unit));
    const std::wstring expected(1, static_cast<wchar_t>(small[unit]));
    if (platform::lowerCase(text) != expected) ++differences;
  }
  EXPECT_EQ(differences, 0u);
}

struct row {
  const char* name;
  std::wstring text;
  std::wstring expected;
  int line = __builtin_LINE();
};

const row rows[] = {
    row{"empty",                                  L"",                   L""                  },
    row{"an extension",                           L".CsV",               L".csv"              },
    row{"digits and signs stay",                  L"A-1_[Z]@`{",         L"a-1_[z]@`{"        },
    row{"Cyrillic",                               L"\x0416\x0401\x0436", L"\x0436\x0451\x0436"},
    row{"the Turkish capital I with a dot stays", L"\x0130",             L"\x0130"            },
    row{"the Kelvin sign stays",                  L"\x212A",             L"\x212A"            },
    row{"a title-case letter stays",              L"\x01C5",             L"\x01C5"            },
    row{"lone surrogates stay",
        {L'A', L'\xD800', L'A', L'\xDC00'},
        {L'a', L'\xD800', L'a', L'\xDC00'}                                                    },
    row{"behind a NUL",                           L"A\0B"s,              L"a\0b"s             },
    row{"a character beyond the BMP",             L"\U0001F600A",        L"\U0001F600a"       },
};

TEST(caseFolding, texts) {
  for (const row& r : rows) {
    const testing::ScopedTrace trace(__FILE__, r.line, r.name);
    EXPECT_EQ(digitsOf(platform::lowerCase(r.text)), digitsOf(r.expected));
  }
}

TEST(caseFolding, narrowAscii) {
  EXPECT_EQ(platform::lowerCaseNarrow(""), "");
  EXPECT_EQ(platform::lowerCaseNarrow("Driver DO Microsoft Excel(*.XLS)"),
            "driver do microsoft excel(*.xls)");
  EXPECT_EQ(platform::lowerCaseNarrow("A\0B"s), "a\0b"s);
}

// Every byte of a page: decoded, lowered, encoded.
void expectNarrowLowerCaseOf(unsigned codePage) {
  const auto units = recordedDecoding(codePage);
  const auto bytes = recordedEncoding(codePage);
  const auto small = recordedLowerCase();
  std::string text;
  std::string expected;
  for (std::size_t byte = 0; byte < units.size(); ++byte) {
    text += static_cast<char>(byte);
    expected += static_cast<char>(bytes[small[units[byte]]]);
  }
  EXPECT_EQ(digitsOf(platform::lowerCaseNarrow(text)), digitsOf(expected)) << codePage;
}

TEST(caseFolding, narrowTextInTheSystemsPage) {
  const auto fixed = fixedSystemCodePage();
  std::size_t checked = 0;
  for (const unsigned codePage : singleByteCodePages) {
    if (fixed ? *fixed != codePage : codePage == 20127) continue;  // no locale stands for 20127
    const environmentSetter locale(L"LC_ALL", L"xx_XX.CP" + std::to_wstring(codePage));
    expectNarrowLowerCaseOf(codePage);
    ++checked;
  }
  if (fixed && checked == 0) GTEST_SKIP() << "no recorded answers for the page " << *fixed;
  EXPECT_EQ(checked, fixed ? 1u : 10u);
}

TEST(caseFolding, narrowTextInUtf8) {
  if (fixedSystemCodePage()) return;  // the test before covers the page that there is
  const environmentSetter locale(L"LC_ALL", L"C.UTF-8");
  EXPECT_EQ(platform::lowerCaseNarrow("W-\xD0\x96.CSV"), "w-\xD0\xB6.csv");
  EXPECT_EQ(platform::lowerCaseNarrow("\xC8\xBA"), "\xE2\xB1\xA5")
      << "U+023A has a longer small letter";
}

}  // namespace

// Code pages: the same answers on both targets, and these are the recorded answers of Windows.
#include "platform/codePages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>

#include "tests/reference/utf8.h"
#include "tests/support/codePageData.h"
#include "tests/support/environmentSetter.h"
#include "tests/support/targetSystem.h"

namespace {

using testSupport::bytesOf;
using testSupport::digitsOf;
using testSupport::environmentSetter;
using testSupport::fixedSystemCodePage;
using testSupport::joinedWideOf;
using testSupport::recordedDecoding;
using testSupport::recordedEncoding;
using testSupport::recordedRows;
using testSupport::singleByteCodePages;
using testSupport::unitsOf;
using testSupport::wideIsUtf16;
using testSupport::wideOf;

constexpr unsigned unknownCodePage = 4242;

// Both calls, as the library makes them: the length, then the text.
std::wstring decode(unsigned codePage, const std::string& bytes) {
  const int length = static_cast<int>(bytes.size());
  const int needed = platform::decodeCodePage(codePage, bytes.data(), length, nullptr, 0);
  std::wstring text(static_cast<std::size_t>(needed), L'\0');
  EXPECT_EQ(platform::decodeCodePage(codePage, bytes.data(), length, text.data(), needed), needed)
      << codePage << ": " << digitsOf(bytes);
  return text;
}

std::string encode(unsigned codePage, const std::wstring& text) {
  const int length = static_cast<int>(text.size());
  const int needed = platform::encodeCodePage(codePage, text.data(), length, nullptr, 0);
  std::string bytes(static_cast<std::size_t>(needed), '\0');
  EXPECT_EQ(platform::encodeCodePage(codePage, text.data(), length, bytes.data(), needed), needed)
      << codePage << ": " << digitsOf(text);
  return bytes;
}

std::string allBytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

std::u16string allUnits() {
  std::u16string units;
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) units += static_cast<char16_t>(unit);
  return units;
}

// --- single-byte pages ---

TEST(codePages, decodesEveryByteOfEveryPage) {
  for (const unsigned codePage : singleByteCodePages) {
    const auto recorded = recordedDecoding(codePage);
    const std::wstring expected = wideOf({recorded.data(), recorded.size()});
    EXPECT_EQ(digitsOf(decode(codePage, allBytes())), digitsOf(expected)) << codePage;
    for (unsigned byte = 0; byte < 256; ++byte)
      EXPECT_EQ(decode(codePage, {static_cast<char>(byte)}), expected.substr(byte, 1))
          << codePage << ": " << byte;
  }
}

TEST(codePages, encodesEveryUnitOfEveryPage) {
  for (const unsigned codePage : singleByteCodePages) {
    const std::vector<unsigned char> recorded = recordedEncoding(codePage);
    const std::string expected(recorded.begin(), recorded.end());
    EXPECT_TRUE(encode(codePage, wideOf(allUnits())) == expected) << codePage;
    std::size_t differences = 0;
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
      const auto element = static_cast<wchar_t>(unit);
      char byte = 0;
      if (platform::encodeCodePage(codePage, &element, 1, &byte, 1) != 1 || byte != expected[unit])
        ++differences;
    }
    EXPECT_EQ(differences, 0u) << codePage;
  }
}

TEST(codePages, everyByteThatHasAUnitOfItsOwnComesBack) {
  for (const unsigned codePage : singleByteCodePages) {
    const std::string bytes = allBytes().substr(0, codePage == 20127 ? 128 : 256);
    EXPECT_EQ(digitsOf(encode(codePage, decode(codePage, bytes))), digitsOf(bytes)) << codePage;
  }
}

TEST(codePages, encodesTheRecordedSequences) {
  for (const auto& row : recordedRows("utf16_sequences.tsv")) {
    const auto codePage = static_cast<unsigned>(std::stoul(row[0]));
    const std::u16string units = unitsOf(row[1]);
    const std::string expected = digitsOf(bytesOf(row[2]));
    EXPECT_EQ(digitsOf(encode(codePage, wideOf(units))), expected) << codePage << ": " << row[1];
    EXPECT_EQ(digitsOf(encode(codePage, joinedWideOf(units))), expected)
        << codePage << ": " << row[1] << " with pairs as one element";
  }
}

// Runs of ASCII take a short cut; here they begin, end and break off at every place.
TEST(codePages, asciiRunsOfEveryLengthAroundOtherCharacters) {
  for (std::size_t before = 0; before <= 40; ++before) {
    for (std::size_t after = 0; after <= 40; ++after) {
      const std::string front(before, 'f');
      const std::string back(after, 'b');
      const std::wstring wide = std::wstring(before, L'f') + L'\x0416' + std::wstring(after, L'b');
      std::string narrow = front;
      narrow.append("\xC6").append(back);
      EXPECT_EQ(decode(1251, narrow), wide);
      EXPECT_EQ(encode(1251, wide), narrow);
      std::string utf8 = front;
      utf8.append("\xD0\x96").append(back);
      EXPECT_EQ(decode(65001, utf8), wide);
      EXPECT_EQ(encode(65001, wide), utf8);
    }
  }
}

// --- UTF-8 ---

TEST(codePages, decodesTheRecordedUtf8Strings) {
  for (const auto& row : recordedRows("utf8_strings.tsv")) {
    if (wideIsUtf16 && !row[2].empty()) continue;  // Wine differs there, Windows does not
    EXPECT_EQ(digitsOf(decode(65001, bytesOf(row[0]))), digitsOf(joinedWideOf(unitsOf(row[1]))))
        << row[0];
  }
}

// Three ASCII bytes at the end: Wine swallows bytes when a lead byte announces more than there is.
std::string withTail(const std::string& bytes) { return bytes + "end"; }

TEST(codePages, decodesEveryPairOfLeadAndSecondByteLikeTheTwin) {
  std::size_t differences = 0;
  for (const char* following : {"", "\x80", "\x80\x80", "\xBF\xBF\xBF"}) {
    for (unsigned first = 0; first < 256; ++first) {
      for (unsigned second = 0; second < 256; ++second) {
        const std::string bytes =
            withTail(std::string{static_cast<char>(first), static_cast<char>(second)} + following);
        if (decode(65001, bytes) != joinedWideOf(reference::decodeUtf8(bytes))) {
          ++differences;
          ADD_FAILURE() << digitsOf(bytes);
        }
        ASSERT_LT(differences, 10u);
      }
    }
  }
}

TEST(codePages, decodesRandomBytesLikeTheTwin) {
  std::mt19937 random(20);
  const std::string favourites("\x80\xBF\xC2\xDF\xE0\xED\xEF\xF0\xF4\xF5\x9F\xA0\x8F\x90\x00\x7F",
                               16);
  for (int round = 0; round < 20000; ++round) {
    std::string bytes;
    for (std::size_t left = random() % 50; left > 0; --left) {
      const auto choice = random() % 4;
      if (choice == 0) bytes += favourites[random() % favourites.size()];
      if (choice == 1) bytes += static_cast<char>(random() % 256);
      if (choice == 2) bytes += "\xD0\x96";
      if (choice == 3) bytes.append(random() % 20, 'a');
    }
    if (wideIsUtf16) bytes = withTail(bytes);
    ASSERT_EQ(digitsOf(decode(65001, bytes)), digitsOf(joinedWideOf(reference::decodeUtf8(bytes))))
        << digitsOf(bytes);
  }
}

TEST(codePages, encodesEveryUnitAndRandomTextLikeTheTwin) {
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const std::u16string units(1, static_cast<char16_t>(unit));
    ASSERT_EQ(digitsOf(encode(65001, wideOf(units))), digitsOf(reference::encodeUtf8(units)));
  }
  std::mt19937 random(21);
  for (int round = 0; round < 20000; ++round) {
    std::u16string units;
    for (std::size_t left = random() % 50; left > 0; --left) {
      const auto choice = random() % 4;
      if (choice == 0) units += static_cast<char16_t>(0xD800 + random() % 0x800);
      if (choice == 1) units += static_cast<char16_t>(random() % 0x10000);
      if (choice == 2) units += u'\x0416';
      if (choice == 3) units.append(random() % 20, u'a');
    }
    const std::string expected = digitsOf(reference::encodeUtf8(units));
    ASSERT_EQ(digitsOf(encode(65001, wideOf(units))), expected);
    ASSERT_EQ(digitsOf(encode(65001, joinedWideOf(units))), expected);
  }
}

TEST(codePages, everyCharacterBeyondTheBmpSurvivesUtf8) {
  for (char32_t character = 0x10000; character <= 0x10FFFF; character += 0x1F) {
    const char16_t pair[] = {static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)),
                             static_cast<char16_t>(0xDC00 + (character & 0x3FF))};
    const std::wstring text = joinedWideOf({pair, 2});
    ASSERT_EQ(text.size(), wideIsUtf16 ? 2u : 1u);
    ASSERT_EQ(decode(65001, encode(65001, text)), text);
  }
}

// Elements that are no code point exist only where an element has 32 bits.
TEST(codePages, elementsThatAreNoCharacterAreReplacedOnce) {
  if (wideIsUtf16) return;
  for (const unsigned element : {0x110000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    const std::wstring text{L'a', static_cast<wchar_t>(element), L'b'};
    EXPECT_EQ(encode(1251, text), "a?b") << element;
    EXPECT_EQ(encode(65001, text),
              "a\xEF\xBF\xBD"
              "b")
        << element;
  }
}

// --- lengths and room ---

struct decodeRow {
  const char* name;
  unsigned codePage;
  const char* bytes;
  int length;
  int capacity;
  int expected;
  int line = __builtin_LINE();
};

const decodeRow decodeRows[] = {
    decodeRow{"asks for the length",                         1251,            "AB",                   2,  0,  2},
    decodeRow{"fits exactly",                                1251,            "AB",                   2,  2,  2},
    decodeRow{"fits with room",                              1251,            "AB",                   2,  9,  2},
    decodeRow{"one too small",                               1251,            "AB",                   2,  1,  0},
    decodeRow{"one too small after a run of ASCII",          1251,            "0123456789abcdef\xC6", 17, 16, 0},
    decodeRow{"length 0",                                    1251,            "AB",                   0,  9,  0},
    decodeRow{"length 0, asked for the length",              1251,            "AB",                   0,  0,  0},
    decodeRow{"negative length counts the terminator",       1251,            "AB",                   -1, 0,  3},
    decodeRow{"negative length converts the terminator",     1251,            "AB",                   -1, 3,  3},
    decodeRow{"negative length, no room for the terminator", 1251,            "AB",                   -1, 2,  0},
    decodeRow{"another negative length",                     1251,            "AB",                   -5, 9,  3},
    decodeRow{"NUL in the middle",                           1251,            "A\0B",                 3,  3,  3},
    decodeRow{"NUL in the middle, negative length",          1251,            "A\0B",                 -1, 9,  2},
    decodeRow{"empty text, negative length",                 1251,            "",                     -1, 9,  1},
    decodeRow{"null bytes",                                  1251,            nullptr,                1,  9,  0},
    decodeRow{"negative capacity",                           1251,            "AB",                   2,  -1, 0},
    decodeRow{"unknown page",                                unknownCodePage, "AB",                   2,  9,  0},
    decodeRow{"unknown page, asked for the length",          unknownCodePage, "AB",                   2,  0,  0},
    decodeRow{"UTF-8 asks for the length",                   65001,           "\xD0\x96\xD0\x97",     4,  0,  2},
    decodeRow{"UTF-8 fits exactly",                          65001,           "\xD0\x96\xD0\x97",     4,  2,  2},
    decodeRow{"UTF-8 one too small",                         65001,           "\xD0\x96\xD0\x97",     4,  1,  0},
    decodeRow{"UTF-8 one too small in ASCII",                65001,           "0123456789abcdefg",    17, 16, 0},
    decodeRow{"UTF-8 length 0",                              65001,           "AB",                   0,  9,  0},
    decodeRow{"UTF-8 negative length",                       65001,           "\xD0\x96",             -1, 9,  2},
    decodeRow{"UTF-8 NUL in the middle",                     65001,           "A\0\xD0\x96",          4,  9,  3},
    decodeRow{"UTF-8 broken",                                65001,           "A\x80",                2,  9,  2},
};

TEST(codePages, decodingCountsElements) {
  for (const decodeRow& row : decodeRows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    wchar_t output[24];
    std::fill(std::begin(output), std::end(output), L'#');
    EXPECT_EQ(platform::decodeCodePage(row.codePage, row.bytes, row.length,
                                       row.capacity == 0 ? nullptr : output, row.capacity),
              row.expected);
    const wchar_t* const end = output + std::max(row.capacity, 0);
    EXPECT_EQ(std::find_if(end, std::cend(output), [](wchar_t c) { return c != L'#'; }),
              std::cend(output));
  }
}

struct encodeRow {
  const char* name;
  unsigned codePage;
  const wchar_t* text;
  int length;
  int capacity;
  int expected;
  int line = __builtin_LINE();
};

const encodeRow encodeRows[] = {
    encodeRow{"asks for the length",                         1251,            L"AB",                     2,                   0,  2},
    encodeRow{"fits exactly",                                1251,            L"AB",                     2,                   2,  2},
    encodeRow{"fits with room",                              1251,            L"AB",                     2,                   9,  2},
    encodeRow{"one too small",                               1251,            L"AB",                     2,                   1,  0},
    encodeRow{"one too small after a run of ASCII",          1251,            L"0123456789abcdef\x0416", 17,                  16, 0},
    encodeRow{"length 0",                                    1251,            L"AB",                     0,                   9,  0},
    encodeRow{"negative length counts the terminator",       1251,            L"AB",                     -1,                  0,  3},
    encodeRow{"negative length converts the terminator",     1251,            L"AB",                     -1,                  3,  3},
    encodeRow{"negative length, no room for the terminator", 1251,            L"AB",                     -1,                  2,  0},
    encodeRow{"another negative length",                     1251,            L"AB",                     -5,                  9,  3},
    encodeRow{"NUL in the middle",                           1251,            L"A\0B",                   3,                   3,  3},
    encodeRow{"NUL in the middle, negative length",          1251,            L"A\0B",                   -1,                  9,  2},
    encodeRow{"null text",                                   1251,            nullptr,                   1,                   9,  0},
    encodeRow{"negative capacity",                           1251,            L"AB",                     2,                   -1, 0},
    encodeRow{"unknown page",                                unknownCodePage, L"AB",                     2,                   9,  0},
    encodeRow{"unknown page, asked for the length",          unknownCodePage, L"AB",                     2,                   0,  0},
    encodeRow{"beyond the BMP is two units",                 1251,            L"\U0001F600",             wideIsUtf16 ? 2 : 1, 2,  2},
    encodeRow{"beyond the BMP, room for one",                1251,            L"\U0001F600",             wideIsUtf16 ? 2 : 1, 1,  0},
    encodeRow{"UTF-8 asks for the length",                   65001,           L"\x0416\x0417",           2,                   0,  4},
    encodeRow{"UTF-8 fits exactly",                          65001,           L"\x0416\x0417",           2,                   4,  4},
    encodeRow{"UTF-8 one too small",                         65001,           L"\x0416\x0417",           2,                   3,  0},
    encodeRow{"UTF-8 one too small in ASCII",                65001,           L"0123456789abcdefg",      17,                  16, 0},
    encodeRow{"UTF-8 beyond the BMP",                        65001,           L"\U0001F600",             wideIsUtf16 ? 2 : 1, 4,  4},
    encodeRow{"UTF-8 beyond the BMP, room for three",        65001,           L"\U0001F600",             wideIsUtf16 ? 2 : 1, 3,
              0                                                                                                                    },
    encodeRow{"UTF-8 half of a pair at the end",             65001,           L"A\xD83D\xDE00",          2,                   9,  4},
    encodeRow{"UTF-8 length 0",                              65001,           L"AB",                     0,                   9,  0},
    encodeRow{"UTF-8 negative length",                       65001,           L"\x0416",                 -1,                  9,  3},
    encodeRow{"UTF-8 NUL in the middle",                     65001,           L"A\0\x0416",              3,                   9,  4},
};

TEST(codePages, encodingCountsBytes) {
  for (const encodeRow& row : encodeRows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    char output[24];
    std::fill(std::begin(output), std::end(output), '#');
    EXPECT_EQ(platform::encodeCodePage(row.codePage, row.text, row.length,
                                       row.capacity == 0 ? nullptr : output, row.capacity),
              row.expected);
    const char* const end = output + std::max(row.capacity, 0);
    EXPECT_EQ(std::find_if(end, std::cend(output), [](char c) { return c != '#'; }),
              std::cend(output));
  }
}

TEST(codePages, roomThatIsNowhereIsNone) {
  EXPECT_EQ(platform::decodeCodePage(1251, "AB", 2, nullptr, 9), 0);
  EXPECT_EQ(platform::encodeCodePage(1251, L"AB", 2, nullptr, 9), 0);
}

TEST(codePages, aNulInTheMiddleIsACharacter) {
  const std::string bytes("A\0\xC6\0", 4);
  const std::wstring text{L'A', L'\0', L'\x0416', L'\0'};
  EXPECT_EQ(decode(1251, bytes), text);
  EXPECT_EQ(encode(1251, text), bytes);
}

// --- the system's page ---

// Page 0 converts as the page that it is resolved to, checked over every byte.
void expectSystemPageIs(unsigned codePage) {
  EXPECT_EQ(platform::resolveCodePage(platform::systemCodePage), codePage);
  const std::string bytes = withTail(allBytes());
  const std::wstring text = decode(codePage, bytes);
  EXPECT_EQ(digitsOf(decode(platform::systemCodePage, bytes)), digitsOf(text));
  EXPECT_EQ(digitsOf(encode(platform::systemCodePage, text)), digitsOf(encode(codePage, text)));
}

TEST(codePages, aPageOtherThan0IsItself) {
  for (const unsigned codePage : {1u, 866u, 1251u, 65001u, unknownCodePage})
    EXPECT_EQ(platform::resolveCodePage(codePage), codePage);
}

TEST(codePages, theSystemsPageIsTheOneTheProcessStartedWith) {
  expectSystemPageIs(platform::resolveCodePage(platform::systemCodePage));
  if (const auto codePage = fixedSystemCodePage()) expectSystemPageIs(*codePage);
}

struct localeRow {
  const char* name;
  const wchar_t* all;       // LC_ALL; null: not set
  const wchar_t* type;      // LC_CTYPE
  const wchar_t* language;  // LANG
  unsigned expected;
  int line = __builtin_LINE();
};

const localeRow localeRows[] = {
    localeRow{"nothing is set",                       nullptr,               nullptr,        nullptr,         65001},
    localeRow{"all are empty",                        L"",                   L"",            L"",             65001},
    localeRow{"LANG alone",                           nullptr,               nullptr,        L"ru_RU.CP1251", 1251 },
    localeRow{"LC_CTYPE before LANG",                 nullptr,               L"ru_RU.CP866", L"ru_RU.CP1251", 866  },
    localeRow{"LC_ALL before both",                   L"cs_CZ.CP1250",       L"ru_RU.CP866", L"ru_RU.CP1251", 1250 },
    localeRow{"an empty LC_ALL does not count",       L"",                   L"ru_RU.CP866", L"ru_RU.CP1251", 866  },
    localeRow{"C hides LANG",                         L"C",                  nullptr,        L"ru_RU.CP1251", 65001},
    localeRow{"POSIX",                                L"POSIX",              nullptr,        nullptr,         65001},
    localeRow{"C with a charset",                     L"C.UTF-8",            nullptr,        nullptr,         65001},
    localeRow{"no charset",                           L"ru_RU",              nullptr,        nullptr,         65001},
    localeRow{"a modifier without a charset",         L"de_DE@euro",         nullptr,        nullptr,         65001},
    localeRow{"an empty charset",                     L"ru_RU.",             nullptr,        nullptr,         65001},
    localeRow{"UTF-8 in small letters",               L"ru_RU.utf8",         nullptr,        nullptr,         65001},
    localeRow{"a charset and a modifier",             L"be_BY.CP1251@latin", nullptr,        nullptr,         1251 },
    localeRow{"the charset in small letters",         L"ru_RU.cp1251",       nullptr,        nullptr,         1251 },
    localeRow{"with a hyphen",                        L"ru_RU.CP-1251",      nullptr,        nullptr,         1251 },
    localeRow{"with an underscore",                   L"ru_RU.cp_1251",      nullptr,        nullptr,         1251 },
    localeRow{"the name of the registry of charsets", L"ru_RU.windows-1251", nullptr,        nullptr,
              1251                                                                                                 },
    localeRow{"that name in capitals",                L"he_IL.WINDOWS-1255", nullptr,        nullptr,         1255 },
    localeRow{"1252",                                 L"de_DE.CP1252",       nullptr,        nullptr,         1252 },
    localeRow{"1253",                                 L"el_GR.CP1253",       nullptr,        nullptr,         1253 },
    localeRow{"1254",                                 L"tr_TR.CP1254",       nullptr,        nullptr,         1254 },
    localeRow{"1256",                                 L"ar_SA.CP1256",       nullptr,        nullptr,         1256 },
    localeRow{"1257",                                 L"lt_LT.CP1257",       nullptr,        nullptr,         1257 },
    localeRow{"1258",                                 L"vi_VN.CP1258",       nullptr,        nullptr,         1258 },
    localeRow{"IBM866",                               L"ru_RU.IBM866",       nullptr,        nullptr,         866  },
    localeRow{"866 alone",                            L"ru_RU.866",          nullptr,        nullptr,         866  },
    localeRow{"a charset that is not supported",      L"ru_RU.KOI8-R",       nullptr,        nullptr,         65001},
    localeRow{"a page past the last",                 L"xx_XX.CP1259",       nullptr,        nullptr,         65001},
    localeRow{"digits behind the page",               L"xx_XX.CP12511",      nullptr,        nullptr,         65001},
    localeRow{"an unknown charset",                   L"xx_XX.nonsense",     nullptr,        nullptr,         65001},
};

// Where the system has one fixed page, the variables must not matter.
TEST(codePages, theLocaleVariablesNameTheSystemsPage) {
  for (const localeRow& row : localeRows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    const auto set = [](const wchar_t* value) {
      return value == nullptr ? std::nullopt : std::optional<std::wstring>(value);
    };
    const environmentSetter all(L"LC_ALL", set(row.all));
    const environmentSetter type(L"LC_CTYPE", set(row.type));
    const environmentSetter language(L"LANG", set(row.language));
    expectSystemPageIs(fixedSystemCodePage().value_or(row.expected));
  }
}

TEST(codePages, aHostMayChooseTheSystemsPage) {
  const unsigned before = platform::resolveCodePage(platform::systemCodePage);
  EXPECT_EQ(platform::chosenSystemCodePage(), 0u);
  for (const unsigned chosen : {866u, 1251u, 65001u}) {
    EXPECT_TRUE(platform::chooseSystemCodePage(chosen));
    EXPECT_EQ(platform::chosenSystemCodePage(), chosen);
    expectSystemPageIs(chosen);
  }
  EXPECT_FALSE(platform::chooseSystemCodePage(unknownCodePage)) << "and the last choice stays";
  EXPECT_EQ(platform::chosenSystemCodePage(), 65001u);
  EXPECT_TRUE(platform::chooseSystemCodePage(platform::systemCodePage));
  EXPECT_EQ(platform::resolveCodePage(platform::systemCodePage), before);
}

}  // namespace

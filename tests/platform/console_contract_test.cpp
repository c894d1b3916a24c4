// The terminal: arguments, width, and text that arrives as it was written.
#include "platform/console.h"

#include <gtest/gtest.h>

#include "tests/support/codePageData.h"
#include "tests/support/failingAllocations.h"
#include "tests/support/streamRedirection.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"

namespace {

using namespace std::string_literals;
using platform::standardStream;
using testSupport::digitsOf;
using testSupport::onWindows;
using testSupport::streamRedirection;
using testSupport::temporaryFolder;

// Runs `write` with the stream sent to a file; what arrived there, or why it did not.
template <class Writer>
std::string captured(standardStream stream, Writer write) {
  const temporaryFolder folder;
  bool isRedirected = false;
  bool isTaken = false;
  {
    streamRedirection redirection(stream);
    isRedirected = redirection.toFile(folder.file(L"stream"));
    isTaken = isRedirected && write();
    isTaken = platform::flushText(stream) && isTaken;
  }
  EXPECT_TRUE(isRedirected);
  EXPECT_TRUE(isTaken);
  return testSupport::readFile(folder.file(L"stream")).value_or("(no file)");
}

struct textRow {
  const char* name;
  std::wstring text;
  std::string expected;
  int line = __builtin_LINE();
};

const textRow textRows[] = {
    textRow{"nothing",                    L"",                    ""                                   },
    textRow{"ASCII",                      L"a b",                 "a b"                                },
    textRow{"line ends stay as they are", L"a\nb\r\nc\rd\x1A",    "a\nb\r\nc\rd\x1A"                   },
    textRow{"a NUL is a character",       L"a\0b"s,               "a\0b"s                              },
    textRow{"beyond ASCII",               L"\x0416\x20AC",        "\xD0\x96\xE2\x82\xAC"               },
    textRow{"beyond the BMP",             L"\U0001F600",          "\xF0\x9F\x98\x80"                   },
    textRow{"a surrogate pair",           {L'\xD83D', L'\xDE00'}, "\xF0\x9F\x98\x80"                   },
    textRow{"a lone surrogate",
            {L'\xD83D', L'a'},
            "\xEF\xBF\xBD"
            "a"                                                                                        },
    textRow{"the other half alone",       {L'\xDE00', L'\xDC7F'}, "\xEF\xBF\xBD\xEF\xBF\xBD"           },
    textRow{"the mark of a raw byte",     {L'a', L'\xDCFF'},      onWindows ? "a\xEF\xBF\xBD" : "a\xFF"},
};

TEST(console, textArrivesAsUtf8) {
  for (const standardStream stream : {standardStream::output, standardStream::error}) {
    for (const textRow& row : textRows) {
      const testing::ScopedTrace trace(__FILE__, row.line, row.name);
      const std::string bytes =
          captured(stream, [&] { return platform::writeText(stream, row.text); });
      EXPECT_EQ(digitsOf(bytes), digitsOf(row.expected));
    }
  }
}

TEST(console, manyPiecesArriveInOrder) {
  std::string expected;
  const std::string bytes = captured(standardStream::output, [&] {
    bool isTaken = true;
    for (int i = 0; i < 30000; ++i) {
      isTaken =
          platform::writeText(standardStream::output, std::to_wstring(i) + L" \x0416\n") && isTaken;
      expected += std::to_string(i) + " \xD0\x96\n";
    }
    return isTaken;
  });
  EXPECT_TRUE(bytes == expected);
}

// The pairs lie across every place where a buffer could be cut.
TEST(console, oneLargePieceArrivesWhole) {
  for (const std::size_t shift : {0u, 1u, 2u, 3u}) {
    std::wstring text(shift, L'a');
    std::string expected(shift, 'a');
    for (int i = 0; i < 400000; ++i) {
      text += L"\U0001F600";
      expected += "\xF0\x9F\x98\x80";
    }
    const std::string bytes = captured(
        standardStream::output, [&] { return platform::writeText(standardStream::output, text); });
    EXPECT_TRUE(bytes == expected) << shift;
  }
}

TEST(console, textWaitsForTheFlush) {
  const temporaryFolder folder;
  std::string before;
  {
    streamRedirection redirection(standardStream::output);
    ASSERT_TRUE(redirection.toFile(folder.file(L"stream")));
    platform::writeText(standardStream::output, L"later");
  }
  const std::string bytes = captured(standardStream::output, [] { return true; });
  EXPECT_EQ(testSupport::readFile(folder.file(L"stream")), "");
  EXPECT_EQ(bytes, "later");
}

TEST(console, theLastWordNeedsNoMemory) {
  const temporaryFolder folder;
  bool failed = false;
  {
    streamRedirection redirection(standardStream::error);
    ASSERT_TRUE(redirection.toFile(folder.file(L"f")));
    const testSupport::failingAllocation failing(0);
    platform::writeLastWord(standardStream::error, "not enough memory for this table\n");
    failed = failing.hasFailed();
  }
  EXPECT_FALSE(failed);
  EXPECT_EQ(testSupport::readFile(folder.file(L"f")), "not enough memory for this table\n");
}

TEST(console, aClosedPipeIsReportedUntilTheFlush) {
  bool isRedirected = false;
  bool isTakenByBuffer = false;
  bool isTakenByPipe = true;
  bool isTakenAfterwards = true;
  bool isFlushed = true;
  {
    streamRedirection redirection(standardStream::error);
    isRedirected = redirection.toClosedPipe();
    isTakenByBuffer = platform::writeText(standardStream::error, L"nobody reads this");
    isTakenByPipe = platform::writeText(standardStream::error, std::wstring(200000, L'x'));
    isTakenAfterwards = platform::writeText(standardStream::error, L"nor this");
    isFlushed = platform::flushText(standardStream::error);
  }
  EXPECT_TRUE(isRedirected);
  EXPECT_TRUE(isTakenByBuffer);
  EXPECT_FALSE(isTakenByPipe);
  EXPECT_FALSE(isTakenAfterwards);
  EXPECT_FALSE(isFlushed);
  EXPECT_TRUE(platform::flushText(standardStream::error)) << "nothing was lost since";
}

TEST(console, aClosedPipeIsReportedByTheFlush) {
  bool isFlushed = true;
  {
    streamRedirection redirection(standardStream::output);
    ASSERT_TRUE(redirection.toClosedPipe());
    platform::writeText(standardStream::output, L"short");
    isFlushed = platform::flushText(standardStream::output);
  }
  EXPECT_FALSE(isFlushed);
}

TEST(console, aFileIsNoTerminal) {
  const temporaryFolder folder;
  for (const standardStream stream : {standardStream::output, standardStream::error}) {
    bool isRedirected = false;
    bool isTerminal = true;
    int width = 0;
    {
      streamRedirection redirection(stream);
      isRedirected = redirection.toFile(folder.file(L"stream"));
      isTerminal = platform::isTerminal(stream);
      width = platform::terminalWidth(stream);
    }
    EXPECT_TRUE(isRedirected);
    EXPECT_FALSE(isTerminal);
    EXPECT_EQ(width, 80);
  }
}

TEST(console, aTerminalTellsItsWidth) {
  bool isRedirected = false;
  bool isTerminal = false;
  bool isTaken = false;
  int width = 0;
  {
    streamRedirection redirection(standardStream::output);
    isRedirected = redirection.toTerminal(123);
    if (isRedirected) {
      isTerminal = platform::isTerminal(standardStream::output);
      width = platform::terminalWidth(standardStream::output);
      isTaken = platform::writeText(standardStream::output, L"\x0416 \U0001F600\n") &&
                platform::flushText(standardStream::output);
    }
  }
  if (!isRedirected) GTEST_SKIP() << "the system gives no terminal here";
  EXPECT_TRUE(isTerminal);
  EXPECT_EQ(width, 123);
  EXPECT_TRUE(isTaken);
}

TEST(console, aTerminalThatDoesNotKnowItsWidth) {
  bool isRedirected = false;
  int width = 0;
  {
    streamRedirection redirection(standardStream::output);
    isRedirected = redirection.toTerminal(0);
    if (isRedirected) width = platform::terminalWidth(standardStream::output);
  }
  if (!isRedirected) GTEST_SKIP() << "the system gives no terminal here";
  EXPECT_EQ(width, 80);
}

// --- arguments ---

struct argumentRow {
  const char* name;
  std::string bytes;
  std::wstring expected;
  int line = __builtin_LINE();
};

const argumentRow argumentRows[] = {
    argumentRow{"ASCII",                                 "a b",                                  L"a b"                                      },
    argumentRow{"empty",                                 "",                                     L""                                         },
    argumentRow{"UTF-8",                                 "\xD0\x96\xE2\x82\xAC\xF0\x9F\x98\x80", L"\x0416\x20AC\U0001F600"                   },
    argumentRow{"a byte that leads nothing",             "a\xFF",                                {L'a', L'\xDCFF'}                           },
    argumentRow{"a continuation byte alone",             "\x80z",                                {L'\xDC80', L'z'}                           },
    argumentRow{"a sequence that breaks off",            "\xE2\x82z",                            {L'\xDCE2', L'\xDC82', L'z'}                },
    argumentRow{
                "a sequence that breaks off at the end", "\xF0\x9F\x98",                         {L'\xDCF0', L'\xDC9F', L'\xDC98'}           },
    argumentRow{"a form that is too long",               "\xC0\x80",                             {L'\xDCC0', L'\xDC80'}                      },
    argumentRow{
                "a three-byte form that is too long",    "\xE0\x80\x80",                         {L'\xDCE0', L'\xDC80', L'\xDC80'}           },
    argumentRow{"a surrogate",                           "\xED\xB3\xBF",                         {L'\xDCED', L'\xDCB3', L'\xDCBF'}           },
    argumentRow{"above U+10FFFF",                        "\xF4\x90\x80\x80",                     {L'\xDCF4', L'\xDC90', L'\xDC80', L'\xDC80'}},
    argumentRow{"CP1251",                                "\xC6\xE6",                             {L'\xDCC6', L'\xDCE6'}                      },
};

// On Windows the arguments come from the system, whatever is handed in: process_contract_test has
// those.
TEST(console, argumentsAreReadAsUtf8AndGoBackAsTheirBytes) {
  if (onWindows) return;
  for (const argumentRow& row : argumentRows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    std::string program = "program";
    std::string argument = row.bytes;
    char* values[] = {program.data(), argument.data(), nullptr};
    const std::vector<std::wstring> arguments = platform::commandLineArguments(2, values);
    ASSERT_EQ(arguments.size(), 1u);
    EXPECT_EQ(digitsOf(arguments[0]), digitsOf(row.expected));
    const std::string back = captured(standardStream::output, [&] {
      return platform::writeText(standardStream::output, arguments[0]);
    });
    EXPECT_EQ(digitsOf(back), digitsOf(row.bytes));
  }
}

TEST(console, aProgramWithoutArgumentZero) {
  if (onWindows) return;
  char* values[] = {nullptr};
  EXPECT_TRUE(platform::commandLineArguments(0, values).empty());
}

}  // namespace

// Child processes and the cutting of command lines.
#include "platform/process.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/environment.h"
#include "platform/files.h"
#include "tests/support/environmentSetter.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"

namespace {

using namespace std::string_literals;
using testSupport::environmentSetter;
using testSupport::onWindows;
using testSupport::temporaryFolder;

// --- command lines ---

struct splitRow {
  const char* name;
  std::wstring line;
  std::vector<std::wstring> expected;
  int lineNumber = __builtin_LINE();
};

const splitRow splitRows[] = {
    splitRow{"empty",                                       L"",                          {L""}                         },
    splitRow{"the program alone",                           L"program",                   {L"program"}                  },
    splitRow{"blanks and tabs separate",                    L"p a \t b",                  {L"p", L"a", L"b"}            },
    splitRow{"blanks at the end",                           L"p a  \t",                   {L"p", L"a"}                  },
    splitRow{"a leading blank: argument zero is empty",     L" -table a",                 {L"", L"-table", L"a"}        },
    splitRow{"a leading tab does it too",                   L"\ta",                       {L"", L"a"}                   },
    splitRow{"several leading blanks",                      L"   a",                      {L"", L"a"}                   },
    splitRow{"program in quotes",                           L"\"C:\\My Tools\\p.exe\" a", {L"C:\\My Tools\\p.exe", L"a"}},
    splitRow{"program partly in quotes",                    L"C:\\\"My Tools\"\\p a",     {L"C:\\My Tools\\p", L"a"}    },
    splitRow{"program: a backslash before a quote",         L"\"C:\\dir\\\" a",           {L"C:\\dir\\", L"a"}          },
    splitRow{"program: the quote never ends",               L"\"a b",                     {L"a b"}                      },
    splitRow{"program: an empty pair of quotes",            L"\"\" a",                    {L"", L"a"}                   },
    splitRow{"quotes hold blanks together",                 L"p \"a b\" c",               {L"p", L"a b", L"c"}          },
    splitRow{"quotes inside an argument",                   L"p a\"b c\"d",               {L"p", L"ab cd"}              },
    splitRow{"an empty argument",                           L"p \"\" a",                  {L"p", L"", L"a"}             },
    splitRow{"an empty argument at the end",                L"p \"\"",                    {L"p", L""}                   },
    splitRow{"the quote never ends",                        L"p \"a b",                   {L"p", L"a b"}                },
    splitRow{"backslashes without a quote",                 L"p a\\\\b\\",                {L"p", L"a\\\\b\\"}           },
    splitRow{"backslashes before a blank",                  L"p a\\\\ b",                 {L"p", L"a\\\\", L"b"}        },
    splitRow{"one backslash and a quote",                   L"p a\\\"b",                  {L"p", L"a\"b"}               },
    splitRow{"two backslashes and a quote",                 L"p a\\\\\"b c\"",            {L"p", L"a\\b c"}             },
    splitRow{"three backslashes and a quote",               L"p a\\\\\\\"b c",            {L"p", L"a\\\"b", L"c"}       },
    splitRow{"four backslashes and a quote",                L"p \"a\\\\\\\\\" b",         {L"p", L"a\\\\", L"b"}        },
    splitRow{"a folder in quotes that ends in a backslash",
             L"p \"C:\\dir\\\" b",                                                        {L"p", L"C:\\dir\" b"}        },
    splitRow{"a doubled quote inside quotes",               L"p \"a\"\"b c\" d",          {L"p", L"a\"b c", L"d"}       },
    splitRow{"a doubled quote and the end of the quotes",   L"p \"a\"\"\" d",             {L"p", L"a\"", L"d"}          },
    splitRow{"a doubled quote outside quotes is empty",     L"p a\"\"b",                  {L"p", L"ab"}                 },
    splitRow{"other white space does not separate",         L"p a\nb\u00A0c",             {L"p", L"a\nb\u00A0c"}        },
    splitRow{"characters beyond ASCII",                     L"p \"\x0416 \U0001F600\"",   {L"p", L"\x0416 \U0001F600"}  },
    splitRow{"a NUL ends the line",                         L"p a\0b"s,                   {L"p", L"a"}                  },
};

TEST(process, splitsCommandLines) {
  for (const splitRow& row : splitRows) {
    const testing::ScopedTrace trace(__FILE__, row.lineNumber, row.name);
    EXPECT_EQ(platform::splitCommandLine(row.line), row.expected);
  }
}

// --- children ---

std::wstring echoProgram() {
  const std::wstring self = platform::executablePath();
  const std::wstring folder = self.substr(0, self.find_last_of(L"/\\") + 1);
  return folder + (onWindows ? L"echo_arguments.exe" : L"echo_arguments");
}

// The process's current folder until the object's end.
class currentFolder {
 public:
  explicit currentFolder(const std::filesystem::path& folder) {
    std::filesystem::current_path(folder);
  }
  currentFolder(const currentFolder&) = delete;
  currentFolder& operator=(const currentFolder&) = delete;
  ~currentFolder() { std::filesystem::current_path(before_); }

 private:
  std::filesystem::path before_ = std::filesystem::current_path();
};

class childProcess : public testing::Test {
 protected:
  // What the child found as its arguments, a line each.
  std::optional<std::string> echo(const std::wstring& commandLine) {
    platform::removeFile(folder_.file(L"echo"));
    EXPECT_EQ(platform::runProcess(echoProgram(), commandLine), 0);
    return testSupport::readFile(folder_.file(L"echo"));
  }

  temporaryFolder folder_;
  environmentSetter echoFile_{L"VOK_ECHO_FILE", folder_.file(L"echo")};
};

struct echoRow {
  const char* name;
  const wchar_t* line;
  const char* expected;
  int lineNumber = __builtin_LINE();
};

const echoRow echoRows[] = {
    echoRow{"no command line at all",  L"",                                              ""                },
    echoRow{"no arguments",            L"echo",                                          ""                },
    echoRow{"plain arguments",         L"echo a bc",                                     "a\nbc\n"         },
    echoRow{"a leading blank",         L" -copyMerged a",                                "-copyMerged\na\n"},
    echoRow{"quotes",                  L" -sourceFileName \"C:\\a b.xls\" -table \"x\"",
            "-sourceFileName\nC:\\a b.xls\n-table\nx\n"                                                    },
    echoRow{"an escaped quote",        L"echo \\\"a\\\" \"b\\\\\"",                      "\"a\"\nb\\\n"    },
    echoRow{"an empty argument",       L"echo \"\" a",                                   "\na\n"           },
    echoRow{"characters beyond ASCII", L"echo \x0416\x20AC \U0001F600",
            "\xD0\x96\xE2\x82\xAC\n\xF0\x9F\x98\x80\n"                                                     },
};

TEST_F(childProcess, findsTheArgumentsOfItsCommandLine) {
  for (const echoRow& row : echoRows) {
    const testing::ScopedTrace trace(__FILE__, row.lineNumber, row.name);
    EXPECT_EQ(echo(row.line), row.expected);
  }
}

TEST_F(childProcess, takesALongCommandLine) {
  const std::wstring argument(20000, L'x');
  EXPECT_EQ(echo(L"echo " + argument), std::string(20000, 'x') + "\n");
}

TEST_F(childProcess, exitCodesComeBack) {
  for (const int code : {0, 1, 7, 99, 255})
    EXPECT_EQ(platform::runProcess(echoProgram(), L"echo --exit=" + std::to_wstring(code)), code);
}

TEST_F(childProcess, thatAbortsHasAnExitCode) {
  constexpr int abortOnWindows = 3;
  constexpr int signalOfAbort = 6;
  EXPECT_EQ(platform::runProcess(echoProgram(), L"echo --abort"),
            onWindows ? abortOnWindows : 128 + signalOfAbort);
}

TEST_F(childProcess, hasEndedWhenTheCallReturns) {
  for (int round = 0; round < 5; ++round) EXPECT_EQ(echo(L"echo done"), "done\n");
}

TEST_F(childProcess, thatCannotBeStartedHasNoExitCode) {
  EXPECT_EQ(platform::runProcess(folder_.file(L"missing.exe"), L"missing"), std::nullopt);
  EXPECT_EQ(platform::runProcess(folder_.path(), L"folder"), std::nullopt);
  EXPECT_EQ(platform::runProcess(L"", L"echo"), std::nullopt);
  testSupport::writeFile(folder_.file(L"text.exe"), "no program\n");
  EXPECT_EQ(platform::runProcess(folder_.file(L"text.exe"), L"text"), std::nullopt);
}

TEST_F(childProcess, isFoundFromTheCurrentFolderButNotSearchedFor) {
  const std::wstring program = echoProgram();
  const std::size_t separator = program.find_last_of(L"/\\");
  const std::wstring folder = program.substr(0, separator);
  const std::wstring name = program.substr(separator + 1);
  const environmentSetter path(L"PATH", folder);
  const currentFolder there{std::filesystem::path(folder)};
  EXPECT_EQ(platform::runProcess(name, L"echo"), 0);
  const currentFolder elsewhere{std::filesystem::path(folder_.path())};
  EXPECT_EQ(platform::runProcess(name, L"echo"), std::nullopt);
}

}  // namespace

// What the process learns of its surroundings.
#include "platform/environment.h"

#include <gtest/gtest.h>

#include <ctime>
#include <optional>
#include <set>
#include <thread>

#include "platform/files.h"
#include "tests/support/environmentSetter.h"
#include "tests/support/namelessUser.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"

namespace {

using testSupport::environmentSetter;
using testSupport::onWindows;
using testSupport::temporaryFolder;

const std::wstring longValue(5000, L'v');
const std::wstring bufferLongValue(260, L'v');
const std::wstring bufferLongValueLessOne(259, L'v');

struct variableRow {
  const char* name;
  std::optional<std::wstring> value;
  int line = __builtin_LINE();
};

const variableRow variableRows[] = {
    variableRow{"a value",                             L"value"                 },
    variableRow{"an empty value is not a missing one", L""                      },
    variableRow{"not set",                             std::nullopt             },
    variableRow{"characters beyond ASCII",             L"\x0416\x20AC\U0001F600"},
    variableRow{"an equals sign and separators",       L"a=b;c:d\\e/f"          },
    variableRow{"a long value",                        longValue                },
    variableRow{"a value as long as the first buffer", bufferLongValue          },
    variableRow{"one shorter",                         bufferLongValueLessOne   },
};

TEST(environment, variables) {
  for (const variableRow& row : variableRows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    const environmentSetter setter(L"VOK_TEST_VARIABLE", row.value);
    EXPECT_EQ(platform::environmentVariable(L"VOK_TEST_VARIABLE"), row.value);
  }
}

TEST(environment, aVariableIsReadAnewEachTime) {
  const environmentSetter outer(L"VOK_TEST_VARIABLE", L"first");
  EXPECT_EQ(platform::environmentVariable(L"VOK_TEST_VARIABLE"), L"first");
  {
    const environmentSetter inner(L"VOK_TEST_VARIABLE", L"second");
    EXPECT_EQ(platform::environmentVariable(L"VOK_TEST_VARIABLE"), L"second");
  }
  EXPECT_EQ(platform::environmentVariable(L"VOK_TEST_VARIABLE"), L"first");
}

TEST(environment, noVariableHasAnEmptyName) {
  EXPECT_EQ(platform::environmentVariable(L""), std::nullopt);
}

// Bytes that are no UTF-8 come and go as lone surrogates, where the system takes bytes.
TEST(environment, rawBytesOfAVariable) {
  if (onWindows) return;
  const std::wstring value{L'a', L'\xDCFF', L'\x0416'};
  const environmentSetter setter(L"VOK_TEST_VARIABLE", value);
  EXPECT_EQ(platform::environmentVariable(L"VOK_TEST_VARIABLE"), value);
}

TEST(environment, theUserHasAName) {
  const std::wstring name = platform::userName();
  EXPECT_FALSE(name.empty());
  EXPECT_EQ(name.find(L'\0'), std::wstring::npos) << "the terminator is not part of it";
}

TEST(environment, aUserWithoutANameIsCalledByAVariable) {
  std::wstring name;
  std::wstring nobody;
  const testSupport::environmentSetter user(L"USER", std::nullopt);
  {
    const testSupport::environmentSetter login(L"LOGNAME", L"\x0418\x0432\x0430\x043D");
    if (!testSupport::asNamelessUser([&name] { name = platform::userName(); }))
      GTEST_SKIP() << "the test cannot become another user";
  }
  const testSupport::environmentSetter noLogin(L"LOGNAME", std::nullopt);
  ASSERT_TRUE(testSupport::asNamelessUser([&nobody] { nobody = platform::userName(); }));
  EXPECT_EQ(name, L"\x0418\x0432\x0430\x043D");
  EXPECT_EQ(nobody, L"");
}

TEST(environment, theExecutableIsThisTestProgram) {
  const std::wstring path = platform::executablePath();
  EXPECT_TRUE(platform::fileExists(path));
  EXPECT_FALSE(platform::folderExists(path));
  ASSERT_NE(path.find_last_of(L"/\\"), std::wstring::npos) << "a full path";
  const std::string magic = onWindows ? "MZ"
                                      : "\x7F"
                                        "ELF";
  EXPECT_EQ(testSupport::readFile(path).value_or("").substr(0, magic.size()), magic);
}

TEST(environment, theTemporaryFolderExistsAndEndsInASeparator) {
  const std::wstring folder = platform::temporaryFolder();
  ASSERT_FALSE(folder.empty());
  EXPECT_EQ(folder.back(), onWindows ? L'\\' : L'/');
  EXPECT_TRUE(platform::folderExists(folder));
}

struct folderRow {
  const char* name;
  std::optional<std::wstring> variable;
  std::wstring expected;
  int line = __builtin_LINE();
};

const folderRow folderRows[] = {
    folderRow{"not set",                                    std::nullopt, L"/tmp/"    },
    folderRow{"empty",                                      L"",          L"/tmp/"    },
    folderRow{"without a separator",                        L"/var/tmp",  L"/var/tmp/"},
    folderRow{"with a separator",                           L"/var/tmp/", L"/var/tmp/"},
    folderRow{"the root",                                   L"/",         L"/"        },
    folderRow{"a folder that does not exist is not judged", L"/none",     L"/none/"   },
    folderRow{"characters beyond ASCII",                    L"/\x0416",   L"/\x0416/" },
};

TEST(environment, theTemporaryFolderIsWhereTheVariableSays) {
  if (onWindows) {
    const temporaryFolder folder;
    const std::wstring wanted = folder.path().substr(0, folder.path().size() - 1);
    const environmentSetter variable(L"TMP", wanted);
    EXPECT_EQ(platform::temporaryFolder(), wanted + L"\\");
    return;
  }
  for (const folderRow& row : folderRows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    const environmentSetter variable(L"TMPDIR", row.variable);
    EXPECT_EQ(platform::temporaryFolder(), row.expected);
  }
}

TEST(environment, runningThreadsHaveDifferentNumbers) {
  const std::uint32_t mine = platform::currentThreadId();
  EXPECT_NE(mine, 0u);
  EXPECT_EQ(platform::currentThreadId(), mine);
  std::uint32_t other = mine;
  std::thread([&other] { other = platform::currentThreadId(); }).join();
  EXPECT_NE(other, mine);
}

TEST(environment, theClockCountIsTheOneOfTheCLibrary) {
  const long before = std::clock();
  const long count = platform::clockCount();
  const long after = std::clock();
  EXPECT_LE(before, count);
  EXPECT_LE(count, after);
}

}  // namespace

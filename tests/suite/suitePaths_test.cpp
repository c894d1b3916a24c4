// The suite's paths: the main module, as the system or the host tells it, and the temporary folder.
#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "platform/files.h"
#include "platform/vok_basic.h"
#include "table_rw/core/pathNames.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using testSupport::printable;

// Every test leaves the running executable behind as the main module, and the system's temporary folder.
class suitePaths : public testing::Test {
 protected:
  void TearDown() override {
    vo_options_set_main_module_path(nullptr);
    vo_options_set_temp_wpath(nullptr);
  }
};

TEST_F(suitePaths, aHostChoosesTheTemporaryFolder) {
  const std::wstring systems = vo_options_get_temp_wpath();
  const struct {
    const wchar_t* chosen;
    std::wstring folder;
  } rows[] = {
      {L"/var/own",       L"/var/own/"      },
      {L"/var/own/",      L"/var/own/"      },
      {L"D:\\own\\",      L"D:\\own\\"      },
      {L"D:\\own \x0416", L"D:\\own \x0416/"},
      {nullptr,           systems           },
      {L"/",              L"/"              },
      {L"",               systems           },
  };
  for (const auto& row : rows) {
    vo_options_set_temp_wpath(row.chosen);
    EXPECT_EQ(printable(vo_options_get_temp_wpath()), printable(row.folder));
  }
}

TEST_F(suitePaths, theMainModuleIsTheRunningExecutable) {
  const std::wstring path = vo_options_get_main_module_path();
  EXPECT_TRUE(platform::fileExists(path)) << printable(path);
  EXPECT_FALSE(platform::folderExists(path)) << printable(path);
  EXPECT_NE(tableRW::folderOf(path), L"") << "a full path: " << printable(path);
  EXPECT_EQ(path, vo_options_get_main_module_path());
}

TEST_F(suitePaths, aHostTellsWhereTheMainModuleIs) {
  for (const wchar_t* path :
       {L"C:\\my suite\\main.exe", L"/opt/suite/main", L"main", L"/", L"\x0414\x0430/\U0001F600"}) {
    vo_options_set_main_module_path(path);
    EXPECT_EQ(printable(vo_options_get_main_module_path()), printable(path));
  }
}

TEST_F(suitePaths, nullAndEmptyMeanTheRunningExecutableAgain) {
  const std::wstring executable = vo_options_get_main_module_path();
  for (const wchar_t* none : {static_cast<const wchar_t*>(nullptr), L""}) {
    vo_options_set_main_module_path(L"elsewhere");
    vo_options_set_main_module_path(none);
    EXPECT_EQ(printable(vo_options_get_main_module_path()), printable(executable));
  }
}

TEST_F(suitePaths, theHostsTextIsCopied) {
  std::wstring text = L"/opt/suite/main";
  vo_options_set_main_module_path(text.c_str());
  text[1] = L'X';
  EXPECT_STREQ(vo_options_get_main_module_path(), L"/opt/suite/main");
}

TEST_F(suitePaths, aPathMayBeSetToItself) {
  vo_options_set_main_module_path(L"/opt/a folder with a long name/main");
  vo_options_set_main_module_path(vo_options_get_main_module_path());
  EXPECT_STREQ(vo_options_get_main_module_path(), L"/opt/a folder with a long name/main");
}

TEST_F(suitePaths, aTextLivesUntilTheNextCallInItsThread) {
  vo_options_set_main_module_path(L"/opt/first");
  const wchar_t* mine = vo_options_get_main_module_path();
  const wchar_t* temporary = vo_options_get_temp_wpath();
  const std::wstring temporaryText = temporary;
  vo_options_set_main_module_path(L"/opt/another and longer one than before");
  EXPECT_STREQ(mine, L"/opt/first") << "setting is no call of the getter";
  std::thread([mine, temporary] {
    const wchar_t* theirs = vo_options_get_main_module_path();
    EXPECT_STREQ(theirs, L"/opt/another and longer one than before");
    EXPECT_NE(theirs, mine);
    EXPECT_STREQ(vo_options_get_temp_wpath(), temporary);
  }).join();
  EXPECT_STREQ(mine, L"/opt/first") << "nor is a call in another thread";
  EXPECT_STREQ(vo_options_get_main_module_path(), L"/opt/another and longer one than before");
  EXPECT_EQ(temporary, temporaryText) << "nor is a call of another function";
}

TEST_F(suitePaths, anyThreadMaySetThePath) {
  const std::set<std::wstring> paths = {L"/a", L"/opt/suite/main module of the suite", L"C:\\b"};
  vo_options_set_main_module_path(L"/a");
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads;
  for (const std::wstring& path : paths) {
    threads.emplace_back([&] {
      for (int i = 0; i < 500; ++i) {
        vo_options_set_main_module_path(path.c_str());
        if (!paths.contains(vo_options_get_main_module_path())) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

TEST_F(suitePaths, theTemporaryFolder) {
  const std::wstring folder = vo_options_get_temp_wpath();
  ASSERT_FALSE(folder.empty());
  EXPECT_TRUE(folder.back() == L'/' || folder.back() == L'\\') << printable(folder);
  EXPECT_GT(folder.size(), 1u);
  EXPECT_TRUE(platform::folderExists(folder.substr(0, folder.size() - 1))) << printable(folder);
  EXPECT_EQ(folder, vo_options_get_temp_wpath());
}

TEST_F(suitePaths, theTemporaryFolderTakesFiles) {
  const testSupport::temporaryFolder name;  // a name that nobody else has
  const std::wstring own = tableRW::fileNameOf(name.path().substr(0, name.path().size() - 1));
  const std::wstring path = vo_options_get_temp_wpath() + own + L".txt";
  testSupport::writeFile(path, "x");
  EXPECT_EQ(testSupport::readFile(path), "x");
  EXPECT_TRUE(platform::removeFile(path));
}

TEST_F(suitePaths, theMainModuleHasNoSayInTheTemporaryFolder) {
  const std::wstring before = vo_options_get_temp_wpath();
  vo_options_set_main_module_path(L"/opt/suite/main");
  EXPECT_EQ(printable(vo_options_get_temp_wpath()), printable(before));
}

}  // namespace

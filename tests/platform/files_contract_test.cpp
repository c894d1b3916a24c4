// Files and folders: one behaviour on both targets.
#include "platform/files.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <utility>

#include "tests/support/failingAllocations.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"

namespace {

using namespace std::string_literals;
using platform::binaryFile;
using testSupport::onWindows;
using testSupport::readFile;
using testSupport::temporaryFolder;
using testSupport::writeFile;

class files : public testing::Test {
 protected:
  temporaryFolder folder_;
};

// --- contents ---

TEST_F(files, everyByteComesBack) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  bytes += "\r\n\n\r\r\n\x1A after";
  writeFile(folder_.file(L"f"), bytes);
  EXPECT_EQ(readFile(folder_.file(L"f")), bytes);
}

TEST_F(files, readsFromAnyPlace) {
  writeFile(folder_.file(L"f"), "0123456789");
  binaryFile file;
  char buffer[8] = {};
  EXPECT_EQ(file.readAt(0, buffer, 1), 0u);  // not open
  ASSERT_TRUE(file.openForReading(folder_.file(L"f")));
  EXPECT_EQ(file.readAt(7, buffer, 8), 3u);
  EXPECT_EQ(std::string(buffer, 3), "789");
  EXPECT_EQ(file.readAt(2, buffer, 4), 4u);
  EXPECT_EQ(std::string(buffer, 4), "2345");
  for (const std::uint64_t place : {std::uint64_t{10}, std::uint64_t{11}, ~std::uint64_t{0}})
    EXPECT_EQ(file.readAt(place, buffer, 1), 0u) << place;
}

TEST_F(files, anEmptyFile) {
  writeFile(folder_.file(L"f"), "");
  binaryFile file;
  ASSERT_TRUE(file.openForReading(folder_.file(L"f")));
  char byte = 'x';
  EXPECT_EQ(file.size(), 0u);
  EXPECT_EQ(file.read(&byte, 1), 0u);
  EXPECT_EQ(byte, 'x');
}

TEST_F(files, fewerBytesOnlyAtTheEnd) {
  writeFile(folder_.file(L"f"), "0123456789");
  binaryFile file;
  ASSERT_TRUE(file.openForReading(folder_.file(L"f")));
  EXPECT_EQ(file.size(), 10u);
  char buffer[8] = {};
  EXPECT_EQ(file.read(buffer, 0), 0u);
  EXPECT_EQ(file.read(buffer, 4), 4u);
  EXPECT_EQ(std::string(buffer, 4), "0123");
  EXPECT_EQ(file.read(buffer, 4), 4u);
  EXPECT_EQ(std::string(buffer, 4), "4567");
  EXPECT_EQ(file.read(buffer, 8), 2u);
  EXPECT_EQ(std::string(buffer, 2), "89");
  EXPECT_EQ(file.read(buffer, 8), 0u);
  EXPECT_EQ(file.read(buffer, 8), 0u);
}

TEST_F(files, writesFollowEachOther) {
  binaryFile file;
  ASSERT_TRUE(file.openForWriting(folder_.file(L"f")));
  EXPECT_TRUE(file.write("ab", 2));
  EXPECT_TRUE(file.write("", 0));
  EXPECT_TRUE(file.write("cde", 3));
  EXPECT_EQ(file.size(), 5u);
  EXPECT_TRUE(file.close());
  EXPECT_EQ(readFile(folder_.file(L"f")), "abcde");
}

TEST_F(files, manyBytesInOneCall) {
  std::string bytes(5 * 1024 * 1024 + 3, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
  writeFile(folder_.file(L"f"), bytes);
  EXPECT_TRUE(readFile(folder_.file(L"f")) == bytes);
}

TEST_F(files, openingForWritingEmptiesTheFile) {
  writeFile(folder_.file(L"f"), "long content");
  binaryFile file;
  ASSERT_TRUE(file.openForWriting(folder_.file(L"f")));
  EXPECT_EQ(file.size(), 0u);
  EXPECT_TRUE(file.write("x", 1));
  EXPECT_TRUE(file.close());
  EXPECT_EQ(readFile(folder_.file(L"f")), "x");
}

// --- opening, closing, owning ---

TEST_F(files, aFileThatIsNotOpenTakesAndGivesNothing) {
  binaryFile file;
  char byte = 'x';
  EXPECT_FALSE(file.isOpen());
  EXPECT_EQ(file.read(&byte, 1), 0u);
  EXPECT_FALSE(file.write(&byte, 1));
  EXPECT_EQ(file.size(), 0u);
  EXPECT_TRUE(file.close());
  EXPECT_EQ(byte, 'x');
}

struct pathRow {
  const char* name;
  const wchar_t* path;  // below the test's folder
  bool canRead;
  bool canWrite;
  int line = __builtin_LINE();
};

const pathRow pathRows[] = {
    pathRow{"a file",                    L"file",         true,  true },
    pathRow{"a missing file",            L"missing",      false, true },
    pathRow{"a folder",                  L"folder",       false, false},
    pathRow{"a folder with a separator", L"folder/",      false, false},
    pathRow{"in a missing folder",       L"missing/file", false, false},
    pathRow{"below a file",              L"file/file",    false, false},
    pathRow{"the test's folder itself",  L"",             false, false},
};

TEST_F(files, whatCanBeOpened) {
  for (const pathRow& row : pathRows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    const temporaryFolder folder;
    writeFile(folder.file(L"file"), "x");
    ASSERT_TRUE(platform::createFolder(folder.file(L"folder")));
    binaryFile file;
    EXPECT_EQ(file.openForReading(folder.file(row.path)), row.canRead);
    EXPECT_EQ(file.isOpen(), row.canRead);
    file.close();
    EXPECT_EQ(file.openForWriting(folder.file(row.path)), row.canWrite);
    EXPECT_EQ(file.isOpen(), row.canWrite);
  }
}

TEST_F(files, theEmptyPathIsNothing) {
  binaryFile file;
  EXPECT_FALSE(file.openForReading(L""));
  EXPECT_FALSE(file.openForWriting(L""));
  EXPECT_FALSE(platform::fileExists(L""));
  EXPECT_FALSE(platform::folderExists(L""));
  EXPECT_FALSE(platform::removeFile(L""));
  EXPECT_FALSE(platform::createFolder(L""));
  EXPECT_FALSE(platform::removeFolder(L""));
}

TEST_F(files, openedForOneDirectionOnly) {
  writeFile(folder_.file(L"f"), "abc");
  char byte = 'x';
  binaryFile file;
  ASSERT_TRUE(file.openForReading(folder_.file(L"f")));
  EXPECT_FALSE(file.write("z", 1));
  file.close();
  EXPECT_EQ(readFile(folder_.file(L"f")), "abc");
  ASSERT_TRUE(file.openForWriting(folder_.file(L"f")));
  EXPECT_TRUE(file.write("abc", 3));
  EXPECT_EQ(file.read(&byte, 1), 0u);
}

TEST_F(files, openingAnotherFileClosesTheFirst) {
  writeFile(folder_.file(L"a"), "first");
  writeFile(folder_.file(L"b"), "second");
  binaryFile file;
  ASSERT_TRUE(file.openForReading(folder_.file(L"a")));
  ASSERT_TRUE(file.openForReading(folder_.file(L"b")));
  char byte = 0;
  EXPECT_EQ(file.read(&byte, 1), 1u);
  EXPECT_EQ(byte, 's');
  EXPECT_TRUE(platform::removeFile(folder_.file(L"a"))) << "Windows would refuse while it is open";
  EXPECT_FALSE(file.openForReading(folder_.file(L"missing")));
  EXPECT_FALSE(file.isOpen());
  EXPECT_EQ(file.read(&byte, 1), 0u);
}

TEST_F(files, theOwnerClosesTheFile) {
  {
    binaryFile file;
    ASSERT_TRUE(file.openForWriting(folder_.file(L"f")));
    EXPECT_TRUE(file.write("abc", 3));
  }
  EXPECT_EQ(readFile(folder_.file(L"f")), "abc");
  EXPECT_TRUE(platform::removeFile(folder_.file(L"f")));
}

TEST_F(files, anOpenFileCanBeMoved) {
  writeFile(folder_.file(L"a"), "first");
  writeFile(folder_.file(L"b"), "second");
  binaryFile first;
  ASSERT_TRUE(first.openForReading(folder_.file(L"a")));
  binaryFile second(std::move(first));
  // That a file moved from is closed is part of the contract.
  // NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move)
  EXPECT_FALSE(first.isOpen());
  char byte = 0;
  EXPECT_EQ(second.read(&byte, 1), 1u);
  EXPECT_EQ(byte, 'f');

  binaryFile third;
  ASSERT_TRUE(third.openForReading(folder_.file(L"b")));
  second = std::move(third);
  // That a file moved from is closed is part of the contract.
  // NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move)
  EXPECT_FALSE(third.isOpen());
  EXPECT_EQ(second.read(&byte, 1), 1u);
  EXPECT_EQ(byte, 's');
  EXPECT_TRUE(platform::removeFile(folder_.file(L"a"))) << "closed by the assignment";

  binaryFile& same = second;
  second = std::move(same);
  EXPECT_TRUE(second.isOpen());
}

// ODD: Windows lets nobody in beside a writer, as its C runtime's secure open does; POSIX has no
// such rule.
TEST_F(files, readersAndWritersBesideEachOther) {
  writeFile(folder_.file(L"f"), "abc");
  binaryFile one;
  binaryFile other;
  ASSERT_TRUE(one.openForReading(folder_.file(L"f")));
  EXPECT_TRUE(other.openForReading(folder_.file(L"f")));
  other.close();
  EXPECT_EQ(other.openForWriting(folder_.file(L"f")), !onWindows);
  other.close();
  ASSERT_TRUE(one.openForWriting(folder_.file(L"f")));
  EXPECT_EQ(other.openForReading(folder_.file(L"f")), !onWindows);
}

// --- names ---

struct nameRow {
  const char* name;
  std::wstring written;
  std::wstring found;
  int line = __builtin_LINE();
};

const nameRow nameRows[] = {
    nameRow{"blanks and signs",      L"a b;c=d.e",                L"a b;c=d.e"         },
    nameRow{"Cyrillic",              L"\x0421\x043A\x0432",       L"\x0421\x043A\x0432"},
    nameRow{"beyond the BMP",        L"\U0001F600",               L"\U0001F600"        },
    nameRow{"a backslash separates", L"folder\\f",                L"folder/f"          },
    nameRow{"a slash separates",     L"folder/f",                 L"folder\\f"         },
    nameRow{"doubled separators",    L"folder\\\\f",              L"folder/f"          },
    nameRow{"up and down again",     L"folder\\..\\folder\\.\\f", L"folder/f"          },
    nameRow{"a NUL ends the path",   L"f\0g"s,                    L"f"                 },
};

TEST_F(files, names) {
  for (const nameRow& row : nameRows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    const temporaryFolder folder;
    ASSERT_TRUE(platform::createFolder(folder.file(L"folder")));
    writeFile(folder.file(row.written), row.name);
    EXPECT_TRUE(platform::fileExists(folder.file(row.found)));
    EXPECT_EQ(readFile(folder.file(row.found)), row.name);
    EXPECT_TRUE(platform::removeFile(folder.file(row.written)));
    EXPECT_FALSE(platform::fileExists(folder.file(row.found)));
  }
}

// Names that are no UTF-8 exist only where names are bytes.
TEST_F(files, rawBytesInANameAreReachable) {
  if (onWindows) return;
  const std::wstring wide = folder_.file(std::wstring{L'a', L'\xDCFF', L'\xDC80'});
  std::string narrow;
  for (const wchar_t character : folder_.path()) narrow += static_cast<char>(character);
  std::ofstream(narrow + "a\xFF\x80") << "raw";
  EXPECT_EQ(readFile(wide), "raw");
  EXPECT_TRUE(platform::replaceFile(wide, folder_.file(L"b")));
  EXPECT_EQ(readFile(folder_.file(L"b")), "raw");
}

// --- attributes, removing, moving, folders ---

TEST_F(files, whatExists) {
  writeFile(folder_.file(L"file"), "x");
  ASSERT_TRUE(platform::createFolder(folder_.file(L"folder")));
  EXPECT_TRUE(platform::fileExists(folder_.file(L"file")));
  EXPECT_FALSE(platform::folderExists(folder_.file(L"file")));
  EXPECT_TRUE(platform::fileExists(folder_.file(L"folder"))) << "attributes of any kind count";
  EXPECT_TRUE(platform::folderExists(folder_.file(L"folder")));
  EXPECT_TRUE(platform::folderExists(folder_.file(L"folder/")));
  EXPECT_TRUE(platform::folderExists(folder_.file(L"folder\\")));
  EXPECT_FALSE(platform::fileExists(folder_.file(L"missing")));
  EXPECT_FALSE(platform::folderExists(folder_.file(L"missing")));
  EXPECT_FALSE(platform::fileExists(folder_.file(L"missing/file")));
  EXPECT_FALSE(platform::fileExists(folder_.file(L"*"))) << "no patterns";
}

TEST_F(files, removing) {
  writeFile(folder_.file(L"file"), "x");
  ASSERT_TRUE(platform::createFolder(folder_.file(L"folder")));
  EXPECT_TRUE(platform::removeFile(folder_.file(L"file")));
  EXPECT_FALSE(platform::fileExists(folder_.file(L"file")));
  EXPECT_FALSE(platform::removeFile(folder_.file(L"file"))) << "already gone";
  EXPECT_FALSE(platform::removeFile(folder_.file(L"folder")));
  EXPECT_TRUE(platform::folderExists(folder_.file(L"folder")));
}

TEST_F(files, oneFileHasManyNames) {
  writeFile(folder_.file(L"one"), "1");
  writeFile(folder_.file(L"other"), "1");
  ASSERT_TRUE(platform::createFolder(folder_.file(L"folder")));
  EXPECT_TRUE(platform::isSameFile(folder_.file(L"one"), folder_.file(L"one")));
  EXPECT_TRUE(platform::isSameFile(folder_.file(L"one"), folder_.file(L"folder/../one")));
  EXPECT_TRUE(platform::isSameFile(folder_.file(L"one"), folder_.file(L"folder\\..\\one")));
  EXPECT_FALSE(platform::isSameFile(folder_.file(L"one"), folder_.file(L"other")));
  EXPECT_FALSE(platform::isSameFile(folder_.file(L"one"), folder_.file(L"missing")));
  EXPECT_FALSE(platform::isSameFile(folder_.file(L"missing"), folder_.file(L"missing")));
  EXPECT_TRUE(platform::isSameFile(folder_.path(), folder_.file(L"folder/..")));
}

TEST_F(files, filesAndFoldersAreNoLinksAndNoDevices) {
  writeFile(folder_.file(L"file"), "1");
  ASSERT_TRUE(platform::createFolder(folder_.file(L"folder")));
  for (const wchar_t* const name : {L"file", L"folder", L"missing"}) {
    EXPECT_FALSE(platform::isLink(folder_.file(name)));
    EXPECT_FALSE(platform::isPipeOrDevice(folder_.file(name)));
  }
}

TEST_F(files, linksAndDevicesAreKnown) {
  if (testSupport::onWindows)
    GTEST_SKIP() << "links need a right there, and devices have other names";
  writeFile(folder_.file(L"file"), "1");
  const std::filesystem::path folder(folder_.path());
  std::filesystem::create_symlink("file", folder / "link");
  std::filesystem::create_symlink("nowhere", folder / "loose");
  EXPECT_TRUE(platform::isLink(folder_.file(L"link")));
  EXPECT_TRUE(platform::isLink(folder_.file(L"loose")));
  EXPECT_TRUE(platform::isSameFile(folder_.file(L"link"), folder_.file(L"file")));
  EXPECT_FALSE(platform::isPipeOrDevice(folder_.file(L"link")));
  EXPECT_TRUE(platform::isPipeOrDevice(L"/dev/null"));
  EXPECT_FALSE(platform::isSameFile(folder_.file(L"file"), L"/dev/null"));
  binaryFile device;
  ASSERT_TRUE(device.openForReading(L"/dev/null"));
  EXPECT_EQ(device.size(), 0u);
}

TEST_F(files, aReplacedFileKeepsItsPermissions) {
  if (testSupport::onWindows) GTEST_SKIP() << "permissions are the folder's there";
  namespace fs = std::filesystem;
  writeFile(folder_.file(L"to"), "private");
  writeFile(folder_.file(L"from"), "new");
  const fs::path target = fs::path(folder_.path()) / "to";
  const fs::perms mine = fs::perms::owner_read | fs::perms::owner_write;
  fs::permissions(target, mine);
  EXPECT_TRUE(platform::replaceFile(folder_.file(L"from"), folder_.file(L"to")));
  EXPECT_EQ(fs::status(target).permissions(), mine);
  EXPECT_EQ(readFile(folder_.file(L"to")), "new");
}

TEST_F(files, replacing) {
  writeFile(folder_.file(L"from"), "new");
  EXPECT_TRUE(platform::replaceFile(folder_.file(L"from"), folder_.file(L"to")));
  EXPECT_EQ(readFile(folder_.file(L"to")), "new");
  EXPECT_FALSE(platform::fileExists(folder_.file(L"from")));

  writeFile(folder_.file(L"from"), "newer");
  EXPECT_TRUE(platform::replaceFile(folder_.file(L"from"), folder_.file(L"to"))) << "over a file";
  EXPECT_EQ(readFile(folder_.file(L"to")), "newer");
  EXPECT_FALSE(platform::fileExists(folder_.file(L"from")));

  EXPECT_FALSE(platform::replaceFile(folder_.file(L"from"), folder_.file(L"to")))
      << "nothing to move";
  EXPECT_EQ(readFile(folder_.file(L"to")), "newer");
  EXPECT_FALSE(platform::replaceFile(folder_.file(L"to"), folder_.file(L"missing/to")));
  ASSERT_TRUE(platform::createFolder(folder_.file(L"folder")));
  EXPECT_FALSE(platform::replaceFile(folder_.file(L"to"), folder_.file(L"folder")))
      << "over a folder";
  EXPECT_EQ(readFile(folder_.file(L"to")), "newer");
}

TEST_F(files, foldersOneLevelAtATime) {
  EXPECT_FALSE(platform::createFolder(folder_.file(L"a/b"))) << "the parent is missing";
  EXPECT_TRUE(platform::createFolder(folder_.file(L"a")));
  EXPECT_FALSE(platform::createFolder(folder_.file(L"a"))) << "exists";
  EXPECT_TRUE(platform::createFolder(folder_.file(L"a\\b")));
  EXPECT_FALSE(platform::removeFolder(folder_.file(L"a"))) << "not empty";
  EXPECT_TRUE(platform::removeFolder(folder_.file(L"a/b")));
  EXPECT_TRUE(platform::removeFolder(folder_.file(L"a")));
  EXPECT_FALSE(platform::removeFolder(folder_.file(L"a"))) << "already gone";
  writeFile(folder_.file(L"file"), "x");
  EXPECT_FALSE(platform::createFolder(folder_.file(L"file")));
  EXPECT_FALSE(platform::removeFolder(folder_.file(L"file")));
  EXPECT_EQ(readFile(folder_.file(L"file")), "x");
}

TEST_F(files, aFolderGoesWithItsFiles) {
  const std::wstring own = folder_.file(L"own \x0416");
  EXPECT_TRUE(platform::createPrivateFolder(own));
  EXPECT_FALSE(platform::createPrivateFolder(own)) << "exists";
  EXPECT_FALSE(platform::createPrivateFolder(folder_.file(L"gone/own"))) << "the parent is missing";
  writeFile(own + L"/a", "x");
  writeFile(own + L"/\x0416 b.csv", "x");
  EXPECT_TRUE(platform::removeFolderAndFiles(own));
  EXPECT_FALSE(platform::folderExists(own));
  EXPECT_FALSE(platform::removeFolderAndFiles(own)) << "already gone";
  ASSERT_TRUE(platform::createFolder(own));
  ASSERT_TRUE(platform::createFolder(own + L"/inner"));
  writeFile(own + L"/inner/kept", "x");
  EXPECT_FALSE(platform::removeFolderAndFiles(own));
  EXPECT_EQ(readFile(own + L"/inner/kept"), "x");
}

TEST_F(files, aPathForLibrariesThatTakeItNarrow) {
  EXPECT_EQ(platform::utf8Path(L""), "");
  EXPECT_EQ(platform::utf8Path(L"a\\b/c"), "a/b/c");
  EXPECT_EQ(platform::utf8Path(L"\x0416\U0001F600"), "\xD0\x96\xF0\x9F\x98\x80");
  EXPECT_EQ(platform::utf8Path(std::wstring(L"a\0b", 3)), "a");
}

TEST_F(files, drivesAreWhereTheSystemHasThem) {
  using testSupport::onWindows;
  EXPECT_EQ(platform::isDrivePath(L"C:\\a"), onWindows);
  EXPECT_EQ(platform::isDrivePath(L"z:"), onWindows);
  for (const wchar_t* const path : {L"", L"C", L"1:a", L"\\\\server\\a", L"/C:/a"})
    EXPECT_FALSE(platform::isDrivePath(path));
}

TEST_F(files, aFileIsFoundWhateverTheCaseOfItsName) {
  writeFile(folder_.file(L"Wells.FPT"), "1");
  const auto nameOf = [this](const wchar_t* wanted) {
    const std::wstring found = platform::findIgnoringCase(folder_.file(wanted));
    return found.empty() ? found : found.substr(folder_.path().size());
  };
  EXPECT_EQ(nameOf(L"Wells.FPT"), L"Wells.FPT");
  EXPECT_EQ(nameOf(L"wells.fpt"), testSupport::onWindows ? L"wells.fpt" : L"Wells.FPT");
  EXPECT_EQ(nameOf(L"wells.dbt"), L"");
  EXPECT_EQ(nameOf(L"missing/wells.fpt"), L"");
  writeFile(folder_.file(L"other"), "1");
  EXPECT_EQ(nameOf(L"other"), L"other") << "the very name comes first";
}

TEST_F(files, aNameWithoutAFolderIsOfTheCurrentOne) {
  writeFile(folder_.file(L"Wells.FPT"), "1");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder_.path());
  const std::wstring found = platform::findIgnoringCase(L"wells.fpt");
  const std::wstring missing = platform::findIgnoringCase(L"wells.dbt");
  std::filesystem::current_path(before);
  EXPECT_EQ(found, testSupport::onWindows ? L"wells.fpt" : L"Wells.FPT");
  EXPECT_EQ(missing, L"");
}

// A link that leads nowhere, or round in a circle, is no file.
TEST_F(files, linksWithoutAFileAreNotFound) {
  std::error_code failure;
  std::filesystem::create_symlink(folder_.file(L"gone"), folder_.file(L"Wells.FPT"), failure);
  if (failure) GTEST_SKIP() << "links cannot be created here";
  std::filesystem::create_symlink(folder_.file(L"Round.DBT"), folder_.file(L"Round.DBT"));
  EXPECT_EQ(platform::findIgnoringCase(folder_.file(L"wells.fpt")), L"");
  EXPECT_EQ(platform::findIgnoringCase(folder_.file(L"round.dbt")), L"");
}

// --- positions ---

TEST_F(files, seekMovesReadingAndWriting) {
  binaryFile file;
  ASSERT_TRUE(file.openForWriting(folder_.file(L"f")));
  EXPECT_TRUE(file.write("0123456789", 10));
  EXPECT_TRUE(file.seek(3));
  EXPECT_TRUE(file.write("xy", 2));
  EXPECT_TRUE(file.seek(10));
  EXPECT_TRUE(file.write("!", 1));
  EXPECT_TRUE(file.close());
  EXPECT_EQ(readFile(folder_.file(L"f")), "012xy56789!");
  ASSERT_TRUE(file.openForReading(folder_.file(L"f")));
  char buffer[4] = {};
  EXPECT_TRUE(file.seek(8));
  EXPECT_EQ(file.read(buffer, 4), 3u);
  EXPECT_EQ(std::string(buffer, 3), "89!");
  EXPECT_TRUE(file.seek(0));
  EXPECT_EQ(file.read(buffer, 1), 1u);
  EXPECT_EQ(buffer[0], '0');
}

TEST_F(files, seekBehindTheEndAndFarBeyond) {
  writeFile(folder_.file(L"f"), "x");
  binaryFile file;
  ASSERT_TRUE(file.openForReading(folder_.file(L"f")));
  char byte = 0;
  EXPECT_TRUE(file.seek(std::uint64_t{1} << 33));
  EXPECT_EQ(file.read(&byte, 1), 0u);
  EXPECT_FALSE(file.seek(~std::uint64_t{0}));
}

TEST_F(files, seekNeedsAnOpenFile) {
  binaryFile file;
  EXPECT_FALSE(file.seek(0));
}

TEST_F(files, appendingGoesOnBehindTheLastByte) {
  writeFile(folder_.file(L"f"), "old ");
  binaryFile file;
  ASSERT_TRUE(file.openForAppending(folder_.file(L"f")));
  EXPECT_TRUE(file.write("new", 3));
  EXPECT_TRUE(file.seek(1));
  EXPECT_TRUE(file.write("L", 1));
  EXPECT_TRUE(file.close());
  EXPECT_EQ(readFile(folder_.file(L"f")), "oLd new");
}

TEST_F(files, appendingCreatesNothing) {
  binaryFile file;
  EXPECT_FALSE(file.openForAppending(folder_.file(L"f")));
  EXPECT_FALSE(file.isOpen());
  EXPECT_FALSE(platform::fileExists(folder_.file(L"f")));
}

// --- failures ---

TEST_F(files, aFailedReadIsToldFromTheEnd) {
  binaryFile file;
  char byte = 0;
  ASSERT_TRUE(file.openForWriting(folder_.file(L"f")));
  ASSERT_TRUE(file.write("ab", 2));
  EXPECT_FALSE(file.hasFailed());
  EXPECT_EQ(file.readAt(0, &byte, 1), 0u) << "it was opened for writing alone";
  EXPECT_TRUE(file.hasFailed());
  binaryFile moved(std::move(file));
  EXPECT_TRUE(moved.hasFailed());
  moved.close();
  EXPECT_TRUE(moved.hasFailed()) << "until the next opening";
  ASSERT_TRUE(moved.openForReading(folder_.file(L"f")));
  EXPECT_FALSE(moved.hasFailed());
  EXPECT_EQ(moved.readAt(1, &byte, 1), 1u);
  EXPECT_EQ(moved.read(&byte, 1), 0u);
  EXPECT_EQ(moved.readAt(100, &byte, 1), 0u);
  EXPECT_EQ(moved.size(), 2u);
  EXPECT_FALSE(moved.hasFailed()) << "the end is no failure";
}

TEST_F(files, removingNeedsNoMemory) {
  const std::wstring file = folder_.file(std::wstring(60, L'x') + L"\x416");
  const std::wstring folder = folder_.file(L"a folder with a name that is long enough");
  const std::wstring missing = folder_.file(std::wstring(5000, L'\x416'));
  writeFile(file, "");
  ASSERT_TRUE(platform::createFolder(folder));
  bool removed = false;
  bool removedFolder = false;
  bool removedMissing = true;
  {
    const testSupport::failingAllocation failing(0);
    removed = platform::removeFile(file);
    removedFolder = platform::removeFolder(folder);
    removedMissing = platform::removeFile(missing);
    EXPECT_FALSE(failing.hasFailed());
  }
  EXPECT_TRUE(removed);
  EXPECT_TRUE(removedFolder);
  EXPECT_FALSE(removedMissing);
  EXPECT_FALSE(platform::fileExists(file));
  EXPECT_FALSE(platform::folderExists(folder));
}

}  // namespace

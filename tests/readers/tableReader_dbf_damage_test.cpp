// Damaged tables: a sample and all real files at hand, cut at every byte of the header and at random
// places, and with bytes replaced. Whatever opens gives rows of full width, and not more of them than the
// file has room for.
//
// Real files are no part of the project: the environment variable VOK_REAL_FILES names the folder that
// holds them in its subfolder dbf. Without it those tests are skipped.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "table_rw/readers/tableReader_dbf.h"
#include "tests/support/dbfBuilder.h"
#include "tests/support/randomNumbers.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using tableRW::tableReader_dbf;
using tableRW::tableReaderOptions;
using testSupport::dbfBuilder;

// @return number of rows; nothing when the file does not open
std::optional<std::uint64_t> rowsOf(const std::wstring& path, std::size_t size) {
  tableReader_dbf reader{tableReaderOptions(path)};
  if (!reader.read()) return std::nullopt;
  EXPECT_LE(reader.count(), size);
  std::vector<std::wstring> row;
  for (std::size_t i = 0; i < reader.count(); ++i) {
    reader.getRow(i, row);
    EXPECT_EQ(row.size(), reader.fieldCount());
  }
  return reader.count();
}

std::vector<fs::path> realFiles() {
  std::vector<fs::path> files;
  const char* const folder = std::getenv("VOK_REAL_FILES");
  if (folder == nullptr) return files;
  std::error_code failure;
  for (auto entry = fs::recursive_directory_iterator(fs::path(folder) / "dbf", failure);
       !failure && entry != fs::recursive_directory_iterator(); entry.increment(failure)) {
    const std::string extension = entry->path().extension().string();
    if (extension == ".dbf" || extension == ".DBF") files.push_back(entry->path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

TEST(dbfDamage, everyCutOfASample) {
  const testSupport::temporaryFolder folder;
  const dbfBuilder builder = dbfBuilder("NAME C5, DEPTH N8.2, DAY D8, FLAG L1")
                                 .row("one|1.5|20240229|T")
                                 .row("two|2.5|20240301|F", '*')
                                 .row("six|6.5||?");
  const std::string bytes = builder.bytes();
  for (std::size_t size = 0; size <= bytes.size(); ++size) {
    const auto rows = rowsOf(folder.write(L"t.dbf", bytes.substr(0, size)), size);
    if (size < builder.headerLength()) {
      EXPECT_FALSE(rows.has_value()) << size;
      continue;
    }
    const std::size_t whole =
        std::min<std::size_t>((size - builder.headerLength()) / builder.recordLength(), 3);
    EXPECT_EQ(rows, whole < 2 ? whole : whole - 1) << size;
  }
}

TEST(dbfDamage, everyByteReplaced) {
  const testSupport::temporaryFolder folder;
  for (const unsigned version : {0x02u, 0x03u, 0x30u, 0x8Cu}) {
    const std::string bytes =
        dbfBuilder("NAME C5, DEPTH N8.2, NUMBER I4, _NullFlags 01", version).row("one|1.5").bytes();
    for (const char with : {'\0', '\xFF', '\x0D', ' ', '*', '\x1A'}) {
      for (std::size_t at = 0; at < bytes.size(); ++at) {
        std::string damaged = bytes;
        damaged[at] = with;
        rowsOf(folder.write(L"t.dbf", damaged), bytes.size());
      }
    }
  }
}

TEST(dbfRealFiles, openAndDoNotChangeWhenReadTwice) {
  const std::vector<fs::path> files = realFiles();
  if (files.empty()) GTEST_SKIP() << "VOK_REAL_FILES names no folder with files";
  for (const fs::path& file : files) {
    tableReader_dbf reader{tableReaderOptions(file.wstring())};
    ASSERT_TRUE(reader.read()) << file;
    tableReader_dbf again{tableReaderOptions(file.wstring())};
    ASSERT_TRUE(again.read());
    EXPECT_TRUE(testSupport::contentOf(reader) == testSupport::contentOf(again)) << file;
  }
}

// Known numbers of rows: live records as other programs count them.
TEST(dbfRealFiles, rowsOfKnownFiles) {
  struct row {
    const char* file;
    std::uint64_t rows;
    std::uint64_t fields;
    const char* last;  // of the first row: its last value
  };
  const char* const folder = std::getenv("VOK_REAL_FILES");
  if (realFiles().empty()) GTEST_SKIP() << "VOK_REAL_FILES names no folder with files";
  // clang-format off
  const std::vector<row> rows = {
      row{"infused+dbf/dbase_02.dbf", 9, 14, "6.000"},
      row{"infused+dbf/dbase_31.dbf", 77, 10, "F"},
      row{"infused+dbf/dbase_32.dbf", 1, 1, "Bad Meets Evil"},
      row{"infused+dbf/dbase_83.dbf", 67, 15, "T"},
      row{"infused+dbf/dbase_8b.dbf", 10, 6, "First memo\\r\\n"},
      row{"infused+dbf/polygon.dbf", 1, 0, ""},
      row{"olemb+dbfread/examples/files/people.dbf", 2, 2, "1987-03-01"},
      row{"olemb+dbfread/examples/files/invalid_value.dbf", 2, 2, "NotAYear"},
      row{"albfernandez+javadbf/test_delete.dbf", 2, 1, "john"},
      row{"albfernandez+javadbf/inventory.dbf", 12, 6, ""},
      row{"albfernandez+javadbf/bug_64_excel_dbf/wrong-exented-character-field.dbf", 16, 10, ""},
      row{"albfernandez+javadbf/bug-33-corrupted-file-sync-mode/myfileafter-corrupted.dbf", 1, 21, nullptr},
      row{"OSGeo+shapelib/shape_eg_data/multipatch.dbf", 1, 1, nullptr},
  };
  // clang-format on
  for (const row& each : rows) {
    SCOPED_TRACE(each.file);
    tableReader_dbf reader{tableReaderOptions((fs::path(folder) / "dbf" / each.file).wstring())};
    if (!fs::exists(fs::path(folder) / "dbf" / each.file)) continue;
    ASSERT_TRUE(reader.read());
    EXPECT_EQ(reader.count(), each.rows);
    EXPECT_EQ(reader.fieldCount(), each.fields);
    if (each.last != nullptr) {
      std::wstring shown;
      for (const wchar_t c : reader.value(each.fields - 1, 0))
        shown += c == L'\r' ? L"\\r" : c == L'\n' ? L"\\n" : std::wstring(1, c);
      EXPECT_EQ(testSupport::printable(shown),
                testSupport::printable(testSupport::wide(each.last)));
    }
  }
}

TEST(dbfRealFiles, cutAndDamaged) {
  const std::vector<fs::path> files = realFiles();
  if (files.empty()) GTEST_SKIP() << "VOK_REAL_FILES names no folder with files";
  const testSupport::temporaryFolder folder;
  testSupport::randomNumbers random(11);
  for (const fs::path& file : files) {
    SCOPED_TRACE(file.string());
    std::string bytes = testSupport::readFile(file.wstring()).value_or("");
    ASSERT_GT(bytes.size(), 32u);
    const std::size_t header =
        static_cast<unsigned char>(bytes[8]) + 256u * static_cast<unsigned char>(bytes[9]);
    if (bytes.size() > 40000) bytes.resize(40000);
    for (std::size_t size = 0; size < std::min<std::size_t>(header, 1200); ++size) {
      const auto rows = rowsOf(folder.write(L"t.dbf", bytes.substr(0, size)), size);
      if (bytes[0] != 2) {
        ASSERT_FALSE(rows.has_value()) << size;
      }
    }
    for (int run = 0; run < 200; ++run) {
      const std::size_t size = random.below(bytes.size());
      rowsOf(folder.write(L"t.dbf", bytes.substr(0, size)), size);
    }
    for (int run = 0; run < 200; ++run) {  // lengths and types changed, and everything else
      std::string damaged = bytes;
      for (std::size_t pokes = 1 + random.below(4); pokes > 0; --pokes)
        damaged[random.below(std::min<std::size_t>(header, bytes.size()))] =
            static_cast<char>(random.below(256));
      rowsOf(folder.write(L"t.dbf", damaged), damaged.size());
    }
  }
}

}  // namespace

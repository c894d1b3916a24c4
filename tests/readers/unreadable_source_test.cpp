// Sources that open and cannot be read, as on a disk that fails: every reader tells that its table is not whole.
// The system's own file of a process's memory is one, where there is such a thing; whole programs on disks that
// fail at any place are in tests/faults/.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/files.h"
#include "table_rw/capi/vo_table_reader_utf.h"
#include "table_rw/core/tableReader.h"
#include "tests/support/ownedReader.h"
#include "tests/support/temporaryFolder.h"

namespace {

using testSupport::openReader;
using testSupport::ownedReader;

const std::wstring unreadable = L"/proc/self/mem";

class unreadableSource : public testing::Test {
 protected:
  void SetUp() override {
    platform::binaryFile file;
    char byte = 0;
    if (!file.openForReading(unreadable) || file.read(&byte, 1) != 0 || !file.hasFailed())
      GTEST_SKIP() << "the system has no such file";
  }

  static ownedReader readerOf(std::int32_t type) {
    tableRW::tableReaderOptions options;
    options.path = unreadable;
    options.file_type = type;
    return openReader(options);
  }
};

TEST_F(unreadableSource, textReadersTellThatTheirTableIsNotWhole) {
  for (const std::int32_t type : {tableRW::fileTypeCsv, tableRW::fileTypePetrel}) {
    const ownedReader reader = readerOf(type);
    EXPECT_TRUE(reader->isWhole()) << "nothing was read yet";
    EXPECT_TRUE(reader->read()) << type;
    EXPECT_TRUE(reader->isOK()) << type;
    EXPECT_FALSE(reader->isWhole()) << type;
    EXPECT_FALSE(vo_table_reader_is_whole(reinterpret_cast<vo_table_reader*>(reader.get())));
    EXPECT_EQ(reader->count(), 0u) << type;
  }
}

TEST_F(unreadableSource, aListOfTablesIsNotWholeEither) {
  const ownedReader reader = readerOf(tableRW::fileTypePetrel);
  std::vector<std::wstring> list;
  reader->tableList(list);
  EXPECT_FALSE(reader->isWhole());
}

TEST_F(unreadableSource, readersOfRecordsRefuseIt) {
  for (const std::int32_t type : {tableRW::fileTypeDbf, tableRW::fileTypeMicromineData}) {
    const ownedReader reader = readerOf(type);
    EXPECT_FALSE(reader->read()) << type;
    EXPECT_FALSE(reader->isOK()) << type;
  }
}

TEST_F(unreadableSource, anUnknownFirstLineChoosesNoReader) {
  EXPECT_EQ(readerOf(tableRW::fileTypeAuto)->path(), L"");
}

TEST(wholeSource, aFileThatIsReadIsWhole) {
  const testSupport::temporaryFolder folder;
  tableRW::tableReaderOptions options;
  options.path = folder.write(L"t.csv", "a;b\n1;2\n3\n");
  const ownedReader reader = openReader(options);
  EXPECT_TRUE(reader->read());
  EXPECT_TRUE(reader->isWhole()) << "a rejected line is no failure of the disk";
}

}  // namespace

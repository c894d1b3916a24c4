// A sample file cut at every byte, and with every byte replaced by each of a few that matter: every read
// succeeds and gives what the slow twin gives.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "table_rw/readers/tableReader_csv.h"
#include "tests/support/csvComparison.h"
#include "tests/support/temporaryFolder.h"

namespace {

using testSupport::csvOptions;
using testSupport::differenceFromTwin;
using testSupport::temporaryFolder;

// UTF-8 with CR LF, quotes, blanks, an empty line, a line too long and one too short.
constexpr std::string_view sample =
    "WELL;FIELD;DEPTH\r\n"
    "101;\xD0\x96\xD0\xB8\xD0\xB2\xD0\xB0\xD1\x8F; 1250.5 \r\n"
    "102;\"A; B\";980\r\n"
    "\r\n"
    "103;C\r\n"
    "104;\xE2\x82\xAC;1;2\r\n"
    "105;\"D\";\"7\"";

// Every row has a value for each field, and errors are lines of the file.
void expectSound(const std::wstring& path, std::string_view bytes) {
  tableRW::tableReader_csv reader(csvOptions().forFile(path));
  ASSERT_TRUE(reader.read());
  std::vector<std::wstring> row;
  for (std::size_t i = 0; i < reader.count(); ++i) {
    reader.getRow(i, row);
    ASSERT_EQ(row.size(), reader.fieldCount());
  }
  for (std::size_t i = 0; i < reader.errorCount(); ++i) ASSERT_LE(reader.getError(i), bytes.size());
}

TEST(csvDamage, cutAtEveryByte) {
  const temporaryFolder folder;
  for (std::size_t size = 0; size <= sample.size(); ++size) {
    const std::string_view bytes = sample.substr(0, size);
    const std::wstring path = folder.write(L"cut.csv", bytes);
    expectSound(path, bytes);
    ASSERT_EQ(differenceFromTwin(path, bytes, csvOptions()), "") << "cut at " << size;
  }
}

TEST(csvDamage, everyByteReplaced) {
  const temporaryFolder folder;
  for (const char replacement : {'\0', '\x1A', '"', ';', '\r', '\n', '\xFF', '\xD0'}) {
    for (std::size_t at = 0; at < sample.size(); ++at) {
      std::string bytes(sample);
      bytes[at] = replacement;
      const std::wstring path = folder.write(L"poked.csv", bytes);
      expectSound(path, bytes);
      ASSERT_EQ(differenceFromTwin(path, bytes, csvOptions()), "")
          << "byte " << at << " is " << int{replacement};
    }
  }
}

}  // namespace

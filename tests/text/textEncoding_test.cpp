// The table of encodings, row by row.
#include "table_rw/text/textEncoding.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

using tableRW::codePageOf;
using tableRW::textEncodings;

struct Row {
  std::int32_t value;
  std::string name;
  std::string alias;
  unsigned codePage;
};

TEST(textEncoding, hasNineteenRows) {
  const Row rows[] = {
      {0,  "UTF-8",    "UTF-8",        65001},
      {1,  "UTF-16",   "UTF-16",       0    },
      {2,  "UTF-16LE", "UTF-16LE",     0    },
      {3,  "UTF-16BE", "UTF-16BE",     0    },
      {4,  "UTF-32",   "UTF-32",       0    },
      {5,  "UTF-32LE", "UTF-32BE",     0    },
      {6,  "UTF-32BE", "UTF-32LE",     0    },
      {7,  "CP1250",   "Windows-1250", 1250 },
      {8,  "CP1251",   "Windows-1251", 1251 },
      {9,  "CP1252",   "Windows-1252", 1252 },
      {10, "CP1253",   "Windows-1253", 1253 },
      {11, "CP1254",   "Windows-1254", 1254 },
      {12, "CP1255",   "Windows-1255", 1255 },
      {13, "CP1256",   "Windows-1256", 1256 },
      {14, "CP1257",   "Windows-1257", 1257 },
      {15, "CP1258",   "Windows-1258", 1258 },
      {16, "CP866",    "OEM 866",      866  },
      {17, "ASCII",    "US-ASCII",     20127},
      {18, "SYSTEM",   "ANSI",         0    },
  };
  ASSERT_EQ(tableRW::textEncodingCount, std::size(rows));
  for (const Row& row : rows) {
    EXPECT_EQ(textEncodings[row.value].name, row.name);
    EXPECT_EQ(textEncodings[row.value].alias, row.alias) << row.name;
    EXPECT_EQ(textEncodings[row.value].codePage, row.codePage) << row.name;
    EXPECT_EQ(codePageOf(row.value), row.codePage) << row.name;
  }
}

TEST(textEncoding, namedValuesAreTheirRows) {
  EXPECT_EQ(tableRW::encodingUtf8, 0);
  EXPECT_EQ(tableRW::encodingCp1251, 8);
  EXPECT_EQ(tableRW::encodingSystem, 18);
}

TEST(textEncoding, aValueOutsideTheTableIsTheSystemsPage) {
  for (const std::int32_t value :
       {-1, 19, 20, 1251, 65001, std::numeric_limits<std::int32_t>::min(),
        std::numeric_limits<std::int32_t>::max()})
    EXPECT_EQ(codePageOf(value), 0U) << value;
}

}  // namespace

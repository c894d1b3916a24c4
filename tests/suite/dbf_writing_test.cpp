// What a written table holds, byte by byte, and what stays of it when the disk does not take everything.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/files.h"
#include "suite/file_dbf/dbfLanguages.h"
#include "suite/file_dbf/dbfPaths.h"
#include "suite/file_dbf/dbfTarget.h"
#include "tests/support/openedDbf.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using testSupport::openDbf;
using testSupport::ownedDbf;
using testSupport::readFile;
using testSupport::wide;

dbfFieldDef fieldOf(const char* name, char type, unsigned char length, unsigned char decimals = 0) {
  dbfFieldDef field = {};
  std::string(name).copy(field.name, sizeof field.name - 1);
  field.type = type;
  field.length = length;
  field.decimals = decimals;
  return field;
}

ownedDbf createDbf(const std::wstring& path, const std::vector<dbfFieldDef>& fields) {
  return {
      vo_dbf_create_w(path.c_str(), static_cast<std::uint32_t>(fields.size()), 0, fields.data(), 1),
      &vo_dbf_close};
}

class dbfWriting : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(vo_options_set_system_code_page(1251), 1); }
  void TearDown() override { vo_options_set_system_code_page(0); }

  // The bytes of one stored value.
  std::string stored(const dbfFieldDef& field, const wchar_t* text) {
    ownedDbf table = createDbf(path_, {field});
    EXPECT_EQ(vo_dbf_add_records(table.get(), 1), 1);
    EXPECT_EQ(vo_dbf_set_str_w(table.get(), 0, 0, text), 1);
    table.reset();
    const std::string bytes = readFile(path_).value_or("");
    return bytes.size() < 66 ? bytes : bytes.substr(66, bytes.size() - 67);
  }

  testSupport::temporaryFolder folder_;
  std::wstring path_ = folder_.file(L"t.dbf");
};

struct row {
  const char* name;
  char type;
  unsigned char length;
  unsigned char decimals;
  const char* text;  // UTF-8
  const char* stored;
  int line = __builtin_LINE();
};

// clang-format off
const std::vector<row> rows = {
    row{"text", 'C', 6, 0, "sand", "sand  "},
    row{"text that fills its field", 'C', 4, 0, "sand", "sand"},
    row{"text that is cut", 'C', 3, 0, "sand", "san"},
    row{"empty text", 'C', 3, 0, "", "   "},
    row{"Cyrillic", 'C', 6, 0, "Ж1", "\xC6" "1    "},
    row{"Cyrillic that is cut", 'C', 2, 0, "ЖЖЖ", "\xC6\xC6"},
    row{"a character that the page lacks", 'C', 4, 0, "中1", "?1  "},
    row{"number", 'N', 8, 2, "1.5", "    1.50"},
    row{"number of all its digits", 'N', 4, 1, "99.9", "99.9"},
    row{"whole number", 'N', 4, 0, "7", "   7"},
    row{"a whole number gets its decimals", 'N', 8, 2, "7", "    7.00"},
    row{"negative", 'N', 8, 2, "-7.25", "   -7.25"},
    row{"plus", 'N', 8, 2, "+7.25", "    7.25"},
    row{"zeros in front", 'N', 8, 2, "007.5", "    7.50"},
    row{"no zero before the point", 'N', 8, 2, ".5", "    0.50"},
    row{"no room for the zero before the point", 'N', 3, 2, "0.5", ".50"},
    row{"nor for a negative one", 'N', 4, 2, "-0.5", "-.50"},
    row{"nothing behind the point", 'N', 4, 0, "7.", "   7"},
    row{"a comma", 'N', 8, 2, "1,5", "    1.50"},
    row{"an exponent", 'N', 8, 2, "1.5e3", " 1500.00"},
    row{"a negative exponent", 'N', 8, 3, "15E-2", "   0.150"},
    row{"rounded up", 'N', 8, 1, "1.25", "     1.3"},
    row{"rounded down", 'N', 8, 1, "1.249", "     1.2"},
    row{"a half, away from zero", 'N', 8, 0, "-2.5", "      -3"},
    row{"rounded to one more digit", 'N', 8, 1, "9.99", "    10.0"},
    row{"rounded to the first digit", 'N', 8, 0, "0.5", "       1"},
    row{"rounded to nothing", 'N', 8, 2, "0.004", "    0.00"},
    row{"negative zero", 'N', 8, 2, "-0", "    0.00"},
    row{"rounded to negative zero", 'N', 8, 2, "-0.001", "    0.00"},
    row{"a number of more digits than a double", 'N', 24, 2, "12345678901234567890.125", " 12345678901234567890.13"},
    row{"does not fit", 'N', 4, 0, "12345", "****"},
    row{"does not fit with its sign", 'N', 4, 0, "-1234", "****"},
    row{"does not fit with its decimals", 'N', 4, 2, "12", "****"},
    row{"does not fit after rounding", 'N', 3, 1, "9.96", "***"},
    row{"a huge exponent", 'N', 4, 0, "1e999999999999", "****"},
    row{"a huge negative exponent", 'N', 4, 1, "1e-999999999999", " 0.0"},
    row{"0 with a huge exponent", 'N', 4, 1, "0e999999999", " 0.0"},
    row{"blanks around", 'N', 8, 2, "  7.25\t", "    7.25"},
    row{"a TAB in front", 'N', 4, 0, "\t7", "   7"},
    row{"no number", 'N', 8, 2, "abc", "        "},
    row{"a digit too late", 'N', 8, 2, "7 8", "        "},
    row{"two points", 'N', 8, 2, "7.1.2", "        "},
    row{"a sign alone", 'N', 8, 2, "-", "        "},
    row{"a point alone", 'N', 8, 2, ".", "        "},
    row{"an exponent with its plus", 'N', 8, 2, "1e+2", "  100.00"},
    row{"an exponent that is no number", 'N', 8, 2, "1e2x", "        "},
    row{"zeros behind the point without one before", 'N', 8, 2, ".05", "    0.05"},
    row{"a fraction for a whole number", 'N', 4, 0, ".4", "   0"},
    row{"an exponent without digits", 'N', 8, 2, "1e", "        "},
    row{"infinity", 'N', 8, 2, "inf", "        "},
    row{"hexadecimal", 'N', 8, 2, "0x10", "        "},
    row{"empty number", 'N', 4, 1, "", "    "},
    row{"float", 'F', 8, 3, "1.5", "   1.500"},
    row{"date as digits", 'D', 8, 0, "20240229", "20240229"},
    row{"date with hyphens", 'D', 8, 0, "2024-02-29", "20240229"},
    row{"date with points", 'D', 8, 0, "29.02.2024", "20240229"},
    row{"blanks around a date", 'D', 8, 0, " 2024-02-29 ", "20240229"},
    row{"no day of the calendar", 'D', 8, 0, "2023-02-29", "        "},
    row{"the day 0", 'D', 8, 0, "2024-02-00", "        "},
    row{"the month 0", 'D', 8, 0, "2024-00-01", "        "},
    row{"the year 0", 'D', 8, 0, "0000-01-01", "        "},
    row{"a letter as the day", 'D', 8, 0, "2024-02-1x", "        "},
    row{"one hyphen", 'D', 8, 0, "2024-02/29", "        "},
    row{"one point", 'D', 8, 0, "29.02/2024", "        "},
    row{"no date", 'D', 8, 0, "yesterday", "        "},
    row{"a date of another length is one of 8", 'D', 10, 0, "2024-02-29", "20240229"},
    row{"a letter among the digits", 'D', 8, 0, "2024022Ж", "        "},
    row{"true", 'L', 1, 0, "T", "T"},
    row{"true in words", 'L', 1, 0, "true", "T"},
    row{"yes", 'L', 1, 0, " Yes ", "T"},
    row{"1", 'L', 1, 0, "1", "T"},
    row{"false", 'L', 1, 0, "F", "F"},
    row{"no", 'L', 5, 0, "n", "F"},
    row{"a sign behind the letters", 'L', 1, 0, "{", " "},
    row{"neither", 'L', 1, 0, "?", " "},
};
// clang-format on

TEST_F(dbfWriting, table) {
  for (const row& each : rows) {
    const testing::ScopedTrace trace(__FILE__, each.line, each.name);
    const std::string expected = each.stored;
    EXPECT_EQ(stored(fieldOf("A", each.type, each.length, each.decimals), wide(each.text).c_str()),
              expected);
  }
}

TEST_F(dbfWriting, aNullTextLeavesTheFieldBlank) {
  EXPECT_EQ(stored(fieldOf("A", 'C', 3), nullptr), "   ");
  EXPECT_EQ(stored(fieldOf("A", 'N', 3), nullptr), "   ");
}

TEST_F(dbfWriting, utf8IsCutAtAWholeCharacter) {
  ASSERT_EQ(vo_options_set_system_code_page(65001), 1);
  EXPECT_EQ(stored(fieldOf("A", 'C', 5), wide("ЖЖЖ").c_str()), "ЖЖ ");
  EXPECT_EQ(stored(fieldOf("A", 'C', 4), wide("a\U0001F600").c_str()), "a   ");
  EXPECT_EQ(stored(fieldOf("A", 'C', 5), wide("a\U0001F600").c_str()), "a\U0001F600");
  const wchar_t twoSurrogates[] = {L'a', 0xD83D, 0xDE00, L'\0'};
  EXPECT_EQ(stored(fieldOf("A", 'C', 4), twoSurrogates), "a   ");
  EXPECT_EQ(stored(fieldOf("A", 'C', 5), twoSurrogates), "a\U0001F600");
  EXPECT_EQ(readFile(folder_.file(L"t.cpg")), "UTF-8");
  EXPECT_EQ(stored(fieldOf("A", 'C', 4), wide("ЖЖЖ").c_str()), "ЖЖ");
}

TEST_F(dbfWriting, halfAPairInUtf8) {
  ASSERT_EQ(vo_options_set_system_code_page(65001), 1);
  EXPECT_EQ(stored(fieldOf("A", 'C', 6), L"\xD83D\xFF21"), "\uFFFD\uFF21");
  EXPECT_EQ(stored(fieldOf("A", 'C', 4),
                   L"\xD83D"
                   L"A"),
            "\uFFFD"
            "A");
}

TEST_F(dbfWriting, aNumberOfManyDigits) {
  const std::wstring digits = L"0.1" + std::wstring(2000, L'2');
  EXPECT_EQ(stored(fieldOf("A", 'N', 6, 3), digits.c_str()), " 0.122");
}

TEST_F(dbfWriting, theHeaderTellsTheCodePage) {
  struct page {
    unsigned number;
    unsigned char driver;
    const char* beside;
  };
  for (const page& each : {
           page{1251,  0xC9, nullptr   },
           page{866,   0x65, nullptr   },
           page{65001, 0x00, "UTF-8"   },
           page{20127, 0x00, "US-ASCII"},
           page{1258,  0x00, "1258"    },
           page{1252,  0x03, nullptr   }
  }) {
    ASSERT_EQ(vo_options_set_system_code_page(each.number), 1);
    createDbf(path_, {fieldOf("A", 'C', 3)}).reset();
    const std::string bytes = readFile(path_).value_or(std::string(32, '\0'));
    EXPECT_EQ(static_cast<unsigned char>(bytes[29]), each.driver) << each.number;
    const auto beside = readFile(folder_.file(L"t.cpg"));
    EXPECT_EQ(beside.value_or("none"), each.beside == nullptr ? "none" : each.beside);
  }
}

TEST_F(dbfWriting, aTableWhoseCodePageCannotBeToldIsNotCreated) {
  ASSERT_EQ(vo_options_set_system_code_page(65001), 1);
  ASSERT_TRUE(platform::createFolder(folder_.file(L"t.cpg"))) << "no file can be written there";
  EXPECT_EQ(createDbf(path_, {fieldOf("A", 'C', 3)}), nullptr);
  EXPECT_FALSE(platform::fileExists(path_));
}

TEST(dbfLanguages, driversOfTheCodePages) {
  struct page {
    unsigned number;
    unsigned char driver;
  };
  for (const page& each : {
           page{437,   0x01},
           page{850,   0x02},
           page{1252,  0x03},
           page{852,   0x64},
           page{866,   0x65},
           page{865,   0x66},
           page{861,   0x67},
           page{737,   0x6A},
           page{857,   0x6B},
           page{950,   0x78},
           page{949,   0x79},
           page{936,   0x7A},
           page{932,   0x7B},
           page{874,   0x7C},
           page{1255,  0x7D},
           page{1256,  0x7E},
           page{1250,  0xC8},
           page{1251,  0xC9},
           page{1254,  0xCA},
           page{1253,  0xCB},
           page{1257,  0xCC},
           page{1258,  0   },
           page{20127, 0   },
           page{65001, 0   }
  })
    EXPECT_EQ(fileDbf::languageDriverOf(each.number), each.driver) << each.number;
  EXPECT_EQ(fileDbf::codePageText(1258), "1258");
  EXPECT_EQ(fileDbf::codePageText(20127), "US-ASCII");
  EXPECT_EQ(fileDbf::codePageText(65001), "UTF-8");
}

TEST_F(dbfWriting, theWholeFile) {
  ownedDbf table = createDbf(path_, {fieldOf("NAME", 'C', 3), fieldOf("DEPTH", 'N', 5, 1)});
  ASSERT_EQ(vo_dbf_add_records(table.get(), 2), 1);
  EXPECT_EQ(vo_dbf_set_str_w(table.get(), 0, 0, L"one"), 1);
  EXPECT_EQ(vo_dbf_set_str_w(table.get(), 1, 1, L"2"), 1);
  EXPECT_FALSE(vo_dbf_has_failed(table.get())) << "nothing is read of it";
  table.reset();
  const std::string bytes = readFile(path_).value_or("");
  ASSERT_EQ(bytes.size(), 32u + 64 + 1 + 2 * 9 + 1);
  EXPECT_EQ(bytes[0], '\x03');
  EXPECT_GE(bytes[1], 124) << "the year since 1900";
  EXPECT_TRUE(bytes[2] >= 1 && bytes[2] <= 12 && bytes[3] >= 1 && bytes[3] <= 31);
  EXPECT_EQ(bytes.substr(4, 8), std::string("\x02\0\0\0\x61\0\x09\0", 8));
  EXPECT_EQ(bytes.substr(32, 12), std::string("NAME\0\0\0\0\0\0\0C", 12));
  EXPECT_EQ(bytes.substr(48, 2), std::string("\x03\0", 2));
  EXPECT_EQ(bytes.substr(80, 2), std::string("\x05\x01", 2));
  EXPECT_EQ(bytes.substr(96), "\x0D one" + std::string(11, ' ') + "2.0\x1A");
}

TEST_F(dbfWriting, valuesMayComeInAnyOrderAndTwice) {
  ownedDbf table = createDbf(path_, {fieldOf("A", 'C', 200), fieldOf("B", 'N', 6)});
  constexpr int records = 4000;  // several blocks
  for (int i = 0; i < records; ++i) {
    ASSERT_EQ(vo_dbf_add_records(table.get(), 1), 1);
    vo_dbf_set_str_w(table.get(), 0, i, L"first");
  }
  for (int i = records - 1; i >= 0; --i)
    EXPECT_EQ(vo_dbf_set_str_w(table.get(), 1, i, std::to_wstring(i).c_str()), 1);
  EXPECT_EQ(vo_dbf_set_str_w(table.get(), 0, 0, L"x"), 1);
  EXPECT_EQ(vo_dbf_set_str_w(table.get(), 0, records - 1, L"y"), 1);
  EXPECT_EQ(vo_dbf_set_str_w(table.get(), 0, records, L"y"), 0) << "no such record";
  EXPECT_EQ(vo_dbf_set_str_w(table.get(), 0, -1, L"y"), 0);
  EXPECT_EQ(vo_dbf_set_str_w(table.get(), 2, 0, L"y"), 0) << "no such field";
  table.reset();
  table = openDbf(path_);
  ASSERT_EQ(vo_dbf_get_nr(table.get()), records);
  for (int i = 0; i < records; ++i) {
    ASSERT_EQ(testSupport::valueOf(table.get(), 1, i), std::to_string(i));
    ASSERT_EQ(testSupport::valueOf(table.get(), 0, i), i == 0             ? "x"
                                                       : i == records - 1 ? "y"
                                                                          : "first");
  }
}

TEST_F(dbfWriting, addingRecords) {
  ownedDbf table = createDbf(path_, {});
  EXPECT_EQ(vo_dbf_add_records(table.get(), -1), 0);
  EXPECT_EQ(vo_dbf_add_records(table.get(), 0), 1);
  EXPECT_EQ(vo_dbf_add_records(table.get(), 5), 1);
  EXPECT_EQ(vo_dbf_add_records(table.get(), 2147483647), 0) << "too many in all";
  table.reset();
  EXPECT_EQ(vo_dbf_get_nr(openDbf(path_).get()), 5);
}

TEST_F(dbfWriting, whatCannotBeCreated) {
  const dbfFieldDef good = fieldOf("A", 'C', 3);
  const auto create = [&](const std::wstring& path, std::uint32_t count, int kind,
                          const dbfFieldDef* fields, unsigned char replace) {
    const ownedDbf table(vo_dbf_create_w(path.c_str(), count, kind, fields, replace),
                         &vo_dbf_close);
    return table != nullptr;
  };
  EXPECT_FALSE(create(folder_.file(L"missing/t.dbf"), 1, 0, &good, 1));
  EXPECT_FALSE(create(folder_.path(), 1, 0, &good, 1));
  EXPECT_FALSE(create(path_, 1, 1, &good, 1)) << "a kind nobody knows";
  EXPECT_FALSE(create(path_, 1, 0, nullptr, 1));
  EXPECT_EQ(vo_dbf_create_w(nullptr, 1, 0, &good, 1), nullptr);
  for (const char type : {'M', 'I', 'B', 'T', '\0', 'x'}) {
    const dbfFieldDef bad = fieldOf("A", type, 4);
    EXPECT_FALSE(create(path_, 1, 0, &bad, 1)) << type;
  }
  const std::vector<dbfFieldDef> many(2047, fieldOf("A", 'C', 1));
  EXPECT_FALSE(create(path_, 2047, 0, many.data(), 1)) << "more than a header holds";
  const std::vector<dbfFieldDef> longRecord(258, fieldOf("A", 'C', 255));
  EXPECT_FALSE(create(path_, 258, 0, longRecord.data(), 1)) << "more than a record holds";
  EXPECT_FALSE(platform::fileExists(path_));
  EXPECT_TRUE(create(folder_.file(L"new.dbf"), 1, 0, &good, 0)) << "nothing to replace";
  EXPECT_TRUE(create(path_, 2046, 0, many.data(), 1));
  EXPECT_FALSE(create(path_, 1, 0, &good, 0)) << "exists";
  EXPECT_EQ(vo_dbf_get_nf(openDbf(path_).get()), 2046u) << "and is still there";
  EXPECT_TRUE(create(path_, 1, 0, &good, 1));
}

TEST_F(dbfWriting, aHandleIsForReadingOrForWriting) {
  ownedDbf table = createDbf(path_, {fieldOf("A", 'C', 3)});
  ASSERT_EQ(vo_dbf_add_records(table.get(), 1), 1);
  EXPECT_EQ(vo_dbf_get_nf(table.get()), 0u);
  EXPECT_EQ(vo_dbf_get_nr(table.get()), 0);
  EXPECT_EQ(testSupport::valueOf(table.get(), 0, 0), "~");
  EXPECT_EQ(vo_dbf_get_record(table.get(), 0), nullptr);
  table.reset();
  table = openDbf(path_);
  EXPECT_EQ(vo_dbf_add_records(table.get(), 1), 0);
  EXPECT_EQ(vo_dbf_set_str_w(table.get(), 0, 0, L"x"), 0);
  EXPECT_EQ(testSupport::recordsOf(table.get()), "~");
}

TEST(dbfPaths, anotherExtension) {
  EXPECT_EQ(fileDbf::withExtension(L"folder/t.dbf", L".cpg"), L"folder/t.cpg");
  EXPECT_EQ(fileDbf::withExtension(L"t.a.dbf", L".cpg"), L"t.a.cpg");
  EXPECT_EQ(fileDbf::withExtension(L"t", L".cpg"), L"t.cpg");
  EXPECT_EQ(fileDbf::withExtension(L"folder.dbf/t", L".cpg"), L"folder.dbf/t.cpg");
  EXPECT_EQ(fileDbf::withExtension(L"folder.dbf\\t", L".cpg"), L"folder.dbf\\t.cpg");
}

// Records behind 2^32 bytes. Writing them takes some seconds and 4.4 GB, so it has to be asked for:
// VOK_LARGE_FILES=1.
TEST_F(dbfWriting, positionsHaveMoreThan32Bits) {
  if (std::getenv("VOK_LARGE_FILES") == nullptr) GTEST_SKIP() << "VOK_LARGE_FILES is not set";
  constexpr std::int32_t records = 4400000;
  std::vector<dbfFieldDef> fields(3, fieldOf("TEXT", 'C', 250));
  fields.push_back(fieldOf("LAST", 'C', 240));
  fields.push_back(fieldOf("NUMBER", 'N', 9));
  vo_dbf_make_correct_names(fields.data(), 5);
  ownedDbf table = createDbf(path_, fields);
  for (std::int32_t i = 0; i < records; ++i) {
    ASSERT_EQ(vo_dbf_add_records(table.get(), 1), 1);
    ASSERT_EQ(vo_dbf_set_str_w(table.get(), 4, i, std::to_wstring(i).c_str()), 1);
  }
  EXPECT_EQ(vo_dbf_set_str_w(table.get(), 0, records - 5000, L"late"), 1) << "in the file already";
  table.reset();
  platform::binaryFile file;
  ASSERT_TRUE(file.openForReading(path_));
  EXPECT_EQ(file.size(), 32u + 5 * 32 + 1 + std::uint64_t{1000} * records + 1);
  file.close();
  table = openDbf(path_);
  for (std::int32_t i = 0; i < records; ++i) {
    const vo_dbf_value* const values = vo_dbf_get_record(table.get(), i);
    ASSERT_NE(values, nullptr) << i;
    ASSERT_EQ(std::string(values[4].bytes, values[4].length), std::to_string(i));
    ASSERT_EQ(values[0].length, i == records - 5000 ? 4u : 0u) << i;
  }
  EXPECT_EQ(vo_dbf_get_record(table.get(), records), nullptr);
}

// ---- names --------------------------------------------------------------------------------------

struct namesRow {
  const char* name;
  std::vector<const char*> given;
  std::vector<const char*> expected;
  int line = __builtin_LINE();
};

// clang-format off
const std::vector<namesRow> namesRows = {
    namesRow{"right from the start", {"WELL", "Depth_1"}, {"WELL", "Depth_1"}},
    namesRow{"other characters", {"a b", "x-y", "p%"}, {"a_b", "x_y", "p_"}},
    namesRow{"signs behind the letters", {"a{b}~"}, {"a_b__"}},
    namesRow{"a digit first", {"1st"}, {"_1st"}},
    namesRow{"a digit first, and no room", {"1234567890"}, {"_123456789"}},
    namesRow{"empty", {"", "A", "  "}, {"FIELD1", "A", "FIELD3"}},
    namesRow{"blanks around", {" A "}, {"A"}},
    namesRow{"equal", {"A", "A", "A"}, {"A", "A_1", "A_2"}},
    namesRow{"equal but for their case", {"Ab", "aB"}, {"Ab", "aB_1"}},
    namesRow{"equal and long", {"ABCDEFGHIJ", "ABCDEFGHIJ"}, {"ABCDEFGHIJ", "ABCDEFGH_1"}},
    namesRow{"a name that is taken stays where it is", {"A", "A", "A_1"}, {"A", "A_2", "A_1"}},
    namesRow{"an empty name's name that is taken", {"FIELD2", ""}, {"FIELD2", "FIELD2_1"}},
    namesRow{"bytes that are no ASCII", {"\xC6x"}, {"_x"}},
};
// clang-format on

TEST(dbfNames, table) {
  for (const namesRow& each : namesRows) {
    const testing::ScopedTrace trace(__FILE__, each.line, each.name);
    std::vector<dbfFieldDef> fields;
    for (const char* const name : each.given) fields.push_back(fieldOf(name, 'C', 1));
    vo_dbf_make_correct_names(fields.data(), static_cast<std::uint32_t>(fields.size()));
    for (std::size_t i = 0; i < fields.size(); ++i) EXPECT_STREQ(fields[i].name, each.expected[i]);
  }
}

TEST(dbfNames, manyEqualNamesAreAllDistinct) {
  std::vector<dbfFieldDef> fields(2046, fieldOf("SAMENAME", 'C', 1));
  vo_dbf_make_correct_names(fields.data(), 2046);
  std::vector<std::string> names;
  for (const dbfFieldDef& field : fields) {
    names.emplace_back(field.name);
    EXPECT_LE(names.back().size(), 10u);
  }
  std::sort(names.begin(), names.end());
  EXPECT_EQ(std::unique(names.begin(), names.end()), names.end());
}

TEST(dbfNames, bytesBehindTheNameBecomeZero) {
  dbfFieldDef field = fieldOf("A", 'C', 1);
  std::fill(field.name, field.name + 11, 'x');
  vo_dbf_make_correct_names(&field, 1);
  EXPECT_EQ(std::string(field.name, 11), std::string("xxxxxxxxxx\0", 11));
  vo_dbf_make_correct_names(nullptr, 1);
}

// ---- the date -----------------------------------------------------------------------------------

// Keeps what it is given in memory, and forgets the date that was there when the table was created.
class memoryOutput final : public fileDbf::tableOutput {
 public:
  explicit memoryOutput(std::string& bytes) : bytes_(bytes) {}

  bool write(std::uint64_t at, const char* bytes, std::size_t size) override {
    const bool isHeader = bytes_.empty();
    bytes_.resize(std::max(bytes_.size(), static_cast<std::size_t>(at) + size));
    bytes_.replace(static_cast<std::size_t>(at), size, bytes, size);
    if (isHeader) bytes_.replace(1, 3, 3, '\0');
    return true;
  }

 private:
  std::string& bytes_;
};

TEST(dbfDate, isThatOfTheClose) {
  const dbfFieldDef field = fieldOf("A", 'C', 3);
  std::string bytes;
  {
    fileDbf::tableTarget target(std::make_unique<memoryOutput>(bytes),
                                *fileDbf::writableFields(&field, 1), 1251);
    ASSERT_TRUE(target.addRecords(1));
  }
  ASSERT_EQ(bytes.size(), 32u + 32 + 1 + 4 + 1);
  EXPECT_GE(bytes[1], 124) << "the year since 1900";
  EXPECT_TRUE(bytes[2] >= 1 && bytes[2] <= 12 && bytes[3] >= 1 && bytes[3] <= 31);
}

// ---- a disk that does not take everything --------------------------------------------------------

// Hands on writes to a file until the n-th, of which half arrives; that one and all later ones fail.
class failingOutput final : public fileDbf::tableOutput {
 public:
  failingOutput(const std::wstring& path, int failAt) : failAt_(failAt) {
    file_.openForWriting(path);
  }

  bool write(std::uint64_t at, const char* bytes, std::size_t size) override {
    const bool fails = ++writes_ >= failAt_;
    if (writes_ > failAt_) return false;
    return file_.seek(at) && file_.write(bytes, fails ? size / 2 : size) && !fails;
  }

 private:
  platform::binaryFile file_;
  int failAt_;
  int writes_ = 0;
};

// Takes everything but the number of records.
class outputWithoutCount final : public fileDbf::tableOutput {
 public:
  bool write(std::uint64_t at, const char*, std::size_t) override { return at != 4; }
};

TEST(dbfFailingDisk, aCountThatIsNotWrittenEndsTheWriting) {
  const dbfFieldDef field = fieldOf("A", 'C', 200);
  fileDbf::tableTarget target(std::make_unique<outputWithoutCount>(),
                              *fileDbf::writableFields(&field, 1), 1251);
  constexpr int records = 4000;  // several blocks
  int taken = 0;
  while (taken < records && target.addRecords(1)) ++taken;
  EXPECT_GT(taken, 0);
  EXPECT_LT(taken, records);
  EXPECT_FALSE(target.isSound());
}

TEST(dbfFailingDisk, whatTheFileHoldsThenAreWholeRecords) {
  const testSupport::temporaryFolder folder;
  const std::wstring path = folder.file(L"t.dbf");
  constexpr int records = 4000;  // 3 blocks
  int sound = 0;
  for (int failAt = 1; failAt < 12; ++failAt) {
    const std::array<dbfFieldDef, 2> definitions = {fieldOf("A", 'C', 150), fieldOf("B", 'N', 6)};
    {
      fileDbf::tableTarget target(std::make_unique<failingOutput>(path, failAt),
                                  *fileDbf::writableFields(definitions.data(), 2), 1251);
      for (int i = 0; i < records; ++i) {
        if (!target.addRecords(1)) break;
        target.setValue(0, i, L"text");
        target.setValue(1, i, std::to_wstring(i).c_str());
      }
      sound += target.isSound() ? 1 : 0;
      if (!target.isSound()) {
        EXPECT_FALSE(target.setValue(0, 0, L"text")) << failAt;
      }
    }
    const ownedDbf table = openDbf(path);
    if (table == nullptr) {
      EXPECT_EQ(failAt, 1) << "only a header that is cut does not open";
      continue;
    }
    const std::int32_t count = vo_dbf_get_nr(table.get());
    EXPECT_LE(count, records);
    for (std::int32_t i = 0; i < count; ++i) {
      ASSERT_EQ(testSupport::valueOf(table.get(), 0, i), "text") << failAt;
      ASSERT_EQ(testSupport::valueOf(table.get(), 1, i), std::to_string(i)) << failAt;
    }
  }
  EXPECT_GT(sound, 0) << "the last runs must not fail at all";
}

}  // namespace

// The companions of the C interface in UTF-8 and UTF-16, from their C++ side: how text crosses in both
// directions, and what lists hold. capi_utf_test.c drives the same functions as a C host does.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "table_rw/capi/handles.h"
#include "table_rw/capi/vo_table_reader_utf.h"
#include "table_rw/capi/vo_table_writer.h"
#include "tests/support/failingAllocations.h"
#include "tests/support/filledReader.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using testSupport::failingAllocation;
using testSupport::filledReader;
using testSupport::printable;
using testSupport::temporaryFolder;

using units = std::u16string;
using texts = std::vector<std::string>;

constexpr std::uint64_t allOnes = std::numeric_limits<std::uint64_t>::max();

struct listCloser {
  void operator()(vo_text_list* list) const { vo_text_list_close(list); }
};
using ownedList = std::unique_ptr<vo_text_list, listCloser>;
ownedList newList() { return ownedList(vo_text_list_create()); }

struct optionsCloser {
  void operator()(vo_table_reader_options* options) const {
    vo_table_reader_options_close(options);
  }
};
using ownedOptions = std::unique_ptr<vo_table_reader_options, optionsCloser>;

const std::uint16_t* pointerTo(const units& text) {
  return reinterpret_cast<const std::uint16_t*>(text.c_str());
}

// A path of the tests, which holds nothing beyond the BMP.
units unitsOfWide(const std::wstring& text) {
  units out;
  for (const wchar_t element : text) out.push_back(static_cast<char16_t>(element));
  return out;
}

vo_table_reader* handleOf(filledReader& reader) {
  return reinterpret_cast<vo_table_reader*>(static_cast<tableRW::tableReader*>(&reader));
}

// The texts of a list of bytes, every NUL behind one checked.
texts textsOf(const ownedList& list) {
  texts out;
  const char* const data = vo_text_list_data_u8(list.get());
  const std::uint64_t* const offsets = vo_text_list_offsets(list.get());
  for (std::uint64_t i = 0; i < vo_text_list_count(list.get()); ++i) {
    EXPECT_EQ(data[offsets[i + 1] - 1], '\0');
    out.emplace_back(data + offsets[i], offsets[i + 1] - offsets[i] - 1);
  }
  return out;
}

std::vector<units> unitsOf(const ownedList& list) {
  std::vector<units> out;
  const std::uint16_t* const data = vo_text_list_data_u16(list.get());
  const std::uint64_t* const offsets = vo_text_list_offsets(list.get());
  for (std::uint64_t i = 0; i < vo_text_list_count(list.get()); ++i) {
    EXPECT_EQ(data[offsets[i + 1] - 1], 0);
    out.emplace_back(data + offsets[i], data + offsets[i + 1] - 1);
  }
  return out;
}

// ---- how text crosses ---------------------------------------------------------------------------

struct Crossing {
  std::string name;
  std::wstring wide;
  std::string bytes;
  units code;
  int line = __builtin_LINE();
};

const std::vector<Crossing>& crossings() {
  // clang-format off
  static const std::vector<Crossing> table = {
      Crossing{"empty",                  L"",                   "",                    u""},
      Crossing{"ASCII",                  L"W-1",                "W-1",                 u"W-1"},
      Crossing{"Cyrillic",               L"\x0413\x043B",       "\xD0\x93\xD0\xBB",    u"\x0413\x043B"},
      Crossing{"three bytes",            L"\x20AC\xFFFD",       "\xE2\x82\xAC\xEF\xBF\xBD", u"\x20AC\xFFFD"},
      Crossing{"beyond the BMP",         L"a\U0001F600z",       "a\xF0\x9F\x98\x80z",  u"a\U0001F600z"},
      Crossing{"the last character",     L"\U0010FFFF",         "\xF4\x8F\xBF\xBF",    u"\U0010FFFF"},
  };
  // clang-format on
  return table;
}

TEST(capiText, comesOutInBothUnits) {
  for (const Crossing& row : crossings()) {
    filledReader reader({row.wide}, {{row.wide}});
    const ownedList list = newList();
    ASSERT_TRUE(vo_table_reader_column_u8(handleOf(reader), 0, list.get()));
    EXPECT_EQ(textsOf(list), texts{row.bytes}) << row.name << ", line " << row.line;
    ASSERT_TRUE(vo_table_reader_field_list_u8(handleOf(reader), list.get()));
    EXPECT_EQ(textsOf(list), texts{row.bytes}) << row.name << ", line " << row.line;
    ASSERT_TRUE(vo_table_reader_column_u16(handleOf(reader), 0, list.get()));
    EXPECT_EQ(unitsOf(list), std::vector<units>{row.code}) << row.name << ", line " << row.line;
    ASSERT_TRUE(vo_table_reader_field_list_u16(handleOf(reader), list.get()));
    EXPECT_EQ(unitsOf(list), std::vector<units>{row.code}) << row.name << ", line " << row.line;
  }
}

TEST(capiText, goesInFromBothUnits) {
  for (const Crossing& row : crossings()) {
    const ownedOptions options(vo_table_reader_options_create_u8(row.bytes.c_str()));
    ASSERT_NE(options, nullptr);
    EXPECT_EQ(printable(cInterface::object(options.get())->path), printable(row.wide))
        << row.name << ", line " << row.line;
    ASSERT_TRUE(vo_table_reader_options_set_table_u16(options.get(), pointerTo(row.code)));
    EXPECT_EQ(printable(cInterface::object(options.get())->table), printable(row.wide))
        << row.name << ", line " << row.line;
  }
}

struct BadText {
  std::string name;
  std::string bytes;
  int line = __builtin_LINE();
};

TEST(capiText, badUtf8IsRefusedAndChangesNothing) {
  const std::vector<BadText> table = {
      BadText{"a byte that begins nothing", "W\x80"               },
      BadText{"cut at its end",             "W\xD0"               },
      BadText{"overlong",                   "\xC0\xAF"            },
      BadText{"a lone surrogate",           "\xED\xA0\x80"        },
      BadText{"above the last code",        "\xF4\x90\x80\x80"    },
      BadText{"CP1251",                     "\xE3\xEB\xE8\xED\xE0"},
  };
  filledReader reader({L"WELL"}, {{L"W-1"}});
  for (const BadText& row : table) {
    SCOPED_TRACE(row.name + ", line " + std::to_string(row.line));
    const char* const bad = row.bytes.c_str();
    const ownedList list = newList();
    EXPECT_EQ(vo_table_reader_options_create_u8(bad), nullptr);
    EXPECT_EQ(vo_table_writer_options_create_u8(bad), nullptr);
    EXPECT_FALSE(vo_options_set_main_module_path_u8(bad));
    const ownedOptions options(vo_table_reader_options_create_u8("x"));
    EXPECT_FALSE(vo_table_reader_options_set_path_u8(options.get(), bad));
    EXPECT_FALSE(vo_table_reader_options_set_delimiter_u8(options.get(), bad));
    EXPECT_FALSE(vo_table_reader_options_set_quote_u8(options.get(), bad));
    EXPECT_FALSE(vo_table_reader_options_set_table_u8(options.get(), bad));
    const tableRW::tableReaderOptions& held = *cInterface::object(options.get());
    EXPECT_EQ(held.path, L"x");
    EXPECT_EQ(held.delimiter, L";");
    EXPECT_EQ(held.quote, L"\"");
    EXPECT_EQ(held.table, L"");
    EXPECT_FALSE(vo_table_reader_set_table_u8(handleOf(reader), bad));
    EXPECT_EQ(vo_table_reader_field_num_u8(handleOf(reader), bad), -1);

    ASSERT_TRUE(vo_table_reader_column_u8(handleOf(reader), 0, list.get()));
    EXPECT_FALSE(vo_table_reader_value_name_u8(handleOf(reader), bad, 0, list.get()));
    EXPECT_EQ(textsOf(list), texts{}) << "what was there is gone";
    const std::uint64_t column = 0;
    EXPECT_FALSE(vo_table_reader_search_u8(handleOf(reader), "WELL", &column, &bad, 1, list.get()));
    EXPECT_FALSE(vo_table_reader_search_u8(handleOf(reader), bad, nullptr, nullptr, 0, list.get()));
  }
}

TEST(capiText, loneSurrogatesStayInUtf16AndAreReplacedInUtf8) {
  const std::wstring lone = L"a\xD800z\xDC00";
  filledReader reader({L"x"}, {{lone}});
  const ownedList list = newList();
  ASSERT_TRUE(vo_table_reader_row_u8(handleOf(reader), 0, list.get()));
  EXPECT_EQ(textsOf(list), texts{"a\xEF\xBF\xBDz\xEF\xBF\xBD"});
  const units code = {u'a', 0xD800, u'z', 0xDC00};
  ASSERT_TRUE(vo_table_reader_row_u16(handleOf(reader), 0, list.get()));
  EXPECT_EQ(unitsOf(list), std::vector<units>{code});
  const ownedOptions options(vo_table_reader_options_create_u16(pointerTo(code)));
  ASSERT_NE(options, nullptr);
  EXPECT_EQ(printable(cInterface::object(options.get())->path), printable(lone));
}

TEST(capiText, whatIsNoCharacterIsReplaced) {
  if (sizeof(wchar_t) == 2) GTEST_SKIP() << "every element is UTF-16 here";
  filledReader reader({L"x"}, {{{L'a', static_cast<wchar_t>(0x110000)}}});
  const ownedList list = newList();
  ASSERT_TRUE(vo_table_reader_row_u8(handleOf(reader), 0, list.get()));
  EXPECT_EQ(textsOf(list), texts{"a\xEF\xBF\xBD"});
  ASSERT_TRUE(vo_table_reader_row_u16(handleOf(reader), 0, list.get()));
  EXPECT_EQ(unitsOf(list), std::vector<units>{u"a\xFFFD"});
}

TEST(capiText, aNulInsideAValueCounts) {
  filledReader reader({L"x"}, {{std::wstring(L"a\0b", 3)}, {L"c"}});
  const ownedList list = newList();
  ASSERT_TRUE(vo_table_reader_column_u8(handleOf(reader), 0, list.get()));
  EXPECT_EQ(textsOf(list), (texts{std::string("a\0b", 3), "c"}));
  ASSERT_TRUE(vo_table_reader_column_u16(handleOf(reader), 0, list.get()));
  EXPECT_EQ(unitsOf(list), (std::vector<units>{units(u"a\0b", 3), u"c"}));
}

TEST(capiText, aNullTextIsTheEmptyOne) {
  const ownedOptions options(vo_table_reader_options_create_u8(nullptr));
  ASSERT_NE(options, nullptr);
  EXPECT_EQ(cInterface::object(options.get())->path, L"");
  EXPECT_TRUE(vo_table_reader_options_set_delimiter_u16(options.get(), nullptr));
  EXPECT_EQ(cInterface::object(options.get())->delimiter, L"");
}

// ---- lists --------------------------------------------------------------------------------------

TEST(capiTextList, aNewListIsEmptyInBothUnits) {
  const ownedList list = newList();
  EXPECT_EQ(vo_text_list_count(list.get()), 0u);
  ASSERT_NE(vo_text_list_offsets(list.get()), nullptr);
  EXPECT_EQ(vo_text_list_offsets(list.get())[0], 0u);
  EXPECT_EQ(*vo_text_list_data_u8(list.get()), '\0');
  EXPECT_EQ(*vo_text_list_data_u16(list.get()), 0);
}

TEST(capiTextList, theOtherUnitsAreNull) {
  filledReader reader({L"x"}, {});
  const ownedList list = newList();
  ASSERT_TRUE(vo_table_reader_field_list_u8(handleOf(reader), list.get()));
  EXPECT_NE(vo_text_list_data_u8(list.get()), nullptr);
  EXPECT_EQ(vo_text_list_data_u16(list.get()), nullptr);
  ASSERT_TRUE(vo_table_reader_column_u16(handleOf(reader), 7, list.get()));
  EXPECT_EQ(vo_text_list_data_u8(list.get()), nullptr);
  ASSERT_NE(vo_text_list_data_u16(list.get()), nullptr);
  EXPECT_EQ(*vo_text_list_data_u16(list.get()), 0);
}

TEST(capiTextList, outlivesItsReader) {
  const ownedList list = newList();
  {
    filledReader reader({L"x"}, {{L"1"}, {L"2"}});
    ASSERT_TRUE(vo_table_reader_column_u8(handleOf(reader), 0, list.get()));
  }
  EXPECT_EQ(textsOf(list), (texts{"1", "2"}));
}

// ---- what the functions answer ------------------------------------------------------------------

TEST(capiCompanions, tableWithRowsOfAllLengths) {
  filledReader reader(
      {
          L"a", L"b", L"a"
  },
      {{L"1", L"2", L"3"}, {L"4"}, {L"5", L"6", L"7", L"8"}});
  reader.fieldTypes_ = {tableRW::fldText, tableRW::fldNumber};
  vo_table_reader* const handle = handleOf(reader);
  const ownedList list = newList();
  const auto column = [&](std::uint64_t index) {
    EXPECT_TRUE(vo_table_reader_column_u8(handle, index, list.get()));
    return textsOf(list);
  };
  const auto row = [&](std::uint64_t index) {
    EXPECT_TRUE(vo_table_reader_row_u8(handle, index, list.get()));
    return textsOf(list);
  };
  const auto value = [&](std::uint64_t field, std::uint64_t index) {
    EXPECT_TRUE(vo_table_reader_value_index_u8(handle, field, index, list.get()));
    return textsOf(list);
  };
  const auto named = [&](const char* name, std::uint64_t index) {
    EXPECT_TRUE(vo_table_reader_value_name_u8(handle, name, index, list.get()));
    return textsOf(list);
  };
  EXPECT_EQ(column(0), (texts{"1", "4", "5"}));
  EXPECT_EQ(column(1), (texts{"2", "", "6"}));
  EXPECT_EQ(column(3), texts{}) << "a value without a field is no column";
  EXPECT_EQ(column(allOnes), texts{});
  EXPECT_EQ(row(1), texts{"4"});
  EXPECT_EQ(row(2), (texts{"5", "6", "7", "8"}));
  EXPECT_EQ(row(3), texts{});
  EXPECT_EQ(value(2, 2), texts{"7"});
  EXPECT_EQ(value(3, 2), texts{""}) << "as vo_table_reader_value_index";
  EXPECT_EQ(value(1, 1), texts{""});
  EXPECT_EQ(value(0, allOnes), texts{""});
  EXPECT_EQ(named("a", 0), texts{"1"});
  EXPECT_EQ(named("b", 2), texts{"6"});
  EXPECT_EQ(named("B", 2), texts{""});
  EXPECT_EQ(vo_table_reader_field_num_u8(handle, "b"), 1);
  EXPECT_EQ(vo_table_reader_field_num_u16(handle, pointerTo(u"a")), 0);
  EXPECT_EQ(vo_table_reader_field_num_u8(handle, nullptr), -1);
  EXPECT_EQ(vo_table_reader_field_type(handle, 0), 0);
  EXPECT_EQ(vo_table_reader_field_type(handle, 1), 1);
  EXPECT_EQ(vo_table_reader_field_type(handle, 2), 0) << "a field without a type";
  EXPECT_EQ(vo_table_reader_field_type(handle, 3), -1);
}

TEST(capiCompanions, search) {
  filledReader reader(
      {
          L"WELL", L"AREA", L"ROCK"
  },
      {
          {L"1", L"\x0421", L"clay"},
          {L"2", L"N", L"clay"},
          {L"3", L"\x0421", L"clay"},
          {L"4", L"\x0421", L"sand"},
      });
  vo_table_reader* const handle = handleOf(reader);
  const ownedList list = newList();
  const std::uint64_t columns[] = {1, 2};
  const char* const values[] = {"\xD0\xA1", "clay"};
  const units area = u"\x0421";
  const units rock = u"sand";
  const std::uint16_t* const wideValues[] = {pointerTo(area), pointerTo(rock)};
  const auto found = [&](const char* result, std::uint64_t count) {
    EXPECT_TRUE(vo_table_reader_search_u8(handle, result, columns, values, count, list.get()));
    return textsOf(list);
  };
  EXPECT_EQ(found("WELL", 2), (texts{"1", "3"}));
  EXPECT_EQ(found("WELL", 1), (texts{"1", "3", "4"}));
  EXPECT_EQ(found("WELL", 0), (texts{"1", "2", "3", "4"}));
  EXPECT_EQ(found("NONE", 2), texts{});
  ASSERT_TRUE(
      vo_table_reader_search_u16(handle, pointerTo(u"WELL"), columns, wideValues, 2, list.get()));
  EXPECT_EQ(unitsOf(list), std::vector<units>{u"4"});
  const std::uint64_t beyond = 3;
  EXPECT_TRUE(vo_table_reader_search_u8(handle, "WELL", &beyond, values, 1, list.get()));
  EXPECT_EQ(textsOf(list), texts{});
  EXPECT_FALSE(vo_table_reader_search_u8(handle, "WELL", nullptr, values, 1, list.get()));
  EXPECT_FALSE(vo_table_reader_search_u8(handle, "WELL", columns, nullptr, 1, list.get()));
  const units name = u"WELL";
  const std::uint16_t* const well = pointerTo(name);
  EXPECT_FALSE(vo_table_reader_search_u16(handle, well, nullptr, wideValues, 1, list.get()));
  EXPECT_FALSE(vo_table_reader_search_u16(handle, well, columns, nullptr, 1, list.get()));
  ASSERT_TRUE(vo_table_reader_search_u16(handle, well, nullptr, nullptr, 0, list.get()));
  EXPECT_EQ(unitsOf(list), (std::vector<units>{u"1", u"2", u"3", u"4"}));
  const char* const broken[] = {"\xFF"};
  EXPECT_FALSE(vo_table_reader_search_u8(handle, "\xFF", columns, values, 1, list.get()));
  EXPECT_FALSE(vo_table_reader_search_u8(handle, "WELL", columns, broken, 1, list.get()));
  EXPECT_EQ(textsOf(list), texts{});
  ASSERT_TRUE(vo_table_reader_value_name_u16(handle, pointerTo(u"NONE"), 0, list.get()));
  EXPECT_EQ(unitsOf(list), std::vector<units>{u""});
}

TEST(capiCompanions, rejectedLines) {
  temporaryFolder folder;
  const std::wstring path = folder.write(L"t.csv", "a;b\n1;2\nfirst\n3;4\n5;6;\xD0\xB3\n");
  const ownedOptions options(vo_table_reader_options_create(path.c_str()));
  vo_table_reader* const reader = vo_table_reader_open(options.get());
  ASSERT_TRUE(vo_table_reader_read(reader));
  const ownedList list = newList();
  ASSERT_TRUE(vo_table_reader_rejected_u8(reader, allOnes, list.get()));
  EXPECT_EQ(textsOf(list), (texts{"first", "5;6;\xD0\xB3"}));
  ASSERT_TRUE(vo_table_reader_rejected_u16(reader, 1, list.get()));
  EXPECT_EQ(unitsOf(list), std::vector<units>{u"first"});
  ASSERT_TRUE(vo_table_reader_rejected_u8(reader, 0, list.get()));
  EXPECT_EQ(textsOf(list), texts{});
  ASSERT_TRUE(vo_table_reader_rejected_u16(reader, 0, list.get()));
  EXPECT_EQ(unitsOf(list), std::vector<units>{});
  vo_table_reader_close(reader);
  filledReader without({L"a"}, {});
  EXPECT_FALSE(vo_table_reader_rejected_u8(handleOf(without), 5, list.get()));
}

TEST(capiCompanions, everyFileType) {
  const ownedOptions options(vo_table_reader_options_create_u8("x"));
  for (const std::int32_t type : {1, 9, 6, 7, 8, 0, 5}) {
    EXPECT_TRUE(vo_table_reader_options_set_any_file_type(options.get(), type));
    EXPECT_EQ(cInterface::object(options.get())->file_type, type);
    for (const std::int32_t refused : {10, -1, 256})
      EXPECT_FALSE(vo_table_reader_options_set_any_file_type(options.get(), refused));
    EXPECT_EQ(cInterface::object(options.get())->file_type, type);
  }
}

TEST(capiCompanions, delimitersAndQuotesMayBeLonger) {
  const ownedOptions options(vo_table_reader_options_create_u8("x"));
  EXPECT_TRUE(vo_table_reader_options_set_delimiter_u8(options.get(), "::"));
  EXPECT_TRUE(vo_table_reader_options_set_quote_u16(options.get(), pointerTo(u"\x00AB")));
  EXPECT_EQ(cInterface::object(options.get())->delimiter, L"::");
  EXPECT_EQ(cInterface::object(options.get())->quote, L"\x00AB");
  EXPECT_TRUE(vo_table_reader_options_set_quote_u8(options.get(), ""));
  EXPECT_EQ(cInterface::object(options.get())->quote, L"");
}

class refusingReader : public filledReader {
 public:
  void setTable(std::wstring) override { throw std::runtime_error("a reader's own affair"); }
  void tableList(std::vector<std::wstring>& list) override {
    list.push_back(L"one");
    throw std::runtime_error("a reader's own affair");
  }
};

TEST(capiCompanions, noExceptionOfAReaderGetsThrough) {
  refusingReader reader;
  const ownedList list = newList();
  EXPECT_FALSE(vo_table_reader_set_table_u8(handleOf(reader), "x"));
  EXPECT_FALSE(vo_table_reader_table_list_u8(handleOf(reader), list.get()));
  EXPECT_EQ(textsOf(list), texts{});
}

TEST(capiCompanions, noMemoryIsFalseAndAnEmptyList) {
  filledReader reader({L"x"}, {});
  for (int i = 0; i < 100; ++i) reader.addRow({L"a value that is longer than a short string"});
  int failures = 0;
  for (std::size_t number = 0;; ++number) {
    const ownedList list = newList();
    bool answer = false;
    bool failed = false;
    {
      const failingAllocation sweep(number);
      answer = vo_table_reader_column_u16(handleOf(reader), 0, list.get());
      failed = sweep.hasFailed();
    }
    ASSERT_EQ(answer, !failed) << number;
    ASSERT_EQ(vo_text_list_count(list.get()), failed ? 0u : 100u) << number;
    if (!failed) break;
    ++failures;
  }
  EXPECT_GT(failures, 2);
  const failingAllocation first(0);
  EXPECT_EQ(vo_text_list_create(), nullptr);
}

// ---- writing ------------------------------------------------------------------------------------

TEST(capiWriter, writesInBothUnits) {
  temporaryFolder folder;
  vo_table_writer_options* const options =
      vo_table_writer_options_create_u16(pointerTo(unitsOfWide(folder.file(L"out.csv"))));
  ASSERT_NE(options, nullptr);
  EXPECT_TRUE(vo_table_writer_options_set_delimiter_u8(options, "|"));
  EXPECT_TRUE(vo_table_writer_options_add_field_u8(options, "\xD0\x93", 0, 0, 0));
  EXPECT_TRUE(vo_table_writer_options_add_field_u16(options, pointerTo(u"X"), 1, 10, 2));
  EXPECT_FALSE(vo_table_writer_options_add_field_u8(options, "bad", 2, 0, 0));
  EXPECT_FALSE(vo_table_writer_options_add_field_u8(options, "bad", 0, -1, 0));
  EXPECT_FALSE(vo_table_writer_options_add_field_u8(options, "bad", 0, 0, 256));
  EXPECT_FALSE(vo_table_writer_options_add_field_u8(options, "bad", 0, 0, -1));
  EXPECT_FALSE(vo_table_writer_options_add_field_u8(options, "\xFF", 0, 0, 0));
  vo_table_writer* const writer = vo_table_writer_open(options);
  vo_table_writer_options_close(options);
  const char* const first[] = {"\xD0\xB3", nullptr};
  const units letter = u"\x0434";
  const units number = u"2";
  const std::uint16_t* const second[] = {pointerTo(letter), pointerTo(number)};
  const char* const bad[] = {"ok", "\xFF"};
  EXPECT_TRUE(vo_table_writer_add_row_u8(writer, first, 2));
  EXPECT_FALSE(vo_table_writer_add_row_u8(writer, bad, 2)) << "nothing of it is written";
  EXPECT_TRUE(vo_table_writer_add_row_u16(writer, second, 2));
  EXPECT_FALSE(vo_table_writer_add_row_u8(writer, nullptr, 2));
  EXPECT_FALSE(vo_table_writer_add_row_u8(writer, nullptr, 0)) << "an empty row";
  vo_table_writer_close(writer);
  EXPECT_EQ(testSupport::readFile(folder.file(L"out.csv")), "\xC3|X\r\n\xE3|\r\n\xE4|2\r\n");
}

TEST(capiWriter, fieldsOfDbfKeepTheirTypes) {
  temporaryFolder folder;
  const std::wstring path = folder.file(L"out.dbf");
  vo_table_writer_options* const options =
      vo_table_writer_options_create_u16(pointerTo(unitsOfWide(path)));
  vo_table_writer_options_add_field_u8(options, "WELL", 0, 5, 0);
  vo_table_writer_options_add_field_u8(options, "DEPTH", 1, 8, 2);
  vo_table_writer* const writer = vo_table_writer_open(options);
  vo_table_writer_options_close(options);
  const char* const row[] = {"W-1", "12.345"};
  EXPECT_TRUE(vo_table_writer_add_row_u8(writer, row, 2));
  vo_table_writer_close(writer);
  tableRW::tableReader* const reader =
      tableRW::tableReader::open(tableRW::tableReaderOptions(path));
  EXPECT_TRUE(reader->read());
  EXPECT_EQ(testSupport::describe(*reader), "fields WELL|DEPTH:number  rows W-1|12.35  ok");
  tableRW::tableReader::close(reader);
}

TEST(capiWriter, nothingOpensWithoutAName) {
  vo_table_writer_options* const options = vo_table_writer_options_create_u8("");
  EXPECT_EQ(vo_table_writer_open(options), nullptr);
  vo_table_writer_options_close(options);
}

}  // namespace

// The C interface from its C++ side: what each function hands to the reader behind its handle, and
// what it feeds to string adapters of all kinds. capi_test.c drives the same functions as a C host
// does.
//
// A handle of options is the address of a tableReaderOptions and a handle of a reader that of a
// tableReader, so a test can look behind the one and put a reader of its own behind the other.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/vok_basic.h"
#include "table_rw/capi/vo_table_reader.h"
#include "table_rw/core/tableReader.h"
#include "table_rw/readers/tableReader_csv.h"
#include "tests/support/filledReader.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using tableRW::tableReader;
using tableRW::tableReaderOptions;
using testSupport::describe;
using testSupport::printable;
using testSupport::temporaryFolder;
using testSupport::textRow;

constexpr std::uint64_t allOnes = std::numeric_limits<std::uint64_t>::max();

struct optionsCloser {
  void operator()(vo_table_reader_options* options) const {
    vo_table_reader_options_close(options);
  }
};
using ownedOptions = std::unique_ptr<vo_table_reader_options, optionsCloser>;

struct readerCloser {
  void operator()(vo_table_reader* reader) const { vo_table_reader_close(reader); }
};
using ownedReader = std::unique_ptr<vo_table_reader, readerCloser>;

ownedOptions optionsFor(const std::wstring& path) {
  return ownedOptions(vo_table_reader_options_create(path.c_str()));
}

ownedReader open(const std::wstring& path) {
  return ownedReader(vo_table_reader_open(optionsFor(path).get()));
}

tableReaderOptions& behind(const ownedOptions& options) {
  return *reinterpret_cast<tableReaderOptions*>(options.get());
}

tableReader& behind(const ownedReader& reader) {
  return *reinterpret_cast<tableReader*>(reader.get());
}

vo_table_reader* handleOf(tableReader& reader) {
  return reinterpret_cast<vo_table_reader*>(&reader);
}

// Collects everything that it is fed.
class collector {
 public:
  collector() : adapter_(vo_string_adp_create_callback(&collector::append, &values_)) {}
  collector(const collector&) = delete;
  collector& operator=(const collector&) = delete;
  ~collector() { vo_string_adp_destroy(adapter_); }

  vo_string_adp* adapter() const { return adapter_; }
  const textRow& values() const { return values_; }

 private:
  static void append(void* user, const wchar_t* text) {
    static_cast<textRow*>(user)->push_back(text);
  }

  textRow values_;
  vo_string_adp* adapter_;
};

// What a function with an adapter as its last argument feeds.
template <class Function, class... Arguments>
textRow fedBy(Function function, Arguments... arguments) {
  const collector fed;
  function(arguments..., fed.adapter());
  return fed.values();
}

// ---- options ------------------------------------------------------------------------------------

TEST(capiOptions, everythingButThePathIsAtItsDefault) {
  const ownedOptions options = optionsFor(L"dir/\x0441.csv");
  const tableReaderOptions defaults;
  EXPECT_EQ(behind(options).path, L"dir/\x0441.csv");
  EXPECT_EQ(behind(options).header_position, defaults.header_position);
  EXPECT_EQ(behind(options).data_position, defaults.data_position);
  EXPECT_EQ(behind(options).direction, defaults.direction);
  EXPECT_EQ(behind(options).file_type, defaults.file_type);
  EXPECT_EQ(behind(options).delimiter, defaults.delimiter);
  EXPECT_EQ(behind(options).quote, L"\"");
  EXPECT_EQ(behind(options).encoding, defaults.encoding);
  EXPECT_EQ(behind(options).table, defaults.table);
}

TEST(capiOptions, closeAcceptsNull) { vo_table_reader_options_close(nullptr); }

TEST(capiOptions, textsAreCopied) {
  wchar_t text[] = L"first";
  const ownedOptions options = optionsFor(text);
  vo_table_reader_options_set_table(options.get(), text);
  text[0] = L'X';
  EXPECT_EQ(behind(options).path, L"first");
  EXPECT_EQ(behind(options).table, L"first");
  vo_table_reader_options_set_path(options.get(), text);
  text[0] = L'Y';
  EXPECT_EQ(behind(options).path, L"Xirst");
  vo_table_reader_options_set_table(options.get(), L"");
  vo_table_reader_options_set_path(options.get(), L"");
  EXPECT_EQ(behind(options).path, L"");
  EXPECT_EQ(behind(options).table, L"");
}

TEST(capiOptions, positionsAreNotChecked) {
  const ownedOptions options = optionsFor(L"x");
  for (const std::int32_t position : {5, 0, -1, -2, std::numeric_limits<std::int32_t>::max(),
                                      std::numeric_limits<std::int32_t>::min()}) {
    vo_table_reader_options_set_header_position(options.get(), position);
    EXPECT_EQ(behind(options).header_position, position);
  }
  for (const std::uint64_t position :
       {std::uint64_t{3}, std::uint64_t{0}, std::uint64_t{1} << 40, allOnes}) {
    vo_table_reader_options_set_data_position(options.get(), position);
    EXPECT_EQ(behind(options).data_position, position);
  }
}

TEST(capiOptions, encodingsAreNotChecked) {
  const ownedOptions options = optionsFor(L"x");
  for (const std::int32_t encoding : {0, 8, 18, 19, -1, 1251}) {
    vo_table_reader_options_set_encoding(options.get(), encoding);
    EXPECT_EQ(behind(options).encoding, encoding);
  }
}

TEST(capiOptions, twoDirections) {
  const ownedOptions options = optionsFor(L"x");
  for (const std::int32_t direction : {1, 0, 1}) {
    vo_table_reader_options_set_direction(options.get(), direction);
    EXPECT_EQ(behind(options).direction, direction);
    for (const std::int32_t ignored : {2, -1, 256, 65536}) {
      vo_table_reader_options_set_direction(options.get(), ignored);
      EXPECT_EQ(behind(options).direction, direction) << ignored;
    }
  }
}

TEST(capiOptions, sixFileTypes) {
  const ownedOptions options = optionsFor(L"x");
  for (const std::int32_t type : {1, 2, 3, 4, 5, 0}) {
    vo_table_reader_options_set_file_type(options.get(), type);
    EXPECT_EQ(behind(options).file_type, type);
    for (const std::int32_t ignored : {6, 7, 8, 9, 10, 12, -1, 256, 65537}) {
      vo_table_reader_options_set_file_type(options.get(), ignored);
      EXPECT_EQ(behind(options).file_type, type) << ignored;
    }
  }
}

TEST(capiOptions, theDelimiterIsOneCharacter) {
  const ownedOptions options = optionsFor(L"x");
  for (const wchar_t delimiter : {L'\t', L',', L' ', L'\x0416', L'\xFFFD'}) {
    vo_table_reader_options_set_delimiter(options.get(), delimiter);
    EXPECT_EQ(behind(options).delimiter, std::wstring(1, delimiter));
  }
  vo_table_reader_options_set_delimiter(options.get(), L'\0');
  EXPECT_EQ(behind(options).delimiter, L"");
  EXPECT_EQ(behind(options).quote, L"\"") << "no function reaches the quote";
}

// ---- opening and closing ------------------------------------------------------------------------

TEST(capiReader, theOptionsStayTheCallers) {
  temporaryFolder folder;
  const ownedOptions options = optionsFor(folder.write(L"t.csv", "a;b\n1;2\n3;4\n"));
  vo_table_reader_options_set_header_position(options.get(), 1);
  vo_table_reader_options_set_data_position(options.get(), 0);
  const ownedReader first(vo_table_reader_open(options.get()));
  EXPECT_EQ(behind(options).data_position, 0u) << "the reader's copy moves, not the caller's";

  vo_table_reader_options_set_header_position(options.get(), 0);
  const ownedReader second(vo_table_reader_open(options.get()));
  EXPECT_TRUE(vo_table_reader_read(first.get()));
  EXPECT_TRUE(vo_table_reader_read(second.get()));
  EXPECT_EQ(describe(behind(first)), "fields 1|2  rows 3|4  ok");
  EXPECT_EQ(describe(behind(second)), "fields a|b  rows 1|2 / 3|4  ok");
}

TEST(capiReader, theFactoryChooses) {
  const ownedReader csv = open(L"gone.CSV");
  EXPECT_NE(dynamic_cast<tableRW::tableReader_csv*>(&behind(csv)), nullptr);
  EXPECT_EQ(behind(csv).path(), L"gone.CSV");

  const ownedReader dummy = open(L"gone.unknown");
  ASSERT_NE(dummy, nullptr);
  EXPECT_FALSE(vo_table_reader_read(dummy.get()));
  EXPECT_FALSE(vo_table_reader_is_ok(dummy.get()));
}

TEST(capiReader, theTableOfTheOptionsArrives) {
  const ownedOptions options = optionsFor(L"gone.csv");
  vo_table_reader_options_set_table(options.get(), L"Sheet1");
  const ownedReader reader(vo_table_reader_open(options.get()));
  tableReaderOptions wanted(L"gone.csv");
  EXPECT_FALSE(behind(reader).isSameFile(wanted));
  wanted.table = L"Sheet1";
  EXPECT_TRUE(behind(reader).isSameFile(wanted));
}

TEST(capiReader, closeAcceptsNull) { vo_table_reader_close(nullptr); }

// ---- what reaches the reader --------------------------------------------------------------------

// A reader with a table of its own that notes how it was called.
class probe : public testSupport::filledReader {
 public:
  explicit probe(textRow& calls) : calls_(&calls) {}
  probe(const probe&) = default;
  probe& operator=(const probe&) = delete;
  ~probe() override { calls_->push_back(L"destroyed"); }

  bool readOnlyHeaders() override { return note(L"headers"); }
  bool readDemo(int n) override { return note(L"demo " + std::to_wstring(n)); }
  bool read() override { return note(L"read"); }
  void setTable(std::wstring name) override { note(L"table " + name); }
  void tableList(std::vector<std::wstring>& list) override {
    note(L"list of " + std::to_wstring(list.size()));
    list.push_back(L"one");
    list.push_back(L"");
    list.push_back(L"\x0442\x0440\x0438");
  }

  void answer(bool value) { answer_ = value; }
  void refuse() { refuses_ = true; }

  void fill() {
    ok_ = true;
    fieldNames_ = {L"a", L"b", L"a"};
    fieldTypes_.assign(3, tableRW::fldText);
    addRow({L"1", L"2", L"3"});
    addRow({L"4", L"5", L"6"});
    errors_ = {3, std::uint64_t{1} << 40};
  }

 private:
  bool note(const std::wstring& call) {
    calls_->push_back(call);
    if (refuses_) throw std::out_of_range("a reader's own affair");
    return answer_;
  }

  textRow* calls_;
  bool answer_ = true;
  bool refuses_ = false;
};

TEST(capiReader, readsAreHandedOn) {
  textRow calls;
  probe object(calls);
  vo_table_reader* reader = handleOf(object);
  for (const bool answer : {true, false}) {
    object.answer(answer);
    EXPECT_EQ(vo_table_reader_read_only_headers(reader), answer);
    EXPECT_EQ(vo_table_reader_read_demo(reader, 10), answer);
    EXPECT_EQ(vo_table_reader_read_demo(reader, -1), answer);
    EXPECT_EQ(vo_table_reader_read(reader), answer);
  }
  const std::string once = "headers|demo 10|demo -1|read";
  EXPECT_EQ(describe(calls), once + "|" + once);
}

TEST(capiReader, noExceptionOfAReaderGetsThrough) {
  textRow calls;
  probe object(calls);
  object.refuse();
  vo_table_reader* reader = handleOf(object);
  EXPECT_FALSE(vo_table_reader_read_only_headers(reader));
  EXPECT_FALSE(vo_table_reader_read_demo(reader, 10));
  EXPECT_FALSE(vo_table_reader_read(reader));
  EXPECT_EQ(fedBy(vo_table_reader_table_list, reader), textRow{});
  EXPECT_EQ(describe(calls), "headers|demo 10|read|list of 0");
}

TEST(capiReader, setTableIsHandedOn) {
  textRow calls;
  probe object(calls);
  vo_table_reader_set_table(handleOf(object), L"Sheet 1");
  vo_table_reader_set_table(handleOf(object), L"");
  EXPECT_EQ(describe(calls), "table Sheet 1|table ");
}

TEST(capiReader, tableListFillsAnEmptyListAndFeedsIt) {
  textRow calls;
  probe object(calls);
  const textRow wanted = {L"one", L"", L"\x0442\x0440\x0438"};
  EXPECT_EQ(fedBy(vo_table_reader_table_list, handleOf(object)), wanted);
  EXPECT_EQ(fedBy(vo_table_reader_table_list, handleOf(object)), wanted);
  EXPECT_EQ(describe(calls), "list of 0|list of 0");
}

TEST(capiReader, closeDestroysTheReader) {
  textRow calls;
  vo_table_reader_close(handleOf(*new probe(calls)));
  EXPECT_EQ(describe(calls), "destroyed");
}

// ---- results ------------------------------------------------------------------------------------

TEST(capiReader, countsAndNames) {
  textRow calls;
  probe object(calls);
  vo_table_reader* reader = handleOf(object);
  EXPECT_EQ(vo_table_reader_field_count(reader), 0u);
  EXPECT_EQ(vo_table_reader_count(reader), 0u);
  EXPECT_EQ(vo_table_reader_error_count(reader), 0u);
  EXPECT_EQ(vo_table_reader_error_string(reader, 0), allOnes);
  EXPECT_FALSE(vo_table_reader_is_ok(reader));
  EXPECT_EQ(fedBy(vo_table_reader_field_list, reader), textRow{});

  object.fill();
  EXPECT_EQ(vo_table_reader_field_count(reader), 3u);
  EXPECT_EQ(vo_table_reader_count(reader), 2u);
  EXPECT_TRUE(vo_table_reader_is_ok(reader));
  EXPECT_EQ(fedBy(vo_table_reader_field_list, reader), (textRow{L"a", L"b", L"a"}));
  EXPECT_EQ(vo_table_reader_field_num(reader, L"a"), 0) << "the first of the name";
  EXPECT_EQ(vo_table_reader_field_num(reader, L"b"), 1);
  EXPECT_EQ(vo_table_reader_field_num(reader, L"B"), -1);
  EXPECT_EQ(vo_table_reader_field_num(reader, L" b"), -1);
  EXPECT_EQ(vo_table_reader_field_num(reader, L""), -1);
}

TEST(capiReader, errors) {
  textRow calls;
  probe object(calls);
  object.fill();
  vo_table_reader* reader = handleOf(object);
  ASSERT_EQ(vo_table_reader_error_count(reader), 2u);
  EXPECT_EQ(vo_table_reader_error_string(reader, 0), 3u);
  EXPECT_EQ(vo_table_reader_error_string(reader, 1), std::uint64_t{1} << 40);
  EXPECT_EQ(vo_table_reader_error_string(reader, 2), 18446744073709551615U);
  EXPECT_EQ(vo_table_reader_error_string(reader, allOnes), allOnes);
}

TEST(capiReader, oneValueIsAlwaysOneFeed) {
  textRow calls;
  probe object(calls);
  object.fill();
  vo_table_reader* reader = handleOf(object);
  const auto byIndex = [&](std::uint64_t index, std::uint64_t row) {
    return fedBy(vo_table_reader_value_index, reader, index, row);
  };
  const auto byName = [&](const wchar_t* name, std::uint64_t row) {
    return fedBy(vo_table_reader_value_name, reader, name, row);
  };
  const textRow nothing = {L""};
  EXPECT_EQ(byIndex(1, 0), textRow{L"2"});
  EXPECT_EQ(byIndex(2, 1), textRow{L"6"});
  EXPECT_EQ(byIndex(3, 0), nothing);
  EXPECT_EQ(byIndex(0, 2), nothing);
  EXPECT_EQ(byIndex(allOnes, 0), nothing);
  EXPECT_EQ(byIndex(0, allOnes), nothing);
  EXPECT_EQ(byIndex(std::uint64_t{1} << 32, 0), nothing) << "all 64 bits count";
  EXPECT_EQ(byIndex(0, std::uint64_t{1} << 32), nothing);
  EXPECT_EQ(byName(L"a", 1), textRow{L"4"});
  EXPECT_EQ(byName(L"b", 0), textRow{L"2"});
  EXPECT_EQ(byName(L"b", 2), nothing);
  EXPECT_EQ(byName(L"B", 0), nothing);
  EXPECT_EQ(byName(L"", 0), nothing);
}

TEST(capiReader, aRowIsAFeedForEachValue) {
  textRow calls;
  probe object(calls);
  object.fill();
  vo_table_reader* reader = handleOf(object);
  EXPECT_EQ(fedBy(vo_table_reader_row, reader, std::uint64_t{0}), (textRow{L"1", L"2", L"3"}));
  EXPECT_EQ(fedBy(vo_table_reader_row, reader, std::uint64_t{1}), (textRow{L"4", L"5", L"6"}));
  EXPECT_EQ(fedBy(vo_table_reader_row, reader, std::uint64_t{2}), textRow{});
  EXPECT_EQ(fedBy(vo_table_reader_row, reader, allOnes), textRow{});
}

// ---- adapters that keep one string --------------------------------------------------------------

TEST(capiReader, aStandardStringKeepsTheLastFeed) {
  textRow calls;
  probe object(calls);
  object.fill();
  vo_table_reader* reader = handleOf(object);
  std::wstring wide = L"before";
  Tvo_std_wstring_adapter wideTarget(wide);
  vo_string_adp* adapter = vo_string_adp_create(&wideTarget);
  vo_table_reader_value_name(reader, L"b", 1, adapter);
  EXPECT_EQ(wide, L"5");
  vo_table_reader_row(reader, 0, adapter);
  EXPECT_EQ(wide, L"3");
  vo_table_reader_row(reader, 2, adapter);
  EXPECT_EQ(wide, L"3") << "nothing was fed";
  vo_table_reader_value_index(reader, 0, 2, adapter);
  EXPECT_EQ(wide, L"");
  vo_string_adp_destroy(adapter);

  std::string narrow = "before";
  Tvo_std_string_adapter narrowTarget(narrow);
  adapter = vo_string_adp_create(&narrowTarget);
  vo_table_reader_value_index(reader, 2, 0, adapter);
  EXPECT_EQ(narrow, "3");
  vo_table_reader_value_name(reader, L"unknown", 0, adapter);
  EXPECT_EQ(narrow, "");
  vo_string_adp_destroy(adapter);
}

// ---- one request from beginning to end ----------------------------------------------------------

TEST(capiReader, aTypicalRequest) {
  temporaryFolder folder;
  const std::wstring path =
      folder.write(L"wells.csv", "WELL;ROCK\r\nW-1; \xE3\xEB\xE8\xED\xE0 \r\nW-2\r\n\r\nW-3;\r\n");
  vo_table_reader_options* options = vo_table_reader_options_create(path.c_str());
  vo_table_reader_options_set_header_position(options, 0);
  vo_table_reader_options_set_encoding(options, 8);
  vo_table_reader* reader = vo_table_reader_open(options);
  EXPECT_TRUE(vo_table_reader_read(reader));
  EXPECT_EQ(vo_table_reader_field_count(reader), 2u);
  EXPECT_EQ(vo_table_reader_count(reader), 2u);
  EXPECT_EQ(fedBy(vo_table_reader_value_name, reader, L"ROCK", std::uint64_t{0}),
            textRow{L"\x0433\x043B\x0438\x043D\x0430"});
  EXPECT_EQ(fedBy(vo_table_reader_value_name, reader, L"ROCK", std::uint64_t{1}), textRow{L""});
  EXPECT_EQ(vo_table_reader_error_count(reader), 1u);
  EXPECT_EQ(vo_table_reader_error_string(reader, 0), 2u);
  EXPECT_EQ(fedBy(vo_table_reader_table_list, reader), textRow{L"csv"});
  vo_table_reader_close(reader);
  vo_table_reader_options_close(options);
}

}  // namespace

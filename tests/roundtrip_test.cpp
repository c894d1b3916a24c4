// The round-trip matrix: every table of one list, written by every writer, read back by every
// reader that can. A format that is new here is a line in `lanes`, together with what it does to a
// table.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/vok_basic.h"
#include "table_rw/core/tableReader.h"
#include "table_rw/writers/tableWriter.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using tableRW::tableReader;
using tableRW::tableWriter;
using testSupport::contentOf;
using testSupport::describe;
using testSupport::shortened;
using testSupport::tableContent;
using testSupport::textRow;

// ---- the tables ---------------------------------------------------------------------------------

struct table {
  const char* name;
  textRow fields;
  std::vector<textRow> rows;
};

textRow numbered(const std::wstring& stem, std::size_t count) {
  textRow values;
  for (std::size_t i = 0; i < count; ++i) values.push_back(stem + std::to_wstring(i));
  return values;
}

std::vector<textRow> manyRows(std::size_t count) {
  std::vector<textRow> rows;
  for (std::size_t i = 0; i < count; ++i)
    rows.push_back({L"W-" + std::to_wstring(i), std::to_wstring(i) + L".5", L"\x0433\x043B\x0438"});
  return rows;
}

// Laid out by hand: clang-format cannot align rows that hold lists.
// clang-format off
const std::vector<table>& tables() {
  static const std::vector<table> all = {
      {"plain", {L"WELL", L"DEPTH"}, {{L"W-1", L"1250.5"}, {L"W-2", L"980"}}},
      {"no rows", {L"WELL", L"DEPTH"}, {}},
      {"one field", {L"WELL"}, {{L"W-1"}, {L"W-2"}}},
      {"one row", {L"A", L"B", L"C"}, {{L"1", L"2", L"3"}}},
      {"Cyrillic",
       {L"\x0421\x043A\x0432", L"\x0413\x043B\x0443\x0431\x0438\x043D\x0430"},
       {{L"\x0401\x043B\x043A\x0438-1", L"\x2116 7"}, {L"\x044F", L"\x00AB\x042F\x00BB"}}},
      {"blanks inside", {L"WELL NAME", L"B"}, {{L"W  1", L"a b  c"}, {L"x\ty", L"1 000"}}},
      {"blanks around", {L"A", L"B"}, {{L" 1", L"2 "}, {L"\t3", L" 4 "}}},
      {"blanks alone", {L"A", L"B"}, {{L"1", L"2"}, {L" ", L"\t"}, {L"3", L" "}}},
      {"empty values", {L"A", L"B", L"C"}, {{L"", L"1", L""}, {L"2", L"", L""}, {L"", L"", L"3"}}},
      {"an empty row", {L"A", L"B"}, {{L"1", L"2"}, {L"", L""}, {L"3", L"4"}}},
      {"empty rows alone", {L"A"}, {{L""}, {L""}}},
      {"quotes inside", {L"A", L"B"}, {{L"5\" pipe", L"say \"x\" twice"}, {L"1", L"2"}}},
      {"numbers that are texts", {L"A", L"B"}, {{L"007", L"1,5"}, {L"1e5", L"-0"}}},
      {"long values",
       {L"A", L"B"},
       {{std::wstring(1022, L'x'), std::wstring(1023, L'y')},
        {std::wstring(70000, L'\x0416'), L"end"}}},
      {"many fields", numbered(L"F", 200), {numbered(L"a", 200), numbered(L"b", 200)}},
      {"many rows", {L"WELL", L"DEPTH", L"ROCK"}, manyRows(70000)},
  };
  return all;
}
// clang-format on

// ---- the ways there and back --------------------------------------------------------------------

// What a way does to every table. Differences that belong to a format stand here and nowhere else.
struct changes {
  bool trimsValues = false;
  bool leavesOutEmptyRows = false;
  bool takesBlanksOffTheEnd = false;
  bool makesNamesLatin = false;
  std::size_t mostBytes = 0;  // of a value; 0: any number
};

constexpr changes delimitedText{.trimsValues = true, .leavesOutEmptyRows = true};
constexpr changes dbfTable{.takesBlanksOffTheEnd = true, .makesNamesLatin = true, .mostBytes = 254};

struct lane {
  const char* name;
  const wchar_t* fileName;  // its extension selects the writer
  std::int32_t fileType;    // for the reader
  std::int32_t encoding;
  const wchar_t* delimiter;
  changes made;
  unsigned systemPage = 0;  // of the run; 0: the system's own
};

constexpr std::int32_t cp1251 = 8;
constexpr std::int32_t anyEncoding = 0;

// clang-format off
const lane lanes[] = {
    lane{"CSV by its extension",          L"t.csv",     0, cp1251, L";",            delimitedText},
    lane{"CSV by its content",            L"t.txt",     0, cp1251, L";",            delimitedText},
    lane{"CSV without an extension",      L"t",         0, cp1251, L";",            delimitedText},
    lane{"CSV by its number",             L"t.unknown", 1, cp1251, L";",            delimitedText},
    lane{"CSV with a vertical bar",       L"t.csv",     0, cp1251, L"|",            delimitedText},
    lane{"CSV with a long delimiter",     L"t.csv",     0, cp1251, L" <> ",         delimitedText},
    lane{"CSV with a Cyrillic delimiter", L"t.csv",     0, cp1251, L"\u042A\u042A", delimitedText},
    lane{"DBF by its extension",          L"t.dbf",     0, anyEncoding, L"",        dbfTable, 1251},
    lane{"DBF by its number",             L"t.dbf",     tableRW::fileTypeDbf, anyEncoding, L"", dbfTable, 1251},
    lane{"DBF in UTF 8",                  L"t.dbf",     0, anyEncoding, L"",        dbfTable, 65001},
};
// clang-format on

std::wstring withoutBlanksAround(const std::wstring& value) {
  const std::size_t first = value.find_first_not_of(L" \t");
  if (first == std::wstring::npos) return L"";
  return value.substr(first, value.find_last_not_of(L" \t") - first + 1);
}

bool isEmpty(const textRow& values) {
  for (const std::wstring& value : values)
    if (!value.empty()) return false;
  return true;
}

std::wstring withoutBlanksBehind(const std::wstring& value) {
  return value.substr(0, value.find_last_not_of(L' ') + 1);
}

std::size_t bytesOf(wchar_t character, unsigned systemPage) {
  if (systemPage != 65001 || character < 0x80) return 1;
  return character < 0x800 ? 2 : 3;
}

std::wstring cut(const std::wstring& value, std::size_t mostBytes, unsigned systemPage) {
  std::size_t size = 0;
  std::size_t length = 0;
  for (; length < value.size(); ++length) {
    size += bytesOf(value[length], systemPage);
    if (size > mostBytes) break;
  }
  return value.substr(0, length);
}

std::wstring latinName(const std::wstring& name) {
  std::wstring latin;
  Tvo_std_wstring_adapter receiver(latin);
  vo_string_adp* const adapter = vo_string_adp_create(&receiver);
  vo_translit(name.c_str(), adapter);
  vo_string_adp_destroy(adapter);
  std::replace(latin.begin(), latin.end(), L' ', L'_');
  return latin;
}

tableContent expectedOf(const table& written, const lane& way) {
  const changes& made = way.made;
  tableContent content;
  for (const std::wstring& name : written.fields)
    content.fields.push_back(made.makesNamesLatin ? latinName(name) : name);
  content.types.assign(written.fields.size(), tableRW::fldText);
  for (textRow values : written.rows) {
    if (made.leavesOutEmptyRows && isEmpty(values)) continue;  // blanks do not count as empty
    if (made.trimsValues)
      for (std::wstring& value : values) value = withoutBlanksAround(value);
    if (made.mostBytes != 0)
      for (std::wstring& value : values) value = cut(value, made.mostBytes, way.systemPage);
    if (made.takesBlanksOffTheEnd)
      for (std::wstring& value : values) value = withoutBlanksBehind(value);
    content.rows.push_back(std::move(values));
  }
  content.ok = true;
  return content;
}

void write(const table& source, const lane& way, const std::wstring& path) {
  tableRW::tableWriterOptions options;
  options.fileName = path;
  options.delimiter = way.delimiter;
  for (const std::wstring& name : source.fields)
    options.fields.push_back(
        {name, tableRW::fldText, static_cast<std::int32_t>(way.made.mostBytes)});
  tableWriter* writer = tableWriter::open(options);
  ASSERT_NE(writer, nullptr);
  std::size_t refused = 0;
  for (const textRow& values : source.rows) refused += writer->addRow(values) ? 0U : 1U;
  tableWriter::close(writer);
  EXPECT_EQ(refused, 0u);
}

tableContent readBack(const lane& way, const std::wstring& path) {
  tableRW::tableReaderOptions options(path);
  options.file_type = way.fileType;
  options.encoding = way.encoding;
  options.delimiter = way.delimiter;
  tableReader* reader = tableReader::open(options);
  EXPECT_TRUE(reader->read());
  tableContent content = contentOf(*reader);
  tableReader::close(reader);
  return content;
}

class roundtrip : public testing::TestWithParam<lane> {
 protected:
  void SetUp() override { ASSERT_EQ(vo_options_set_system_code_page(GetParam().systemPage), 1); }
  void TearDown() override { vo_options_set_system_code_page(0); }
};

TEST_P(roundtrip, everyTable) {
  const lane& way = GetParam();
  testSupport::temporaryFolder folder;
  const std::wstring path = folder.file(way.fileName);
  for (const table& source : tables()) {
    SCOPED_TRACE(std::string(way.name) + ", table: " + source.name);
    ASSERT_NO_FATAL_FAILURE(write(source, way, path));
    const tableContent expected = expectedOf(source, way);
    const tableContent content = readBack(way, path);
    EXPECT_TRUE(content == expected) << "written " << shortened(describe(expected)) << "\nread    "
                                     << shortened(describe(content));
  }
}

std::string testNameOf(const testing::TestParamInfo<lane>& info) {
  std::string name;
  for (const char c : std::string(info.param.name)) name += c == ' ' ? '_' : c;
  return name;
}

INSTANTIATE_TEST_SUITE_P(formats, roundtrip, testing::ValuesIn(lanes), testNameOf);

}  // namespace

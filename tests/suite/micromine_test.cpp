// vok_file_micromine: what the bytes of headers, records and values mean, and its operations one by one.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "platform/vok_basic.h"
#include "platform/vok_file_micromine.h"
#include "tests/support/micromineBuilder.h"
#include "tests/support/tableText.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"

namespace {

using namespace std::string_literals;
using testSupport::micromineBuilder;
using testSupport::printable;
using testSupport::temporaryFolder;

using ownedTable = std::unique_ptr<vo_mm_tbl_reader, decltype(&vo_mm_tbl_reader_close)>;

std::wstring received(const auto& hand) {
  std::wstring text = L"untouched";
  Tvo_std_wstring_adapter receiver(text);
  vo_string_adp* const adapter = vo_string_adp_create(&receiver);
  hand(adapter);
  vo_string_adp_destroy(adapter);
  return text;
}

std::wstring nameOf(const vo_mm_tbl_reader* table, std::int32_t property) {
  return received([&](vo_string_adp* to) { vo_mm_tbl_reader_get_prp_name(table, property, to); });
}

std::wstring valueOf(vo_mm_tbl_reader* table, std::int32_t property) {
  return received([&](vo_string_adp* to) { vo_mm_tbl_reader_read_str(table, property, to); });
}

class micromineFile : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(vo_options_set_system_code_page(1252), 1); }
  void TearDown() override { vo_options_set_system_code_page(0); }

  ownedTable open(const std::string& bytes) const {
    return {vo_mm_tbl_reader_open(folder_.write(L"t.dat", bytes).c_str()), &vo_mm_tbl_reader_close};
  }
  ownedTable open(const micromineBuilder& builder) const { return open(builder.bytes()); }

  // Names and types, then the records' values: `A:1 B:2  x|1 / y|2`, or `refused`.
  std::string textOf(const std::string& bytes) const {
    const ownedTable table = open(bytes);
    if (table == nullptr) return "refused";
    std::string text;
    const std::int32_t count = vo_mm_tbl_reader_get_prp_count(table.get());
    for (std::int32_t i = 0; i < count; ++i)
      text += (i > 0 ? " " : "") + printable(nameOf(table.get(), i)) + ":" +
              std::to_string(vo_mm_tbl_reader_get_prp_type(table.get(), i));
    for (std::int64_t row = 0; row < vo_mm_tbl_reader_get_row_count(table.get()); ++row) {
      vo_mm_tbl_reader_read_row(table.get(), row);
      text += row > 0 ? " / " : "  ";
      for (std::int32_t i = 0; i < count; ++i)
        text += (i > 0 ? "|" : "") + printable(valueOf(table.get(), i));
    }
    return text;
  }
  std::string textOf(const micromineBuilder& builder) const { return textOf(builder.bytes()); }

  temporaryFolder folder_;
};

// ---- headers -------------------------------------------------------------------------------------

TEST_F(micromineFile, everyTypeOfVariable) {
  EXPECT_EQ(textOf(micromineBuilder("C C3, N N6.2, R R8.3, F F4.1, L L4, S S2")
                       .row("abc|1.50|2.25|0.1|-70000|-300")
                       .row("||||| ")
                       .row("|||||")),
            "C:1 N:2 R:2 F:2 L:2 S:2  abc|1.50|2.25|0.1|-70000|-300 / |||||0 / |||||");
}

struct headerRow {
  const char* name;
  std::string bytes;
  const char* expected;
  int line = __builtin_LINE();
};

std::string replaced(std::string text, const std::string& what, const std::string& by) {
  return text.replace(text.find(what), what.size(), by);
}

TEST_F(micromineFile, headers) {
  const auto two = [] { return micromineBuilder("A C2, B N3").row("x|1"); };
  const std::string extended = two().bytes();
  const std::string standard = two().standard().bytes();
  const std::string good = "A:1 B:2  x|1";
  const auto cutAt = [](const std::string& text, const char* what) {
    return text.substr(0, text.find(what));
  };
  // clang-format off
  for (const headerRow& row : {
           headerRow{"extended", extended, "A:1 B:2  x|1"},
           headerRow{"standard", standard, "A:1 B:2  x|1"},
           headerRow{"standard, an empty title", two().standard("").bytes(), "A:1 B:2  x|1"},
           headerRow{"standard, LF alone", micromineBuilder("A C2").lineEnd("\n").standard().row("x").row("y").bytes(), "A:1  x / y"},
           headerRow{"standard, an empty title and LF alone", micromineBuilder("A C2").lineEnd("\n").standard("").row("x").bytes(), "A:1  x"},
           headerRow{"standard, a title of 4,000", two().standard(std::string(4000, 't')).bytes(), "A:1 B:2  x|1"},
           headerRow{"standard, a title without end", std::string(9000, 't'), "refused"},
           headerRow{"the magic differs by a byte", "t" + extended.substr(1), "refused"},
           headerRow{"the magic in a text file", "THIS IS MICROMINE EXTENDED DATA FILE!\r\n", "refused"},
           headerRow{"the count without blanks in front", two().countLine("2  VARIABLES").bytes(), "A:1 B:2  x|1"},
           headerRow{"the count with many blanks", two().countLine("    2 VARIABLES  ").bytes(), "A:1 B:2  x|1"},
           headerRow{"the count runs into the word", two().countLine("2VARIABLES").bytes(), "refused"},
           headerRow{"no count", two().countLine("   VARIABLES").bytes(), "refused"},
           headerRow{"a negative count", two().countLine("-2  VARIABLES").bytes(), "refused"},
           headerRow{"a count that is no number", two().countLine("2x  VARIABLES").bytes(), "refused"},
           headerRow{"a count of 9999 with two lines", two().countLine("9999  VARIABLES").bytes(), "refused"},
           headerRow{"a count of twenty digits", two().countLine("99999999999999999999  VARIABLES").bytes(), "refused"},
           headerRow{"a count of 10000", two().countLine("10000  VARIABLES").bytes(), "refused"},
           headerRow{"a count too small: the record's end is not there", two().countLine("1  VARIABLES").bytes(), "refused"},
           headerRow{"another word", two().countLine("2  FIELDS").bytes(), "refused"},
           headerRow{"no variables", micromineBuilder("").bytes(), ""},
           headerRow{"no records", micromineBuilder("A C2").bytes(), "A:1"},
           headerRow{"an unknown type", micromineBuilder("A D8").bytes(), "refused"},
           headerRow{"a type in small letters", micromineBuilder("A c8").bytes(), "refused"},
           headerRow{"a width of 0", micromineBuilder("A C0, B C1").row("|x").bytes(), "refused"},
           headerRow{"a width of 999", micromineBuilder("A C999").row("x").bytes(), "A:1  x"},
           headerRow{"a blank width", replaced(extended, "C  2", "C   "), "refused"},
           headerRow{"a width in letters", replaced(extended, "C  2", "C 2x"), "refused"},
           headerRow{"a negative width", replaced(extended, "C  2", "C -2"), "refused"},
           headerRow{"a width on the left", replaced(extended, "C  2", "C2  "), "A:1 B:2  x|1"},
           headerRow{"a real of another width", micromineBuilder("A R4").bytes(), "refused"},
           headerRow{"a float of another width", micromineBuilder("A F8").bytes(), "refused"},
           headerRow{"a long of another width", micromineBuilder("A L8").bytes(), "refused"},
           headerRow{"a short of another width", micromineBuilder("A S4").bytes(), "refused"},
           headerRow{"widths that sum to more than a record", replaced(extended, "N  3", "N  4"), "refused"},
           headerRow{"widths that sum to less", replaced(extended, "N  3", "N  2"), "refused"},
           headerRow{"negative decimals", micromineBuilder("A R8.-9").row("1").bytes(), "A:2  1"},
           headerRow{"decimals that are none", micromineBuilder("A R8.xyz").row("1").bytes(), "A:2  1"},
           headerRow{"blank decimals", replaced(extended, "C  2  0", "C  2   "), "A:1 B:2  x|1"},
           headerRow{"no decimals", replaced(extended, "C  2  0", "C  2"), "A:1 B:2  x|1"},
           headerRow{"a line that ends in its width", replaced(extended, "C  2  0", "C  "), "refused"},
           headerRow{"the header ends before its variables", cutAt(extended, "A    "), "refused"},
           headerRow{"an empty file", "", "refused"},
           headerRow{"no table at all", "a;b\n1;2\n", "refused"},
       })
    EXPECT_EQ(textOf(row.bytes), row.expected) << row.name << ", line " << row.line;
  // clang-format on
  EXPECT_EQ(textOf(extended), good);
}

TEST_F(micromineFile, metadata) {
  const auto with = [](std::string_view xml) {
    return micromineBuilder("A C1").metadata(xml).row("\xC6").bytes();
  };
  const std::string russian = "A:1  \xD0\x96";
  const std::string western = "A:1  \xC3\x86";  // the system's page
  const std::string padding(9000, ' ');
  // Fills the first page, behind the 42 bytes that it begins with.
  const auto toTheEnd = [](const std::string& text) {
    return std::string(4096 - 42 - text.size(), ' ') + text;
  };
  // clang-format off
  for (const headerRow& row : {
           headerRow{"of several pages", with(padding + "<metadata><data codepage='ibm-5347_P100-1998'/></metadata>"), russian.c_str()},
           headerRow{"its end over a page's border", with(std::string(4045, ' ') + "</metadata>"), western.c_str()},
           headerRow{"no XML", with("<<<>>> not & XML"), western.c_str()},
           headerRow{"no XML that names a page", with("codepage \" x codepage=\"windows-1251\""), russian.c_str()},
           headerRow{"no end, several pages", with(padding), western.c_str()},
           headerRow{"nothing", with(""), western.c_str()},
           headerRow{"a page without an end of its quotes", with("<data codepage=\"windows-1251 </metadata>"), western.c_str()},
           headerRow{"a page without quotes", with("<data codepage=windows-1251 /></metadata>"), western.c_str()},
           headerRow{"another attribute that ends so", with("<data mycodepage=\"windows-1251\"/></metadata>"), western.c_str()},
           headerRow{"blanks around the equals sign", with("<data codepage = \"windows-1251\"/></metadata>"), russian.c_str()},
           headerRow{"lines and TABs around the equals sign", with("<data\r\ncodepage\n=\t\r\n\"windows-1251\"/></metadata>"), russian.c_str()},
           headerRow{"lines that announce nothing", with(std::string(4054, ' ') + "12\n34  VARIABLES  \n<data codepage='windows-1251'/></metadata>"), russian.c_str()},
           headerRow{"the attribute's name as the last of it", with(toTheEnd("</metadata> codepage")), western.c_str()},
           headerRow{"the equals sign as the last of it", with(toTheEnd("</metadata> codepage=")), western.c_str()},
           headerRow{"more metadata than there may be", with(std::string(std::size_t{300} * 4096, ' ')), "refused"},
       })
    EXPECT_EQ(textOf(row.bytes), row.expected) << row.name << ", line " << row.line;
  // clang-format on
}

TEST_F(micromineFile, codePages) {
  struct pageRow {
    const char* name;
    const char* bytes;
    const char* expected;
  };
  // clang-format off
  for (const pageRow& row : {
           pageRow{"ibm-5346_P100-1998", "\xB3", "\xC5\x82"},
           pageRow{"ibm-5347_P100-1998", "\xC6", "\xD0\x96"},
           pageRow{"ibm-5348_P100-1997", "\xC6", "\xC3\x86"},
           pageRow{"ibm-5349_P100-1998", "\xE1", "\xCE\xB1"},
           pageRow{"ibm-5350_P100-1998", "\xFE", "\xC5\x9F"},
           pageRow{"ibm-9447_P100-2002", "\xE0", "\xD7\x90"},
           pageRow{"ibm-9448_X100-2005", "\xC7", "\xD8\xA7"},
           pageRow{"ibm-9449_P100-2002", "\xE0", "\xC4\x85"},
           pageRow{"ibm-5354_P100-1998", "\xF0", "\xC4\x91"},
           pageRow{"ibm-866_P100-1995", "\x86", "\xD0\x96"},
           pageRow{"WINDOWS-1251", "\xC6", "\xD0\x96"},
           pageRow{"UTF-8", "\xD0\x96", "\xD0\x96"},
           pageRow{"ibm-1208", "\xD0\x96", "\xD0\x96"},
           pageRow{"ibm-99999_P1", "\xC6", "\xC3\x86"},
           pageRow{"", "\xC6", "\xC3\x86"},
       })
    // clang-format on
    EXPECT_EQ(textOf(micromineBuilder("A C2").codePage(row.name).row(row.bytes)),
              "A:1  "s + row.expected)
        << row.name;
  EXPECT_EQ(vo_mm_tbl_reader_get_code_page(open(micromineBuilder("A C1")).get()), 1251u);
  EXPECT_EQ(vo_mm_tbl_reader_get_code_page(open(micromineBuilder("A C1").standard()).get()), 1252u);
}

TEST_F(micromineFile, longNames) {
  EXPECT_EQ(textOf(micromineBuilder("TENLETTERS C1, SHORT C1, TENLETTERX C1, TENLETTERY C1")
                       .describe(0, "TENLETTERSANDMORE")
                       .describe(1, "SHORTENED")
                       .describe(2, "the depth in metres")
                       .describe(3, "")),
            "TENLETTERSANDMORE:1 SHORT:1 TENLETTERX:1 TENLETTERY:1");
  // РУДНОЕ_ТЕЛ, cut, and РУДНОЕ_ТЕЛО.
  EXPECT_EQ(textOf(micromineBuilder("\xD0\xD3\xC4\xCD\xCE\xC5_\xD2\xC5\xCB C1")
                       .describe(0, "\xD0\xD3\xC4\xCD\xCE\xC5_\xD2\xC5\xCB\xCE")),
            "\xD0\xA0\xD0\xA3\xD0\x94\xD0\x9D\xD0\x9E\xD0\x95_\xD0\xA2\xD0\x95\xD0\x9B\xD0\x9E:1");
}

TEST_F(micromineFile, descriptionsOfOtherLengths) {
  const std::string described =
      micromineBuilder("A C1, B C1").describe(0, "x\ny").row("1|2").bytes();
  EXPECT_EQ(textOf(described), "A:1 B:1  1|2") << "a line end inside a description";
  const std::string cut = replaced(micromineBuilder("TENLETTERS C1, B C1").row("1|2").bytes(),
                                   "C  1  0", "C  1  0|TENLETTERSX");
  EXPECT_EQ(textOf(cut), "TENLETTERSX:1 B:1  1|2") << "a short description";
  const std::string other = replaced(cut, "0|TEN", "0;TEN");
  EXPECT_EQ(textOf(other), "TENLETTERS:1 B:1  1|2") << "another mark begins none";
}

// ---- records -------------------------------------------------------------------------------------

TEST_F(micromineFile, recordsAreFoundByTheirLength) {
  // A line end inside a binary number.
  const std::string bytes = micromineBuilder("L L4, C C2").record("\r\n\r\nab").row("7|cd").bytes();
  EXPECT_EQ(textOf(bytes), "L:2 C:1  168626701|ab / 7|cd");
}

TEST_F(micromineFile, theEndOfTheFile) {
  const std::string bytes = micromineBuilder("A C2, B C2").row("a|b").row("c|d").bytes();
  const std::string both = "A:1 B:1  a|b / c|d";
  const std::string one = "A:1 B:1  a|b";
  EXPECT_EQ(textOf(bytes), both);
  EXPECT_EQ(textOf(bytes + "\x1A"), both);
  EXPECT_EQ(textOf(bytes + "rub"), both);
  EXPECT_EQ(textOf(bytes.substr(0, bytes.size() - 1)), both) << "half a line end";
  EXPECT_EQ(textOf(bytes.substr(0, bytes.size() - 2)), both) << "no line end";
  EXPECT_EQ(textOf(micromineBuilder("A C1").row("a").bytes() + "\n"), "A:1  a / \\x{0A}");
  EXPECT_EQ(textOf(bytes.substr(0, bytes.size() - 3)), one) << "a record that is cut";
  EXPECT_EQ(textOf(micromineBuilder("A C1").row("a").bytes() + "\x1A"), "A:1  a");
  EXPECT_EQ(textOf(micromineBuilder("A C1").bytes() + "\x1A"), "A:1");
  EXPECT_EQ(textOf(micromineBuilder("A C1").bytes() + "b"), "A:1  b");
}

TEST_F(micromineFile, aRecordWithoutItsLineEndHasNoValues) {
  std::string bytes = micromineBuilder("A C2, B C2").row("a|b").row("c|d").row("e|f").bytes();
  bytes[bytes.find("c d ") + 4] = 'x';
  EXPECT_EQ(textOf(bytes), "A:1 B:1  a|b / | / e|f");
}

TEST_F(micromineFile, manyRecordsInAnyOrder) {
  micromineBuilder builder("N N8, C C90");
  constexpr std::int64_t count = 10000;  // several blocks
  for (std::int64_t i = 0; i < count; ++i) builder.row(std::to_string(i) + "|x");
  const ownedTable table = open(builder);
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(vo_mm_tbl_reader_get_row_count(table.get()), count);
  for (std::int64_t i = 0, row = 0; i < count; ++i, row = (row + 7919) % count) {
    vo_mm_tbl_reader_read_row(table.get(), row);
    ASSERT_EQ(valueOf(table.get(), 0), std::to_wstring(row));
  }
}

TEST_F(micromineFile, aRecordLongerThanABlock) {
  std::string variables;
  for (int i = 0; i < 400; ++i) variables += (i > 0 ? ", V" : "V") + std::to_string(i) + " C999";
  micromineBuilder builder(variables);
  builder.row("first").row("second").row("third");
  const ownedTable table = open(builder);
  ASSERT_NE(table, nullptr);
  vo_mm_tbl_reader_read_row(table.get(), 2);
  EXPECT_EQ(valueOf(table.get(), 0), L"third");
  EXPECT_EQ(valueOf(table.get(), 399), L"");
}

TEST_F(micromineFile, aFileThatShrinksEndsEarlier) {
  if (testSupport::onWindows) GTEST_SKIP() << "nobody can write to a file that is being read there";
  const std::string bytes = micromineBuilder("A C2").row("a").row("b").row("c").bytes();
  const ownedTable table = open(bytes);
  std::filesystem::resize_file(folder_.file(L"t.dat"), bytes.size() - 8);
  vo_mm_tbl_reader_read_row(table.get(), 0);
  EXPECT_EQ(valueOf(table.get(), 0), L"a");
  vo_mm_tbl_reader_read_row(table.get(), 2);
  EXPECT_EQ(valueOf(table.get(), 0), L"");
}

// ---- values --------------------------------------------------------------------------------------

TEST_F(micromineFile, values) {
  struct valueRow {
    const char* name;
    const char* variable;
    std::string bytes;
    const char* expected;
  };
  // clang-format off
  for (const valueRow& row : {
           valueRow{"text keeps blanks in front", "A C6", " a b  "s, " a b"},
           valueRow{"text ends at a NUL", "A C6", "ab\0cd "s, "ab"},
           valueRow{"blank text", "A C3", "   "s, ""},
           valueRow{"zeros", "A C3", "\0\0\0"s, ""},
           valueRow{"numbers on the left", "A N6", "12.5  "s, "12.5"},
           valueRow{"numbers on the right", "A N6", "  12.5"s, "12.5"},
           valueRow{"no number", "A N6", "      "s, ""},
           valueRow{"an exception instead of a number", "A N6", "<0.01 "s, "<0.01"},
           valueRow{"a real, shortest", "A R8", "\x9A\x99\x99\x99\x99\x99\xB9\x3F"s, "0.1"},
           valueRow{"a real, all digits", "A R8", "\x18\x2D\x44\x54\xFB\x21\x09\x40"s, "3.141592653589793"},
           valueRow{"a negative real", "A R8", "\0\0\0\0\0\0\x04\xC0"s, "-2.5"},
           valueRow{"a real, zero", "A R8", "\0\0\0\0\0\0\0\0"s, "0"},
           valueRow{"the null of a real", "A R8", "\0\0\0\0\0\0\xF8\x7F"s, ""},
           valueRow{"another NaN", "A R8", "\x01\0\0\0\0\0\xF0\xFF"s, ""},
           valueRow{"an infinity", "A R8", "\0\0\0\0\0\0\xF0\x7F"s, ""},
           valueRow{"the other infinity", "A R8", "\0\0\0\0\0\0\xF0\xFF"s, ""},
           valueRow{"a float, shortest", "A F4", "\xCD\xCC\xCC\x3D"s, "0.1"},
           valueRow{"the null of a float", "A F4", "\0\0\xC0\x7F"s, ""},
           valueRow{"an infinite float", "A F4", "\0\0\x80\x7F"s, ""},
           valueRow{"the largest long", "A L4", "\xFF\xFF\xFF\x7F"s, "2147483647"},
           valueRow{"the least long", "A L4", "\x01\0\0\x80"s, "-2147483647"},
           valueRow{"the null of a long", "A L4", "\0\0\0\x80"s, ""},
           valueRow{"the largest short", "A S2", "\xFF\x7F"s, "32767"},
           valueRow{"the least short", "A S2", "\x01\x80"s, "-32767"},
           valueRow{"the null of a short", "A S2", "\0\x80"s, ""},
       }) {
    // clang-format on
    const ownedTable table = open(micromineBuilder(row.variable).record(row.bytes));
    ASSERT_NE(table, nullptr) << row.name;
    vo_mm_tbl_reader_read_row(table.get(), 0);
    EXPECT_EQ(printable(valueOf(table.get(), 0)), row.expected) << row.name;
  }
}

// ---- the operations ------------------------------------------------------------------------------

TEST_F(micromineFile, aMissingFileAndAFolder) {
  EXPECT_EQ(vo_mm_tbl_reader_open(nullptr), nullptr);
  EXPECT_EQ(vo_mm_tbl_reader_open(folder_.file(L"missing").c_str()), nullptr);
  EXPECT_EQ(vo_mm_tbl_reader_open(folder_.path().c_str()), nullptr);
}

TEST_F(micromineFile, nullHandlesDoNothing) {
  EXPECT_EQ(vo_mm_tbl_reader_get_prp_count(nullptr), 0);
  EXPECT_EQ(vo_mm_tbl_reader_get_prp_type(nullptr, 0), 0);
  EXPECT_EQ(vo_mm_tbl_reader_get_row_count(nullptr), 0);
  EXPECT_FALSE(vo_mm_tbl_reader_has_failed(nullptr));
  EXPECT_EQ(vo_mm_tbl_reader_get_values(nullptr, 0), nullptr);
  EXPECT_EQ(vo_mm_tbl_reader_get_code_page(nullptr), 0u);
  EXPECT_EQ(nameOf(nullptr, 0), L"untouched");
  EXPECT_EQ(valueOf(nullptr, 0), L"untouched");
  vo_mm_tbl_reader_read_row(nullptr, 0);
  vo_mm_tbl_reader_close(nullptr);
}

TEST_F(micromineFile, indicesThatDoNotExist) {
  const ownedTable table = open(micromineBuilder("A C1").row("x"));
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(valueOf(table.get(), 0), L"") << "no record is current yet";
  vo_mm_tbl_reader_read_row(table.get(), 0);
  EXPECT_EQ(valueOf(table.get(), 0), L"x");
  for (const std::int32_t property : {-1, 1, 2147483647}) {
    EXPECT_EQ(nameOf(table.get(), property), L"untouched");
    EXPECT_EQ(valueOf(table.get(), property), L"untouched");
    EXPECT_EQ(vo_mm_tbl_reader_get_prp_type(table.get(), property), 0);
  }
  for (const std::int64_t row : {std::int64_t{-1}, std::int64_t{1}, INT64_MAX, INT64_MIN}) {
    EXPECT_EQ(vo_mm_tbl_reader_get_values(table.get(), row), nullptr);
    EXPECT_EQ(valueOf(table.get(), 0), L"") << "no record is current any more";
  }
  vo_mm_tbl_reader_read_row(table.get(), 0);
  vo_mm_tbl_reader_read_str(table.get(), 0, nullptr);
  EXPECT_EQ(valueOf(table.get(), 0), L"x");
}

TEST_F(micromineFile, allValuesOfARecordAtOnce) {
  const ownedTable table = open(micromineBuilder("A C3, R R8, N N4").row("ab|0.5| 1").row("||"));
  ASSERT_NE(table, nullptr);
  const vo_mm_value* values = vo_mm_tbl_reader_get_values(table.get(), 0);
  ASSERT_NE(values, nullptr);
  EXPECT_EQ(std::string(values[0].bytes, values[0].length), "ab");
  EXPECT_EQ(std::string(values[1].bytes, values[1].length), "0.5");
  EXPECT_EQ(std::string(values[2].bytes, values[2].length), "1");
  EXPECT_EQ(valueOf(table.get(), 1), L"0.5") << "the record is current";
  values = vo_mm_tbl_reader_get_values(table.get(), 1);
  ASSERT_NE(values, nullptr);
  for (int i = 0; i < 3; ++i) {
    EXPECT_NE(values[i].bytes, nullptr);
    EXPECT_EQ(values[i].length, 0u);
  }
}

}  // namespace

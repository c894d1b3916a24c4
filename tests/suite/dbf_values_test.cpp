// How each kind of field becomes text: one row a value, its bytes and what is read of them.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "suite/file_dbf/dbfTextEnds.h"
#include "tests/support/dbfBuilder.h"
#include "tests/support/openedDbf.h"
#include "tests/support/randomNumbers.h"
#include "tests/support/temporaryFolder.h"

namespace {

using namespace std::string_literals;
using testSupport::bigEndian;
using testSupport::dbfBuilder;
using testSupport::littleEndian;
using testSupport::openDbf;

std::uint64_t bitsOf(double number) { return std::bit_cast<std::uint64_t>(number); }
constexpr std::uint64_t signBit = std::uint64_t{1} << 63;

struct row {
  const char* name;
  unsigned version;
  const char* field;
  std::string bytes;
  const char* expected;  // "~": no value
  int code;
  int line = __builtin_LINE();
};

// clang-format off
const std::vector<row> rows = {
    row{"text", 0x03, "A C8", "sand", "sand", 1},
    row{"text that fills its field", 0x03, "A C4", "sand", "sand", 1},
    row{"blanks on the left stay", 0x03, "A C8", "  sand  ", "  sand", 1},
    row{"a text longer than a step", 0x03, "A C40", "abcdefghijklmnopqrstuvwxyz 0123456789", "abcdefghijklmnopqrstuvwxyz 0123456789", 1},
    row{"padded with NUL", 0x03, "A C8", "sand\0\0\0\0"s, "sand", 1},
    row{"a NUL ends the value", 0x03, "A C8", "sa\0nd  "s, "sa", 1},
    row{"blanks before a NUL are padding", 0x03, "A C8", "sa  \0nd"s, "sa", 1},
    row{"a NUL first", 0x03, "A C8", "\0sand"s, "~", 1},
    row{"blank text", 0x03, "A C8", "", "~", 1},
    row{"blank text of several steps", 0x03, "A C40", "", "~", 1},
    row{"a TAB is no blank", 0x03, "A C8", "\tx\t", "\tx\t", 1},
    row{"text of no length", 0x03, "A C0, B C1", "x", "~", 1},
    row{"long text, its length in two bytes", 0x03, "A C300", std::string(300, 'x'), nullptr, 1},
    row{"an unknown letter is text", 0x03, "A X4", "ab", "ab", 0},
    row{"number", 0x03, "A N8.2", "    1.50", "1.50", 2},
    row{"number at the left", 0x03, "A N8.2", "1.50", "1.50", 2},
    row{"number as it is stored", 0x03, "A N8.2", " +007,5", "+007,5", 2},
    row{"blank number", 0x03, "A N8.2", "", "~", 2},
    row{"number padded with NUL", 0x03, "A N4", "\0\0\0\0"s, "~", 2},
    row{"a number that did not fit", 0x03, "A N4", "****", "~", 2},
    row{"an asterisk among digits", 0x03, "A N4", "*12", "*12", 2},
    row{"float", 0x03, "A F10.3", "  1.25E+02", "1.25E+02", 6},
    row{"date", 0x03, "A D8", "19990305", "1999-03-05", 3},
    row{"the 29th of February", 0x03, "A D8", "20000229", "2000-02-29", 3},
    row{"no date", 0x03, "A D8", "        ", "~", 3},
    row{"zeros as a date", 0x03, "A D8", "00000000", "~", 3},
    row{"NULs as a date", 0x03, "A D8", std::string(8, '\0'), "~", 3},
    row{"a day that does not exist comes as it stands", 0x03, "A D8", "20010229", "20010229", 3},
    row{"text instead of a date", 0x03, "A D8", "NotADate", "NotADate", 3},
    row{"half a date", 0x03, "A D8", "1999", "1999", 3},
    row{"T", 0x03, "A L1", "T", "T", 4},
    row{"t", 0x03, "A L1", "t", "T", 4},
    row{"Y", 0x03, "A L1", "Y", "T", 4},
    row{"y", 0x03, "A L1", "y", "T", 4},
    row{"1 as a logical", 0x03, "A L1", "1", "T", 4},
    row{"F", 0x03, "A L1", "F", "F", 4},
    row{"f", 0x03, "A L1", "f", "F", 4},
    row{"N", 0x03, "A L1", "N", "F", 4},
    row{"n", 0x03, "A L1", "n", "F", 4},
    row{"0 as a logical", 0x03, "A L1", "0", "F", 4},
    row{"undecided", 0x03, "A L1", "?", "~", 4},
    row{"blank logical", 0x03, "A L1", " ", "~", 4},
    row{"NUL as a logical", 0x03, "A L1", "\0"s, "~", 4},
    row{"another letter comes as it stands", 0x03, "A L1", "x", "x", 4},
    row{"integer", 0x30, "A I4", littleEndian(1234567, 4), "1234567", 7},
    row{"negative integer", 0x30, "A I4", littleEndian(0xFFFFFFFF, 4), "-1", 7},
    row{"smallest integer", 0x30, "A I4", littleEndian(0x80000000, 4), "-2147483648", 7},
    row{"integer 0", 0x30, "A I4", littleEndian(0, 4), "0", 7},
    row{"an integer of 3 bytes is none", 0x30, "A I3", "abc", "~", 7},
    row{"double", 0x30, "A B8.2", littleEndian(bitsOf(123.45), 8), "123.45", 8},
    row{"double, all digits that it needs", 0x30, "A B8.2", littleEndian(bitsOf(0.1 + 0.2), 8), "0.30000000000000004", 8},
    row{"a double without an exponent", 0x30, "A B8.2", littleEndian(bitsOf(-100000), 8), "-100000", 8},
    row{"the largest double without an exponent", 0x30, "A B8.2", littleEndian(bitsOf(9999999999999998.0), 8), "9999999999999998", 8},
    row{"a larger double", 0x30, "A B8.2", littleEndian(bitsOf(1e16), 8), "1e+16", 8},
    row{"the smallest double without an exponent", 0x30, "A B8.2", littleEndian(bitsOf(-1.25e-5), 8), "-0.0000125", 8},
    row{"a smaller double", 0x30, "A B8.2", littleEndian(bitsOf(9e-6), 8), "9e-06", 8},
    row{"double 0", 0x30, "A B8.2", littleEndian(bitsOf(0), 8), "0", 8},
    row{"negative double 0", 0x30, "A B8.2", littleEndian(bitsOf(-0.0), 8), "0", 8},
    row{"no number as a double", 0x30, "A B8", littleEndian(0x7FF8000000000000, 8), "~", 8},
    row{"infinity", 0x30, "A B8", littleEndian(0x7FF0000000000000, 8), "~", 8},
    row{"currency", 0x30, "A Y8.4", littleEndian(1234500, 8), "123.45", 8},
    row{"a whole amount", 0x30, "A Y8.4", littleEndian(180000, 8), "18", 8},
    row{"a small amount", 0x30, "A Y8.4", littleEndian(1, 8), "0.0001", 8},
    row{"a debt", 0x30, "A Y8.4", littleEndian(static_cast<std::uint64_t>(-5000), 8), "-0.5", 8},
    row{"the largest debt", 0x30, "A Y8.4", littleEndian(signBit, 8), "-922337203685477.5808", 8},
    row{"time", 0x30, "A T8", littleEndian(2451962, 4) + littleEndian(3661000, 4), "2001-02-21 01:01:01", 9},
    row{"time, a millisecond too early", 0x30, "A T8", littleEndian(2451962, 4) + littleEndian(32948999, 4), "2001-02-21 09:09:09", 9},
    row{"time rounded to the next day", 0x30, "A T8", littleEndian(2451962, 4) + littleEndian(86399999, 4), "2001-02-22 00:00:00", 9},
    row{"half a second is rounded up", 0x30, "A T8", littleEndian(2451962, 4) + littleEndian(3661500, 4), "2001-02-21 01:01:02", 9},
    row{"less is not", 0x30, "A T8", littleEndian(2451962, 4) + littleEndian(3661499, 4), "2001-02-21 01:01:01", 9},
    row{"a time of the next day", 0x30, "A T8", littleEndian(2451962, 4) + littleEndian(172799000, 4), "2001-02-22 23:59:59", 9},
    row{"two days of milliseconds are no time", 0x30, "A T8", littleEndian(2451962, 4) + littleEndian(172800000, 4), "~", 9},
    row{"midnight", 0x30, "A T8", littleEndian(2440588, 4) + littleEndian(0, 4), "1970-01-01 00:00:00", 9},
    row{"no time", 0x30, "A T8", std::string(8, '\0'), "~", 9},
    row{"blank time", 0x30, "A T8", "        ", "~", 9},
    row{"a day before the year 1", 0x30, "A T8", littleEndian(1, 4) + littleEndian(5, 4), "~", 9},
    row{"negative milliseconds", 0x30, "A T8", littleEndian(2451962, 4) + littleEndian(0xFFFFFFFF, 4), "~", 9},
    row{"the last time of all days", 0x30, "A T8", littleEndian(5373484, 4) + littleEndian(86399000, 4), "9999-12-31 23:59:59", 9},
    row{"time rounded beyond all days", 0x30, "A T8", littleEndian(5373484, 4) + littleEndian(86399999, 4), "~", 9},
    row{"a day behind the year 9999", 0x30, "A T8", littleEndian(5373485, 4) + littleEndian(0, 4), "~", 9},
    row{"time rounded into the year 1", 0x30, "A T8", littleEndian(1721425, 4) + littleEndian(86399999, 4), "0001-01-01 00:00:00", 9},
    row{"the day before the year 1", 0x30, "A T8", littleEndian(1721425, 4) + littleEndian(0, 4), "~", 9},
    row{"milliseconds of more than two days", 0x30, "A T8", littleEndian(2451962, 4) + littleEndian(172800000, 4), "~", 9},
    row{"time as text", 0x30, "A T14", "20010221010101", "20010221010101", 9},
    row{"integer of dBASE 7", 0x8C, "A I4", bigEndian(0x80000035, 4), "53", 7},
    row{"negative integer of dBASE 7", 0x8C, "A I4", bigEndian(0x7FFFFFFF, 4), "-1", 7},
    row{"no integer of dBASE 7", 0x8C, "A I4", bigEndian(0, 4), "~", 7},
    row{"counter of dBASE 7", 0x04, "A +4", bigEndian(0x80000001, 4), "1", 7},
    row{"double of dBASE 7", 0x8C, "A O8", bigEndian(0xBFF199999999999A, 8), "1.1", 8},
    row{"negative double of dBASE 7", 0x8C, "A O8", bigEndian(~bitsOf(-56001.67), 8), "-56001.67", 8},
    row{"no double of dBASE 7", 0x8C, "A O8", bigEndian(0, 8), "~", 8},
    row{"O elsewhere", 0x30, "A O8", bigEndian(bitsOf(105.539) ^ signBit, 8), "105.539", 8},
    row{"negative O elsewhere", 0x30, "A O8", bigEndian(bitsOf(-1) ^ signBit, 8), "-1", 8},
    row{"O 0 elsewhere", 0x30, "A O8", bigEndian(0, 8), "0", 8},
    row{"time of dBASE 7", 0x8C, "A @8", bigEndian(bitsOf(734452.0 * 86400000 + 1000), 8), "2011-11-11 00:00:01", 9},
    row{"no time of dBASE 7", 0x8C, "A @8", bigEndian(0, 8), "~", 9},
    row{"blank time of dBASE 7", 0x8C, "A @8", "        ", "~", 9},
    row{"a time beyond all days", 0x8C, "A @8", bigEndian(bitsOf(1e300), 8), "~", 9},
    row{"no number as a time", 0x8C, "A @8", bigEndian(0x7FF8000000000000, 8), "~", 9},
    row{"picture", 0x30, "A G4", "1234", "~", 0},
    row{"binary memo of dBASE 5", 0x05, "A B10", "         1", "~", 5},
    row{"blob", 0x32, "A W4", "1234", "~", 0},
    row{"memo without a file", 0x83, "A M10", "         1", "~", 5},
    row{"varying text, the flags say its length", 0x32, "A V20, _NullFlags 01", "Bad Meets Evil\0\0\0\0\0\x0E\x01"s, "Bad Meets Evil", 0},
    row{"varying text that fills its field", 0x32, "A V4, _NullFlags 01", "sand\0"s, "sand", 0},
    row{"varying text, a length beyond its field", 0x32, "A V4, _NullFlags 01", "san\xFF\x01"s, "san", 0},
    row{"varying text of no length", 0x32, "A V4, _NullFlags 01", "san\0\x01"s, "~", 0},
    row{"varying text without room", 0x32, "A V0, B C1, _NullFlags 01", "x\x01"s, "~", 0},
    row{"V elsewhere is text", 0x03, "A V4", "sand", "sand", 0},
    row{"varying bytes", 0x32, "A Q4, _NullFlags 01", "ab\0\x02\x01"s, "ab", 0},
    row{"null", 0x30, "A C4?, _NullFlags 01", "sand\x01"s, "~", 1},
    row{"not null", 0x30, "A C4?, _NullFlags 01", "sand\0"s, "sand", 1},
    row{"null integer", 0x30, "A I4?, _NullFlags 01", "\x01\0\0\0\x01"s, "~", 7},
    row{"null varying text: the second bit", 0x32, "A V4?, _NullFlags 01", "san\x02\x03"s, "~", 0},
    row{"varying text that could be null", 0x32, "A V4?, _NullFlags 01", "san\x02\x01"s, "sa", 0},
    row{"a field that cannot be null has no bit", 0x30, "A C4, B C2?, _NullFlags 01", "sandab\x01"s, "sand", 1},
    row{"flags that are too short say nothing", 0x30, "A C4?, _NullFlags 00, B C1", "sand\x01"s, "sand", 1},
    row{"the flag byte means nothing in dBASE III", 0x03, "A C4?, F 01", "sand\x01"s, "sand", 1},
};
// clang-format on

TEST(dbfValues, table) {
  const testSupport::temporaryFolder folder;
  for (const row& each : rows) {
    const testing::ScopedTrace trace(__FILE__, each.line, each.name);
    const std::wstring path =
        folder.write(L"t.dbf", dbfBuilder(each.field, each.version).record(each.bytes).bytes());
    const testSupport::ownedDbf table = openDbf(path);
    ASSERT_NE(table, nullptr);
    const std::string expected = each.expected == nullptr ? each.bytes : each.expected;
    EXPECT_EQ(testSupport::valueOf(table.get(), 0, 0), expected);
    const vo_dbf_value* const values = vo_dbf_get_record(table.get(), 0);
    ASSERT_NE(values, nullptr);
    EXPECT_EQ(values->bytes == nullptr ? "~" : std::string(values->bytes, values->length),
              expected);
    EXPECT_EQ(vo_dbf_get_field_type(table.get(), 0), each.code);
  }
}

TEST(dbfValues, theNullFlagsAreNoField) {
  const testSupport::temporaryFolder folder;
  const std::wstring path = folder.write(L"t.dbf", dbfBuilder("A C2?, _NullFlags 01, B C2?", 0x30)
                                                       .record("ab\x02"
                                                               "cd")
                                                       .bytes());
  const testSupport::ownedDbf table = openDbf(path);
  EXPECT_EQ(vo_dbf_get_nf(table.get()), 2u);
  EXPECT_EQ(testSupport::narrowNameOf(table.get(), 1), "B");
  EXPECT_EQ(testSupport::recordsOf(table.get()), "ab|~");
}

TEST(dbfValues, theBitsOfTheNullFlagsGoOnIntoTheNextByte) {
  const testSupport::temporaryFolder folder;
  std::string fields;
  for (int i = 0; i < 11; ++i) fields += "F" + std::to_string(i) + " C1?, ";
  const std::wstring path = folder.write(
      L"t.dbf", dbfBuilder(fields + "_NullFlags 02", 0x30).record("abcdefghijk\0\x04"s).bytes());
  const testSupport::ownedDbf table = openDbf(path);
  EXPECT_EQ(testSupport::recordsOf(table.get()), "a|b|c|d|e|f|g|h|i|j|~");
}

TEST(dbfValues, lettersOfTypeCodes) {
  const std::string expected = "CCNDLMFIBTC";
  for (int code = 0; code < 11; ++code)
    EXPECT_EQ(vo_dbftype2char(code), expected[static_cast<std::size_t>(code)]) << code;
  EXPECT_EQ(vo_dbftype2char(-1), 'C');
}

TEST(dbfValues, theEndsOfTextAreThoseOfTheSlowWay) {
  testSupport::randomNumbers random(5);
  const std::string alphabet("ab  \0\t*"s);
  for (int run = 0; run < 20000; ++run) {
    std::string text;
    const std::size_t length = random.below(50);
    for (std::size_t i = 0; i < length; ++i)
      text += random.onceIn(3) ? random.oneOf(alphabet) : ' ';
    text.append(16, 'x');
    const auto fast = fileDbf::findTextEnds(text.data(), length);
    const auto slow = fileDbf::portable::findTextEnds(text.data(), length);
    ASSERT_EQ(fast.begin, slow.begin) << text;
    ASSERT_EQ(fast.end, slow.end) << text;
  }
}

}  // namespace

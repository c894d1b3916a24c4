// The CSV writer, judged by the bytes on the disk. They are the same on both targets and under
// every code page of the system.
#include "table_rw/writers/tableWriter_csv.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/files.h"
#include "table_rw/writers/tableWriter.h"
#include "tests/support/codePageData.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using tableRW::tableWriter;
using tableRW::tableWriter_csv;
using tableRW::tableWriterOptions;
using testSupport::readFile;
using testSupport::shortened;
using testSupport::temporaryFolder;
using testSupport::textRow;

// Strings with a NUL inside, from literals.
template <std::size_t size>
std::wstring wideWithNul(const wchar_t (&literal)[size]) {
  return std::wstring(literal, size - 1);
}
template <std::size_t size>
std::string narrowWithNul(const char (&literal)[size]) {
  return std::string(literal, size - 1);
}

tableWriterOptions optionsFor(const std::wstring& path, const textRow& names,
                              const std::wstring& delimiter = L";") {
  tableWriterOptions options;
  options.fileName = path;
  options.delimiter = delimiter;
  for (const std::wstring& name : names) options.fields.push_back({name});
  return options;
}

// Bytes as text that shows every one of them, for messages.
std::string visible(const std::optional<std::string>& bytes) {
  if (!bytes) return "no file";
  std::string text;
  for (const char byte : *bytes) {
    const auto code = static_cast<unsigned char>(byte);
    if (byte == '\r') {
      text += "\\r";
    } else if (byte == '\n') {
      text += "\\n";
    } else if (code < 0x20 || code >= 0x7F || byte == '\\') {
      text.append("<").append(testSupport::digitsOf(std::string_view(&byte, 1))).append(">");
    } else {
      text += byte;
    }
  }
  return shortened(text);
}

// ---- lines --------------------------------------------------------------------------------------

struct row {
  const char* name;
  textRow fields;
  std::vector<textRow> rows;
  std::string bytes;
  std::wstring delimiter = L";";
  int line = __builtin_LINE();
};

// Laid out by hand: clang-format cannot align rows that hold lists.
// clang-format off
const row rows[] = {
    row{"a value that holds the delimiter", {L"A", L"B"}, {{L"1", L"x;y"}}, "A;B\r\n1;x;y\r\n"},
    row{"the header alone", {L"A", L"B"}, {}, "A;B\r\n"},
    row{"no fields", {}, {{L"1", L"2"}}, "1;2\r\n"},
    row{"no fields and no rows", {}, {}, ""},
    row{"one field, one value", {L"A"}, {{L"1"}}, "A\r\n1\r\n"},
    row{"one value under two fields", {L"A", L"B"}, {{L"1"}}, "A;B\r\n1\r\n"},
    row{"more values than fields", {L"A"}, {{L"1", L"2", L"3"}}, "A\r\n1;2;3\r\n"},
    row{"rows of all lengths",
        {L"A", L"B"},
        {{L"1"}, {L"1", L"2"}, {L"1", L"2", L"3"}},
        "A;B\r\n1\r\n1;2\r\n1;2;3\r\n"},
    row{"empty values", {L"A", L"B", L"C"}, {{L"", L"", L""}}, "A;B;C\r\n;;\r\n"},
    row{"one empty value is a row", {L"A"}, {{L""}}, "A\r\n\r\n"},
    row{"one empty name is a header", {L""}, {{L"1"}}, "\r\n1\r\n"},
    row{"empty names", {L"", L"B", L""}, {}, ";B;\r\n"},
    row{"the last value is empty", {L"A", L"B"}, {{L"1", L""}}, "A;B\r\n1;\r\n"},
    row{"a name that holds the delimiter", {L"A;B"}, {{L"1"}}, "A;B\r\n1\r\n"},
    row{"a delimiter of two characters",
        {L"A", L"B"},
        {{L"1", L"2"}, {L"x, y", L"z"}},
        "A, B\r\n1, 2\r\nx, y, z\r\n",
        L", "},
    row{"a delimiter of many characters",
        {L"A", L"B"},
        {{L"1", L"2"}},
        "A<-=->B\r\n1<-=->2\r\n",
        L"<-=->"},
    row{"TAB", {L"A", L"B"}, {{L"1", L"2"}}, "A\tB\r\n1\t2\r\n", L"\t"},
    row{"no delimiter at all", {L"A", L"B"}, {{L"1", L"2"}}, "AB\r\n12\r\n", L""},
    row{"quotes are written as they are",
        {L"\"A\""},
        {{L"say \"x\""}, {L"\"x;y\""}, {L"\""}},
        "\"A\"\r\nsay \"x\"\r\n\"x;y\"\r\n\"\r\n"},
    row{"nothing is trimmed", {L" A ", L"\tB"}, {{L"  1", L"2  "}}, " A ;\tB\r\n  1;2  \r\n"},
    row{"a backslash is no escape", {L"A"}, {{L"C:\\x\\n"}}, "A\r\nC:\\x\\n\r\n"},
    row{"what looks like a format", {L"A"}, {{L"100%s%n%d"}}, "A\r\n100%s%n%d\r\n"},
};

// Line breaks and controls inside values.
const row controlRows[] = {
    row{"LF inside a value", {L"A"}, {{L"x\ny"}}, "A\r\nx\r\ny\r\n"},
    row{"CR LF inside a value", {L"A"}, {{L"x\r\ny"}}, "A\r\nx\r\r\ny\r\n"},
    row{"CR inside a value", {L"A"}, {{L"x\ry"}}, "A\r\nx\ry\r\n"},
    row{"CR at the end of a value", {L"A"}, {{L"x\r"}}, "A\r\nx\r\r\n"},
    row{"LF at the end of a value", {L"A"}, {{L"x\n"}}, "A\r\nx\r\n\r\n"},
    row{"LF in a name", {L"A\nB"}, {}, "A\r\nB\r\n"},
    row{"LF as the delimiter", {L"A", L"B"}, {{L"1", L"2"}}, "A\r\nB\r\n1\r\n2\r\n", L"\n"},
    row{"CR LF as the delimiter", {L"A", L"B"}, {}, "A\r\r\nB\r\n", L"\r\n"},
    row{"the byte that ends a text file", {L"A"}, {{L"x\x1Ay"}}, "A\r\nx\x1Ay\r\n"},
    row{"other controls", {L"A"}, {{L"\x01\x08\x0B\x0C\x7F"}}, "A\r\n\x01\x08\x0B\x0C\x7F\r\n"},
    row{"NUL cuts the line's text",
        {L"A", L"B"},
        {{wideWithNul(L"x\0y"), L"z"}, {L"1", L"2"}},
        "A;B\r\nx\r\n1;2\r\n"},
    row{"NUL in the last value", {L"A", L"B"}, {{L"1", wideWithNul(L"2\0")}}, "A;B\r\n1;2\r\n"},
    row{"NUL at the beginning", {L"A"}, {{wideWithNul(L"\0x")}, {L"1"}}, "A\r\n\r\n1\r\n"},
    row{"NUL in a name", {wideWithNul(L"A\0"), L"B"}, {{L"1", L"2"}}, "A\r\n1;2\r\n"},
    row{"NUL in the delimiter",
        {L"A", L"B"},
        {{L"1", L"2"}, {L"3"}},
        "A,\r\n1,\r\n3\r\n",
        wideWithNul(L",\0,")},
    row{"NUL before a line break", {L"A"}, {{wideWithNul(L"x\0\ny")}}, "A\r\nx\r\n"},
};

// Windows-1251, best fit, and what is left.
const row encodingRows[] = {
    row{"Cyrillic",
        {L"\u0421\u043A\u0432"},
        {{L"\x0410\x042F\x0430\x044F\x0401\x0451"}},
        "\xD1\xEA\xE2\r\n\xC0\xDF\xE0\xFF\xA8\xB8\r\n"},
    row{"other letters of the page",
        {L"A"},
        {{L"\x0402\x0404\x0406\x0407\x040E\x0456\x0457\x0491"}},
        "A\r\n\x80\xAA\xB2\xAF\xA1\xB3\xBF\xB4\r\n"},
    row{"signs of the page",
        {L"A"},
        {{L"\x20AC\x2116\x2014\x00AB\x00BB\x00B0\x00A0\x00B1\x2030"}},
        "A\r\n\x88\xB9\x97\xAB\xBB\xB0\xA0\xB1\x89\r\n"},
    row{"the byte that the page leaves open", {L"A"}, {{L"\x0098"}}, "A\r\n\x98\r\n"},
    row{"Latin letters with accents lose them",
        {L"\x00C0\x00C9\x00D1\x00FC"},
        {{L"\x0100\x0107\x0110\x00F8"}},
        "AENu\r\nAcDo\r\n"},
    row{"Greek, Chinese, Arabic", {L"A"}, {{L"\x03BB;\x4E2D\x6587;\x0639"}}, "A\r\n?;\?\?;?\r\n"},
    row{"beyond the BMP", {L"A"}, {{L"x\U0001F600y"}}, "A\r\nx??y\r\n"},
    row{"two beyond the BMP", {L"A"}, {{L"\U0001F600\U00010400"}}, "A\r\n????\r\n"},
    row{"a pair of surrogates", {L"A"}, {{{L'\xD83D', L'\xDE00'}}}, "A\r\n??\r\n"},
    row{"a lone high surrogate", {L"A"}, {{{L'x', L'\xD83D', L'y'}}}, "A\r\nx?y\r\n"},
    row{"a lone low surrogate at the end", {L"A"}, {{{L'x', L'\xDE00'}}}, "A\r\nx?\r\n"},
    row{"the replacement character", {L"A"}, {{L"\xFFFD"}}, "A\r\n?\r\n"},
    row{"a byte-order mark is no character of the page", {L"\xFEFF" L"A"}, {}, "?A\r\n"},
    row{"a letter and its accent are two", {L"A"}, {{L"\x0438\x0306"}}, "A\r\n\xE8?\r\n"},
    row{"other line separators are no line ends", {L"A"}, {{L"\x2028\x0085"}}, "A\r\n??\r\n"},
    row{"a delimiter of the page",
        {L"A", L"B"},
        {{L"1", L"2"}},
        "A\xB9" "B\r\n1\xB9" "2\r\n",
        L"\x2116"},
    row{"a Cyrillic delimiter of two letters",
        {L"A", L"B"},
        {{L"1", L"2"}},
        "A\xE8\xEB" "B\r\n1\xE8\xEB" "2\r\n",
        L"\x0438\x043B"},
    row{"a delimiter that the page lacks", {L"A", L"B"}, {{L"1", L"2"}}, "A?B\r\n1?2\r\n",
        L"\x4E2D"},
    row{"a delimiter beyond the BMP", {L"A", L"B"}, {}, "A??B\r\n", L"\U0001F600"},
};
// clang-format on

void expectBytes(const row& r) {
  const testing::ScopedTrace trace(__FILE__, r.line, r.name);
  temporaryFolder folder;
  const std::wstring path = folder.file(L"out.csv");
  tableWriter* writer = tableWriter::open(optionsFor(path, r.fields, r.delimiter));
  ASSERT_NE(dynamic_cast<tableWriter_csv*>(writer), nullptr);
  for (const textRow& values : r.rows) EXPECT_TRUE(writer->addRow(values));
  tableWriter::close(writer);
  EXPECT_EQ(visible(readFile(path)), visible(r.bytes));
}

TEST(tableWriter_csv, lines) {
  for (const row& r : rows) expectBytes(r);
}

TEST(tableWriter_csv, lineBreaksAndControls) {
  for (const row& r : controlRows) expectBytes(r);
}

TEST(tableWriter_csv, encoding) {
  for (const row& r : encodingRows) expectBytes(r);
}

// Every unit of the BMP against what Windows' converter is known to answer.
TEST(tableWriter_csv, everyCharacterOfTheBmp) {
  const std::vector<unsigned char> page = testSupport::recordedEncoding(1251);
  temporaryFolder folder;
  const std::wstring path = folder.file(L"out.csv");
  std::string expected;
  tableWriter* writer = tableWriter::open(optionsFor(path, {}));
  for (unsigned first = 0; first < 0x10000; first += 0x100) {
    textRow values;
    for (unsigned unit = first; unit < first + 0x100; ++unit) {
      if (unit == 0 || unit == '\n') continue;
      values.push_back(std::wstring(1, static_cast<wchar_t>(unit)));
      if (values.size() > 1) expected += ';';
      expected += static_cast<char>(page[unit]);
    }
    expected += "\r\n";
    EXPECT_TRUE(writer->addRow(values));
  }
  tableWriter::close(writer);
  EXPECT_TRUE(readFile(path) == expected);
}

// ---- rows that are no rows ----------------------------------------------------------------------

TEST(tableWriter_csv, anEmptyRowIsRefused) {
  temporaryFolder folder;
  const std::wstring path = folder.file(L"out.csv");
  tableWriter* writer = tableWriter::open(optionsFor(path, {L"A"}));
  EXPECT_FALSE(writer->addRow({}));
  EXPECT_TRUE(writer->addRow({L"1"}));
  EXPECT_FALSE(writer->addRow({}));
  EXPECT_TRUE(writer->addRow({L"2"}));
  tableWriter::close(writer);
  EXPECT_EQ(visible(readFile(path)), "A\\r\\n1\\r\\n2\\r\\n");
}

// ---- the file -----------------------------------------------------------------------------------

TEST(tableWriter_csv, anExistingFileIsEmptiedAtOnce) {
  temporaryFolder folder;
  const std::wstring path = folder.write(L"out.csv", std::string(100000, 'x'));
  tableWriter* writer = tableWriter::open(optionsFor(path, {}));
  EXPECT_EQ(std::filesystem::file_size(path), 0u);
  tableWriter::close(writer);
  EXPECT_EQ(visible(readFile(path)), "");
}

TEST(tableWriter_csv, namesAndFoldersOfAllKinds) {
  temporaryFolder folder;
  ASSERT_TRUE(platform::createFolder(folder.file(L"\u0421\u043A\u0432 1.old")));
  for (const wchar_t* name :
       {L"\x0441\x043A\x0432\x0430\x0436\x0438\x043D\x044B.csv", L"my wells.CSV", L"no extension",
        L"\u0421\u043A\u0432 1.old/out", L"\u0421\u043A\u0432 1.old\\out.txt"}) {
    const std::wstring path = folder.file(name);
    tableWriter* writer = tableWriter::open(optionsFor(path, {L"A"}));
    EXPECT_TRUE(writer->addRow({L"1"}));
    tableWriter::close(writer);
    EXPECT_EQ(visible(readFile(path)), "A\\r\\n1\\r\\n") << testSupport::printable(name);
  }
}

TEST(tableWriter_csv, deleteFinishesTheFileToo) {
  temporaryFolder folder;
  const std::wstring path = folder.file(L"out.csv");
  tableWriter* writer = tableWriter::open(optionsFor(path, {L"A"}));
  EXPECT_TRUE(writer->addRow({L"1"}));
  delete writer;
  EXPECT_EQ(visible(readFile(path)), "A\\r\\n1\\r\\n");
  EXPECT_TRUE(platform::removeFile(path)) << "the file was closed";
}

TEST(tableWriter_csv, constructedDirectly) {
  temporaryFolder folder;
  const std::wstring path = folder.file(L"out.dbf");
  { tableWriter_csv writer(optionsFor(path, {L"A", L"B"})); }
  EXPECT_EQ(visible(readFile(path)), "A;B\\r\\n");
}

TEST(tableWriter_csv, typesAndWidthsHaveNoSay) {
  temporaryFolder folder;
  const std::wstring path = folder.file(L"out.csv");
  tableWriterOptions options = optionsFor(path, {L"N", L"T"});
  options.fields[0] = {L"N", tableRW::fldNumber, 3, 1};
  options.fields[1].width = -1;
  tableWriter* writer = tableWriter::open(options);
  EXPECT_TRUE(writer->addRow({L"12345.678", L"no number"}));
  EXPECT_TRUE(writer->addRow({L"no number", L"1,5"}));
  tableWriter::close(writer);
  EXPECT_EQ(visible(readFile(path)), "N;T\\r\\n12345.678;no number\\r\\nno number;1,5\\r\\n");
}

TEST(tableWriter_csv, manyRows) {
  temporaryFolder folder;
  const std::wstring path = folder.file(L"out.csv");
  std::string expected = "N;T\r\n";
  tableWriter* writer = tableWriter::open(optionsFor(path, {L"N", L"T"}));
  for (int i = 0; i < 30000; ++i) {
    EXPECT_TRUE(writer->addRow({std::to_wstring(i), L"\x0441\x043B\x043E\x0439"}));
    expected += std::to_string(i) + ";\xF1\xEB\xEE\xE9\r\n";
  }
  tableWriter::close(writer);
  EXPECT_TRUE(readFile(path) == expected);
}

TEST(tableWriter_csv, longLines) {
  temporaryFolder folder;
  const std::wstring path = folder.file(L"out.csv");
  std::string expected;
  tableWriter* writer = tableWriter::open(optionsFor(path, {}));
  for (const std::size_t size : {65533u, 65534u, 65535u, 65536u, 65537u, 300000u}) {
    EXPECT_TRUE(writer->addRow({std::wstring(size, L'\x0416'), std::wstring(size, L'\n'), L"end"}));
    expected += std::string(size, '\xC6') + ";";
    for (std::size_t i = 0; i < size; ++i) expected += "\r\n";
    expected += ";end\r\n";
  }
  tableWriter::close(writer);
  EXPECT_TRUE(readFile(path) == expected);
}

TEST(tableWriter_csv, twoWritersAtATime) {
  temporaryFolder folder;
  std::vector<std::thread> threads;
  for (const wchar_t* name : {L"0.csv", L"1.csv"}) {
    threads.emplace_back([path = folder.file(name)] {
      tableWriter* writer = tableWriter::open(optionsFor(path, {L"A"}));
      for (int i = 0; i < 2000; ++i) writer->addRow({path.substr(path.size() - 5, 1)});
      tableWriter::close(writer);
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const char* digit : {"0", "1"}) {
    std::string expected = "A\r\n";
    for (int i = 0; i < 2000; ++i) expected += std::string(digit) + "\r\n";
    EXPECT_TRUE(readFile(folder.file(testSupport::wide(digit) + L".csv")) == expected);
  }
}

// ---- files that cannot be written ---------------------------------------------------------------

// The writer takes what it is given, as if the file were there.
void expectRowsToVanish(const std::wstring& path) {
  tableWriter* writer = tableWriter::open(optionsFor(path, {L"A"}));
  ASSERT_NE(writer, nullptr);
  EXPECT_TRUE(writer->addRow({L"1", L"2"}));
  EXPECT_TRUE(writer->addRow({L""}));
  EXPECT_FALSE(writer->addRow({}));
  for (int i = 0; i < 100; ++i) EXPECT_TRUE(writer->addRow({std::wstring(10000, L'x')}));
  tableWriter::close(writer);
}

TEST(tableWriter_csv, aTargetInAMissingFolder) {
  temporaryFolder folder;
  expectRowsToVanish(folder.file(L"gone/out.csv"));
  EXPECT_FALSE(platform::fileExists(folder.file(L"gone")));
}

TEST(tableWriter_csv, aTargetThatIsAFolder) {
  temporaryFolder folder;
  ASSERT_TRUE(platform::createFolder(folder.file(L"out.csv")));
  expectRowsToVanish(folder.file(L"out.csv"));
  EXPECT_TRUE(platform::folderExists(folder.file(L"out.csv")));
}

TEST(tableWriter_csv, aTargetBelowAFile) {
  temporaryFolder folder;
  const std::wstring file = folder.write(L"file", "kept");
  expectRowsToVanish(file + L"/out.csv");
  EXPECT_EQ(readFile(file), "kept");
}

TEST(tableWriter_csv, aReadOnlyTarget) {
  temporaryFolder folder;
  const std::wstring path = folder.write(L"out.csv", "kept");
  const auto readOnly = std::filesystem::perms::owner_read | std::filesystem::perms::group_read |
                        std::filesystem::perms::others_read;
  std::filesystem::permissions(path, readOnly);
  // A superuser may write all the same.
  const bool protectedFromUs = !std::ofstream(std::filesystem::path(path), std::ios::app).is_open();
  tableWriter* writer = tableWriter::open(optionsFor(path, {L"A"}));
  ASSERT_NE(writer, nullptr);
  EXPECT_TRUE(writer->addRow({L"1"}));
  tableWriter::close(writer);
  EXPECT_EQ(visible(readFile(path)), protectedFromUs ? "kept" : "A\\r\\n1\\r\\n");
  std::filesystem::permissions(path, std::filesystem::perms::all);
}

TEST(tableWriter_csv, aDiskWithoutRoom) {
  const std::wstring full = L"/dev/full";
  if (!platform::fileExists(full)) GTEST_SKIP() << "the system has no such device";
  expectRowsToVanish(full);
  EXPECT_TRUE(platform::fileExists(full));
}

}  // namespace

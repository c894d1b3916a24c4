// Different objects in different threads: sixteen threads at a time read and write tables of every format, convert
// workbooks, ask databases and change texts, and each of them gets what one thread alone gets.
//
// An ordinary run goes round a few times; with VOK_FULL_SWEEP in the environment it goes round a hundred times. What
// is unsafe without making a difference is found by ThreadSanitizer (preset tsan).
#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "converter/conversion.h"
#include "database/odbc_database.h"
#include "database/well_queries.h"
#include "platform/vok_basic.h"
#include "table_rw/capi/vo_table_reader.h"
#include "table_rw/core/tableReader.h"
#include "table_rw/text/textConversion.h"
#include "table_rw/writers/tableWriter.h"
#include "tests/support/micromineBuilder.h"
#include "tests/support/ownedReader.h"
#include "tests/support/sqliteDatabase.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using tableRW::tableReader;
using tableRW::tableWriter;
using testSupport::temporaryFolder;

constexpr int threadCount = 16;

int rounds() { return std::getenv("VOK_FULL_SWEEP") != nullptr ? 100 : 3; }

// --- what a thread does; each answers what came of it ---

std::string readBack(const std::wstring& path, std::int32_t encoding = 0,
                     const std::wstring& table = L"") {
  tableRW::tableReaderOptions options(path);
  options.encoding = encoding;
  options.table = table;
  tableReader* const reader = tableReader::open(options);
  std::string text = reader->read() ? "read " : "not read ";
  text += testSupport::describe(*reader);
  reader->readDemo(2);
  text += " demo " + testSupport::describe(*reader);
  reader->readOnlyHeaders();
  text += " headers " + testSupport::describe(*reader);
  tableReader::close(reader);
  return text;
}

void writeTable(const std::wstring& path) {
  tableRW::tableWriterOptions options;
  options.fileName = path;
  options.fields = {
      {L"WELL",                           tableRW::fldText,   20, 0},
      {L"DEPTH",                          tableRW::fldNumber, 10, 2},
      {L"\u041F\u043E\u0440\u043E\u0434", tableRW::fldText,   20, 0}
  };
  tableWriter* const writer = tableWriter::open(options);
  for (int row = 0; row < 50; ++row)
    writer->addRow({L"W-" + std::to_wstring(row), std::to_wstring(row) + L".25",
                    L"\u0413\u043B\u0438\u043D\u0430"});
  tableWriter::close(writer);
}

std::string delimitedText(const temporaryFolder& folder) {
  writeTable(folder.file(L"t.csv"));
  return readBack(folder.file(L"t.csv"), tableRW::encodingCp1251);
}

std::string rejectedLines(const temporaryFolder& folder) {
  return readBack(folder.write(L"bad.csv", "a;b\n1;2\n1\n\xD0\x96;\"q;\"\n1;2;3\n"),
                  tableRW::encodingUtf8);
}

std::string petrelText(const temporaryFolder& folder) {
  return readBack(folder.write(
      L"t.tops", "# Petrel\nBEGIN HEADER\nWELL\nMD\nEND HEADER\n\"W-1\" 10\n\"W 2\" 20.5\n"));
}

std::string micromineData(const temporaryFolder& folder) {
  return readBack(folder.write(L"t.dat", testSupport::micromineBuilder("WELL C5, DEPTH N8.2, X R8")
                                             .row("W-1|1.5|2.25")
                                             .row("W-2||")
                                             .bytes()));
}

std::string dbfTable(const temporaryFolder& folder) {
  writeTable(folder.file(L"t.dbf"));
  return readBack(folder.file(L"t.dbf"));
}

std::string sqliteTable(const temporaryFolder& folder) {
  const std::wstring path = folder.file(L"t.sqlite");
  testSupport::sqliteDatabase(path).run(
      "CREATE TABLE t(a TEXT, b REAL); INSERT INTO t VALUES('x', 1.5), (NULL, 2), ('\u0416', 0.1)");
  return readBack(path);
}

std::string workbook(const temporaryFolder& folder) {
  converter::conversionRequest request;
  request.source = folder.file(L"t.xlsx");
  request.folder = folder.path();
  writeTable(request.source);
  std::string problem;
  if (!converter::convert(request, problem)) return "problem: " + problem;
  return testSupport::readFile(converter::targetPath(request)).value_or("no text file");
}

std::string projectDatabase(const temporaryFolder&) {
  odbc_database own;
  if (!own.connect(std::wstring(L":memory:"))) return "not connected";
  own.execute_sql(L"CREATE TABLE well_base(w_id" + own.primary_key() +
                  L", name, field, work_object)");
  own.begin_transaction();
  const std::int64_t code = STRATA_insertWithCode(
      L"INSERT INTO well_base(name, field, work_object) VALUES('W-13', 'North', 'Proj')",
      L"SELECT last_insert_rowid()", &own);
  own.commit();
  return std::to_string(code) + " " +
         testSupport::printable(STRATA_getWellPath(&own, static_cast<int>(code)));
}

void append(void* text, const wchar_t* fed) {
  *static_cast<std::string*>(text) += testSupport::printable(fed) + "|";
}

std::string throughC(const temporaryFolder& folder) {
  std::string text;
  vo_string_adp* const adapter = vo_string_adp_create_callback(&append, &text);
  vo_table_reader_options* const options =
      vo_table_reader_options_create(folder.write(L"c.csv", "A;B\n1;2\n3;4\n").c_str());
  vo_table_reader* const reader = vo_table_reader_open(options);
  vo_table_reader_options_close(options);
  vo_table_reader_read(reader);
  vo_table_reader_field_list(reader, adapter);
  for (std::uint64_t row = 0; row < vo_table_reader_count(reader); ++row)
    vo_table_reader_row(reader, row, adapter);
  vo_table_reader_close(reader);
  vo_translit(L"\u0416\u0443\u043A", adapter);
  vo_string_adp_feed(adapter, vo_options_get_temp_wpath());
  vo_string_adp_feed(adapter, vo_options_get_main_module_path());
  vo_string_adp_destroy(adapter);
  return text;
}

std::string codePages(const temporaryFolder&) {
  std::string all;
  for (int byte = 1; byte < 256; ++byte) all += static_cast<char>(byte);
  std::string text;
  for (int encoding = 0; encoding < static_cast<int>(tableRW::textEncodingCount); ++encoding) {
    const std::wstring wide =
        tableRW::decodeText(all.data(), static_cast<std::int32_t>(all.size()), encoding);
    const std::string back =
        tableRW::encodeText(wide.data(), static_cast<std::int32_t>(wide.size()), encoding);
    text += testSupport::printable(wide) + back;
  }
  return text;
}

using work = std::string (*)(const temporaryFolder&);

constexpr work works[] = {&delimitedText, &rejectedLines, &petrelText, &micromineData,
                          &dbfTable,      &sqliteTable,   &workbook,   &projectDatabase,
                          &throughC,      &codePages};

// All that a thread does, beginning with another one than its neighbours.
std::vector<std::string> everything(std::size_t first) {
  constexpr std::size_t count = std::size(works);
  const temporaryFolder folder;
  std::vector<std::string> answers(count);
  for (std::size_t i = 0; i < count; ++i)
    answers[(first + i) % count] = works[(first + i) % count](folder);
  return answers;
}

TEST(threads, sixteenGetWhatOneAloneGets) {
  const std::vector<std::string> expected = everything(0);
  for (const std::string& answer : expected) EXPECT_GT(answer.size(), 10U) << answer;
  for (int round = 0; round < rounds(); ++round) {
    std::vector<std::vector<std::string>> answers(threadCount);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < answers.size(); ++i)
      threads.emplace_back([i, &answers] {
        try {
          answers[i] = everything(i);
        } catch (const std::runtime_error& refusal) {
          answers[i] = {refusal.what()};  // of the machine, such as a full disk
        }
      });
    for (std::thread& thread : threads) thread.join();
    for (const std::vector<std::string>& one : answers) ASSERT_EQ(one, expected);
  }
}

// The settings that a host may change from any thread.
TEST(threads, settingsMayBeChangedWhileOthersRead) {
  const temporaryFolder folder;
  const std::wstring path = folder.write(L"t.csv", "A;B\n1;2\n");
  const std::string expected = readBack(path);
  std::vector<std::string> answers(threadCount);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < answers.size(); ++i)
    threads.emplace_back([i, &answers, &path] {
      for (int round = 0; round < rounds(); ++round) {
        vo_options_set_system_code_page(i % 2 == 0 ? 1251 : 866);
        vo_options_set_main_module_path(i % 2 == 0 ? L"/one" : L"/another");
        vo_options_set_temp_wpath(i % 2 == 0 ? L"/tmp/one" : nullptr);
        answers[i] = readBack(path) + testSupport::printable(vo_options_get_main_module_path());
      }
    });
  for (std::thread& thread : threads) thread.join();
  vo_options_set_system_code_page(0);
  vo_options_set_main_module_path(nullptr);
  vo_options_set_temp_wpath(nullptr);
  for (const std::string& answer : answers)
    EXPECT_TRUE(answer == expected + "/one" || answer == expected + "/another") << answer;
}

}  // namespace

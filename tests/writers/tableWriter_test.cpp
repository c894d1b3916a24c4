// The writers' base and factory: the options record, the choice by extension, and the end of a
// writer.
#include "table_rw/writers/tableWriter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/files.h"
#include "table_rw/writers/tableWriter_csv.h"
#include "table_rw/writers/tableWriter_dbf.h"
#include "table_rw/writers/tableWriter_xls.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace {

using tableRW::tableWriter;
using tableRW::tableWriter_csv;
using tableRW::tableWriter_dbf;
using tableRW::tableWriter_xls;
using tableRW::tableWriterOptions;
using tableRW::writerField;
using testSupport::printable;
using testSupport::temporaryFolder;

// ---- the records --------------------------------------------------------------------------------

static_assert(std::is_copy_constructible_v<tableWriterOptions>);
static_assert(std::is_copy_assignable_v<tableWriterOptions>);
static_assert(std::is_nothrow_move_constructible_v<tableWriterOptions>);
static_assert(std::is_nothrow_move_assignable_v<tableWriterOptions>);
static_assert(std::is_copy_constructible_v<writerField> && std::is_copy_assignable_v<writerField>);
static_assert(std::is_same_v<decltype(writerField::width), std::int32_t>);
static_assert(std::is_same_v<decltype(writerField::decimals), std::uint8_t>);
static_assert(sizeof(writerField::type) == 4);

static_assert(std::is_abstract_v<tableWriter>);
static_assert(std::has_virtual_destructor_v<tableWriter>);
static_assert(sizeof(tableWriter) == sizeof(void*), "the base holds nothing");
static_assert(std::is_base_of_v<tableWriter, tableWriter_csv>);
static_assert(!std::is_copy_constructible_v<tableWriter_csv>);
static_assert(!std::is_copy_assignable_v<tableWriter_csv>);

TEST(tableWriterOptions, defaults) {
  const tableWriterOptions options;
  EXPECT_EQ(options.fileName, L"");
  EXPECT_EQ(options.delimiter, L";");
  EXPECT_TRUE(options.fields.empty());
}

TEST(tableWriterOptions, orderOfTheMembers) {
  const auto [fileName, delimiter, fields] =
      tableWriterOptions{L"out.dbf", L",", {writerField{L"DEPTH", tableRW::fldNumber, 300, 2}}};
  EXPECT_EQ(fileName, L"out.dbf");
  EXPECT_EQ(delimiter, L",");
  ASSERT_EQ(fields.size(), 1u);
  const auto& [name, type, width, decimals] = fields[0];
  EXPECT_EQ(name, L"DEPTH");
  EXPECT_EQ(type, tableRW::fldNumber);
  EXPECT_EQ(width, 300);
  EXPECT_EQ(decimals, 2);
}

TEST(tableWriterOptions, copiesAndMovesTakeEveryMember) {
  const tableWriterOptions original{
      L"out.csv", L"\t", {writerField{L"A"}, writerField{L"B"}}
  };
  tableWriterOptions copy = original;
  tableWriterOptions assigned;
  assigned = copy;
  const tableWriterOptions moved = std::move(copy);
  tableWriterOptions moveAssigned;
  moveAssigned = tableWriterOptions(original);
  const tableWriterOptions* const all[] = {&original, &assigned, &moved, &moveAssigned};
  for (const tableWriterOptions* options : all) {
    EXPECT_EQ(options->fileName, L"out.csv");
    EXPECT_EQ(options->delimiter, L"\t");
    ASSERT_EQ(options->fields.size(), 2u);
    EXPECT_EQ(options->fields[1].name, L"B");
  }
}

// ---- the choice ---------------------------------------------------------------------------------

enum class format { csv, workbook, dbf };

struct row {
  const char* name;
  std::wstring fileName;
  format expected;
  int line = __builtin_LINE();
};

const row rows[] = {
    row{"csv",                                         L"out.csv",                format::csv     },
    row{"csv in capitals",                             L"out.CSV",                format::csv     },
    row{"csv in mixed case",                           L"out.Csv",                format::csv     },
    row{"an unknown extension",                        L"out.txt",                format::csv     },
    row{"no extension",                                L"out",                    format::csv     },
    row{"the dot comes last",                          L"out.",                   format::csv     },
    row{"only the last dot counts",                    L"out.xlsx.txt",           format::csv     },
    row{"a dot in the folder alone",                   L"dir.old\\out",           format::csv     },
    row{"a dot in the folder alone, slash",            L"dir.old/out",            format::csv     },
    row{"an extension of the folder alone",            L"a.xlsx/table",           format::csv     },
    row{"an extension of the folder alone, backslash", L"a.dbf\\table",           format::csv     },
    row{"more than a known one",                       L"out.xlsxx",              format::csv     },
    row{"a spreadsheet with macros",                   L"out.xlsm",               format::csv     },
    row{"the beginning of a known one",                L"out.db",                 format::csv     },
    row{"an extension without its dot",                L"dbf",                    format::csv     },
    row{"a blank in it",                               L"out. dbf",               format::csv     },
    row{"Cyrillic letters that look alike",            L"out.\x0445ls",           format::csv     },
    row{"full-width letters",                          L"out.\xFF24\xFF22\xFF26", format::csv     },
    row{"xlsx",                                        L"out.xlsx",               format::workbook},
    row{"xlsx in capitals",                            L"out.XLSX",               format::workbook},
    row{"xls",                                         L"out.xls",                format::workbook},
    row{"xls in mixed case",                           L"out.Xls",                format::workbook},
    row{"dbf",                                         L"out.dbf",                format::dbf     },
    row{"dbf in capitals",                             L"out.DBF",                format::dbf     },
    row{"the name is the extension",                   L".dbf",                   format::dbf     },
    row{"in a folder with another extension",          L"a.xlsx/out.dbf",         format::dbf     },
    row{"with another extension before it",            L"out.csv.xls",            format::workbook},
};

TEST(tableWriter, choiceByExtension) {
  for (const row& r : rows) {
    const testing::ScopedTrace trace(__FILE__, r.line, r.name);
    temporaryFolder folder;
    for (const wchar_t* name : {L"dir.old", L"a.xlsx", L"a.dbf"})
      ASSERT_TRUE(platform::createFolder(folder.file(name)));
    tableWriterOptions options;
    options.fileName = folder.file(r.fileName);
    options.fields = {
        writerField{L"A", tableRW::fldText, 5}
    };
    tableWriter* writer = tableWriter::open(options);
    EXPECT_EQ(dynamic_cast<tableWriter_csv*>(writer) != nullptr, r.expected == format::csv);
    EXPECT_EQ(dynamic_cast<tableWriter_xls*>(writer) != nullptr, r.expected == format::workbook);
    EXPECT_EQ(dynamic_cast<tableWriter_dbf*>(writer) != nullptr, r.expected == format::dbf);
    EXPECT_EQ(platform::fileExists(options.fileName), r.expected != format::workbook)
        << "the file exists as soon as the writer does, but for workbooks";
    tableWriter::close(writer);
    EXPECT_TRUE(platform::fileExists(options.fileName));
    EXPECT_EQ(options.fileName, folder.file(r.fileName)) << "the caller's record stays as it was";
  }
}

TEST(tableWriter, noFileNameNoWriter) {
  tableWriterOptions options;
  options.fields = {writerField{L"A"}};
  EXPECT_EQ(tableWriter::open(options), nullptr);
}

TEST(tableWriter, aFileThatCannotBeCreatedStillHasAWriter) {
  temporaryFolder folder;
  tableWriterOptions options;
  options.fileName = folder.file(L"gone/out.csv");
  tableWriter* writer = tableWriter::open(options);
  EXPECT_NE(dynamic_cast<tableWriter_csv*>(writer), nullptr);
  tableWriter::close(writer);
  EXPECT_FALSE(platform::fileExists(folder.file(L"gone")));
}

TEST(tableWriter, theWriterKeepsOptionsOfItsOwn) {
  temporaryFolder folder;
  tableWriterOptions options{
      folder.file(L"out.csv"), L",", {writerField{L"A"}, writerField{L"B"}}
  };
  tableWriter* writer = tableWriter::open(options);
  ASSERT_NE(writer, nullptr);
  options.fileName = folder.file(L"other.csv");
  options.delimiter = L"#";
  options.fields.clear();
  EXPECT_TRUE(writer->addRow({L"1", L"2"}));
  tableWriter::close(writer);
  EXPECT_EQ(testSupport::readFile(folder.file(L"out.csv")), "A,B\r\n1,2\r\n");
  EXPECT_FALSE(platform::fileExists(folder.file(L"other.csv")));
}

// ---- the base -----------------------------------------------------------------------------------

class witness : public tableWriter {
 public:
  witness(int number, int& destroyed) : number_(number), destroyed_(&destroyed) {}
  witness(const witness&) = default;
  witness& operator=(const witness&) = delete;
  ~witness() override { ++*destroyed_; }
  bool addRow(const std::vector<std::wstring>&) override { return true; }
  int number() const { return number_; }

 private:
  int number_;
  int* destroyed_;
};

TEST(tableWriter, closeAcceptsNull) { tableWriter::close(nullptr); }

TEST(tableWriter, closeDestroysTheDerivedWriter) {
  int destroyed = 0;
  tableWriter::close(new witness(1, destroyed));
  EXPECT_EQ(destroyed, 1);
}

TEST(tableWriter, deleteDestroysTheDerivedWriter) {
  int destroyed = 0;
  tableWriter* writer = new witness(1, destroyed);
  delete writer;
  EXPECT_EQ(destroyed, 1);
}

TEST(tableWriter, assignmentDoesNothing) {
  int destroyed = 0;
  witness first(1, destroyed);
  const witness second(2, destroyed);
  tableWriter& base = first;
  EXPECT_EQ(&(base = second), &base);
  EXPECT_EQ(first.number(), 1);
  EXPECT_EQ(second.number(), 2);
}

TEST(tableWriter, assignmentLeavesBothFilesToTheirWriters) {
  temporaryFolder folder;
  tableWriter* first = tableWriter::open({folder.file(L"1.csv"), L";", {writerField{L"A"}}});
  tableWriter* second = tableWriter::open({folder.file(L"2.csv"), L";", {writerField{L"B"}}});
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  *first = *second;
  EXPECT_TRUE(first->addRow({L"1"}));
  EXPECT_TRUE(second->addRow({L"2"}));
  tableWriter::close(second);
  EXPECT_TRUE(first->addRow({L"3"}));
  tableWriter::close(first);
  EXPECT_EQ(testSupport::readFile(folder.file(L"1.csv")), "A\r\n1\r\n3\r\n");
  EXPECT_EQ(testSupport::readFile(folder.file(L"2.csv")), "B\r\n2\r\n");
}

}  // namespace

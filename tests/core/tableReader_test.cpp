// The base of every reader: its accessors over results that the test fills in, and the dummy
// reader.
#include "table_rw/core/tableReader.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <limits>
#include <memory>

#include "table_rw/readers/tableReader_dummy.h"
#include "tests/support/filledReader.h"

namespace {

using tableRW::fldNumber;
using tableRW::fldText;
using tableRW::tableReaderOptions;
using testSupport::describe;
using testSupport::filledReader;
using testSupport::textRow;

constexpr std::uint64_t allOnes = 18446744073709551615U;
constexpr std::size_t hugeIndex = std::numeric_limits<std::size_t>::max();

filledReader wells() {
  filledReader reader(
      {
          L"WELL", L"DEPTH", L"ROCK"
  },
      {{L"W-1", L"1250.5", L"sand"}, {L"W-2", L"", L" clay "}});
  reader.fieldTypes_ = {fldText, fldNumber, fldText};
  return reader;
}

tableReaderOptions optionsOf(const std::wstring& path, const std::wstring& table) {
  tableReaderOptions options(path);
  options.table = table;
  return options;
}

TEST(tableReader, isEmptyBeforeARead) {
  const filledReader reader(optionsOf(L"wells.csv", L"t"));
  EXPECT_EQ(describe(reader), "failed");
  EXPECT_FALSE(reader.isOK());
  EXPECT_EQ(reader.fieldCount(), 0U);
  EXPECT_EQ(reader.count(), 0U);
  EXPECT_EQ(reader.errorCount(), 0U);
  EXPECT_EQ(reader.rowLimit_, -1);
  EXPECT_EQ(reader.fieldName(0), L"");
  EXPECT_EQ(reader.fieldType(std::size_t{0}), fldText);
  EXPECT_EQ(reader.fieldNum(L""), -1);
  EXPECT_EQ(reader.value(0, 0), L"");
  EXPECT_EQ(reader.getError(0), allOnes);
}

TEST(tableReader, keepsItsOwnOptions) {
  tableReaderOptions options = optionsOf(L"wells.csv", L"t");
  const filledReader reader(options);
  options.path = L"other.csv";
  EXPECT_EQ(reader.path(), L"wells.csv");
  EXPECT_EQ(reader.options_.table, L"t");
}

TEST(tableReader, countsFieldsRowsAndErrors) {
  filledReader reader = wells();
  reader.errors_ = {2, 7};
  EXPECT_EQ(reader.fieldCount(), 3U);
  EXPECT_EQ(reader.count(), 2U);
  EXPECT_EQ(reader.errorCount(), 2U);
}

TEST(tableReader, isOkTellsTheFlag) {
  filledReader reader;
  EXPECT_FALSE(reader.isOK());
  reader.ok_ = true;
  EXPECT_TRUE(reader.isOK());
}

TEST(tableReader, fieldListReplacesWhatWasThere) {
  textRow out = {L"old", L"older", L"oldest", L"x"};
  wells().fieldList(out);
  EXPECT_EQ(describe(out), "WELL|DEPTH|ROCK");
  filledReader().fieldList(out);
  EXPECT_TRUE(out.empty());
}

TEST(tableReader, fieldNumComparesExactly) {
  filledReader reader = wells();
  reader.fieldNames_.push_back(std::wstring(L"A\0B", 3));
  reader.fieldNames_.push_back(L"");
  EXPECT_EQ(reader.fieldNum(L"WELL"), 0);
  EXPECT_EQ(reader.fieldNum(L"ROCK"), 2);
  EXPECT_EQ(reader.fieldNum(std::wstring(L"A\0B", 3)), 3);
  EXPECT_EQ(reader.fieldNum(L""), 4);
  for (const wchar_t* unknown : {L"well", L"Well", L" WELL", L"WELL ", L"WEL", L"WELLS", L"A"})
    EXPECT_EQ(reader.fieldNum(unknown), -1) << testSupport::printable(unknown);
}

TEST(tableReader, theFirstOfEqualNamesWins) {
  filledReader reader(
      {
          L"a", L"b", L"b"
  },
      {{L"1", L"2", L"3"}});
  reader.fieldTypes_ = {fldText, fldNumber, fldText};
  EXPECT_EQ(reader.fieldNum(L"b"), 1);
  EXPECT_EQ(reader.value(L"b", 0), L"2");
  EXPECT_EQ(reader.fieldType(L"b"), fldNumber);
  textRow column;
  reader.values(L"b", column);
  EXPECT_EQ(describe(column), "2");
}

TEST(tableReader, fieldNameOfABadIndexIsEmpty) {
  const filledReader reader = wells();
  EXPECT_EQ(reader.fieldName(0), L"WELL");
  EXPECT_EQ(reader.fieldName(2), L"ROCK");
  EXPECT_EQ(reader.fieldName(3), L"");
  EXPECT_EQ(reader.fieldName(hugeIndex), L"");
}

TEST(tableReader, fieldTypeByIndexAsksTheTypesAlone) {
  filledReader reader = wells();
  EXPECT_EQ(reader.fieldType(std::size_t{1}), fldNumber);
  EXPECT_EQ(reader.fieldType(std::size_t{2}), fldText);
  EXPECT_EQ(reader.fieldType(std::size_t{3}), fldText);
  EXPECT_EQ(reader.fieldType(hugeIndex), fldText);
  reader.fieldTypes_ = {fldNumber};
  EXPECT_EQ(reader.fieldType(std::size_t{0}), fldNumber);
  EXPECT_EQ(reader.fieldType(std::size_t{1}), fldText);
  reader.fieldNames_.clear();  // no name is needed for a type
  EXPECT_EQ(reader.fieldType(std::size_t{0}), fldNumber);
}

TEST(tableReader, fieldTypeByNameIsTextWhenUnknown) {
  filledReader reader = wells();
  EXPECT_EQ(reader.fieldType(L"DEPTH"), fldNumber);
  EXPECT_EQ(reader.fieldType(L"ROCK"), fldText);
  EXPECT_EQ(reader.fieldType(L"depth"), fldText);
  reader.fieldTypes_ = {fldNumber};
  EXPECT_EQ(reader.fieldType(L"WELL"), fldNumber);
  EXPECT_EQ(reader.fieldType(L"DEPTH"), fldText);  // the name is known, its type is not
}

TEST(tableReader, valueByIndex) {
  const filledReader reader = wells();
  EXPECT_EQ(reader.value(0, 0), L"W-1");
  EXPECT_EQ(reader.value(1, 0), L"1250.5");
  EXPECT_EQ(reader.value(1, 1), L"");
  EXPECT_EQ(reader.value(2, 1), L" clay ");
  EXPECT_EQ(reader.value(3, 0), L"");
  EXPECT_EQ(reader.value(0, reader.count()), L"");
  EXPECT_EQ(reader.value(3, 2), L"");
  EXPECT_EQ(reader.value(hugeIndex, 0), L"");
  EXPECT_EQ(reader.value(0, hugeIndex), L"");
}

TEST(tableReader, valueByName) {
  const filledReader reader = wells();
  EXPECT_EQ(reader.value(L"WELL", 1), L"W-2");
  EXPECT_EQ(reader.value(L"ROCK", 0), L"sand");
  EXPECT_EQ(reader.value(L"rock", 0), L"");
  EXPECT_EQ(reader.value(L"WELL", 2), L"");
  EXPECT_EQ(reader.value(L"WELL", hugeIndex), L"");
}

TEST(tableReader, valuesByIndexGiveTheColumn) {
  const filledReader reader = wells();
  textRow out = {L"old"};
  reader.values(std::size_t{0}, out);
  EXPECT_EQ(describe(out), "W-1|W-2");
  reader.values(std::size_t{1}, out);
  EXPECT_EQ(describe(out), "1250.5|");
  for (const std::size_t bad : {std::size_t{3}, hugeIndex}) {
    out = {L"old"};
    reader.values(bad, out);
    EXPECT_TRUE(out.empty()) << bad;
  }
}

TEST(tableReader, valuesByIndexReserveForAllRows) {
  const filledReader reader({L"a"}, std::vector<textRow>(1000, {L"1"}));
  textRow out;
  reader.values(std::size_t{0}, out);
  EXPECT_EQ(out.size(), 1000U);
  EXPECT_EQ(out.capacity(), 1000U);
}

TEST(tableReader, valuesByName) {
  const filledReader reader = wells();
  textRow out = {L"old"};
  reader.values(L"ROCK", out);
  EXPECT_EQ(describe(out), "sand| clay ");
  out = {L"old", L"older"};
  reader.values(L"rock", out);
  EXPECT_TRUE(out.empty());
}

TEST(tableReader, theNameOfAColumnMayStandInTheOutput) {
  textRow out = {L"ROCK"};
  wells().values(out[0], out);
  EXPECT_EQ(describe(out), "sand| clay ");
}

TEST(tableReader, getRow) {
  const filledReader reader = wells();
  textRow out = {L"old", L"older", L"oldest", L"x"};
  reader.getRow(1, out);
  EXPECT_EQ(describe(out), "W-2|| clay ");
  for (const std::size_t bad : {std::size_t{2}, hugeIndex}) {
    out = {L"old"};
    reader.getRow(bad, out);
    EXPECT_TRUE(out.empty()) << bad;
  }
}

TEST(tableReader, cellsThatARaggedRowLacksAreEmpty) {
  const filledReader reader(
      {
          L"a", L"b"
  },
      {{L"1"}, {L"1", L"2", L"3"}, {}, {L"1", L"2"}});
  EXPECT_EQ(describe(reader), "fields a|b  rows 1 / 1|2|3 / () / 1|2  failed");
  EXPECT_EQ(reader.value(1, 0), L"");
  EXPECT_EQ(reader.value(0, 2), L"");
  EXPECT_EQ(reader.value(2, 1), L"");  // there is no third field
  textRow column;
  reader.values(L"b", column);
  EXPECT_EQ(describe(column), "|2||2");
}

TEST(tableReader, isRowEmpty) {
  const filledReader reader;
  textRow none, threeEmpty = {L"", L"", L""}, blank = {L"", L" "}, last = {L"", L"", L"x"};
  EXPECT_TRUE(reader.isRowEmpty(none));
  EXPECT_TRUE(reader.isRowEmpty(threeEmpty));
  EXPECT_FALSE(reader.isRowEmpty(blank));
  EXPECT_FALSE(reader.isRowEmpty(last));
}

TEST(tableReader, isSameFileComparesPathAndTableExactly) {
  const filledReader reader(optionsOf(L"C:\\wells.csv", L"Wells"));
  EXPECT_TRUE(reader.isSameFile(optionsOf(L"C:\\wells.csv", L"Wells")));
  EXPECT_FALSE(reader.isSameFile(optionsOf(L"C:\\wells.csv", L"Tops")));
  EXPECT_FALSE(reader.isSameFile(optionsOf(L"C:\\wells.csv", L"wells")));
  EXPECT_FALSE(reader.isSameFile(optionsOf(L"C:\\wells.csv", L"")));
  EXPECT_FALSE(reader.isSameFile(optionsOf(L"C:\\WELLS.csv", L"Wells")));
  EXPECT_FALSE(reader.isSameFile(optionsOf(L"C:/wells.csv", L"Wells")));
  EXPECT_FALSE(reader.isSameFile(tableReaderOptions()));
  tableReaderOptions others = optionsOf(L"C:\\wells.csv", L"Wells");
  others.encoding = 8;
  others.header_position = 4;
  others.file_type = 5;
  EXPECT_TRUE(reader.isSameFile(others));
}

TEST(tableReader, errorsAreListedInOrder) {
  filledReader reader;
  reader.errors_ = {5, 3, 4294967296U};
  std::vector<std::size_t> out = {1, 2, 3, 4};
  reader.errorList(out);
  EXPECT_EQ(out, (std::vector<std::size_t>{5, 3, 4294967296U}));
  EXPECT_EQ(reader.getError(0), 5U);
  EXPECT_EQ(reader.getError(2), 4294967296U);
  EXPECT_EQ(reader.getError(reader.errorCount()), allOnes);
  EXPECT_EQ(reader.getError(hugeIndex), allOnes);
  reader.errors_.clear();
  reader.errorList(out);
  EXPECT_TRUE(out.empty());
}

filledReader fullReader() {
  filledReader reader(optionsOf(L"wells.csv", L"t"));
  reader.options_.encoding = 8;
  reader.ok_ = true;
  reader.fieldNames_ = {L"a", L"b"};
  reader.fieldTypes_ = {fldText, fldNumber};
  reader.addRow({L"1", L"2"});
  reader.addRow({L"3", L"4"});
  reader.errors_ = {7};
  reader.rowLimit_ = 10;
  return reader;
}

void expectFull(const filledReader& reader) {
  EXPECT_EQ(describe(reader), "fields a|b:number  rows 1|2 / 3|4  errors 7  ok");
  EXPECT_EQ(reader.path(), L"wells.csv");
  EXPECT_EQ(reader.options_.table, L"t");
  EXPECT_EQ(reader.options_.encoding, 8);
  EXPECT_EQ(reader.rowLimit_, 10);
}

TEST(tableReader, copyConstructionCopiesEverything) {
  auto source = std::make_unique<filledReader>(fullReader());
  filledReader copy(*source);
  copy.addRow({L"5", L"6"});
  EXPECT_EQ(source->count(), 2U);  // the copy has a table of its own
  source.reset();
  EXPECT_EQ(copy.count(), 3U);
  EXPECT_EQ(copy.value(1, 2), L"6");
  EXPECT_EQ(copy.value(0, 1), L"3");
  expectFull(filledReader(fullReader()));
}

TEST(tableReader, copyAssignmentReplacesEverything) {
  const filledReader source = fullReader();
  filledReader target(optionsOf(L"other.csv", L"x"));
  target.fieldNames_ = {L"p", L"q", L"r"};
  for (int i = 0; i < 5; ++i) target.addRow({L"9", L"9", L"9"});
  target.errors_ = {1, 2, 3};
  target = source;
  expectFull(target);
  expectFull(source);
  const filledReader& itself = target;
  target = itself;
  expectFull(target);
}

TEST(tableReader, rejectsNoRecordsUnlessAVariantDoes) {
  filledReader reader;
  reader.errors_ = {1};
  bool wasCalled = false;
  EXPECT_FALSE(reader.rejectedRecords([&](const tableRW::rejectedRecord&) {
    wasCalled = true;
    return true;
  }));
  EXPECT_FALSE(wasCalled);
}

// Both targets store the offset of the operation's slot in a pointer to a virtual member, plus one.
template <class Member>
std::ptrdiff_t slotOffset(Member member) {
  std::array<std::ptrdiff_t, 2> parts;
  static_assert(sizeof member == sizeof parts);
  std::memcpy(parts.data(), &member, sizeof member);
  return parts[0] - 1;
}

TEST(tableReader, virtualOperationsKeepTheirSlots) {
  using tableRW::tableReader;
  constexpr auto slot = static_cast<std::ptrdiff_t>(sizeof(void*));
  constexpr std::ptrdiff_t behindDestructor = 2 * slot;  // these compilers give it two slots
  const std::ptrdiff_t offsets[] = {slotOffset(&tableReader::readOnlyHeaders),
                                    slotOffset(&tableReader::readDemo),
                                    slotOffset(&tableReader::read),
                                    slotOffset(&tableReader::setTable),
                                    slotOffset(&tableReader::tableList),
                                    slotOffset(&tableReader::get_capabilities)};
  for (std::size_t i = 0; i < std::size(offsets); ++i)
    EXPECT_EQ(offsets[i], behindDestructor + static_cast<std::ptrdiff_t>(i) * slot) << i;
  EXPECT_GT(slotOffset(&tableReader::rejectedRecords), slotOffset(&tableReader::get_capabilities));
}

TEST(tableReader_dummy, discardsItsOptions) {
  const tableRW::tableReader_dummy reader(optionsOf(L"wells.csv", L"t"));
  EXPECT_EQ(reader.path(), L"");
  EXPECT_TRUE(reader.isSameFile(tableReaderOptions()));
  EXPECT_FALSE(reader.isSameFile(optionsOf(L"wells.csv", L"t")));
  EXPECT_FALSE(reader.isSameFile(optionsOf(L"wells.csv", L"")));
  EXPECT_FALSE(reader.isSameFile(optionsOf(L"", L"t")));
}

TEST(tableReader_dummy, readsNothing) {
  tableRW::tableReader_dummy reader(optionsOf(L"wells.csv", L"t"));
  EXPECT_FALSE(reader.read());
  EXPECT_FALSE(reader.readDemo(10));
  EXPECT_FALSE(reader.readOnlyHeaders());
  EXPECT_FALSE(reader.isOK());
  EXPECT_EQ(describe(reader), "failed");
  EXPECT_FALSE(reader.rejectedRecords([](const tableRW::rejectedRecord&) { return true; }));
}

TEST(tableReader_dummy, leavesTablesAlone) {
  tableRW::tableReader_dummy reader{tableReaderOptions()};
  reader.setTable(L"t");
  EXPECT_TRUE(reader.isSameFile(tableReaderOptions()));
  textRow list = {L"kept"};
  reader.tableList(list);
  EXPECT_EQ(describe(list), "kept");
}

TEST(tableReader_dummy, hasAllFourFlags) {
  tableRW::tableReader_dummy reader{tableReaderOptions()};
  const auto [first, second, third, fourth] = reader.get_capabilities();
  EXPECT_TRUE(first && second && third && fourth);
}

}  // namespace

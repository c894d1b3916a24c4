// Reading a table, whatever its format: named fields, a type for each, rows of text.
//
//     tableRW::tableReaderOptions options(L"wells.csv");
//     options.encoding = 8;  // CP1251
//     tableRW::tableReader* reader = tableRW::tableReader::open(options);
//     if (reader->read())
//       for (std::size_t row = 0; row < reader->count(); ++row) use(reader->value(L"WELL", row));
//     tableRW::tableReader::close(reader);
//
// A reader reads its source from the start at every read call and closes it again; the accessors answer
// from memory. Names and values are compared exactly: no case folding, no trimming.
//
// Errors: no exception but allocation failure, no messages. Reads answer false, `isOK` tells whether the
// source could be opened, and text readers list the lines they rejected. A bad index or an unknown name
// is answered with an empty string, -1, fldText, an empty sequence or 2^64 - 1, as each accessor says.
//
// Threads: readers are independent of each other; one reader belongs to one thread at a time.
#ifndef VOK_TABLE_RW_CORE_TABLEREADER_H
#define VOK_TABLE_RW_CORE_TABLEREADER_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/vok_export.h"
#include "table_rw/core/tableReaderOptions.h"
#include "table_rw/core/valueTable.h"

namespace tableRW {

/// A record that a read rejected, as it stands in the source.
struct rejectedRecord {
  /// The offset in sources whose records are no lines of the file: a sheet's rows.
  static constexpr std::uint64_t noOffset = ~std::uint64_t{0};

  std::uint64_t line = 0;           ///< its number in the source, from 0
  std::size_t valueCount = 0;       ///< values found in it (fieldCount() were expected)
  std::wstring text;                ///< the line, decoded, without its line end
  std::uint64_t offset = noOffset;  ///< of its first byte in the source
  std::uint64_t size = 0;           ///< its bytes in the source, the line end included
};

/// The base of every reader: the options, the results of a read, and all lookups in them.
class VOK_API tableReader {
 public:
  /// A copy holds the options and the results of the last read, the whole table included.
  tableReader(const tableReader& other);
  tableReader& operator=(const tableReader& other);  ///< as a copy does
  virtual ~tableReader();

  /// Reads names and types of the fields, no rows. @return false when the source cannot be read
  virtual bool readOnlyHeaders() = 0;
  /// Reads with a limit of `n` rows, where the variant heeds one; see the variant.
  virtual bool readDemo(int n) = 0;
  /// Reads the whole table into memory. @return false when the source cannot be read
  virtual bool read() = 0;
  /// Chooses the table for the next read, where the source holds several; else ignored.
  virtual void setTable(std::wstring name) = 0;
  /// Lists the tables of the source.
  virtual void tableList(std::vector<std::wstring>& list) = 0;
  /// What a host should offer for this source.
  virtual capability_options get_capabilities() = 0;
  /// Reads the source once more and hands over every record of the error list, in order, with its text
  /// and the number of values found, so that a user can be shown what is wrong. The results of the last
  /// read stay as they are. `receive` answers false to stop early.
  /// @return false when the source cannot be read or the variant rejects no records
  virtual bool rejectedRecords(const std::function<bool(const rejectedRecord&)>& receive);

  /// Chooses and builds the reader for a source; nothing is read yet, and never null: what fits nothing
  /// becomes a reader that reads nothing (its reads and isOK answer false, its path is empty).
  /// An explicit file type builds its variant without looking at the disk. Otherwise the extension
  /// decides, and for an unknown one the file's first line: a Petrel table or delimited text.
  /// `data_position` moves to the line after the header when it does not lie behind it.
  /// @return a reader that the caller hands to close
  static tableReader* open(tableReaderOptions options);

  /// Frees a reader; null is ignored.
  static void close(tableReader* reader);

  std::wstring path() const;         ///< the path in the options
  std::uint64_t fieldCount() const;  ///< number of fields
  std::uint64_t count() const;       ///< number of rows
  bool isOK() const;                 ///< whether the last read could open the source

  /// False when the source opened, but could not be read to its end by the last read or list of tables (the disk or
  /// the network failed): what is there is only what was read before. Readers of text answer true from their reads
  /// then all the same; after a read that answered false there is nothing to ask.
  bool isWhole() const;

  /// `out` becomes a copy of the field names.
  void fieldList(std::vector<std::wstring>& out) const;
  /// Index of the first field of this name; -1 when there is none.
  std::int32_t fieldNum(std::wstring name) const;
  /// Name of a field; empty for a bad index.
  std::wstring fieldName(std::size_t index) const;
  /// Type of a field; fldText for a bad index or an unknown name.
  fldType fieldType(std::size_t index) const;
  fldType fieldType(std::wstring name) const;  ///< the same, by name

  /// One value; empty for a bad index, an unknown name or a row that does not exist.
  std::wstring value(std::size_t index, std::size_t row) const;
  std::wstring value(const std::wstring& name, std::size_t row) const;  ///< the same, by name
  /// A whole column, in row order; `out` is empty for a bad index or an unknown name.
  void values(std::size_t index, std::vector<std::wstring>& out) const;
  void values(const std::wstring& name,
              std::vector<std::wstring>& out) const;  ///< the same, by name
  /// A whole row; `out` is empty when it does not exist.
  void getRow(std::size_t row, std::vector<std::wstring>& out) const;

  /// True when the options name the same path and the same table as this reader's.
  bool isSameFile(tableReaderOptions options) const;

  /// Numbers, from 0, of the lines (records) that were rejected; each counts every physical line of the
  /// source from its start.
  void errorList(std::vector<std::size_t>& out) const;
  std::uint64_t errorCount() const;  ///< how many were rejected
  /// One entry of the error list; 2^64 - 1 for a bad index.
  std::uint64_t getError(std::size_t i) const;

  /// A column index and the value wanted there.
  using indexCondition = std::pair<std::size_t, std::wstring>;
  /// A field name and the value wanted there.
  using namedCondition = std::pair<std::wstring, std::wstring>;

  /// The result field's value in the first row that has every wanted value; empty when there is no such
  /// row, the field is unknown or a condition's column does not exist. No conditions: the first row.
  std::wstring searchValue(std::wstring resultField,
                           const std::vector<indexCondition>& conditions) const;
  /// The same for every such row, in row order, duplicates kept. `out` is cleared first.
  void searchValue(std::wstring resultField, const std::vector<indexCondition>& conditions,
                   std::vector<std::wstring>& out) const;
  /// The result field's value in every row that has one value in one named field. The condition has to be
  /// written as namedCondition(L"FIELD", L"value"): bare braces fit both overloads.
  void searchValue(std::wstring resultField, namedCondition condition,
                   std::vector<std::wstring>& out) const;

 protected:
  tableReader();
  explicit tableReader(tableReaderOptions options);  ///< nothing is read yet

  /// True when every value is the empty string; also for a row without values.
  bool isRowEmpty(std::vector<std::wstring>& row) const;

  tableReaderOptions options_;            ///< as they were given, but for what open adjusts
  bool ok_ = false;                       ///< the answer of isOK
  std::vector<std::wstring> fieldNames_;  ///< of the last read, in order
  std::vector<fldType> fieldTypes_;       ///< one for each name
  valueTable rows_;                       ///< the values of the last read
  std::vector<std::uint64_t> errors_;     ///< numbers of rejected lines, in order
  std::int32_t rowLimit_ = -1;            ///< of the read at hand; -1: no limit
  bool isWhole_ = true;                   ///< the answer of isWhole

 private:
  bool hasColumns(const std::vector<indexCondition>& conditions) const;
};

}  // namespace tableRW

#endif

// Writing a table: fill a tableWriterOptions, open a writer, add rows, close it.
//
//     tableRW::tableWriterOptions options;
//     options.fileName = L"wells.csv";
//     options.fields = {{L"WELL"}, {L"DEPTH", tableRW::fldNumber, 10, 2}};
//     tableRW::tableWriter* writer = tableRW::tableWriter::open(options);
//     writer->addRow({L"W-1", L"1250.50"});
//     tableRW::tableWriter::close(writer);
//
// The header (the field names) is written by the writer itself when it is opened. Closing finishes the
// file; there is no separate flush or save.
//
// Threads: writers are independent of each other; one writer belongs to one thread at a time.
// Errors: no exception but allocation failure; a null writer and false are the only answers.
#ifndef VOK_TABLE_RW_WRITERS_TABLEWRITER_H
#define VOK_TABLE_RW_WRITERS_TABLEWRITER_H

#include <cstdint>
#include <string>
#include <vector>

#include "platform/vok_export.h"
#include "table_rw/core/tableReaderOptions.h"

namespace tableRW {

/// One column of the table to write.
struct writerField {
  std::wstring name;       ///< becomes the header cell or the DBF field name
  fldType type = fldText;  ///< used by DBF alone
  std::int32_t width =
      0;  ///< field length in characters; used by DBF alone, which takes its low byte
  std::uint8_t decimals = 0;  ///< digits after the point; used by DBF alone
};

/// What to write and where.
struct tableWriterOptions {
  std::wstring fileName;            ///< its extension selects the format
  std::wstring delimiter = L";";    ///< between the values of a row; used by CSV alone
  std::vector<writerField> fields;  ///< the columns, in order
};

/// A table being written.
class VOK_API tableWriter {
 public:
  tableWriter() = default;
  /// Copies nothing: the base holds nothing.
  tableWriter(const tableWriter&) = default;
  /// Does nothing, for the same reason.
  tableWriter& operator=(const tableWriter& other);
  virtual ~tableWriter();

  /// Appends one row.
  /// @param row  values in field order, as wide text
  /// @return false for an empty row, which CSV and XLSX do not write
  virtual bool addRow(const std::vector<std::wstring>& row) = 0;

  /// Opens a writer chosen by the extension of the file name, without regard to letter case: .xls and
  /// .xlsx XLSX, .dbf DBF, anything else CSV. The target is created or emptied
  /// at once, except that of XLSX, which appears when the writer is closed.
  /// @return a writer that the caller hands to close; null when the file name is empty, and for a
  ///         format that this version cannot write (nothing is created then)
  /// A file that cannot be created is not reported: the rows are accepted and go nowhere.
  static tableWriter* open(tableWriterOptions options);

  /// Finishes the file and frees the writer; null is ignored. `delete` does the same.
  static void close(tableWriter* writer);
};

}  // namespace tableRW

#endif

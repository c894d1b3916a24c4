// Excel workbooks through the suite's converter program: it writes a sheet, or the list of sheets, as a text
// file with `$` between values into the suite's temporary folder; the reader reads that file and deletes it.
//
// The sheet is the one that the options name, or the converter's default. Line 0 of the file is the sheet's
// first row. Values are taken as they are: no quotes, no trimming; a line whose number of values differs from
// the number of fields is rejected and its number listed, rows of empty values are neither data nor errors.
//
// Refused: any direction but 0, after the converter has run; a missing converter; a workbook that the
// converter does not convert. A converter that never ends blocks the reader: there is no time-out.
//
// ODD: the command lines begin with a blank, have two blanks behind the source and leave the folder without
// quotes. Converters in use take them so.
// ODD: `readOnlyHeaders` sets the header position to 0 for all later reads: the converter writes the header
// row first then, and hosts set the position again before they read on.
// ODD: `readDemo` reads every row. Hosts show their preview from it and keep the reader.
// ODD: the field types stay as they were. Hosts take every field for text.
//
// Two readers of files of one name share the text files and must not run at the same time.
#ifndef VOK_TABLE_RW_READERS_TABLEREADER_XLSOLE_H
#define VOK_TABLE_RW_READERS_TABLEREADER_XLSOLE_H

#include <functional>
#include <string>
#include <vector>

#include "table_rw/core/tableReader.h"

namespace tableRW {

class tableReader_xlsOLE : public tableReader {
 public:
  explicit tableReader_xlsOLE(tableReaderOptions options);

  bool readOnlyHeaders() override;
  bool readDemo(int n) override;
  bool read() override;
  void setTable(std::wstring name) override;
  /// The sheets of the workbook; empty when the converter cannot be run.
  void tableList(std::vector<std::wstring>& out) override;
  capability_options get_capabilities() override;
  /// Runs the converter once more.
  bool rejectedRecords(const std::function<bool(const rejectedRecord&)>& receive) override;

 private:
  bool readData();
  bool prepareCSV();
  bool readVertical();
  void clearTemp() noexcept;

  void numberFields(std::size_t count);
  void nameFields(const std::vector<std::wstring>& names);
  void addRecord(std::uint64_t number, const std::vector<std::wstring>& values);

  bool headersOnly_ = false;
  std::wstring sheetFile_;         // what the converter may have left, until clearTemp
  std::wstring intermediateFile_;  // the same; empty where it leaves none
};

/// The command line that asks the converter for the list of sheets.
/// @param folder  where it writes, with a separator at its end
std::wstring sheetListCommandLine(const std::wstring& source, const std::wstring& folder);

/// The command line that asks the converter for the sheet that the options name.
std::wstring sheetCommandLine(const tableReaderOptions& options, bool headersOnly,
                              const std::wstring& folder);

}  // namespace tableRW

#endif

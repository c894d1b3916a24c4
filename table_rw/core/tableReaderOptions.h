// What to read and how: the options record of a reader, the types of fields, and what a reader variant
// tells a host about the choices that make sense for its source.
//
// Plain values without code behind them. Positions count lines (rows) from 0.
#ifndef VOK_TABLE_RW_CORE_TABLEREADEROPTIONS_H
#define VOK_TABLE_RW_CORE_TABLEREADEROPTIONS_H

#include <cstdint>
#include <string>
#include <utility>

namespace tableRW {

/// The type of a field.
enum fldType : std::int32_t {
  fldText = 0,    ///< text, or not known to be numeric; also the answer for an unknown field
  fldNumber = 1,  ///< numbers
};

/// Which reader variant to build; the numbers are fixed and cross the C interface.
enum fileType : std::int32_t {
  fileTypeAuto = 0,           ///< chosen by the extension, else by the file's first line
  fileTypeCsv = 1,            ///< delimited text
  fileTypeXlsConverter = 2,   ///< spreadsheet through the converter program
  fileTypeXlsOdbc = 3,        ///< spreadsheet through ODBC
  fileTypeAccessOdbc = 4,     ///< Access database; the same variant as fileTypeXlsOdbc
  fileTypeDbf = 5,            ///< dBASE and FoxPro table
  fileTypeSqlite = 6,         ///< SQLite database
  fileTypeMicromineData = 7,  ///< Micromine data file
  fileTypeMicromineDhdb = 8,  ///< Micromine drill-hole database
  fileTypePetrel = 9,         ///< Petrel text table
};

/// The options of a reader. The fields are assigned directly and nothing is checked here; the factory
/// moves `data_position` below `header_position` (see tableReader::open).
struct tableReaderOptions {
  tableReaderOptions() = default;
  /// Defaults for everything but the path.
  explicit tableReaderOptions(std::wstring source) : path(std::move(source)) {}

  std::wstring path;                 ///< full path of the file or database
  std::int32_t header_position = 0;  ///< line of the field names; negative: there is none
  std::uint64_t data_position = 1;   ///< first line that may hold data
  std::int32_t direction = 0;        ///< 0: one record a line; 1: records run across columns
  std::int32_t file_type = 0;        ///< a fileType; others build a reader that reads nothing
  std::wstring delimiter = L";";     ///< between values of delimited text; matched as a whole
  std::wstring quote = L"\"";        ///< around values of delimited text; empty: no quoting
  std::int32_t encoding = 0;         ///< index into textEncodings; 0 is UTF-8
  std::wstring table;                ///< table or sheet, where the source holds several
};

/// Which controls a host should offer for a source. The library itself never reads these flags.
struct capability_options {
  bool offersTables;       ///< a choice of table or sheet
  bool offersPreview;      ///< a preview of the first rows
  bool offersTextOptions;  ///< options of text: encoding, delimiter
  bool offersPositions;    ///< positions of the header and of the data
};

}  // namespace tableRW

#endif

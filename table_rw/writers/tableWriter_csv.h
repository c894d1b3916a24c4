// Delimited text in Windows-1251, one line a row, CR LF at the end of every line.
//
// ODD: the code page is Windows-1251 whatever the text holds: the programs that read these files know no
// other. Characters it lacks become their best fit or "?".
// ODD: values are written as they are, without quoting or escaping; one that holds the delimiter or a
// line break comes apart when it is read back. A NUL ends the line's text.
// ODD: when the file cannot be created, rows are accepted and go nowhere.
#ifndef VOK_TABLE_RW_WRITERS_TABLEWRITER_CSV_H
#define VOK_TABLE_RW_WRITERS_TABLEWRITER_CSV_H

#include <string>
#include <string_view>
#include <vector>

#include "platform/singleByteEncoder.h"
#include "table_rw/text/textEncoding.h"
#include "table_rw/text/textModeFile.h"
#include "table_rw/writers/tableWriter.h"

namespace tableRW {

class tableWriter_csv : public tableWriter {
 public:
  /// Creates the file and writes the field names as its first line.
  explicit tableWriter_csv(tableWriterOptions options);
  tableWriter_csv(const tableWriter_csv&) = delete;
  tableWriter_csv& operator=(const tableWriter_csv&) = delete;
  ~tableWriter_csv() override;

  /// Writes one line; the number of values is not compared with the number of fields.
  bool addRow(const std::vector<std::wstring>& row) override;

 private:
  /// The open output: the stream and how its text is encoded.
  struct textFileWriter {
    textModeOutput file;
    textEncoding encoding = encodingCp1251;
  };

  void writeOddLine(std::string_view line);

  tableWriterOptions options_;
  textFileWriter output_;
  platform::singleByteEncoder encoder_;
  std::string delimiter_;  // in the file's code page
  bool delimiterIsPlain_;  // it holds neither NUL nor LF
};

}  // namespace tableRW

#endif

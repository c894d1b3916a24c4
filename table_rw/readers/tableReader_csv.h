// Delimited text: one record a line, one delimiter string between values, a quote character around a
// value that holds the delimiter.
//
// The dialect is small on purpose: values never span lines, a doubled quote is no escape, and quotes
// count only at the two ends of a value. Field names are taken as they are, values are trimmed. A line
// whose number of values differs from the number of fields is rejected and its number listed; blank
// lines and lines of bare delimiters are neither data nor errors. All fields are text.
//
// Refused: any direction but 0, and a file that cannot be opened; everything else reads.
//
// ODD: quoted pieces are joined back only when a plain split gives the wrong number of values, so a
// quoted value that holds the delimiter comes apart when the count happens to fit. Files in use are
// read with that rule.
// ODD: `readDemo` reads the whole file. Hosts show their preview from it and keep the reader.
#ifndef VOK_TABLE_RW_READERS_TABLEREADER_CSV_H
#define VOK_TABLE_RW_READERS_TABLEREADER_CSV_H

#include <functional>
#include <string>
#include <vector>

#include "table_rw/core/tableReader.h"

namespace tableRW {

class tableReader_csv : public tableReader {
 public:
  explicit tableReader_csv(tableReaderOptions options);

  bool readOnlyHeaders() override;
  bool readDemo(int n) override;
  bool read() override;
  void setTable(std::wstring name) override;
  /// The one entry "csv".
  void tableList(std::vector<std::wstring>& list) override;
  capability_options get_capabilities() override;
  bool rejectedRecords(const std::function<bool(const rejectedRecord&)>& receive) override;

  /// Splits a decoded line into values; `values` is replaced. The result depends on the number of fields
  /// the reader holds at this moment.
  void parceString(const std::wstring& line, std::vector<std::wstring>& values) const;

 private:
  bool readFile();
  void nameFields(const std::vector<std::wstring>& names);
  void numberFields(const std::wstring& firstLine);
  void addRecord(const std::wstring& line, std::uint64_t number, std::vector<std::wstring>& values);

  bool headersOnly_ = false;
};

}  // namespace tableRW

#endif

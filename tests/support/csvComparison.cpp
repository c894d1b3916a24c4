#include "tests/support/csvComparison.h"

#include <vector>

#include "table_rw/readers/tableReader_csv.h"
#include "tests/reference/csvTwin.h"

namespace testSupport {
namespace {

using rejectedLines = std::vector<reference::rejectedLine>;

rejectedLines rejectedBy(tableRW::tableReader_csv& reader) {
  rejectedLines lines;
  reader.rejectedRecords([&](const tableRW::rejectedRecord& record) {
    lines.push_back({record.line, record.valueCount, record.text});
    return true;
  });
  return lines;
}

std::string describe(const rejectedLines& lines) {
  std::string out;
  for (const reference::rejectedLine& line : lines)
    out.append("[")
        .append(std::to_string(line.number))
        .append(": ")
        .append(std::to_string(line.valueCount))
        .append(" in ")
        .append(printable(line.text))
        .append("]");
  return out;
}

std::string difference(const std::string& what, const std::string& library, const std::string& twin,
                       const csvOptions& options) {
  return what + " with " + describe(options) + "\nlibrary " + shortened(library) + "\ntwin    " +
         shortened(twin);
}

}  // namespace

tableRW::tableReaderOptions csvOptions::forFile(const std::wstring& path) const {
  tableRW::tableReaderOptions options(path);
  options.header_position = header;
  options.data_position = data;
  options.delimiter = delimiter;
  options.quote = quote;
  options.encoding = encoding;
  return options;
}

std::string describe(const csvOptions& options) {
  return "header " + std::to_string(options.header) + ", data " + std::to_string(options.data) +
         ", delimiter '" + printable(options.delimiter) + "', quote '" + printable(options.quote) +
         "', encoding " + std::to_string(options.encoding);
}

tableContent readCsvFile(const std::wstring& path, const csvOptions& options) {
  tableRW::tableReader_csv reader(options.forFile(path));
  reader.read();
  return contentOf(reader);
}

std::string differenceFromTwin(const std::wstring& path, std::string_view bytes,
                               const csvOptions& options) {
  const tableRW::tableReaderOptions readerOptions = options.forFile(path);
  tableRW::tableReader_csv reader(readerOptions);

  const bool headersWereRead = reader.readOnlyHeaders();
  const tableContent headers = contentOf(reader);
  const tableContent wantedHeaders = reference::readCsv(bytes, readerOptions, true);
  if (!headersWereRead || headers != wantedHeaders)
    return difference("readOnlyHeaders", describe(headers), describe(wantedHeaders), options);

  const bool wasRead = reader.read();
  const tableContent table = contentOf(reader);
  rejectedLines wantedRejected;
  const tableContent wanted = reference::readCsv(bytes, readerOptions, false, &wantedRejected);
  if (!wasRead || table != wanted)
    return difference("read", describe(table), describe(wanted), options);

  const rejectedLines rejected = rejectedBy(reader);
  if (rejected != wantedRejected)
    return difference("rejectedRecords", describe(rejected), describe(wantedRejected), options);
  return {};
}

}  // namespace testSupport

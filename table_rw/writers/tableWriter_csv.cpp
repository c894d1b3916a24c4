#include "table_rw/writers/tableWriter_csv.h"

#include <cstdint>
#include <limits>
#include <utility>

#include "table_rw/text/textConversion.h"

namespace tableRW {

tableWriter_csv::tableWriter_csv(tableWriterOptions options) : options_(std::move(options)) {
  if (!output_.file.open(options_.fileName)) return;
  std::vector<std::wstring> names;
  names.reserve(options_.fields.size());
  for (const writerField& field : options_.fields) names.push_back(field.name);
  tableWriter_csv::addRow(names);
}

tableWriter_csv::~tableWriter_csv() = default;

bool tableWriter_csv::addRow(const std::vector<std::wstring>& row) {
  if (row.empty()) return false;
  if (!output_.file.isOpen()) return true;
  line_.clear();
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (i > 0) line_ += options_.delimiter;
    line_ += row[i];
  }
  std::string bytes;
  if (line_.size() <= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
    bytes = encodeText(line_.data(), static_cast<std::int32_t>(line_.size()), output_.encoding);
  if (const std::size_t nul = bytes.find('\0'); nul != std::string::npos) bytes.resize(nul);
  bytes += '\n';
  output_.file.write(bytes);
  return true;
}

}  // namespace tableRW

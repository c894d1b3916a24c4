#include "table_rw/writers/tableWriter_csv.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace tableRW {

using std::string_literals::operator""s;

namespace {

constexpr std::size_t longestLine = std::numeric_limits<std::int32_t>::max();  // in bytes

}  // namespace

tableWriter_csv::tableWriter_csv(tableWriterOptions options)
    : options_(std::move(options)), encoder_(codePageOf(output_.encoding)) {
  delimiter_.resize(options_.delimiter.size() * platform::singleByteEncoder::mostBytes);
  const platform::encodedText delimiter = encoder_.encode(options_.delimiter, delimiter_.data());
  delimiter_.resize(static_cast<std::size_t>(delimiter.end - delimiter_.data()));
  delimiterIsPlain_ = delimiter_.find_first_of("\0\n"s) == std::string::npos;
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
  std::size_t elements = 0;
  for (const std::wstring& value : row) elements += value.size();
  char* const begin = output_.file.room(elements * platform::singleByteEncoder::mostBytes +
                                        (row.size() - 1) * delimiter_.size());
  platform::encodedText line = {begin, delimiterIsPlain_};
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (i > 0) line.end = std::copy(delimiter_.begin(), delimiter_.end(), line.end);
    const platform::encodedText value = encoder_.encode(row[i], line.end);
    line = {value.end, line.plain && value.plain};
  }
  const auto size = static_cast<std::size_t>(line.end - begin);
  if (line.plain && size <= longestLine)
    output_.file.writeLine(size);
  else
    writeOddLine({begin, size});
  return true;
}

// A line that may hold a NUL, which ends its text, or an LF, which becomes CR LF.
void tableWriter_csv::writeOddLine(std::string_view line) {
  // A line too long for the platform to convert comes out empty, like any that it refuses.
  if (line.size() > longestLine) line = {};
  std::string text(line.substr(0, line.find('\0')));
  text += '\n';
  output_.file.write(text);
}

}  // namespace tableRW

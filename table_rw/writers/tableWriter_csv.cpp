#include "table_rw/writers/tableWriter_csv.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>

namespace tableRW {

tableWriter_csv::tableWriter_csv(tableWriterOptions options)
    : options_(std::move(options)), encoder_(codePageOf(output_.encoding)) {
  delimiter_.resize(options_.delimiter.size() * platform::singleByteEncoder::mostBytes);
  const char* const end = encoder_.encode(options_.delimiter, delimiter_.data());
  delimiter_.resize(static_cast<std::size_t>(end - delimiter_.data()));
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
  output_.file.write(encodeLine(row));
  return true;
}

// One line with its LF, in the file's code page; valid until the next.
std::string_view tableWriter_csv::encodeLine(const std::vector<std::wstring>& row) {
  std::size_t elements = 0;
  for (const std::wstring& value : row) elements += value.size();
  const std::size_t most =
      elements * platform::singleByteEncoder::mostBytes + (row.size() - 1) * delimiter_.size() + 1;
  if (line_.size() < most) line_.resize(most + most / 2);
  char* const begin = line_.data();
  char* end = begin;
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (i > 0) end = std::copy(delimiter_.begin(), delimiter_.end(), end);
    end = encoder_.encode(row[i], end);
  }
  // A line too long for the platform to convert comes out empty, like any that it refuses.
  if (end - begin > std::numeric_limits<std::int32_t>::max()) end = begin;
  if (void* nul = std::memchr(begin, 0, static_cast<std::size_t>(end - begin)))
    end = static_cast<char*>(nul);
  *end++ = '\n';
  return {begin, static_cast<std::size_t>(end - begin)};
}

}  // namespace tableRW

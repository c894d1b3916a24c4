// Looking values up in the rows of a reader, by the values of other fields: linear scans that compare
// the stored bytes with the wanted value, which is narrowed once.
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "table_rw/core/tableReader.h"
#include "table_rw/text/utf8.h"

namespace tableRW {
namespace {

// A condition in the table's own text form.
struct wantedValue {
  std::size_t column;
  std::string bytes;
};

std::vector<wantedValue> narrowed(const std::vector<tableReader::indexCondition>& conditions) {
  std::vector<wantedValue> wanted;
  wanted.reserve(conditions.size());
  for (const auto& [column, text] : conditions) wanted.push_back({column, utf8FromWide(text)});
  return wanted;
}

bool satisfies(const valueTable& rows, std::size_t row, const std::vector<wantedValue>& wanted) {
  return std::all_of(wanted.begin(), wanted.end(), [&](const wantedValue& value) {
    return rows.bytes(row, value.column) == value.bytes;
  });
}

}  // namespace

bool tableReader::hasColumns(const std::vector<indexCondition>& conditions) const {
  return std::all_of(conditions.begin(), conditions.end(), [this](const indexCondition& condition) {
    return condition.first < fieldNames_.size();
  });
}

std::wstring tableReader::searchValue(std::wstring resultField,
                                      const std::vector<indexCondition>& conditions) const {
  const std::int32_t result = fieldNum(std::move(resultField));
  if (result < 0 || !hasColumns(conditions)) return {};
  const std::vector<wantedValue> wanted = narrowed(conditions);
  for (std::size_t row = 0; row < rows_.rowCount(); ++row)
    if (satisfies(rows_, row, wanted)) return rows_.text(row, static_cast<std::size_t>(result));
  return {};
}

void tableReader::searchValue(std::wstring resultField,
                              const std::vector<indexCondition>& conditions,
                              std::vector<std::wstring>& out) const {
  out.clear();
  const std::int32_t result = fieldNum(std::move(resultField));
  if (result < 0 || !hasColumns(conditions)) return;
  const std::vector<wantedValue> wanted = narrowed(conditions);
  for (std::size_t row = 0; row < rows_.rowCount(); ++row)
    if (satisfies(rows_, row, wanted))
      out.push_back(rows_.text(row, static_cast<std::size_t>(result)));
}

void tableReader::searchValue(std::wstring resultField, namedCondition condition,
                              std::vector<std::wstring>& out) const {
  const std::int32_t column = fieldNum(condition.first);
  if (column < 0) {
    out.clear();
    return;
  }
  searchValue(std::move(resultField),
              std::vector<indexCondition>{
                  {static_cast<std::size_t>(column), std::move(condition.second)}
  },
              out);
}

}  // namespace tableRW

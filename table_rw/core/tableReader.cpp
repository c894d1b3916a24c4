#include "table_rw/core/tableReader.h"

#include <algorithm>
#include <limits>

namespace tableRW {

tableReader::tableReader() = default;
tableReader::tableReader(tableReaderOptions options) : options_(std::move(options)) {}
tableReader::tableReader(const tableReader& other) = default;
tableReader& tableReader::operator=(const tableReader& other) = default;
tableReader::~tableReader() = default;

bool tableReader::rejectedRecords(const std::function<bool(const rejectedRecord&)>&) {
  return false;
}

std::wstring tableReader::path() const { return options_.path; }

std::uint64_t tableReader::fieldCount() const { return fieldNames_.size(); }

std::uint64_t tableReader::count() const { return rows_.rowCount(); }

bool tableReader::isWhole() const { return isWhole_; }

bool tableReader::isOK() const { return ok_; }

void tableReader::fieldList(std::vector<std::wstring>& out) const { out = fieldNames_; }

// ODD: compared exactly, and the first of equal names wins: files have repeated columns.
std::int32_t tableReader::fieldNum(std::wstring name) const {
  const auto found = std::find(fieldNames_.begin(), fieldNames_.end(), name);
  return found == fieldNames_.end() ? -1 : static_cast<std::int32_t>(found - fieldNames_.begin());
}

std::wstring tableReader::fieldName(std::size_t index) const {
  return index < fieldNames_.size() ? fieldNames_[index] : std::wstring();
}

fldType tableReader::fieldType(std::size_t index) const {
  return index < fieldTypes_.size() ? fieldTypes_[index] : fldText;
}

fldType tableReader::fieldType(std::wstring name) const {
  const std::int32_t index = fieldNum(std::move(name));
  return index < 0 ? fldText : fieldType(static_cast<std::size_t>(index));
}

std::wstring tableReader::value(std::size_t index, std::size_t row) const {
  return index < fieldNames_.size() ? rows_.text(row, index) : std::wstring();
}

std::wstring tableReader::value(const std::wstring& name, std::size_t row) const {
  const std::int32_t index = fieldNum(name);
  return index < 0 ? std::wstring() : value(static_cast<std::size_t>(index), row);
}

void tableReader::values(std::size_t index, std::vector<std::wstring>& out) const {
  out.clear();
  if (index >= fieldNames_.size()) return;
  out.reserve(rows_.rowCount());
  for (std::size_t row = 0; row < rows_.rowCount(); ++row) out.push_back(rows_.text(row, index));
}

void tableReader::values(const std::wstring& name, std::vector<std::wstring>& out) const {
  // WHY the index comes first: the name may be an element of `out`.
  const std::int32_t index = fieldNum(name);
  out.clear();
  if (index >= 0) values(static_cast<std::size_t>(index), out);
}

void tableReader::getRow(std::size_t row, std::vector<std::wstring>& out) const {
  out.clear();
  const std::size_t size = rows_.rowSize(row);
  out.reserve(size);
  for (std::size_t column = 0; column < size; ++column) out.push_back(rows_.text(row, column));
}

bool tableReader::isRowEmpty(std::vector<std::wstring>& row) const {
  return std::all_of(row.begin(), row.end(),
                     [](const std::wstring& value) { return value.empty(); });
}

bool tableReader::isSameFile(tableReaderOptions options) const {
  return options.path == options_.path && options.table == options_.table;
}

void tableReader::errorList(std::vector<std::size_t>& out) const {
  out.assign(errors_.begin(), errors_.end());
}

std::uint64_t tableReader::errorCount() const { return errors_.size(); }

std::uint64_t tableReader::getError(std::size_t i) const {
  return i < errors_.size() ? errors_[i] : std::numeric_limits<std::uint64_t>::max();
}

}  // namespace tableRW

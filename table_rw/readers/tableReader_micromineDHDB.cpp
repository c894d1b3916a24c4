#include "table_rw/readers/tableReader_micromineDHDB.h"

#include <utility>

#include "table_rw/readers/odbcSource.h"

namespace tableRW {

tableReader_micromineDHDB::tableReader_micromineDHDB(tableReaderOptions options)
    : tableReader(std::move(options)) {}

bool tableReader_micromineDHDB::readOnlyHeaders() {
  headersOnly_ = true;
  return read();
}

bool tableReader_micromineDHDB::readDemo(int n) {
  headersOnly_ = false;
  rowLimit_ = n;
  return read();
}

bool tableReader_micromineDHDB::connect(odbcSource& source) {
  ok_ = source.connect(
      "Driver={Microsoft Access Driver (*.mdb, *.accdb)};DBQ=" + toSystem(options_.path) + ";",
      options_.path);
  return ok_;
}

bool tableReader_micromineDHDB::read() {
  fieldNames_.clear();
  rows_.clear();
  errors_.clear();
  odbcSource source;
  if (!connect(source) || !source.selectFrom(options_.table, *this)) return false;
  // ODD: a success without fields.
  if (!source.describe()) return true;
  for (std::uint32_t column = 0; column < source.columnCount(); ++column) {
    fieldNames_.push_back(source.columnName(column));
    fieldTypes_.push_back(source.columnType(column));
  }
  if (headersOnly_) return true;
  return source.addRows(rows_, rowLimit_);
}

void tableReader_micromineDHDB::setTable(std::wstring name) { options_.table = std::move(name); }

void tableReader_micromineDHDB::tableList(std::vector<std::wstring>& list) {
  list.clear();
  odbcSource source;
  if (connect(source)) source.listTables(list, true);
}

capability_options tableReader_micromineDHDB::get_capabilities() {
  return {true, false, false, false};
}

}  // namespace tableRW

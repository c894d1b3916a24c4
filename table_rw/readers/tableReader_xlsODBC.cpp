#include "table_rw/readers/tableReader_xlsODBC.h"

#include <cstdint>
#include <string_view>
#include <utility>

#include "platform/caseFolding.h"
#include "table_rw/core/pathNames.h"
#include "table_rw/readers/odbcSource.h"

namespace tableRW {
namespace {

constexpr std::string_view excel = "excel";
constexpr std::string_view access = "access";

bool skipRows(odbcSource& source, std::uint64_t count) {
  for (std::uint64_t row = 0; row < count; ++row)
    if (!source.fetch()) return false;
  return true;
}

}  // namespace

tableReader_xlsODBC::tableReader_xlsODBC(tableReaderOptions options)
    : tableReader(std::move(options)) {}

bool tableReader_xlsODBC::readOnlyHeaders() {
  rowLimit_ = -1;
  headersOnly_ = true;
  return OptionRead();
}

bool tableReader_xlsODBC::readDemo(int n) {
  rowLimit_ = n;
  headersOnly_ = false;
  return OptionRead();
}

bool tableReader_xlsODBC::read() {
  rowLimit_ = -1;
  headersOnly_ = false;
  return OptionRead();
}

// ODD: exactly these letters.
// ODD: a path without a dot lies outside of itself.
std::string tableReader_xlsODBC::getExtName() const {
  const std::wstring extension = options_.path.substr(options_.path.rfind(L'.'));
  if (extension == L".xls" || extension == L".xlsx") return std::string(excel);
  if (extension == L".mdb" || extension == L".accdb") return std::string(access);
  return {};
}

// ODD: when none of the candidates accepts the file the last one is answered, so that the caller's own
// attempt fails as it did.
std::string tableReader_xlsODBC::makeDSNstring() const {
  const std::string kind = getExtName();
  std::string connectionString;
  for (const std::string& name : odbcDataSources()) {
    if (platform::lowerCaseNarrow(name).find(kind) == std::string::npos) continue;
    connectionString =
        toSystem(L"DSN=" + fromSystem(name.c_str()) + L";DBQ=" + fileNameOf(options_.path) +
                 L";DefaultDir=" + folderOf(options_.path) + L";");
    if (odbcSource().connect(connectionString, options_.path)) break;
  }
  return connectionString;
}

bool tableReader_xlsODBC::connect(odbcSource& source) {
  ok_ = source.connect(makeDSNstring(), options_.path);
  return ok_;
}

bool tableReader_xlsODBC::OptionRead() {
  fieldNames_.clear();
  rows_.clear();
  errors_.clear();
  odbcSource source;
  if (!connect(source) || !source.selectFrom(options_.table, *this)) return false;
  const std::string kind = getExtName();
  // ODD: a success without fields.
  if (!source.describe()) return true;
  if (!readHeader(source, kind)) return false;
  if (headersOnly_) return true;
  if (!skipToData(source, kind)) return false;
  return source.addRows(rows_, rowLimit_);
}

// @return false when the sheet ends before its header does
bool tableReader_xlsODBC::readHeader(odbcSource& source, const std::string& kind) {
  if (kind != access && kind != excel) return true;
  const bool isSheet = kind == excel;
  // ODD: rows without fields; hosts name the fields themselves.
  if (isSheet && options_.header_position > 0)
    return skipRows(source, static_cast<std::uint64_t>(options_.header_position));
  const bool hasNames = !isSheet || options_.header_position == 0;
  for (std::uint32_t column = 0; column < source.columnCount(); ++column) {
    const std::wstring name = source.columnName(column);
    // ODD: numbered from 0, where drivers number from 1.
    fieldNames_.push_back(hasNames ? name : L"F" + std::to_wstring(column));
    fieldTypes_.push_back(source.columnType(column));
    if (!hasNames) rows_.addValue(std::wstring_view(name));
  }
  if (!hasNames) rows_.endRow();
  return true;
}

bool tableReader_xlsODBC::skipToData(odbcSource& source, const std::string& kind) const {
  if (kind != excel) return true;
  const std::int32_t header = options_.header_position;
  const std::uint64_t data = options_.data_position;
  if (header >= 0 && data <= static_cast<std::uint64_t>(header)) return true;
  // As the factory counts: without a header it has put the data at that position plus 1, which wraps.
  return skipRows(source, data - static_cast<std::uint64_t>(std::int64_t{header}) - 1);
}

void tableReader_xlsODBC::setTable(std::wstring name) { options_.table = std::move(name); }

void tableReader_xlsODBC::tableList(std::vector<std::wstring>& out) {
  out.clear();
  odbcSource source;
  if (connect(source)) source.listTables(out, getExtName() == excel);
}

capability_options tableReader_xlsODBC::get_capabilities() { return {true, false, false, true}; }

}  // namespace tableRW

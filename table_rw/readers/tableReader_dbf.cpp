#include "table_rw/readers/tableReader_dbf.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <utility>

#include "platform/codePages.h"
#include "platform/vok_basic.h"
#include "platform/vok_file_dbf.h"
#include "table_rw/text/textEncoding.h"
#include "table_rw/text/valueDecoder.h"

namespace tableRW {
namespace {

static_assert(textStep <= vo_dbf_padding && textStep <= valueTable::writeAhead);

using tablePointer = std::unique_ptr<vo_dbf, decltype(&vo_dbf_close)>;

tablePointer openTable(const std::wstring& path) {
  constexpr int forReading = 1;
  return {vo_dbf_open_w(path.c_str(), forReading, 0), &vo_dbf_close};
}

fldType typeOfCode(int code) {
  constexpr int numericCode = 2;
  constexpr int firstOtherNumber = 6;
  constexpr int lastOtherNumber = 8;
  const bool numeric = code == numericCode || (code >= firstOtherNumber && code <= lastOtherNumber);
  return numeric ? fldNumber : fldText;
}

}  // namespace

tableReader_dbf::tableReader_dbf(tableReaderOptions options) : tableReader(std::move(options)) {}

bool tableReader_dbf::readOnlyHeaders() {
  ok_ = false;
  const tablePointer table = openTable(options_.path);
  if (table == nullptr) return false;
  readFields(table.get());
  ok_ = true;
  return true;
}

bool tableReader_dbf::readDemo(int n) {
  rowLimit_ = n;
  return readFile();
}

bool tableReader_dbf::read() {
  rowLimit_ = -1;
  return readFile();
}

void tableReader_dbf::setTable(std::wstring) {}

void tableReader_dbf::tableList(std::vector<std::wstring>& list) { list.assign(1, L"dbf"); }

capability_options tableReader_dbf::get_capabilities() { return {false, true, false, false}; }

bool tableReader_dbf::readFile() {
  fieldNames_.clear();
  rows_.clear();
  errors_.clear();
  ok_ = false;
  isWhole_ = true;
  const tablePointer table = openTable(options_.path);
  if (table == nullptr) return false;
  readFields(table.get());
  readRecords(table.get());
  isWhole_ = !vo_dbf_has_failed(table.get());
  ok_ = isWhole_;
  return ok_;
}

void tableReader_dbf::readFields(vo_dbf* table) {
  const std::uint32_t count = vo_dbf_get_nf(table);
  for (std::uint32_t field = 0; field < count; ++field) {
    std::wstring name;
    Tvo_std_wstring_adapter receiver(name);
    const std::unique_ptr<vo_string_adp, decltype(&vo_string_adp_destroy)> adapter(
        vo_string_adp_create(&receiver), &vo_string_adp_destroy);
    vo_dbf_get_field_name_w(table, field, adapter.get());
    fieldNames_.push_back(std::move(name));
    fieldTypes_.push_back(typeOfCode(vo_dbf_get_field_type(table, field)));
  }
}

// WHY record by record until there is none: asking for their number would read the whole file once more.
void tableReader_dbf::readRecords(vo_dbf* table) {
  const std::uint32_t fields = vo_dbf_get_nf(table);
  const std::int32_t limit = rowLimit_ >= 1 ? rowLimit_ : std::numeric_limits<std::int32_t>::max();
  const valueDecoder decoder(platform::resolveCodePage(codePageOf(encodingSystem)));
  for (std::int32_t record = 0; record < limit; ++record) {
    const vo_dbf_value* const values = vo_dbf_get_record(table, record);
    if (values == nullptr) return;
    std::size_t size = 0;
    for (std::uint32_t field = 0; field < fields; ++field) size += values[field].length;
    rows_.addRow(fields, size * valueDecoder::mostBytes, [&](std::size_t field, char* to) {
      const vo_dbf_value& value = values[field];
      return value.bytes == nullptr ? to : decoder.decode(value.bytes, value.length, to);
    });
  }
}

}  // namespace tableRW

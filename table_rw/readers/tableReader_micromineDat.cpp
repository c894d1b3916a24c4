#include "table_rw/readers/tableReader_micromineDat.h"

#include <cstdint>
#include <string_view>
#include <utility>

#include "platform/vok_basic.h"
#include "platform/vok_file_micromine.h"
#include "table_rw/text/valueDecoder.h"

namespace tableRW {
namespace {

static_assert(textStep <= vo_mm_padding && textStep <= valueTable::writeAhead);

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// WHY before decoding: in every code page these bytes are these characters and never a part of another.
std::string_view trimmed(const vo_mm_value& value) {
  const char* begin = value.bytes;
  const char* end = begin + value.length;
  while (begin != end && isBlank(*begin)) ++begin;
  while (begin != end && isBlank(end[-1])) --end;
  return {begin, static_cast<std::size_t>(end - begin)};
}

std::wstring nameOf(const vo_mm_tbl_reader* table, std::int32_t property) {
  std::wstring name;
  Tvo_std_wstring_adapter receiver(name);
  const std::unique_ptr<vo_string_adp, decltype(&vo_string_adp_destroy)> adapter(
      vo_string_adp_create(&receiver), &vo_string_adp_destroy);
  vo_mm_tbl_reader_get_prp_name(table, property, adapter.get());
  return name;
}

}  // namespace

tableReader_micromineDat::tableReader_micromineDat(tableReaderOptions options)
    : tableReader(std::move(options)) {}

bool tableReader_micromineDat::readOnlyHeaders() {
  headersOnly_ = true;
  return read();
}

bool tableReader_micromineDat::readDemo(int n) {
  headersOnly_ = false;
  rowLimit_ = n;
  return read();
}

bool tableReader_micromineDat::read() {
  fieldNames_.clear();
  rows_.clear();
  ok_ = false;
  isWhole_ = true;
  std::unique_ptr<vo_mm_tbl_reader, decltype(&vo_mm_tbl_reader_close)> table(
      vo_mm_tbl_reader_open(options_.path.c_str()), &vo_mm_tbl_reader_close);
  if (table == nullptr) return false;
  readFields(table.get());
  if (headersOnly_ || fieldNames_.empty()) {
    leftOpen_ = std::move(table);
    return true;
  }
  readRecords(table.get());
  isWhole_ = !vo_mm_tbl_reader_has_failed(table.get());
  ok_ = isWhole_;
  return ok_;
}

void tableReader_micromineDat::setTable(std::wstring) {}

void tableReader_micromineDat::tableList(std::vector<std::wstring>& list) {
  list.assign(1, L"micromine_dat");
}

capability_options tableReader_micromineDat::get_capabilities() {
  return {true, true, false, false};
}

void tableReader_micromineDat::readFields(const vo_mm_tbl_reader* table) {
  constexpr std::int32_t numericType = 2;
  const std::int32_t count = vo_mm_tbl_reader_get_prp_count(table);
  for (std::int32_t property = 0; property < count; ++property) {
    fieldNames_.push_back(nameOf(table, property));
    const bool numeric = vo_mm_tbl_reader_get_prp_type(table, property) == numericType;
    fieldTypes_.push_back(numeric ? fldNumber : fldText);
  }
}

void tableReader_micromineDat::readRecords(vo_mm_tbl_reader* table) {
  const std::size_t fields = fieldNames_.size();
  const valueDecoder decoder(vo_mm_tbl_reader_get_code_page(table));
  const std::int64_t count = vo_mm_tbl_reader_get_row_count(table);
  for (std::int64_t row = 0; row < count; ++row) {
    const vo_mm_value* const values = vo_mm_tbl_reader_get_values(table, row);
    if (values == nullptr) return;  // the file has become shorter
    // ODD: a record of empty values is a row too: hosts count records.
    std::size_t size = 0;
    for (std::size_t field = 0; field < fields; ++field) size += values[field].length;
    rows_.addRow(fields, size * valueDecoder::mostBytes, [&](std::size_t field, char* to) {
      const std::string_view value = trimmed(values[field]);
      return value.empty() ? to : decoder.decode(value.data(), value.size(), to);
    });
  }
}

}  // namespace tableRW

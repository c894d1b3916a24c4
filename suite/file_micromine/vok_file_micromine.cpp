// The operations of vok_file_micromine over the header and the records of a file.
#include "platform/vok_file_micromine.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/codePages.h"
#include "platform/files.h"
#include "suite/file_micromine/micromineHeader.h"
#include "suite/file_micromine/micromineLayout.h"
#include "suite/file_micromine/micromineRecords.h"
#include "suite/file_micromine/micromineValues.h"

using namespace fileMicromine;

static_assert(recordSource::padding >= vo_mm_padding);

namespace {

// Behind every text lie bytes that may be read; so they must behind one that is empty.
constexpr char nothing[vo_mm_padding] = {};

}  // namespace

struct vo_mm_tbl_reader {
  vo_mm_tbl_reader(tableHeader given, platform::binaryFile file)
      : header(std::move(given)),
        records(std::move(file), header),
        values(header.variables.size()) {
    header.codePage = platform::resolveCodePage(header.codePage);
    std::size_t binary = 0;
    for (const variable& each : header.variables)
      if (isBinary(each.type)) ++binary;
    digits.resize(binary * longestNumber + vo_mm_padding);
    makeEmpty();
  }

  void makeEmpty() { std::fill(values.begin(), values.end(), vo_mm_value{nothing, 0}); }

  bool has(std::int32_t property) const {
    return property >= 0 && static_cast<std::size_t>(property) < header.variables.size();
  }

  tableHeader header;
  recordSource records;
  std::vector<vo_mm_value> values;  // of the current record
  std::vector<char> digits;         // texts of its binary numbers
};

namespace {

void takeValues(vo_mm_tbl_reader& table, const char* record) {
  char* digits = table.digits.data();
  for (std::size_t i = 0; i < table.values.size(); ++i) {
    const variable& column = table.header.variables[i];
    const std::string_view text = textOf(column, record, digits);
    if (isBinary(column.type)) digits += longestNumber;
    if (!text.empty()) table.values[i] = {text.data(), text.size()};
  }
}

void feed(const vo_mm_tbl_reader& table, std::string_view bytes, vo_string_adp* receiver) {
  constexpr std::size_t most = std::numeric_limits<int>::max();
  const int size = static_cast<int>(std::min(bytes.size(), most));
  std::wstring text;
  const unsigned page = table.header.codePage;
  if (const int length = platform::decodeCodePage(page, bytes.data(), size, nullptr, 0)) {
    text.resize(static_cast<std::size_t>(length));
    platform::decodeCodePage(page, bytes.data(), size, text.data(), length);
  }
  vo_string_adp_feed(receiver, text.c_str());
}

}  // namespace

vo_mm_tbl_reader* vo_mm_tbl_reader_open(const wchar_t* path) {
  platform::binaryFile file;
  if (path == nullptr || !file.openForReading(path)) return nullptr;
  std::optional<tableHeader> header = readHeader(file);
  if (!header || file.hasFailed()) return nullptr;
  return new vo_mm_tbl_reader(std::move(*header), std::move(file));
}

int32_t vo_mm_tbl_reader_get_prp_count(const vo_mm_tbl_reader* table) {
  return table == nullptr ? 0 : static_cast<int32_t>(table->header.variables.size());
}

void vo_mm_tbl_reader_get_prp_name(const vo_mm_tbl_reader* table, int32_t property,
                                   vo_string_adp* receiver) {
  if (table == nullptr || !table->has(property)) return;
  feed(*table, table->header.variables[static_cast<std::size_t>(property)].name, receiver);
}

int32_t vo_mm_tbl_reader_get_prp_type(const vo_mm_tbl_reader* table, int32_t property) {
  constexpr int32_t text = 1;
  constexpr int32_t number = 2;
  if (table == nullptr || !table->has(property)) return 0;
  const char type = table->header.variables[static_cast<std::size_t>(property)].type;
  return type == typeCharacter ? text : number;
}

int64_t vo_mm_tbl_reader_get_row_count(const vo_mm_tbl_reader* table) {
  return table == nullptr ? 0 : static_cast<int64_t>(table->records.count());
}

void vo_mm_tbl_reader_read_row(vo_mm_tbl_reader* table, int64_t row) {
  vo_mm_tbl_reader_get_values(table, row);
}

void vo_mm_tbl_reader_read_str(vo_mm_tbl_reader* table, int32_t property, vo_string_adp* receiver) {
  if (table == nullptr || !table->has(property)) return;
  const vo_mm_value& value = table->values[static_cast<std::size_t>(property)];
  feed(*table, {value.bytes, value.length}, receiver);
}

const vo_mm_value* vo_mm_tbl_reader_get_values(vo_mm_tbl_reader* table, int64_t row) {
  if (table == nullptr) return nullptr;
  const char* const record =
      row < 0 ? nullptr : table->records.record(static_cast<std::uint64_t>(row));
  table->makeEmpty();
  if (record == nullptr) return nullptr;
  if (table->records.endsProperly(record, static_cast<std::uint64_t>(row)))
    takeValues(*table, record);
  return table->values.data();
}

bool vo_mm_tbl_reader_has_failed(const vo_mm_tbl_reader* table) {
  return table != nullptr && table->records.hasFailed();
}

unsigned vo_mm_tbl_reader_get_code_page(const vo_mm_tbl_reader* table) {
  return table == nullptr ? 0 : table->header.codePage;
}

void vo_mm_tbl_reader_close(vo_mm_tbl_reader* table) { delete table; }

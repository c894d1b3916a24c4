#include "table_rw/capi/vo_table_reader.h"

#include <new>
#include <string>
#include <utility>
#include <vector>

#include "table_rw/capi/handles.h"
#include "table_rw/core/readerVariants.h"
#include "table_rw/core/tableReader.h"

using cInterface::object;
using tableRW::tableReader;
using tableRW::tableReaderOptions;

namespace {

// Runs an operation of a variant and keeps all but an allocation failure from crossing the interface.
template <class Operation>
bool guarded(Operation operation) {
  try {
    return operation();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (...) {
    return false;
  }
}

void feedAll(const std::vector<std::wstring>& texts, vo_string_adp* adapter) {
  for (const std::wstring& text : texts) vo_string_adp_feed(adapter, text.c_str());
}

}  // namespace

vo_table_reader_options* vo_table_reader_options_create(const wchar_t* path) {
  return reinterpret_cast<vo_table_reader_options*>(new tableReaderOptions(std::wstring(path)));
}

void vo_table_reader_options_close(vo_table_reader_options* options) { delete object(options); }

void vo_table_reader_options_set_path(vo_table_reader_options* options, const wchar_t* path) {
  object(options)->path = path;
}

void vo_table_reader_options_set_header_position(vo_table_reader_options* options,
                                                 int32_t position) {
  object(options)->header_position = position;
}

void vo_table_reader_options_set_data_position(vo_table_reader_options* options,
                                               uint64_t position) {
  object(options)->data_position = position;
}

void vo_table_reader_options_set_direction(vo_table_reader_options* options, int32_t direction) {
  if (direction == 0 || direction == 1) object(options)->direction = direction;
}

void vo_table_reader_options_set_file_type(vo_table_reader_options* options, int32_t file_type) {
  // ODD: the types behind DBF cannot be forced here, and an unknown one changes nothing, as an unknown direction
  // does: hosts pass numbers of later versions.
  if (file_type >= tableRW::fileTypeAuto && file_type <= tableRW::fileTypeDbf)
    object(options)->file_type = file_type;
}

void vo_table_reader_options_set_delimiter(vo_table_reader_options* options, wchar_t delimiter) {
  object(options)->delimiter = delimiter == 0 ? std::wstring() : std::wstring(1, delimiter);
}

void vo_table_reader_options_set_encoding(vo_table_reader_options* options, int32_t encoding) {
  object(options)->encoding = encoding;
}

void vo_table_reader_options_set_table(vo_table_reader_options* options, const wchar_t* name) {
  object(options)->table = name;
}

vo_table_reader* vo_table_reader_open(vo_table_reader_options* options) {
  tableReader* reader = nullptr;
  const bool opened = guarded([&] {
    reader = tableReader::open(*object(options));
    return true;
  });
  if (!opened) reader = tableRW::makeDummyReader(*object(options));
  return reinterpret_cast<vo_table_reader*>(reader);
}

void vo_table_reader_close(vo_table_reader* reader) { tableReader::close(object(reader)); }

bool vo_table_reader_read_only_headers(vo_table_reader* reader) {
  return guarded([reader] { return object(reader)->readOnlyHeaders(); });
}

bool vo_table_reader_read_demo(vo_table_reader* reader, int32_t n) {
  return guarded([reader, n] { return object(reader)->readDemo(n); });
}

bool vo_table_reader_read(vo_table_reader* reader) {
  return guarded([reader] { return object(reader)->read(); });
}

void vo_table_reader_set_table(vo_table_reader* reader, const wchar_t* name) {
  guarded([=] {
    object(reader)->setTable(name);
    return true;
  });
}

void vo_table_reader_table_list(vo_table_reader* reader, vo_string_adp* adapter) {
  std::vector<std::wstring> names;
  const bool listed = guarded([reader, &names] {
    object(reader)->tableList(names);
    return true;
  });
  if (listed) feedAll(names, adapter);
}

void vo_table_reader_field_list(vo_table_reader* reader, vo_string_adp* adapter) {
  std::vector<std::wstring> names;
  object(reader)->fieldList(names);
  feedAll(names, adapter);
}

int32_t vo_table_reader_field_num(vo_table_reader* reader, const wchar_t* name) {
  return object(reader)->fieldNum(name);
}

uint64_t vo_table_reader_field_count(vo_table_reader* reader) {
  return object(reader)->fieldCount();
}

uint64_t vo_table_reader_count(vo_table_reader* reader) { return object(reader)->count(); }

void vo_table_reader_value_index(vo_table_reader* reader, uint64_t index, uint64_t row,
                                 vo_string_adp* adapter) {
  vo_string_adp_feed(adapter, object(reader)->value(index, row).c_str());
}

void vo_table_reader_value_name(vo_table_reader* reader, const wchar_t* name, uint64_t row,
                                vo_string_adp* adapter) {
  vo_string_adp_feed(adapter, object(reader)->value(std::wstring(name), row).c_str());
}

void vo_table_reader_row(vo_table_reader* reader, uint64_t row, vo_string_adp* adapter) {
  std::vector<std::wstring> values;
  object(reader)->getRow(row, values);
  feedAll(values, adapter);
}

bool vo_table_reader_is_ok(vo_table_reader* reader) { return object(reader)->isOK(); }

uint64_t vo_table_reader_error_count(vo_table_reader* reader) {
  return object(reader)->errorCount();
}

uint64_t vo_table_reader_error_string(vo_table_reader* reader, uint64_t i) {
  return object(reader)->getError(i);
}

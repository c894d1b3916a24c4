#include "table_rw/capi/vo_table_reader_utf.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "platform/vok_basic.h"
#include "table_rw/capi/handles.h"
#include "table_rw/capi/textUnits.h"

using cInterface::listFiller;
using cInterface::object;
using cInterface::readText;
using cInterface::safely;
using tableRW::tableReader;
using tableRW::tableReaderOptions;
using tableRW::valueTable;

namespace {

// The rows of a reader as they are stored, so that a value goes into a list without a wide string between.
// WHY no member of tableReader: its public names are fixed, and a host has no use for this one.
class storedRows : tableReader {
 public:
  static const valueTable& of(const tableReader& reader) { return reader.*(&storedRows::rows_); }
};

// ---- text in ------------------------------------------------------------------------------------

template <class Unit>
vo_table_reader_options* createOptions(const Unit* path) {
  tableReaderOptions* options = nullptr;
  safely([&] {
    std::wstring wide;
    if (!readText(path, wide)) return false;
    options = new tableReaderOptions(std::move(wide));
    return true;
  });
  return reinterpret_cast<vo_table_reader_options*>(options);
}

template <class Unit>
bool setOption(vo_table_reader_options* options, std::wstring tableReaderOptions::*member,
               const Unit* text) {
  if (options == nullptr) return false;
  return safely([&] { return readText(text, object(options)->*member); });
}

template <class Unit>
bool setMainModulePath(const Unit* path) {
  return safely([path] {
    std::wstring wide;
    if (!readText(path, wide)) return false;
    vo_options_set_main_module_path(wide.c_str());
    return true;
  });
}

template <class Unit>
bool setTable(vo_table_reader* reader, const Unit* name) {
  if (reader == nullptr) return false;
  return safely([&] {
    std::wstring wide;
    if (!readText(name, wide)) return false;
    object(reader)->setTable(std::move(wide));
    return true;
  });
}

template <class Unit>
std::int32_t fieldNumber(vo_table_reader* reader, const Unit* name) {
  std::int32_t number = -1;
  if (reader == nullptr) return number;
  safely([&] {
    std::wstring wide;
    if (!readText(name, wide)) return false;
    number = object(reader)->fieldNum(std::move(wide));
    return true;
  });
  return number;
}

// ---- text out -----------------------------------------------------------------------------------

// Fills a list with what `fill(reader, filler)` adds; empties it when that answers false or throws.
template <class Unit, class Fill>
bool filled(vo_table_reader* reader, vo_text_list* list, Fill fill) {
  if (list == nullptr) return false;
  listFiller<Unit> filler(*list);
  if (reader != nullptr && safely([&] { return fill(*object(reader), filler); })) return true;
  list->clear();
  return false;
}

template <class Unit>
bool addAll(const std::vector<std::wstring>& texts, listFiller<Unit>& filler) {
  for (const std::wstring& text : texts) filler.add(text);
  return true;
}

// A value, as tableReader::value answers it: the fields count, not what a longer row holds.
std::string_view valueBytes(const tableReader& reader, std::uint64_t index, std::uint64_t row) {
  return index < reader.fieldCount() ? storedRows::of(reader).bytes(row, index)
                                     : std::string_view();
}

template <class Unit>
bool fillTables(vo_table_reader* reader, vo_text_list* list) {
  return filled<Unit>(reader, list, [](tableReader& source, listFiller<Unit>& filler) {
    std::vector<std::wstring> names;
    source.tableList(names);
    return addAll(names, filler);
  });
}

template <class Unit>
bool fillFields(vo_table_reader* reader, vo_text_list* list) {
  return filled<Unit>(reader, list, [](tableReader& source, listFiller<Unit>& filler) {
    std::vector<std::wstring> names;
    source.fieldList(names);
    return addAll(names, filler);
  });
}

template <class Unit>
bool fillValue(vo_table_reader* reader, std::uint64_t index, std::uint64_t row,
               vo_text_list* list) {
  return filled<Unit>(reader, list, [=](tableReader& source, listFiller<Unit>& filler) {
    filler.add(valueBytes(source, index, row));
    return true;
  });
}

template <class Unit>
bool fillNamedValue(vo_table_reader* reader, const Unit* name, std::uint64_t row,
                    vo_text_list* list) {
  return filled<Unit>(reader, list, [=](tableReader& source, listFiller<Unit>& filler) {
    std::wstring wide;
    if (!readText(name, wide)) return false;
    const std::int32_t index = source.fieldNum(std::move(wide));
    filler.add(index < 0 ? std::string_view()
                         : valueBytes(source, static_cast<std::uint64_t>(index), row));
    return true;
  });
}

template <class Unit>
bool fillRow(vo_table_reader* reader, std::uint64_t row, vo_text_list* list) {
  return filled<Unit>(reader, list, [=](tableReader& source, listFiller<Unit>& filler) {
    const valueTable& rows = storedRows::of(source);
    const std::size_t size = rows.rowSize(row);
    for (std::size_t column = 0; column < size; ++column) filler.add(rows.bytes(row, column));
    return true;
  });
}

template <class Unit>
bool fillColumn(vo_table_reader* reader, std::uint64_t index, vo_text_list* list) {
  return filled<Unit>(reader, list, [=](tableReader& source, listFiller<Unit>& filler) {
    if (index >= source.fieldCount()) return true;
    const valueTable& rows = storedRows::of(source);
    list->offsets.reserve(rows.rowCount() + 1);
    for (std::size_t row = 0; row < rows.rowCount(); ++row) filler.add(rows.bytes(row, index));
    return true;
  });
}

// The conditions of a search as a C caller gives them.
template <class Unit>
struct conditionArrays {
  const std::uint64_t* columns;
  const Unit* const* values;
  std::uint64_t count;
};

template <class Unit>
bool fillFound(vo_table_reader* reader, const Unit* result, const conditionArrays<Unit>& given,
               vo_text_list* list) {
  return filled<Unit>(reader, list, [&](tableReader& source, listFiller<Unit>& filler) {
    if (given.count > 0 && (given.columns == nullptr || given.values == nullptr)) return false;
    std::wstring field;
    if (!readText(result, field)) return false;
    std::vector<tableReader::indexCondition> conditions;
    for (std::uint64_t i = 0; i < given.count; ++i) {
      std::wstring value;
      if (!readText(given.values[i], value)) return false;
      conditions.emplace_back(given.columns[i], std::move(value));
    }
    std::vector<std::wstring> found;
    source.searchValue(std::move(field), conditions, found);
    return addAll(found, filler);
  });
}

template <class Unit>
bool fillRejected(vo_table_reader* reader, std::uint64_t most, vo_text_list* list) {
  return filled<Unit>(reader, list, [=](tableReader& source, listFiller<Unit>& filler) {
    std::uint64_t added = 0;
    return source.rejectedRecords([&](const tableRW::rejectedRecord& record) {
      if (added == most) return false;
      filler.add(record.text);
      return ++added < most;
    });
  });
}

}  // namespace

// ---- the suite ----------------------------------------------------------------------------------

bool vo_options_set_main_module_path_u8(const char* path) { return setMainModulePath(path); }

bool vo_options_set_main_module_path_u16(const uint16_t* path) { return setMainModulePath(path); }

// ---- options ------------------------------------------------------------------------------------

vo_table_reader_options* vo_table_reader_options_create_u8(const char* path) {
  return createOptions(path);
}

vo_table_reader_options* vo_table_reader_options_create_u16(const uint16_t* path) {
  return createOptions(path);
}

bool vo_table_reader_options_set_path_u8(vo_table_reader_options* options, const char* path) {
  return setOption(options, &tableReaderOptions::path, path);
}

bool vo_table_reader_options_set_path_u16(vo_table_reader_options* options, const uint16_t* path) {
  return setOption(options, &tableReaderOptions::path, path);
}

bool vo_table_reader_options_set_delimiter_u8(vo_table_reader_options* options,
                                              const char* delimiter) {
  return setOption(options, &tableReaderOptions::delimiter, delimiter);
}

bool vo_table_reader_options_set_delimiter_u16(vo_table_reader_options* options,
                                               const uint16_t* delimiter) {
  return setOption(options, &tableReaderOptions::delimiter, delimiter);
}

bool vo_table_reader_options_set_quote_u8(vo_table_reader_options* options, const char* quote) {
  return setOption(options, &tableReaderOptions::quote, quote);
}

bool vo_table_reader_options_set_quote_u16(vo_table_reader_options* options,
                                           const uint16_t* quote) {
  return setOption(options, &tableReaderOptions::quote, quote);
}

bool vo_table_reader_options_set_table_u8(vo_table_reader_options* options, const char* name) {
  return setOption(options, &tableReaderOptions::table, name);
}

bool vo_table_reader_options_set_table_u16(vo_table_reader_options* options, const uint16_t* name) {
  return setOption(options, &tableReaderOptions::table, name);
}

bool vo_table_reader_options_set_any_file_type(vo_table_reader_options* options,
                                               int32_t file_type) {
  if (options == nullptr || file_type < tableRW::fileTypeAuto ||
      file_type > tableRW::fileTypePetrel)
    return false;
  object(options)->file_type = file_type;
  return true;
}

// ---- reader -------------------------------------------------------------------------------------

bool vo_table_reader_set_table_u8(vo_table_reader* reader, const char* name) {
  return setTable(reader, name);
}

bool vo_table_reader_set_table_u16(vo_table_reader* reader, const uint16_t* name) {
  return setTable(reader, name);
}

bool vo_table_reader_table_list_u8(vo_table_reader* reader, vo_text_list* list) {
  return fillTables<char>(reader, list);
}

bool vo_table_reader_table_list_u16(vo_table_reader* reader, vo_text_list* list) {
  return fillTables<std::uint16_t>(reader, list);
}

bool vo_table_reader_field_list_u8(vo_table_reader* reader, vo_text_list* list) {
  return fillFields<char>(reader, list);
}

bool vo_table_reader_field_list_u16(vo_table_reader* reader, vo_text_list* list) {
  return fillFields<std::uint16_t>(reader, list);
}

int32_t vo_table_reader_field_num_u8(vo_table_reader* reader, const char* name) {
  return fieldNumber(reader, name);
}

int32_t vo_table_reader_field_num_u16(vo_table_reader* reader, const uint16_t* name) {
  return fieldNumber(reader, name);
}

bool vo_table_reader_is_whole(vo_table_reader* reader) {
  return reader != nullptr && object(reader)->isWhole();
}

int32_t vo_table_reader_field_type(vo_table_reader* reader, uint64_t index) {
  if (reader == nullptr || index >= object(reader)->fieldCount()) return -1;
  return object(reader)->fieldType(static_cast<std::size_t>(index));
}

bool vo_table_reader_value_index_u8(vo_table_reader* reader, uint64_t index, uint64_t row,
                                    vo_text_list* list) {
  return fillValue<char>(reader, index, row, list);
}

bool vo_table_reader_value_index_u16(vo_table_reader* reader, uint64_t index, uint64_t row,
                                     vo_text_list* list) {
  return fillValue<std::uint16_t>(reader, index, row, list);
}

bool vo_table_reader_value_name_u8(vo_table_reader* reader, const char* name, uint64_t row,
                                   vo_text_list* list) {
  return fillNamedValue<char>(reader, name, row, list);
}

bool vo_table_reader_value_name_u16(vo_table_reader* reader, const uint16_t* name, uint64_t row,
                                    vo_text_list* list) {
  return fillNamedValue<std::uint16_t>(reader, name, row, list);
}

bool vo_table_reader_row_u8(vo_table_reader* reader, uint64_t row, vo_text_list* list) {
  return fillRow<char>(reader, row, list);
}

bool vo_table_reader_row_u16(vo_table_reader* reader, uint64_t row, vo_text_list* list) {
  return fillRow<std::uint16_t>(reader, row, list);
}

bool vo_table_reader_column_u8(vo_table_reader* reader, uint64_t index, vo_text_list* list) {
  return fillColumn<char>(reader, index, list);
}

bool vo_table_reader_column_u16(vo_table_reader* reader, uint64_t index, vo_text_list* list) {
  return fillColumn<std::uint16_t>(reader, index, list);
}

bool vo_table_reader_search_u8(vo_table_reader* reader, const char* result, const uint64_t* columns,
                               const char* const* values, uint64_t count, vo_text_list* list) {
  return fillFound<char>(reader, result, {columns, values, count}, list);
}

bool vo_table_reader_search_u16(vo_table_reader* reader, const uint16_t* result,
                                const uint64_t* columns, const uint16_t* const* values,
                                uint64_t count, vo_text_list* list) {
  return fillFound<std::uint16_t>(reader, result, {columns, values, count}, list);
}

bool vo_table_reader_rejected_u8(vo_table_reader* reader, uint64_t most, vo_text_list* list) {
  return fillRejected<char>(reader, most, list);
}

bool vo_table_reader_rejected_u16(vo_table_reader* reader, uint64_t most, vo_text_list* list) {
  return fillRejected<std::uint16_t>(reader, most, list);
}

#include "table_rw/capi/vo_table_writer.h"

#include <string>
#include <utility>
#include <vector>

#include "table_rw/capi/textUnits.h"
#include "table_rw/writers/tableWriter.h"

using cInterface::readText;
using cInterface::safely;
using tableRW::tableWriter;
using tableRW::tableWriterOptions;

namespace {

tableWriterOptions* object(vo_table_writer_options* options) {
  return reinterpret_cast<tableWriterOptions*>(options);
}

tableWriter* object(vo_table_writer* writer) { return reinterpret_cast<tableWriter*>(writer); }

template <class Unit>
vo_table_writer_options* createOptions(const Unit* path) {
  tableWriterOptions* options = nullptr;
  safely([&] {
    tableWriterOptions made;
    if (!readText(path, made.fileName)) return false;
    options = new tableWriterOptions(std::move(made));
    return true;
  });
  return reinterpret_cast<vo_table_writer_options*>(options);
}

template <class Unit>
bool setDelimiter(vo_table_writer_options* options, const Unit* delimiter) {
  if (options == nullptr) return false;
  return safely([&] { return readText(delimiter, object(options)->delimiter); });
}

template <class Unit>
bool addField(vo_table_writer_options* options, const Unit* name, std::int32_t type,
              std::int32_t width, std::int32_t decimals) {
  if (options == nullptr || width < 0 || decimals < 0 || decimals > 255) return false;
  if (type != tableRW::fldText && type != tableRW::fldNumber) return false;
  return safely([&] {
    tableRW::writerField field;
    if (!readText(name, field.name)) return false;
    field.type = static_cast<tableRW::fldType>(type);
    field.width = width;
    field.decimals = static_cast<std::uint8_t>(decimals);
    object(options)->fields.push_back(std::move(field));
    return true;
  });
}

template <class Unit>
bool addRow(vo_table_writer* writer, const Unit* const* values, std::uint64_t count) {
  if (writer == nullptr || (values == nullptr && count > 0)) return false;
  return safely([&] {
    std::vector<std::wstring> row;
    for (std::uint64_t i = 0; i < count; ++i)
      if (!readText(values[i], row.emplace_back())) return false;
    return object(writer)->addRow(row);
  });
}

}  // namespace

vo_table_writer_options* vo_table_writer_options_create_u8(const char* path) {
  return createOptions(path);
}

vo_table_writer_options* vo_table_writer_options_create_u16(const uint16_t* path) {
  return createOptions(path);
}

void vo_table_writer_options_close(vo_table_writer_options* options) { delete object(options); }

bool vo_table_writer_options_set_delimiter_u8(vo_table_writer_options* options,
                                              const char* delimiter) {
  return setDelimiter(options, delimiter);
}

bool vo_table_writer_options_set_delimiter_u16(vo_table_writer_options* options,
                                               const uint16_t* delimiter) {
  return setDelimiter(options, delimiter);
}

bool vo_table_writer_options_add_field_u8(vo_table_writer_options* options, const char* name,
                                          int32_t type, int32_t width, int32_t decimals) {
  return addField(options, name, type, width, decimals);
}

bool vo_table_writer_options_add_field_u16(vo_table_writer_options* options, const uint16_t* name,
                                           int32_t type, int32_t width, int32_t decimals) {
  return addField(options, name, type, width, decimals);
}

vo_table_writer* vo_table_writer_open(const vo_table_writer_options* options) {
  tableWriter* writer = nullptr;
  if (options != nullptr)
    safely([&] {
      writer = tableWriter::open(*reinterpret_cast<const tableWriterOptions*>(options));
      return true;
    });
  return reinterpret_cast<vo_table_writer*>(writer);
}

bool vo_table_writer_add_row_u8(vo_table_writer* writer, const char* const* values,
                                uint64_t count) {
  return addRow(writer, values, count);
}

bool vo_table_writer_add_row_u16(vo_table_writer* writer, const uint16_t* const* values,
                                 uint64_t count) {
  return addRow(writer, values, count);
}

void vo_table_writer_close(vo_table_writer* writer) { tableWriter::close(object(writer)); }

// A DBF table in the hands of a test: opened or created, and closed when the test ends.
#ifndef VOK_TESTS_SUPPORT_OPENEDDBF_H
#define VOK_TESTS_SUPPORT_OPENEDDBF_H

#include <cstdint>
#include <memory>
#include <string>

#include "platform/vok_file_dbf.h"

namespace testSupport {

using ownedDbf = std::unique_ptr<vo_dbf, decltype(&vo_dbf_close)>;

inline ownedDbf openDbf(const std::wstring& path) {
  return {vo_dbf_open_w(path.c_str(), 1, 0), &vo_dbf_close};
}

/// A value; "~" stands for no value.
inline std::string valueOf(vo_dbf* table, std::uint32_t field, std::int32_t record) {
  unsigned char has = 2;
  const std::string text = vo_dbf_get_str(table, field, record, &has);
  return has == 0 ? "~" + text : text;
}

/// All records by vo_dbf_get_str: values set apart by bars, records by slashes.
inline std::string recordsOf(vo_dbf* table) {
  std::string text;
  for (std::int32_t record = 0; record < vo_dbf_get_nr(table); ++record) {
    if (record > 0) text += " / ";
    for (std::uint32_t field = 0; field < vo_dbf_get_nf(table); ++field)
      text += (field > 0 ? "|" : "") + valueOf(table, field, record);
  }
  return text;
}

/// The same by vo_dbf_get_record, from the first record to the one that is not there.
inline std::string recordsAtOnce(vo_dbf* table) {
  std::string text;
  const vo_dbf_value* values = nullptr;
  for (std::int32_t record = 0; (values = vo_dbf_get_record(table, record)) != nullptr; ++record) {
    if (record > 0) text += " / ";
    for (std::uint32_t field = 0; field < vo_dbf_get_nf(table); ++field) {
      text += field > 0 ? "|" : "";
      text += values[field].bytes == nullptr
                  ? "~"
                  : std::string(values[field].bytes, values[field].length);
    }
  }
  return text;
}

inline std::string narrowNameOf(const vo_dbf* table, std::uint32_t field) {
  std::string name = "untouched";
  Tvo_std_string_adapter receiver(name);
  vo_string_adp* const adapter = vo_string_adp_create(&receiver);
  vo_dbf_get_field_name_w(table, field, adapter);
  vo_string_adp_destroy(adapter);
  return name;
}

}  // namespace testSupport

#endif

// A reader without a source, whose results a test fills in directly.
//
//     filledReader reader({L"WELL", L"DEPTH"}, {{L"W-1", L"10"}, {L"W-2", L"20"}});
#ifndef VOK_TESTS_SUPPORT_FILLEDREADER_H
#define VOK_TESTS_SUPPORT_FILLEDREADER_H

#include <utility>

#include "table_rw/core/tableReader.h"
#include "tests/support/tableText.h"

namespace testSupport {

class filledReader : public tableRW::tableReader {
 public:
  filledReader() = default;
  explicit filledReader(tableRW::tableReaderOptions options) : tableReader(std::move(options)) {}
  filledReader(textRow fields, const std::vector<textRow>& rows) {
    fieldNames_ = std::move(fields);
    for (const textRow& row : rows) addRow(row);
  }

  void addRow(const textRow& row) {
    for (const std::wstring& value : row) rows_.addValue(std::wstring_view(value));
    rows_.endRow();
  }

  bool readOnlyHeaders() override { return false; }
  bool readDemo(int) override { return false; }
  bool read() override { return false; }
  void setTable(std::wstring) override {}
  void tableList(std::vector<std::wstring>&) override {}
  tableRW::capability_options get_capabilities() override { return {}; }

  using tableReader::errors_;
  using tableReader::fieldNames_;
  using tableReader::fieldTypes_;
  using tableReader::isRowEmpty;
  using tableReader::ok_;
  using tableReader::options_;
  using tableReader::rowLimit_;
};

}  // namespace testSupport

#endif

#include "table_rw/writers/tableWriter.h"

#include <string>
#include <utility>

#include "table_rw/core/pathNames.h"
#include "table_rw/writers/tableWriter_csv.h"
#include "table_rw/writers/tableWriter_dbf.h"
#include "table_rw/writers/tableWriter_xls.h"

namespace tableRW {
namespace {

template <class Variant>
tableWriter* make(tableWriterOptions options) {
  return new Variant(std::move(options));
}

// ODD: .xls is written as XLSX too; spreadsheet programs open it and old scripts name their files so.
constexpr struct {
  const wchar_t* extension;
  tableWriter* (*make)(tableWriterOptions options);
} writerVariants[] = {
    {L".xls",  make<tableWriter_xls>},
    {L".xlsx", make<tableWriter_xls>},
    {L".dbf",  make<tableWriter_dbf>},
    {L".csv",  make<tableWriter_csv>},
};

}  // namespace

tableWriter& tableWriter::operator=(const tableWriter&) { return *this; }

tableWriter::~tableWriter() = default;

tableWriter* tableWriter::open(tableWriterOptions options) {
  if (options.fileName.empty()) return nullptr;
  const std::wstring extension = extensionOf(options.fileName);
  for (const auto& variant : writerVariants)
    if (extension == variant.extension) return variant.make(std::move(options));
  return make<tableWriter_csv>(std::move(options));
}

void tableWriter::close(tableWriter* writer) { delete writer; }

}  // namespace tableRW

#include "table_rw/core/readerVariants.h"

#include <utility>

#include "table_rw/core/converterProgram.h"
#include "table_rw/readers/tableReader_csv.h"
#include "table_rw/readers/tableReader_dbf.h"
#include "table_rw/readers/tableReader_dummy.h"
#include "table_rw/readers/tableReader_micromineDat.h"
#include "table_rw/readers/tableReader_petrel.h"
#include "table_rw/readers/tableReader_sqlite.h"
#include "table_rw/readers/tableReader_xlsOLE.h"

namespace tableRW {
namespace {

template <class Variant>
tableReader* make(tableReaderOptions options) {
  return new Variant(std::move(options));
}

// The formats that this version does not read yet stand here with the reader that reads nothing, so
// that a source of such a format is never mistaken for delimited text.
// clang-format off
constexpr readerVariant variants[] = {
    {fileTypeCsv,           {L"csv"},                            nullptr,                nullptr,     make<tableReader_csv>         },
    {fileTypeXlsConverter,  {L"xls", L"xlsx"},                   converterProgramExists, nullptr,     make<tableReader_xlsOLE>      },
    {fileTypeXlsOdbc,       {L"xls", L"xlsx", L"mdb", L"accdb"}, nullptr,                nullptr,     makeDummyReader               },
    {fileTypeAccessOdbc,    {},                                  nullptr,                nullptr,     makeDummyReader               },
    {fileTypeDbf,           {L"dbf"},                            nullptr,                nullptr,     make<tableReader_dbf>         },
    {fileTypeSqlite,        {L"sqlite", L"well2"},               nullptr,                nullptr,     make<tableReader_sqlite>      },
    {fileTypeMicromineData, {L"micromine"},                      nullptr,                nullptr,     make<tableReader_micromineDat>},
    {fileTypeMicromineDhdb, {L"dhdb"},                           nullptr,                nullptr,     makeDummyReader               },
    {fileTypePetrel,        {},                                  nullptr,                L"# Petrel", make<tableReader_petrel>      },
};
// clang-format on

}  // namespace

std::span<const readerVariant> readerVariants() { return variants; }

tableReader* makeDummyReader(tableReaderOptions options) {
  return make<tableReader_dummy>(std::move(options));
}

}  // namespace tableRW

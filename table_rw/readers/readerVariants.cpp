#include "table_rw/core/readerVariants.h"

#include <utility>

#include "table_rw/core/converterProgram.h"
#include "table_rw/readers/tableReader_csv.h"
#include "table_rw/readers/tableReader_dbf.h"
#include "table_rw/readers/tableReader_dummy.h"
#include "table_rw/readers/tableReader_micromineDHDB.h"
#include "table_rw/readers/tableReader_micromineDat.h"
#include "table_rw/readers/tableReader_petrel.h"
#include "table_rw/readers/tableReader_sqlite.h"
#include "table_rw/readers/tableReader_xlsODBC.h"
#include "table_rw/readers/tableReader_xlsOLE.h"

namespace tableRW {
namespace {

template <class Variant>
tableReader* make(tableReaderOptions options) {
  return new Variant(std::move(options));
}

// Spreadsheets and Access databases behind ODBC have one reader; their file types differ in name alone.
// clang-format off
constexpr readerVariant variants[] = {
    {fileTypeCsv,           {L"csv"},                            nullptr,                nullptr,       make<tableReader_csv>         },
    {fileTypeXlsConverter,  {L"xls", L"xlsx"},                   converterProgramExists, nullptr,       make<tableReader_xlsOLE>      },
    {fileTypeXlsOdbc,       {L"xls", L"xlsx", L"mdb", L"accdb"}, nullptr,                nullptr,       make<tableReader_xlsODBC>     },
    {fileTypeAccessOdbc,    {},                                  nullptr,                nullptr,       make<tableReader_xlsODBC>     },
    {fileTypeDbf,           {L"dbf"},                            nullptr,                nullptr,       make<tableReader_dbf>         },
    {fileTypeSqlite,        {L"sqlite", L"well2"},               nullptr,                nullptr,       make<tableReader_sqlite>      },
    {fileTypeMicromineData, {L"micromine"},                      nullptr,                nullptr,       make<tableReader_micromineDat>},
    {fileTypeMicromineDhdb, {L"dhdb"},                           nullptr,                nullptr,       make<tableReader_micromineDHDB>},
    {fileTypePetrel,        {},                                  nullptr,                L"# Petrel",   make<tableReader_petrel>      },
};
// clang-format on

}  // namespace

std::span<const readerVariant> readerVariants() { return variants; }

tableReader* makeDummyReader(tableReaderOptions options) {
  return make<tableReader_dummy>(std::move(options));
}

}  // namespace tableRW

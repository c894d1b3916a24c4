#include "table_rw/core/readerVariants.h"

#include <utility>

#include "table_rw/core/converterProgram.h"
#include "table_rw/readers/tableReader_csv.h"
#include "table_rw/readers/tableReader_dbf.h"
#include "table_rw/readers/tableReader_dummy.h"
#include "table_rw/readers/tableReader_micromineDHDB.h"
#include "table_rw/readers/tableReader_sqlite.h"
#include "table_rw/readers/tableReader_xlsODBC.h"

namespace tableRW {
namespace {

template <class Variant>
tableReader* make(tableReaderOptions options) {
  return new Variant(std::move(options));
}

// The formats that this version does not read yet stand here with the reader that reads nothing, so
// that a source of such a format is never mistaken for delimited text.
constexpr readerVariant variants[] = {
    {fileTypeCsv,           {L"csv"},              nullptr,                nullptr,     make<tableReader_csv>          },
    {fileTypeXlsConverter,  {L"xls", L"xlsx"},     converterProgramExists, nullptr,     makeDummyReader                },
    {fileTypeXlsOdbc,
     {L"xls", L"xlsx", L"mdb", L"accdb"},
     nullptr,                                                              nullptr,
     make<tableReader_xlsODBC>                                                                                         },
    {fileTypeAccessOdbc,    {},                    nullptr,                nullptr,     make<tableReader_xlsODBC>      },
    {fileTypeDbf,           {L"dbf"},              nullptr,                nullptr,     make<tableReader_dbf>          },
    {fileTypeSqlite,        {L"sqlite", L"well2"}, nullptr,                nullptr,     make<tableReader_sqlite>       },
    {fileTypeMicromineData, {L"micromine"},        nullptr,                nullptr,     makeDummyReader                },
    {fileTypeMicromineDhdb, {L"dhdb"},             nullptr,                nullptr,     make<tableReader_micromineDHDB>},
    {fileTypePetrel,        {},                    nullptr,                L"# Petrel", makeDummyReader                },
};

}  // namespace

std::span<const readerVariant> readerVariants() { return variants; }

tableReader* makeDummyReader(tableReaderOptions options) {
  return make<tableReader_dummy>(std::move(options));
}

}  // namespace tableRW

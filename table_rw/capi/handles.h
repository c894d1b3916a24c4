// What stands behind the handles of the C reader interface.
//
// A handle is the object itself: hosts that mix both interfaces pass one for the other. A null handle is a
// null object.
#ifndef VOK_TABLE_RW_CAPI_HANDLES_H
#define VOK_TABLE_RW_CAPI_HANDLES_H

#include "table_rw/capi/vo_table_reader.h"
#include "table_rw/core/tableReader.h"

namespace cInterface {

inline tableRW::tableReaderOptions* object(vo_table_reader_options* options) {
  return reinterpret_cast<tableRW::tableReaderOptions*>(options);
}

inline tableRW::tableReader* object(vo_table_reader* reader) {
  return reinterpret_cast<tableRW::tableReader*>(reader);
}

}  // namespace cInterface

#endif

// A reader in the hands of a test: closed, never deleted, when the test ends.
#ifndef VOK_TESTS_SUPPORT_OWNEDREADER_H
#define VOK_TESTS_SUPPORT_OWNEDREADER_H

#include <memory>

#include "table_rw/core/tableReader.h"

namespace testSupport {

struct readerCloser {
  void operator()(tableRW::tableReader* reader) const { tableRW::tableReader::close(reader); }
};

using ownedReader = std::unique_ptr<tableRW::tableReader, readerCloser>;

inline ownedReader openReader(const tableRW::tableReaderOptions& options) {
  return ownedReader(tableRW::tableReader::open(options));
}

}  // namespace testSupport

#endif

// The reader that reads nothing: what the factory answers when no variant fits a source.
#ifndef VOK_TABLE_RW_READERS_TABLEREADER_DUMMY_H
#define VOK_TABLE_RW_READERS_TABLEREADER_DUMMY_H

#include <string>
#include <vector>

#include "table_rw/core/tableReader.h"

namespace tableRW {

class tableReader_dummy : public tableReader {
 public:
  /// Discards the options: its path and its table are empty.
  explicit tableReader_dummy(tableReaderOptions options);

  /// The three reads answer false and change nothing.
  bool readOnlyHeaders() override;
  bool readDemo(int n) override;
  bool read() override;
  void setTable(std::wstring name) override;
  /// Leaves the list as it is.
  void tableList(std::vector<std::wstring>& list) override;
  capability_options get_capabilities() override;
};

}  // namespace tableRW

#endif

// The records of a data file by their number, found by their length and read in blocks of whole records, so
// that reading from front to back reads every byte once.
//
// Records that are cut short by the end of the file do not exist; the last one may lack its line end.
// One object, one thread at a time. Nothing fails but allocation; what cannot be read is not there.
#ifndef VOK_SUITE_FILE_MICROMINE_MICROMINERECORDS_H
#define VOK_SUITE_FILE_MICROMINE_MICROMINERECORDS_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/files.h"
#include "suite/file_micromine/micromineHeader.h"

namespace fileMicromine {

class recordSource {
 public:
  static constexpr std::size_t blockSize = std::size_t{256} * 1024;

  recordSource(platform::binaryFile file, const tableHeader& header);

  std::uint64_t count() const { return count_; }

  /// Whether the file could not be read where records are.
  bool hasFailed() const { return file_.hasFailed(); }

  /// The bytes of a record, which live until the next call; `padding` more may be read.
  /// @return null when there is no such record
  const char* record(std::uint64_t number);
  static constexpr std::size_t padding = 16;

  /// Whether the record that `record` has answered ends in a line end, or with the file.
  bool endsProperly(const char* record, std::uint64_t number) const;

 private:
  std::uint64_t countRecords();
  bool loadBlock(std::uint64_t number);

  platform::binaryFile file_;
  std::uint64_t recordsAt_;
  std::size_t valuesSize_;
  std::size_t lineEndSize_;
  std::size_t recordSize_;
  bool lastIsCut_ = false;  // the last record lacks its line end or a part of it
  std::uint64_t count_;

  std::size_t blockRecords_;  // in a full block
  std::vector<char> block_;
  std::uint64_t blockBegin_ = 0;
  std::uint64_t blockEnd_ = 0;
};

}  // namespace fileMicromine

#endif

// The records of a table that are not deleted, by their number: found while walking through the file in
// blocks of whole records, so that reading from front to back reads every byte once.
//
//     file      0   1*  2   3*  4   5          * is deleted
//     live      0       1       2   3
//     marks     every 1,024th live record, so that a walk back begins near what is wanted
//
// The records that the header counts are taken as they come. Those behind them exist when their first byte
// is the mark of a record: a program that died has not counted them. A file that ends within a record
// ends before it.
// One object, one thread at a time. Nothing fails but allocation; what cannot be read is not there.
#ifndef VOK_SUITE_FILE_DBF_DBFRECORDS_H
#define VOK_SUITE_FILE_DBF_DBFRECORDS_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "platform/files.h"
#include "suite/file_dbf/dbfHeader.h"

namespace fileDbf {

class recordSource {
 public:
  static constexpr std::size_t blockSize = std::size_t{256} * 1024;
  static constexpr std::uint32_t mostRecords = std::numeric_limits<std::int32_t>::max();

  recordSource(platform::binaryFile file, const tableHeader& header);

  /// The bytes of a live record, which live until the next call; `padding` more may be read.
  /// @return null when there is no such record
  const char* record(std::uint32_t live);
  static constexpr std::size_t padding = 16;

  /// Whether the file could not be read to its end.
  bool hasFailed() const { return file_.hasFailed(); }

  /// Number of live records, at most mostRecords.
  std::uint32_t count();

 private:
  static constexpr std::uint32_t liveBetweenMarks = 1024;

  const char* bytesOf(std::uint64_t number);
  bool loadBlock(std::uint64_t number);

  platform::binaryFile file_;
  std::size_t recordsAt_;
  std::size_t recordLength_;
  std::uint64_t counted_;  // records that the header counts
  std::uint64_t end_;      // behind the last record that may be there

  std::size_t blockRecords_;  // in a full block
  std::vector<char> block_;
  std::uint64_t blockBegin_ = 0;
  std::uint64_t blockEnd_ = 0;
  std::uint64_t position_ = 0;  // in the file, behind what was read last

  std::vector<std::uint64_t> marks_ = {0};  // where to begin for live record 0, 1,024...
  std::uint64_t next_ = 0;                  // the record at which a walk goes on,
  std::uint32_t nextLive_ = 0;              // and which live record the next one will be
  const char* current_ = nullptr;           // live record nextLive_ - 1, while it lies in the block
  bool ended_ = false;                      // the walk has met the end: liveCount_ is known
  std::uint32_t liveCount_ = 0;
};

}  // namespace fileDbf

#endif

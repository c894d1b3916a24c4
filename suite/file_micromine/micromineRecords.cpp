#include "suite/file_micromine/micromineRecords.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "suite/file_micromine/micromineLayout.h"

namespace fileMicromine {

recordSource::recordSource(platform::binaryFile file, const tableHeader& header)
    : file_(std::move(file)),
      recordsAt_(header.recordsAt),
      valuesSize_(header.valuesSize),
      lineEndSize_(header.lineEndSize),
      recordSize_(valuesSize_ + lineEndSize_),
      count_(countRecords()),
      blockRecords_(std::max<std::size_t>(blockSize / std::max<std::size_t>(recordSize_, 1), 1)) {
  const auto largest = static_cast<std::size_t>(std::min<std::uint64_t>(blockRecords_, count_));
  block_.resize(largest * recordSize_ + padding);
}

std::uint64_t recordSource::countRecords() {
  if (valuesSize_ == 0) return 0;
  const std::uint64_t size = file_.size() - std::min(file_.size(), recordsAt_);
  const std::uint64_t whole = size / recordSize_;
  const std::uint64_t left = size % recordSize_;
  if (left < valuesSize_) return whole;
  // The byte that some programs end a file with is no record of one byte.
  char first = 0;
  if (left == 1 && file_.seek(recordsAt_ + whole * recordSize_) && file_.read(&first, 1) == 1 &&
      first == fileEnd)
    return whole;
  lastIsCut_ = true;
  return whole + 1;
}

const char* recordSource::record(std::uint64_t number) {
  if (number >= count_) return nullptr;
  if ((number < blockBegin_ || number >= blockEnd_) && !loadBlock(number)) return nullptr;
  return block_.data() + static_cast<std::size_t>(number - blockBegin_) * recordSize_;
}

bool recordSource::endsProperly(const char* record, std::uint64_t number) const {
  if (lastIsCut_ && number + 1 == count_) return true;
  const char* const end = record + valuesSize_;
  return lineEndSize_ == 1 ? *end == '\n' : end[0] == '\r' && end[1] == '\n';
}

// WHY blocks begin at multiples of their size: a walk back reads each of them once, too.
bool recordSource::loadBlock(std::uint64_t number) {
  blockBegin_ = number / blockRecords_ * blockRecords_;
  blockEnd_ = blockBegin_;
  if (!file_.seek(recordsAt_ + blockBegin_ * recordSize_)) return false;
  const auto wanted =
      static_cast<std::size_t>(std::min<std::uint64_t>(blockRecords_, count_ - blockBegin_));
  const std::size_t size = file_.read(block_.data(), wanted * recordSize_);
  blockEnd_ += size / recordSize_;
  if (size % recordSize_ >= valuesSize_) ++blockEnd_;
  return number < blockEnd_;
}

}  // namespace fileMicromine

#include "suite/file_dbf/dbfRecords.h"

#include <algorithm>
#include <utility>

#include "suite/file_dbf/dbfLayout.h"

namespace fileDbf {

recordSource::recordSource(platform::binaryFile file, const tableHeader& header)
    : file_(std::move(file)),
      recordsAt_(header.recordsAt),
      recordLength_(header.recordLength),
      counted_(header.recordCount),
      end_((file_.size() - std::min<std::uint64_t>(file_.size(), recordsAt_)) / recordLength_),
      blockRecords_(std::max<std::size_t>(blockSize / recordLength_, 1)) {
  const auto largest = static_cast<std::size_t>(std::min<std::uint64_t>(blockRecords_, end_));
  block_.resize(largest * recordLength_ + padding);
  position_ = ~std::uint64_t{0};
}

const char* recordSource::record(std::uint32_t live) {
  if (current_ != nullptr && live + 1 == nextLive_) return current_;
  current_ = nullptr;
  if (live >= mostRecords || (ended_ && live >= liveCount_)) return nullptr;
  const std::size_t mark = std::min<std::size_t>(live / liveBetweenMarks, marks_.size() - 1);
  const auto markedLive = static_cast<std::uint32_t>(mark) * liveBetweenMarks;
  if (live < nextLive_ || markedLive > nextLive_) {
    next_ = marks_[mark];
    nextLive_ = markedLive;
  }
  for (;; ++next_) {
    const char* const bytes = bytesOf(next_);
    if (bytes == nullptr) {
      ended_ = true;
      liveCount_ = nextLive_;
      return nullptr;
    }
    if (*bytes == deletedMark) continue;
    if (nextLive_ == marks_.size() * liveBetweenMarks) marks_.push_back(next_);
    if (nextLive_++ != live) continue;
    ++next_;
    current_ = bytes;
    return bytes;
  }
}

std::uint32_t recordSource::count() {
  if (!ended_ && record(mostRecords - 1) != nullptr) return mostRecords;
  return liveCount_;
}

const char* recordSource::bytesOf(std::uint64_t number) {
  if (number >= end_) return nullptr;
  if ((number < blockBegin_ || number >= blockEnd_) && !loadBlock(number)) {
    end_ = std::min(end_, number);  // the file has become shorter
    return nullptr;
  }
  const char* const bytes =
      block_.data() + static_cast<std::size_t>(number - blockBegin_) * recordLength_;
  if (number < counted_ || *bytes == liveMark || *bytes == deletedMark) return bytes;
  end_ = number;
  return nullptr;
}

// WHY blocks begin at multiples of their size: a walk back reads each of them once, too.
bool recordSource::loadBlock(std::uint64_t number) {
  blockBegin_ = number / blockRecords_ * blockRecords_;
  blockEnd_ = blockBegin_;
  const std::uint64_t at = recordsAt_ + blockBegin_ * recordLength_;
  if (position_ != at && !file_.seek(at)) return false;
  const auto wanted =
      static_cast<std::size_t>(std::min<std::uint64_t>(blockRecords_, end_ - blockBegin_));
  const std::size_t size = file_.read(block_.data(), wanted * recordLength_);
  position_ = at + size;
  blockEnd_ += size / recordLength_;
  return number < blockEnd_;
}

}  // namespace fileDbf

#include "table_rw/text/sourcePositions.h"

#include <algorithm>
#include <string_view>

namespace tableRW {

std::uint64_t sourcePositions::of(std::uint64_t folded) {
  while (folded_ < folded) {
    if (next_ == size_) {
      blockStart_ += size_;
      size_ = file_.read(block_.data(), block_.size());
      next_ = 0;
      if (size_ == 0) break;  // the file has become shorter
    }
    const std::string_view ready(block_.data() + next_, size_ - next_);
    const std::size_t room =
        static_cast<std::size_t>(std::min<std::uint64_t>(folded - folded_, ready.size()));
    const std::size_t run = std::min(ready.find('\r'), room);
    next_ += run;
    folded_ += run;
    if (run == room) continue;
    // Here stands a CR: it counts unless it is taken before an LF.
    if (!nextIsLineFeed(++next_)) ++folded_;
  }
  return blockStart_ + next_;
}

bool sourcePositions::nextIsLineFeed(std::size_t at) {
  if (at < size_) return block_[at] == '\n';
  char next = 0;
  const std::uint64_t offset = blockStart_ + at;
  const bool isThere = file_.readAt(offset, &next, 1) == 1;
  file_.seek(offset);
  return isThere && next == '\n';
}

}  // namespace tableRW

#include "tools/rejects.h"

#include <fmt/core.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/files.h"
#include "tools/conversion.h"
#include "tools/interruption.h"
#include "tools/targetFile.h"
#include "tools/text.h"
#include "tools/workbookReading.h"

namespace vokTable {
namespace {

constexpr std::size_t blockSize = std::size_t{256} * 1024;

/// Copies pieces of the source into a file.
class pieceCopier {
 public:
  pieceCopier(const std::wstring& source, const std::wstring& target) : block_(blockSize) {
    isSourceOpen_ = source_.openForReading(source);
    isTargetWhole_ = target_.openForWriting(target);
  }

  bool copy(const tableRW::rejectedRecord& record) {
    if (record.offset == tableRW::rejectedRecord::noOffset) {
      const std::string line = toUtf8(record.text) + "\n";
      isTargetWhole_ = isTargetWhole_ && target_.write(line.data(), line.size());
      return isTargetWhole_;
    }
    for (std::uint64_t done = 0; done < record.size && isTargetWhole_ && isSourceOpen_;) {
      const std::size_t wanted =
          static_cast<std::size_t>(std::min<std::uint64_t>(block_.size(), record.size - done));
      const std::size_t got = source_.readAt(record.offset + done, block_.data(), wanted);
      isSourceOpen_ = got > 0;
      isTargetWhole_ = target_.write(block_.data(), got);
      done += got;
    }
    return isTargetWhole_ && isSourceOpen_;
  }

  /// @return false when the source could not be read as before
  bool sourceWasThere() const { return isSourceOpen_; }
  /// @return false when bytes were lost
  bool finish() {
    if (!target_.close()) isTargetWhole_ = false;
    return isTargetWhole_;
  }

 private:
  platform::binaryFile source_;
  platform::binaryFile target_;
  std::vector<char> block_;
  bool isSourceOpen_ = false;
  bool isTargetWhole_ = false;
};

}  // namespace

exitCode checkRejects(const commandLine& request, const tableRW::tableReader& reader,
                      const messageWriter& messages) {
  if (!request.rejects) return exitCode::clean;
  const std::string& name = *request.rejects;
  if (name.empty()) {
    messages.error("the name of the file for rejected lines is empty: give it behind --rejects");
    return exitCode::usage;
  }
  if (platform::isPipeOrDevice(reader.path())) {
    messages.error(fmt::format(
        "{} can be read only once, and keeping its rejected lines takes two: save it to a file",
        request.reading.file));
    return exitCode::cannotOpen;
  }
  if (isSamePath(toWide(name), toWide(request.target))) {
    messages.error(fmt::format(
        "{} is both the target and the file for rejected lines: name another one", name));
    return exitCode::usage;
  }
  return checkFileToWrite(name, request, messages);
}

exitCode rejectsFile::prepare() {
  if (!request_.rejects) return exitCode::clean;
  const std::string& name = *request_.rejects;
  // Reading took its time: the file may be there by now.
  const exitCode checked = checkRejects(request_, reader_, messages_);
  if (checked != exitCode::clean) return checked;
  const interruption interrupted;  // outlives whatever has to be cleaned up
  file_.emplace(toWide(name));
  pieceCopier copier(reader_.path(), file_->temporaryPath());
  bool isWhole = true;
  if (reader_.errorCount() > 0) {
    std::uint64_t count = 0;
    const workbookReading converted(request_.reading, reader_.path());
    const bool isRead = reader_.rejectedRecords([&](const tableRW::rejectedRecord& record) {
      ++count;
      return copier.copy(record) && !interrupted.isAskedFor();
    });
    isWhole = isRead && count == reader_.errorCount();
  }
  if (!copier.finish()) {
    messages_.error(fmt::format(
        "cannot write {}: check that its folder exists, may be written to and has room on its disk",
        name));
    return exitCode::writeFailed;
  }
  if (interrupted.isAskedFor()) {
    messages_.error(fmt::format("interrupted: {} was not written", name));
    return exitCode::writeFailed;
  }
  if (!isWhole || !copier.sourceWasThere()) {
    messages_.error(
        fmt::format("{} was not written: {} has changed since it was read, or cannot be read "
                    "again; convert it again",
                    name, request_.reading.file));
    return exitCode::writeFailed;
  }
  return exitCode::clean;
}

exitCode rejectsFile::finish() {
  if (!file_) return exitCode::clean;
  // The target is there by now: two names of one file can be told for what they are.
  const exitCode checked = checkRejects(request_, reader_, messages_);
  if (checked != exitCode::clean) return checked;
  if (file_->finish()) return exitCode::clean;
  messages_.error(
      fmt::format("cannot replace {}: close programs that use it, and check its permissions",
                  *request_.rejects));
  return exitCode::writeFailed;
}

}  // namespace vokTable

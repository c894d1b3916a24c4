#include "tools/conversion.h"

#include <fmt/core.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "table_rw/writers/tableWriter.h"
#include "tools/csvLimits.h"
#include "tools/formats.h"
#include "tools/interruption.h"
#include "tools/progress.h"
#include "tools/targetFile.h"
#include "tools/targetLimits.h"
#include "tools/text.h"

namespace vokTable {
namespace {

constexpr std::size_t lossesShown = 10;
constexpr std::uint64_t rowsBetweenReports = 1000;

/// What a target cannot hold, as far as it is shown.
struct losses {
  std::uint64_t count = 0;
  std::vector<std::string> shown;

  void add(std::string_view place, const std::wstring& field, std::string_view reason) {
    if (++count <= lossesShown)
      shown.push_back(fmt::format("{}, field {}: {}", place, inQuotes(toUtf8(field)), reason));
  }

  void add(std::string_view place, std::string_view reason) {
    if (++count <= lossesShown) shown.push_back(fmt::format("{}: {}", place, reason));
  }

  void explain(const messageWriter& messages) const {
    for (const std::string& line : shown) messages.detail(line);
    if (count > shown.size())
      messages.detail(fmt::format("and {} more", grouped(count - shown.size())));
  }
};

std::wstring outputDelimiter(const commandLine& request) {
  return makeDelimiter(request.targetDelimiter.value_or(";"));
}

/// True, and explained, when there is a file where the code page of a DBF file is told, and it may not be replaced.
bool refusesCodePageFile(const commandLine& request, const messageWriter& messages) {
  const std::wstring path = codePageFileOf(toWide(request.target));
  if (request.force || !platform::fileExists(path)) return false;
  messages.error(
      fmt::format("{} exists already, and tells the code page of a table with the target's name: "
                  "name another target, or replace it with --force",
                  toUtf8(path)));
  return true;
}

/// A conversion on its way, from the table that was read to the target.
class conversion {
 public:
  conversion(const commandLine& request, const selectedTable& table, const messageWriter& messages)
      : request_(request),
        table_(table),
        messages_(messages),
        target_(toWide(request.target)),
        limits_(limitsOf(target_, outputDelimiter(request))) {
    options_.delimiter = outputDelimiter(request);
  }

  exitCode run() {
    if (!examine()) return exitCode::usage;
    if (request_.strict && losses_.count > 0) {
      messages_.error(fmt::format(
          "nothing was written: {} cannot hold {} unchanged; leave out --strict to write "
          "all the same, or {}",
          request_.target, counted(losses_.count, "value"), limits_->alternative()));
      losses_.explain(messages_);
      return exitCode::writeFailed;
    }
    const interruption interrupted;  // outlives whatever has to be cleaned up
    targetFile file(target_);
    write(file.temporaryPath(), interrupted);
    // Asked again: a writer may do most of its work when it is closed.
    if (interrupted.isAskedFor()) {
      isInterrupted_ = true;
      messages_.error(fmt::format("interrupted: {} was not written", request_.target));
      return exitCode::writeFailed;
    }
    if (!isComplete(file.temporaryPath())) return exitCode::writeFailed;
    // Reading and writing took their time: the target may be there by now.
    if (refusesExisting(request_.target, request_.force, messages_) ||
        refusesCodePageFile(request_, messages_))
      return exitCode::writeFailed;
    if (!file.finish()) {
      messages_.error(
          fmt::format("cannot replace {}: close programs that use it, and check its permissions",
                      request_.target));
      return exitCode::writeFailed;
    }
    if (!file.finishCodePage()) {
      messages_.error(fmt::format(
          "{} was written, but the .cpg file beside it, which tells its code page, could not be "
          "replaced: check its permissions",
          request_.target));
      return exitCode::writeFailed;
    }
    if (losses_.count == 0) return exitCode::clean;
    messages_.warning(fmt::format("{} will not be read back unchanged from {}:",
                                  counted(losses_.count, "value"), request_.target));
    losses_.explain(messages_);
    return exitCode::rejected;
  }

  std::uint64_t lossCount() const { return losses_.count; }
  bool isInterrupted() const { return isInterrupted_; }

 private:
  /// Chooses the target's fields, finds what it cannot hold, and the size that the file must have where that
  /// can be told. @return false, explained, when the table cannot be written at all
  bool examine() {
    const progressLine progress(messages_, fmt::format("examining {}", request_.reading.file));
    if (const auto wrong = limits_->chooseFields(table_, request_.targetFields, options_.fields)) {
      messages_.error(*wrong);
      return false;
    }
    if (const auto reason = limits_->tableProblem(table_.count(), table_.fieldCount()))
      losses_.add("the table", *reason);
    expectedSize_ = limits_->fileSize(table_.count());
    std::vector<std::wstring> row;
    table_.fieldList(row);
    addRowSize(row);
    for (std::size_t field = 0; field < row.size(); ++field)
      if (const auto reason = limits_->nameProblem(field, row[field]))
        losses_.add("the header", row[field], *reason);
    for (std::size_t number = 0; number < table_.count(); ++number) {
      const std::string place = fmt::format("row {}", grouped(number + 1));
      if (const std::size_t surplus = takeRow(number, row))
        losses_.add(place,
                    fmt::format("holds {} more than the table has fields, which are left out",
                                counted(surplus, "value")));
      examineRow(place, row);
    }
    return true;
  }

  /// A row as wide as the table: rows of some formats are as long as their lines.
  /// @return how many of its values have no field
  std::size_t takeRow(std::uint64_t number, std::vector<std::wstring>& row) const {
    const std::size_t fields = table_.fieldCount();
    table_.getRow(number, row);
    const std::size_t surplus = row.size() - std::min(row.size(), fields);
    row.resize(fields);
    return surplus;
  }

  void examineRow(std::string_view place, const std::vector<std::wstring>& row) {
    addRowSize(row);
    for (std::size_t field = 0; field < row.size(); ++field)
      if (const auto reason = limits_->problem(field, row[field]))
        losses_.add(place, table_.fieldName(field), *reason);
    if (const auto reason = limits_->rowProblem(row)) losses_.add(place, *reason);
  }

  void addRowSize(const std::vector<std::wstring>& row) {
    if (const auto size = limits_->rowSize(row)) expectedSize_ = expectedSize_.value_or(0) + *size;
  }

  /// Writes the file, up to the row at which somebody interrupts.
  void write(const std::wstring& path, const interruption& interrupted) {
    // It outlives the writer, which may do most of its work when it is closed.
    progressLine progress(messages_, fmt::format("writing {}", request_.target));
    options_.fileName = path;
    const std::unique_ptr<tableRW::tableWriter, decltype(&tableRW::tableWriter::close)> writer(
        tableRW::tableWriter::open(options_), &tableRW::tableWriter::close);
    std::vector<std::wstring> row;
    for (std::size_t number = 0; number < table_.count() && !interrupted.isAskedFor(); ++number) {
      if (number % rowsBetweenReports == 0) progress.advance(number, table_.count());
      takeRow(number, row);
      writer->addRow(row);
    }
  }

  /// WHY the size is asked: a writer accepts every row, whether it reaches the disk or not.
  bool isComplete(const std::wstring& path) const {
    platform::binaryFile file;
    if (!file.openForReading(path)) {
      messages_.error(fmt::format(
          "cannot create {}: check that its folder exists and may be written to", request_.target));
      if (limits_->whenMissing() != nullptr) messages_.hint(limits_->whenMissing());
      return false;
    }
    const std::uint64_t size = file.size();
    if (expectedSize_ ? size == *expectedSize_ : size > 0) return true;
    messages_.error(fmt::format(
        "{} was not written: the disk did not take the whole file; is it full?", request_.target));
    return false;
  }

  const commandLine& request_;
  const selectedTable& table_;
  const messageWriter& messages_;
  std::wstring target_;
  tableRW::tableWriterOptions options_;
  std::unique_ptr<targetLimits> limits_;
  std::optional<std::uint64_t> expectedSize_;  // known for some formats alone
  losses losses_;
  bool isInterrupted_ = false;
};

}  // namespace

bool refusesExisting(const std::string& name, bool force, const messageWriter& messages) {
  if (force || !platform::fileExists(toWide(name))) return false;
  messages.error(
      fmt::format("{} exists already: name another target, or replace it with --force", name));
  return true;
}

exitCode checkFileToWrite(const std::string& name, const commandLine& request,
                          const messageWriter& messages) {
  const std::wstring path = toWide(name);
  if (platform::isSameFile(toWide(request.reading.file), path)) {
    messages.error(fmt::format("{} is both the source and the target: name another target", name));
    return exitCode::usage;
  }
  if (platform::folderExists(path)) {
    messages.error(fmt::format("cannot write {}: it is a folder; name a file in it", name));
    return exitCode::writeFailed;
  }
  // The new file takes the place of what bears the name: not of a link's target, and not of a
  // device, which other programs of this machine would miss.
  if (platform::isLink(path) || platform::isPipeOrDevice(path)) {
    messages.error(
        fmt::format("cannot write {}: it is a link, a pipe or a device; name a file", name));
    return exitCode::writeFailed;
  }
  return refusesExisting(name, request.force, messages) ? exitCode::writeFailed : exitCode::clean;
}

namespace {

/// Refuses a DBF file when the file of its code page would take the place of one that is needed.
exitCode checkCodePageFile(const commandLine& request, const messageWriter& messages) {
  const std::wstring path = codePageFileOf(toWide(request.target));
  if (path.empty()) return exitCode::clean;
  const auto isTaken = [&](const std::string& name) { return isSamePath(toWide(name), path); };
  const bool isSource = isTaken(request.reading.file);
  if (isSource || (request.rejects && isTaken(*request.rejects))) {
    messages.error(fmt::format(
        "{} tells the code page of {} and cannot be {} too: name another target", toUtf8(path),
        request.target, isSource ? "the source" : "the file for rejected lines"));
    return exitCode::usage;
  }
  return refusesCodePageFile(request, messages) ? exitCode::writeFailed : exitCode::clean;
}

}  // namespace

exitCode checkTarget(const commandLine& request, const messageWriter& messages) {
  const std::wstring target = toWide(request.target);
  const std::wstring delimiter = outputDelimiter(request);
  const std::string& name = request.target;
  if (target.empty()) {
    messages.error("the name of the target is empty");
    return exitCode::usage;
  }
  if (request.targetFields && !isWrittenAsDbf(target)) {
    messages.error(fmt::format("--fields is for DBF files, and {} is none", name));
    return exitCode::usage;
  }
  if (delimiter.empty() || delimiter.find(L'"') != std::wstring::npos ||
      csvLimits(delimiter).characterProblem(delimiter)) {
    messages.error(
        "--output-delimiter cannot be empty and cannot hold a quotation mark, a line break "
        "or a character outside Windows-1251");
    return exitCode::usage;
  }
  // WHY before the format: whoever names the source again wants to hear of that.
  const bool isSource = platform::isSameFile(toWide(request.reading.file), target);
  if (!isSource && !isWritable(target)) {
    messages.error(fmt::format("cannot write {}: writing its format is not in this version", name));
    messages.hint("vok_table formats lists what can be written");
    return exitCode::notAvailable;
  }
  const exitCode checked = checkFileToWrite(name, request, messages);
  return checked == exitCode::clean ? checkCodePageFile(request, messages) : checked;
}

conversionResult writeTable(const commandLine& request, const selectedTable& table,
                            const messageWriter& messages) {
  conversion work(request, table, messages);
  const exitCode outcome = work.run();
  return {outcome, work.lossCount(), work.isInterrupted()};
}

}  // namespace vokTable

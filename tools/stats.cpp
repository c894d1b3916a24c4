// The command stats: for each field how many rows have a value there, how many different ones there are, the
// shortest and the longest in characters, and the least and the greatest where all values are numbers.
//
// A field is looked at from its first row to its last before the next one, so the memory that is needed is that
// of one field's different values. They are counted up to a million, and as long as they take no more than 64 MiB
// as UTF-8; ">" before a count says that there are more.
#include <fmt/core.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "tools/commands.h"
#include "tools/decimalNumber.h"
#include "tools/progress.h"
#include "tools/text.h"

namespace vokTable {
namespace {

constexpr std::size_t mostDistinct = 1'000'000;
constexpr std::size_t mostBytes = std::size_t{64} * 1024 * 1024;

/// Counts different values, with an end to the memory that it takes.
class distinctCounter {
 public:
  void add(const std::wstring& value) {
    if (isMore_) return;
    std::string text = toUtf8(value);
    if (values_.contains(text)) return;
    if (values_.size() == mostDistinct || text.size() > mostBytes - bytes_) {
      isMore_ = true;
      return;
    }
    bytes_ += text.size();
    values_.insert(std::move(text));
  }

  std::wstring text() const { return (isMore_ ? L">" : L"") + std::to_wstring(values_.size()); }

 private:
  std::unordered_set<std::string> values_;
  std::size_t bytes_ = 0;
  bool isMore_ = false;
};

/// The least and the greatest of values that are all numbers, as they are written.
class rangeFinder {
 public:
  void add(const std::wstring& value) {
    if (!isNumeric_) return;
    isNumeric_ = looksNumeric(value);
    if (!isNumeric_) return;
    const decimalNumber number(value);
    if (!least_ || number.compare(least_->number) < 0) least_ = entry{number, value};
    if (!greatest_ || number.compare(greatest_->number) > 0) greatest_ = entry{number, value};
  }

  std::wstring least() const { return isNumeric_ && least_ ? least_->text : std::wstring(); }
  std::wstring greatest() const {
    return isNumeric_ && greatest_ ? greatest_->text : std::wstring();
  }

 private:
  struct entry {
    decimalNumber number;
    std::wstring text;
  };
  std::optional<entry> least_;
  std::optional<entry> greatest_;
  bool isNumeric_ = true;
};

std::uint64_t characterCount(const std::wstring& text) {
  std::uint64_t count = 0;
  for (std::size_t at = 0; at < text.size(); ++count) nextCharacter(text, at);
  return count;
}

tableRow statisticsOf(const tableRW::tableReader& reader, std::size_t field) {
  std::uint64_t filled = 0;
  std::uint64_t shortest = 0;
  std::uint64_t longest = 0;
  distinctCounter distinct;
  rangeFinder range;
  for (std::size_t row = 0; row < reader.count(); ++row) {
    const std::wstring value = reader.value(field, row);
    if (value.empty()) continue;
    const std::uint64_t length = characterCount(value);
    shortest = filled == 0 ? length : std::min(shortest, length);
    longest = std::max(longest, length);
    ++filled;
    distinct.add(value);
    range.add(value);
  }
  const auto length = [filled](std::uint64_t characters) {
    return filled == 0 ? std::wstring() : std::to_wstring(characters);
  };
  return {reader.fieldName(field), std::to_wstring(filled), distinct.text(), length(shortest),
          length(longest),         range.least(),           range.greatest()};
}

std::vector<tableRow> statisticsOf(const tableRW::tableReader& reader, const commandLine& request,
                                   const messageWriter& messages) {
  const progressLine progress(messages, fmt::format("examining {}", request.reading.file));
  std::vector<tableRow> rows;
  for (std::size_t field = 0; field < reader.fieldCount(); ++field)
    rows.push_back(statisticsOf(reader, field));
  return rows;
}

}  // namespace

exitCode showStatistics(const commandLine& request, toolContext& context) {
  readerPointer reader;
  const exitCode opened = openSource(request.reading, context, reader);
  if (!reader) return opened;
  if (!readSource(*reader, {}, request.reading, context)) return exitCode::cannotOpen;
  recordList list;
  list.key = "fields";
  list.columns = {
      {"field",    "name",     columnKind::text         },
      {"filled",   "filled",   columnKind::number       },
      {"distinct", "distinct", columnKind::countOrMore  },
      {"shortest", "shortest", columnKind::number       },
      {"longest",  "longest",  columnKind::number       },
      {"minimum",  "minimum",  columnKind::textWhenThere},
      {"maximum",  "maximum",  columnKind::textWhenThere},
  };
  const std::vector<tableRow> rows = statisticsOf(*reader, request, context.messages);
  list.visitRows = [&rows](const rowReceiver& receive) {
    for (const tableRow& row : rows)
      if (!receive(row)) return;
  };
  context.answer.note("rowCount", reader->count());
  context.answer.records(list);
  return concludeReading(*reader, request.reading, context);
}

}  // namespace vokTable

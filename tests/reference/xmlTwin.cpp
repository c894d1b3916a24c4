#include "tests/reference/xmlTwin.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "converter/workbook/xlsxSheet.h"
#include "converter/workbook/xlsxStrings.h"

namespace reference {
namespace {

/// A document in pieces, whose sizes repeat.
class pieces final : public converter::xmlSource {
 public:
  pieces(std::string document, std::vector<std::size_t> sizes)
      : document_(std::move(document)), sizes_(std::move(sizes)) {}

  std::ptrdiff_t read(void* buffer, std::size_t size, std::string&) override {
    const std::size_t count =
        std::min({size, sizes_[next_++ % sizes_.size()], document_.size() - at_});
    document_.copy(static_cast<char*>(buffer), count, at_);
    at_ += count;
    return static_cast<std::ptrdiff_t>(count);
  }

 private:
  std::string document_;
  std::vector<std::size_t> sizes_;
  std::size_t next_ = 0;
  std::size_t at_ = 0;
};

/// The events of something else, which take no shortcut.
class withoutShortcut final : public converter::xmlEvents {
 public:
  explicit withoutShortcut(converter::xmlEvents& events) : events_(&events) {}
  void startElement(const char* name, const converter::xmlAttributes& attributes) override {
    events_->startElement(name, attributes);
  }
  void endElement(const char* name) override { events_->endElement(name); }
  void text(std::string_view piece) override { events_->text(piece); }
  std::string stopReason() override { return events_->stopReason(); }

 private:
  converter::xmlEvents* events_;
};

/// Counts what the shortcut of other events takes.
class countingShortcut final : public converter::xmlShortcut {
 public:
  explicit countingShortcut(converter::xmlShortcut& other)
      : xmlShortcut(other.container(), other.itemEnd()), other_(&other) {}
  std::size_t take(std::string_view bytes, std::size_t& lines) override {
    const std::size_t size = other_->take(bytes, lines);
    taken += size;
    return size;
  }
  std::size_t taken = 0;

 private:
  converter::xmlShortcut* other_;
};

class withCount final : public converter::xmlEvents {
 public:
  explicit withCount(converter::xmlEvents& events)
      : events_(&events), shortcut_(*events.shortcut()) {}
  void startElement(const char* name, const converter::xmlAttributes& attributes) override {
    events_->startElement(name, attributes);
  }
  void endElement(const char* name) override { events_->endElement(name); }
  void text(std::string_view piece) override { events_->text(piece); }
  std::string stopReason() override { return events_->stopReason(); }
  converter::xmlShortcut* shortcut() override { return &shortcut_; }
  std::size_t taken() const { return shortcut_.taken; }

 private:
  converter::xmlEvents* events_;
  countingShortcut shortcut_;
};

class cellList final : public converter::sheetReceiver {
 public:
  void cell(std::uint32_t row, std::uint32_t column, std::string_view text) override {
    found += std::to_string(row) + "," + std::to_string(column) + "=" + std::string(text) + "\n";
  }
  void mergedCells(const converter::cellRange& range) override {
    found +=
        "merged " + std::to_string(range.firstRow) + "," + std::to_string(range.lastColumn) + "\n";
  }
  std::string stopReason() override { return {}; }
  std::string found;
};

template <class Events>
void parse(xmlOutcome& result, Events& events, pieces& source, bool isShort) {
  if (isShort) {
    withCount counted(events);
    result.isRead = converter::parseXml(source, counted, result.problem);
    result.taken = counted.taken();
  } else {
    withoutShortcut whole(events);
    result.isRead = converter::parseXml(source, whole, result.problem);
  }
  result.reasonOfSheet = events.stopReason();
}

/// WHY: the parser has two names for words behind the document's end, and takes the one or the other by where its
/// pieces end.
std::string withOneNameOfJunk(std::string problem) {
  static constexpr std::string_view junk = "junk after document element";
  if (const std::size_t at = problem.find(junk); at != std::string::npos)
    problem.replace(at, junk.size(), "not well-formed (invalid token)");
  return problem;
}

}  // namespace

xmlOutcome readSheetXml(const std::string& document, const std::vector<std::size_t>& sizes,
                        bool isShort) {
  converter::xlsxContext context('$');
  for (const char* const text : {"ноль", "one", "", "three"}) context.sharedStrings.add(text);
  for (const unsigned format : {0u, 14u, 22u}) context.formats.addStyle(format);
  context.formats.resolve();
  cellList cells;
  converter::xlsxSheetEvents events(context, cells);
  pieces source(document, sizes);
  xmlOutcome result;
  parse(result, events, source, isShort);
  result.found = cells.found;
  return result;
}

xmlOutcome readStringsXml(const std::string& document, const std::vector<std::size_t>& sizes,
                          bool isShort) {
  converter::textPool pool;
  const converter::lineText replacements('$');
  converter::xlsxStringEvents events(pool, replacements, 0);
  pieces source(document, sizes);
  xmlOutcome result;
  parse(result, events, source, isShort);
  for (std::size_t i = 0; i < pool.size(); ++i) result.found += std::string(pool.get(i)) + "\n";
  return result;
}

std::string difference(const xmlOutcome& whole, const xmlOutcome& quick) {
  if (quick.isRead != whole.isRead || quick.problem.empty() != whole.problem.empty())
    return "parser \"" + whole.problem + "\", shortcut \"" + quick.problem + "\"";
  if (whole.isRead) {
    if (quick.found != whole.found) return "parser\n" + whole.found + "shortcut\n" + quick.found;
    if (quick.reasonOfSheet != whole.reasonOfSheet)
      return "parser stops for \"" + whole.reasonOfSheet + "\", shortcut \"" + quick.reasonOfSheet +
             "\"";
  } else if (whole.reasonOfSheet.empty() && quick.reasonOfSheet.empty()) {
    // The line's number included.
    if (withOneNameOfJunk(quick.problem) != withOneNameOfJunk(whole.problem))
      return whole.problem + ", shortcut: " + quick.problem;
  }
  return {};
}

}  // namespace reference

#include "converter/workbook/xlsxStrings.h"

namespace converter {

void xlsxStringEvents::endElement(const char* name) {
  text_.endElement(name);
  if (!isText(name, "si")) return;
  isTooLong_ = isTooLong_ || text_.size() > longestText;
  line_.clear();
  text_.appendTo(line_, *replacements_);
  text_.clear();
  pool_->add(line_);
}

std::string xlsxStringEvents::stopReason() {
  if (pool_->size() > mostTexts_) return "the workbook is refused: it has too many shared strings";
  return isTooLong_ || text_.size() > longestText ? longTextProblem : std::string();
}

std::size_t xlsxStringEvents::plainItems::take(std::string_view bytes, std::size_t& lines) {
  for (const char* taken = bytes.data();;) {
    std::string_view text;
    std::size_t linesOfItem = 0;
    const char* const end = read(taken, text, linesOfItem);
    if (end == nullptr) return static_cast<std::size_t>(taken - bytes.data());
    events_->line_.clear();
    appendText(events_->line_, text, *events_->replacements_, events_->scratch_);
    events_->pool_->add(events_->line_);
    lines += linesOfItem;
    taken = end;
  }
}

// Behind the item; null when it is not whole or not plain.
const char* xlsxStringEvents::plainItems::read(const char* at, std::string_view& text,
                                               std::size_t& lines) {
  at = behindBlanks(at, lines);
  if (!beginsWith(at, "<si><t")) return nullptr;
  at = tag_.read(at + 6);
  if (at == nullptr || *at == '/') return nullptr;
  const char* const begin = at + 1;
  at = behindText(begin, lines);
  if (!beginsWith(at, "</t></si>")) return nullptr;
  text = {begin, static_cast<std::size_t>(at - begin)};
  return at + 9;
}

}  // namespace converter

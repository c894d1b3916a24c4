#include "table_rw/readers/petrelBlockParser.h"

#include <cstddef>
#include <limits>

namespace tableRW {
namespace {

constexpr std::size_t longestLine = std::numeric_limits<std::int32_t>::max();
static_assert(textStep <= textModeInput::readAhead && textStep <= valueTable::writeAhead);

constexpr char blank = ' ';
constexpr char quote = '"';

// What stands for a value: nothing for the two markers of a null, a quoted text without its ends.
std::string_view valueOf(std::string_view token) {
  if (token == "-999" || token == "\"NULL\"") return {};
  if (token.front() != quote) return token;
  return token.size() < 2 ? std::string_view() : token.substr(1, token.size() - 2);
}

}  // namespace

bool petrelBlockParser::addRecords(textModeInput& file, valueTable& rows) {
  if (!usable_) return false;
  std::size_t searched = 0;  // bytes that lie ready and hold no line end
  bool lastLine = false;
  for (;;) {
    const std::string_view ready = file.buffered();
    std::size_t end = ready.find('\n', searched);
    if (end == std::string_view::npos) {
      searched = end = ready.size();
      if (end > longestLine) return false;
      if (!lastLine) {
        lastLine = !file.fillMore();
        continue;
      }
      if (ready.empty()) return false;
    }
    const std::string_view line = ready.substr(0, end);
    if (line.find('\0') != std::string_view::npos) return false;
    addRecord(line, rows);
    if (end == ready.size()) {
      file.skip(end);
      char nothing = 0;
      file.getChunk(&nothing, 1);  // meets the end of the file, as reading the line would have
    } else {
      file.skip(end + 1);
    }
    searched = 0;
    if (rows.rowCount() >= limit_) return true;
    if (file.atEnd()) return false;
  }
}

void petrelBlockParser::addRecord(std::string_view line, valueTable& rows) {
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  split(line);
  const std::string_view* const pieces = pieces_.data();
  rows.addRow(pieces_.size(), line.size() * singleByteDecoder::mostBytes,
              [this, pieces](std::size_t i, char* to) {
                const std::string_view piece = pieces[i];
                return piece.empty() ? to : decoder_.convert(piece.data(), piece.size(), to);
              });
}

// The literal way's rules. A value is a run of bytes of its line: no blank inside a quoted one is lost.
void petrelBlockParser::split(std::string_view line) {
  pieces_.clear();
  const char* at = line.data();
  const char* const end = at + line.size();
  for (;;) {
    while (at != end && *at == blank) ++at;
    if (at == end) return;
    const char* const begin = at;
    while (at != end && *at != blank) ++at;
    if (*begin == quote) {
      while (at != end && at[-1] != quote) {
        ++at;  // this blank belongs to the value
        while (at != end && *at != blank) ++at;
      }
    }
    // ODD: a value counts only when a blank follows it.
    if (at == end) return;
    pieces_.push_back(valueOf({begin, static_cast<std::size_t>(at - begin)}));
  }
}

}  // namespace tableRW

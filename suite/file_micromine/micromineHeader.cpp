#include "suite/file_micromine/micromineHeader.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include "suite/file_micromine/micromineLayout.h"

namespace fileMicromine {
namespace {

// --- lines of a header, read in blocks ---

class headerLines {
 public:
  headerLines(platform::binaryFile& file, std::uint64_t position)
      : file_(file), blockAt_(position) {}

  std::uint64_t position() const { return blockAt_ + next_; }

  /// The bytes that follow, `size` of them or what is left of the file; they live until the next call.
  std::string_view peek(std::size_t size) {
    if (block_.size() - next_ < size) fill(size);
    return std::string_view(block_).substr(next_, size);
  }

  void skip(std::size_t size) { next_ += size; }

  /// A line without its end, at most `longest` bytes with it. @return nothing when it does not end there
  std::optional<std::string_view> line(std::size_t longest) {
    const std::string_view ready = peek(longest);
    const std::size_t end = ready.find('\n');
    if (end == std::string_view::npos) return std::nullopt;
    skip(end + 1);
    const bool crLf = end > 0 && ready[end - 1] == '\r';
    lineEndSize_ = crLf ? 2 : 1;
    return ready.substr(0, crLf ? end - 1 : end);
  }

  /// Of the line that was read last.
  std::size_t lineEndSize() const { return lineEndSize_; }

 private:
  void fill(std::size_t size) {
    constexpr std::size_t ahead = 64 * 1024;
    blockAt_ += next_;
    next_ = 0;
    block_.resize(std::max(size, ahead));
    const bool there = file_.seek(blockAt_);
    block_.resize(there ? file_.read(block_.data(), block_.size()) : 0);
  }

  platform::binaryFile& file_;
  std::string block_;
  std::uint64_t blockAt_;
  std::size_t next_ = 0;
  std::size_t lineEndSize_ = 0;
};

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

/// Digits, with blanks around them allowed.
std::optional<std::size_t> numberOf(std::string_view text) {
  text = trimmed(text);
  std::size_t number = 0;
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (failure != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

/// The number of variables that a line announces.
std::optional<std::size_t> announcedCount(std::string_view line) {
  line = trimmed(line);
  if (!line.ends_with(variablesWord)) return std::nullopt;
  line.remove_suffix(variablesWord.size());
  if (!line.ends_with(' ')) return std::nullopt;
  const auto count = numberOf(line);
  return count && *count <= mostVariables ? count : std::nullopt;
}

bool fits(char type, std::size_t width) {
  switch (type) {
    case typeCharacter:
    case typeNumeric:
      return width > 0;
    case typeReal:
      return width == realSize;
    case typeFloat:
      return width == floatSize;
    case typeLong:
      return width == longSize;
    case typeShort:
      return width == shortSize;
    default:
      return false;
  }
}

// FORMAT: ten bytes hold the name; a longer one is cut, and the description tells it whole.
std::string nameOf(std::string_view name, std::string_view description) {
  const std::string_view shortName = name.substr(0, name.find('\0'));
  description = trimmed(description.substr(0, description.find('\0')));
  const bool full = shortName.size() == nameSize && shortName.back() != ' ';
  const bool isLongName = full && description.starts_with(shortName);
  return std::string(isLongName ? description : trimmed(shortName));
}

// WHY by length first: the description is text that anybody has typed, and might hold a line end.
std::optional<std::string_view> variableLine(headerLines& lines) {
  const std::string_view ready = lines.peek(longestVariableLine);
  constexpr std::size_t whole = descriptionAt + descriptionSize;
  if (ready.size() > whole && ready[descriptionMarkAt] == descriptionMark) {
    const bool crLf = ready.substr(whole, 2) == "\r\n";
    if (crLf || ready[whole] == '\n') {
      lines.skip(whole + (crLf ? 2 : 1));
      return ready.substr(0, whole);
    }
  }
  return lines.line(longestVariableLine);
}

std::optional<variable> readVariable(headerLines& lines) {
  const auto line = variableLine(lines);
  if (!line || line->size() < widthAt + widthSize) return std::nullopt;
  const auto width = numberOf(line->substr(widthAt, widthSize));
  variable made;
  made.type = (*line)[typeAt];
  if (!width || !fits(made.type, *width)) return std::nullopt;
  made.width = *width;
  const bool described =
      line->size() > descriptionAt && (*line)[descriptionMarkAt] == descriptionMark;
  made.name = nameOf(line->substr(0, nameSize),
                     described ? line->substr(descriptionAt) : std::string_view());
  return made;
}

// --- the two flavours ---

// FORMAT: the metadata takes one page or several; the variables begin at the page behind them. Where the
// metadata does not end properly, the first page that begins like that counts.
bool skipMetadata(platform::binaryFile& file, tableHeader& header) {
  std::string bytes(pageSize, '\0');
  std::string metadata;
  if (!file.seek(0)) return false;
  for (std::size_t page = 0; page < mostPages; ++page) {
    if (file.read(bytes.data(), pageSize) != pageSize) return false;
    metadata += bytes;
    header.recordsAt += pageSize;
    const std::size_t from =
        metadata.size() - std::min(metadata.size(), pageSize + metadataEnd.size());
    const bool ended = metadata.find(metadataEnd, from) != std::string::npos;
    headerLines next(file, header.recordsAt);
    const auto line = next.line(longestCountLine);
    if (ended || (line && announcedCount(*line))) {
      header.codePage = codePageOfMetadata(metadata);
      return true;
    }
    if (!file.seek(header.recordsAt)) return false;
  }
  return false;
}

bool skipTitle(platform::binaryFile& file, tableHeader& header) {
  headerLines lines(file, 0);
  if (!lines.line(longestTitle)) return false;
  header.recordsAt = lines.position();
  return true;
}

bool isExtended(platform::binaryFile& file) {
  std::string start(magic.size(), '\0');
  return file.seek(0) && file.read(start.data(), start.size()) == start.size() && start == magic;
}

// Whether the first record, if there is one, ends as the header's lines do.
bool firstRecordFits(headerLines& lines, const tableHeader& header) {
  const std::string_view ready = lines.peek(header.valuesSize + header.lineEndSize);
  if (ready.size() <= header.valuesSize) return true;
  const std::string_view wanted = header.lineEndSize == 1 ? "\n" : "\r\n";
  return wanted.starts_with(ready.substr(header.valuesSize));
}

}  // namespace

std::optional<tableHeader> readHeader(platform::binaryFile& file) {
  tableHeader header;
  if (!(isExtended(file) ? skipMetadata(file, header) : skipTitle(file, header)))
    return std::nullopt;
  headerLines lines(file, header.recordsAt);
  const auto countLine = lines.line(longestCountLine);
  const auto count = countLine ? announcedCount(*countLine) : std::nullopt;
  if (!count) return std::nullopt;
  header.lineEndSize = lines.lineEndSize();
  for (std::size_t i = 0; i < *count; ++i) {
    std::optional<variable> made = readVariable(lines);
    if (!made) return std::nullopt;
    made->offset = header.valuesSize;
    header.valuesSize += made->width;
    header.variables.push_back(std::move(*made));
  }
  header.recordsAt = lines.position();
  if (!header.variables.empty() && !firstRecordFits(lines, header)) return std::nullopt;
  return header;
}

}  // namespace fileMicromine

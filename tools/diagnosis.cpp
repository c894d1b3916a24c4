#include "tools/diagnosis.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "tools/formats.h"
#include "tools/text.h"

namespace vokTable {
namespace {

constexpr std::uint64_t rowsLookedAt = 20;
constexpr std::size_t bytesLookedAt = 4096;
constexpr std::size_t blockSize = 256 * 1024;
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr wchar_t mark = static_cast<wchar_t>(byteOrderMark);
constexpr wchar_t undecoded = static_cast<wchar_t>(replacementCharacter);

bool beginsWith(const std::wstring& text, wchar_t character) {
  return !text.empty() && text.front() == character;
}

/// Hands over the field names and the values of the first rows.
template <typename Visitor>
void visitEarlyTexts(const tableRW::tableReader& reader, Visitor visit) {
  std::vector<std::wstring> texts;
  reader.fieldList(texts);
  std::for_each(texts.begin(), texts.end(), visit);
  for (std::size_t row = 0; row < std::min(rowsLookedAt, reader.count()); ++row) {
    reader.getRow(row, texts);
    std::for_each(texts.begin(), texts.end(), visit);
  }
}

bool hasUndecodedText(const tableRW::tableReader& reader) {
  bool found = false;
  visitEarlyTexts(reader, [&found](const std::wstring& text) {
    found = found || text.find(undecoded) != std::wstring::npos;
  });
  return found;
}

std::string firstBytes(const std::wstring& path, std::size_t count) {
  platform::binaryFile file;
  if (platform::isPipeOrDevice(path) || !file.openForReading(path)) return {};
  std::string bytes(count, '\0');
  bytes.resize(file.read(bytes.data(), bytes.size()));
  return bytes;
}

void warnOfByteOrderMark(const tableRW::tableReader& reader, const readingArguments& arguments,
                         const messageWriter& messages) {
  std::string_view place;
  if (beginsWith(reader.fieldName(0), mark)) {
    place = "the first field's name";
  } else if (beginsWith(reader.value(std::size_t{0}, 0), mark)) {
    place = "the first value";
  } else {
    return;
  }
  messages.warning(
      fmt::format("{} begins with a byte-order mark, which is now part of {}; save the file "
                  "without it (as plain UTF-8)",
                  arguments.file, place));
}

/// The delimiter that the text seems to have instead; nothing when there is no sign of one.
std::optional<std::string_view> otherDelimiter(const std::wstring& text,
                                               const std::wstring& delimiter) {
  struct candidate {
    wchar_t character;
    std::string_view option;
  };
  constexpr std::array<candidate, 4> candidates{
      {{L'\t', "tab"}, {L';', "\";\""}, {L'|', "\"|\""}, {L',', ","}}
  };
  std::optional<std::string_view> best;
  std::ptrdiff_t most = 0;
  for (const candidate& each : candidates) {
    if (delimiter.find(each.character) != std::wstring::npos) continue;
    const std::ptrdiff_t count = std::count(text.begin(), text.end(), each.character);
    if (count > most) {
      most = count;
      best = each.option;
    }
  }
  return best;
}

void hintAtDelimiter(tableRW::tableReader& reader, const tableRW::tableReaderOptions& options,
                     const messageWriter& messages) {
  const std::uint64_t errors = reader.errorCount();
  const bool mostRejected = errors > reader.count();
  if (!mostRejected && reader.fieldCount() != 1) return;

  tableRW::rejectedRecord first;
  if (mostRejected && !platform::isPipeOrDevice(options.path)) {
    reader.rejectedRecords([&first](const tableRW::rejectedRecord& record) {
      first = record;
      return false;
    });
  }
  if (first.valueCount > 1) {
    messages.hint(
        fmt::format("line {} has {} and the header in line {} has {}: if the header "
                    "stands in another line, name it with --header-row",
                    grouped(first.line + 1), counted(first.valueCount, "value"),
                    std::max(options.header_position, 0) + 1, reader.fieldCount()));
    return;
  }
  std::wstring sample = first.text;
  if (!mostRejected) {
    visitEarlyTexts(reader, [&sample](const std::wstring& text) { sample += text; });
  }
  if (const auto delimiter = otherDelimiter(sample, options.delimiter)) {
    messages.hint(
        fmt::format("the values seem to be separated otherwise: try --delimiter {}", *delimiter));
  }
}

/// Whether the bytes are UTF-8 with some characters beyond ASCII. The last character may be cut by their end.
bool isUtf8Text(const std::string& bytes) {
  constexpr std::size_t longestCut = 3;
  const std::wstring text = toWide(bytes);
  const std::size_t wrong = std::min(text.find(undecoded), text.size());
  return wrong + longestCut >= text.size() && bytes.size() > text.size() + longestCut;
}

void hintAtEncoding(const tableRW::tableReader& reader, const tableRW::tableReaderOptions& options,
                    const messageWriter& messages) {
  const std::string begin = firstBytes(options.path, bytesLookedAt);
  if (begin.starts_with("\xFF\xFE") || begin.starts_with("\xFE\xFF")) {
    messages.hint("the file begins like UTF-16 text, which cannot be read: save it as UTF-8");
  } else if (options.encoding != 0 && (begin.starts_with(utf8Mark) || isUtf8Text(begin))) {
    messages.hint("the file begins like UTF-8 text: try --encoding UTF-8");
  } else if (hasUndecodedText(reader)) {
    messages.hint(
        "some characters could not be decoded: try another --encoding, such as CP1251 or CP866");
  }
}

}  // namespace

exitCode diagnose(tableRW::tableReader& reader, const readingArguments& arguments, listing rejected,
                  const messageWriter& messages) {
  std::string problem;
  // There are options: the reader was opened with them.
  const auto options = makeReaderOptions(arguments, problem);
  if (reader.fieldCount() == 0)
    messages.warning(fmt::format("no fields were found in {}; check --header-row", arguments.file));
  warnOfByteOrderMark(reader, arguments, messages);
  const std::uint64_t errors = reader.errorCount();
  if (errors > 0) {
    std::string text = fmt::format("{} of {} lines {} rejected", grouped(errors),
                                   grouped(reader.count() + errors), errors == 1 ? "was" : "were");
    if (rejected == listing::elsewhere)
      text += fmt::format(" (first: line {}); see: {}", grouped(reader.getError(0) + 1),
                          commandFor("errors", arguments));
    messages.warning(text);
  }
  if (isDelimitedText(options->file_type, options->path)) {
    hintAtDelimiter(reader, *options, messages);
    hintAtEncoding(reader, *options, messages);
  }
  return errors > 0 ? exitCode::rejected : exitCode::clean;
}

void warnOfSpecialBytes(const std::wstring& path, const messageWriter& messages) {
  platform::binaryFile file;
  if (!file.openForReading(path)) return;
  std::vector<char> block(blockSize);
  std::uint64_t offset = 0;
  bool hasNul = false;
  bool hasEnd = false;
  while (!hasEnd) {
    const std::size_t size = file.read(block.data(), block.size());
    if (size == 0) break;
    const std::string_view bytes(block.data(), size);
    const std::size_t end = bytes.find('\x1A');
    hasEnd = end != std::string_view::npos;
    hasNul = hasNul || bytes.substr(0, end).find('\0') != std::string_view::npos;
    offset += hasEnd ? end : size;
  }
  if (hasNul) {
    messages.warning(
        "the file holds NUL bytes: one can join two lines, so an editor may count lines otherwise");
  }
  if (hasEnd && offset + 1 < file.size()) {
    messages.warning(
        fmt::format("the text ends at byte {} (Ctrl-Z, 0x1A): {} behind it cannot be reached",
                    grouped(offset + 1), counted(file.size() - offset - 1, "byte")));
  }
}

}  // namespace vokTable

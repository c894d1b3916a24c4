#include "tools/diagnosis.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "tools/dbfLook.h"
#include "tools/fileBegin.h"
#include "tools/formats.h"
#include "tools/text.h"

namespace vokTable {
namespace {

constexpr std::uint64_t rowsLookedAt = 20;
constexpr std::size_t bytesLookedAt = 4096;
constexpr std::size_t blockSize = 256 * 1024;
constexpr std::uint64_t wholeFile = std::numeric_limits<std::uint64_t>::max();
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr wchar_t mark = static_cast<wchar_t>(byteOrderMark);
constexpr wchar_t undecoded = static_cast<wchar_t>(replacementCharacter);

bool beginsWith(const std::wstring& text, wchar_t character) {
  return !text.empty() && text.front() == character;
}

/// Asks about the field names and the values of the first rows.
/// @return whether any of them was what is looked for; those behind it are not asked about
template <typename Predicate>
bool hasText(const tableRW::tableReader& reader, std::uint64_t rows, Predicate isWanted) {
  std::vector<std::wstring> texts;
  reader.fieldList(texts);
  bool isFound = std::any_of(texts.begin(), texts.end(), isWanted);
  for (std::size_t row = 0; row < std::min(rows, reader.count()) && !isFound; ++row) {
    reader.getRow(row, texts);
    isFound = std::any_of(texts.begin(), texts.end(), isWanted);
  }
  return isFound;
}

bool hasUndecodedText(const tableRW::tableReader& reader, std::uint64_t rows) {
  return hasText(reader, rows, [](const std::wstring& text) {
    return text.find(undecoded) != std::wstring::npos;
  });
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
    hasText(reader, rowsLookedAt, [&sample](const std::wstring& text) {
      sample += text;
      return false;
    });
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
  if (beginsLikeUtf16(begin)) {
    messages.hint("the file begins like UTF-16 text, which cannot be read: save it as UTF-8");
  } else if (options.encoding != 0 && (begin.starts_with(utf8Mark) || isUtf8Text(begin))) {
    messages.hint("the file begins like UTF-8 text: try --encoding UTF-8");
  } else if (hasUndecodedText(reader, rowsLookedAt)) {
    messages.hint(
        "some characters could not be decoded: try another --encoding, such as CP1251 or CP866");
  }
}

/// For a table in the code page of the system that wrote it.
void warnOfUndecodedText(const tableRW::tableReader& reader, const readingArguments& arguments,
                         const messageWriter& messages) {
  if (hasUndecodedText(reader, reader.count())) {
    messages.warning(
        fmt::format("some characters of {} could not be decoded and became U+FFFD: choose its code "
                    "page with --system-encoding, such as CP1251 or CP866",
                    arguments.file));
  }
}

/// Warns of bytes in a text file that make its lines or its end differ from what an editor shows: NUL bytes, which
/// can join two lines, and 0x1A, which ends the text.
/// @param most  bytes that are looked at, in whole blocks
void warnOfSpecialBytes(const std::wstring& path, std::uint64_t most,
                        const messageWriter& messages) {
  if (platform::isPipeOrDevice(path)) return;
  platform::binaryFile file;
  file.openForReading(path);
  std::vector<char> block(blockSize);
  std::uint64_t offset = 0;
  bool hasNul = false;
  bool hasEnd = false;
  while (!hasEnd && offset < most) {
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
        "the file holds NUL bytes: one can join two lines and hide what follows it, so an "
        "editor may show other lines");
  }
  if (hasEnd && offset + 1 < file.size()) {
    messages.warning(
        fmt::format("the text ends at byte {} (Ctrl-Z, 0x1A): {} behind it cannot be reached",
                    grouped(offset + 1), counted(file.size() - offset - 1, "byte")));
  }
}

}  // namespace

exitCode diagnose(tableRW::tableReader& reader, const readingArguments& arguments, listing rejected,
                  coverage seen, const messageWriter& messages) {
  std::string problem;
  // There are options: the reader was opened with them.
  const auto options = makeReaderOptions(arguments, problem);
  if (reader.fieldCount() == 0)
    messages.warning(fmt::format("no fields were found in {}; check --header-row", arguments.file));
  const std::int32_t type = fileTypeOf(options->file_type, options->path);
  if (type == tableRW::fileTypeCsv || type == tableRW::fileTypePetrel)
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
  switch (type) {
    case tableRW::fileTypeCsv:
      hintAtDelimiter(reader, *options, messages);
      hintAtEncoding(reader, *options, messages);
      warnOfSpecialBytes(options->path, seen == coverage::whole ? wholeFile : blockSize, messages);
      break;
    case tableRW::fileTypeDbf:
      warnOfMissingParts(options->path, arguments.file, messages);
      [[fallthrough]];
    case tableRW::fileTypeMicromineData:
      warnOfUndecodedText(reader, arguments, messages);
      break;
    default:
      break;
  }
  return errors > 0 ? exitCode::rejected : exitCode::clean;
}

}  // namespace vokTable

#include "tools/readingOptions.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <limits>

#include "platform/codePages.h"
#include "platform/vok_basic.h"
#include "table_rw/text/textEncoding.h"
#include "tools/formats.h"
#include "tools/text.h"

namespace vokTable {
namespace {

template <typename Number>
std::optional<Number> wholeNumber(std::string_view text) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

/// A name as it is compared: small letters, and none of the marks that people put in or leave out.
std::string comparable(std::string_view name) {
  std::string out;
  for (const char character : name) {
    if (character == '-' || character == '_' || character == ' ') continue;
    const bool capital = character >= 'A' && character <= 'Z';
    out.push_back(capital ? static_cast<char>(character - 'A' + 'a') : character);
  }
  return out;
}

std::string knownEncodings() {
  std::string names;
  for (const std::string& name : encodingNames()) names += (names.empty() ? "" : ", ") + name;
  return names;
}

bool readPositions(const readingArguments& arguments, tableRW::tableReaderOptions& options,
                   std::string& problem) {
  if (arguments.headerRow) {
    const std::string& text = *arguments.headerRow;
    const auto line = comparable(text) == "none" ? 0 : wholeNumber<std::int32_t>(text);
    if (!line || *line < 0) {
      problem = fmt::format("--header-row {} is no line: give its number, counted from 1, or none",
                            inQuotes(text));
      return false;
    }
    options.header_position = *line - 1;
  }
  if (!arguments.dataRow) return true;
  const auto line = parseCount(*arguments.dataRow);
  if (!line || *line == 0) {
    problem = fmt::format("--data-row {} is no line: give its number, counted from 1",
                          inQuotes(*arguments.dataRow));
    return false;
  }
  if (options.header_position < 0) {
    problem = "--data-row needs a header row: without one the data begin in line 1";
    return false;
  }
  options.data_position = *line - 1;
  const auto header = static_cast<std::uint64_t>(options.header_position);
  if (options.data_position > header) return true;
  problem = fmt::format("--data-row {} does not lie below the header row, which is line {}", *line,
                        header + 1);
  return false;
}

/// A word as a shell takes it for one, and nothing in it as a command.
std::string shellWord(const std::string& word) {
  constexpr bool onWindows = sizeof(wchar_t) == 2;  // where a name holds no double quote
  constexpr std::string_view harmless =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+=./:,@%";
  const bool plain = !word.empty() && std::all_of(word.begin(), word.end(), [&](char character) {
    return static_cast<unsigned char>(character) >= 0x80 || (onWindows && character == '\\') ||
           harmless.find(character) != std::string_view::npos;
  });
  if (plain) return word;
  if (onWindows || word.find_first_of("$`\\!\"") == std::string::npos) return inQuotes(word);
  std::string quoted = "'";
  for (const char c : word) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

}  // namespace

std::optional<std::string> applySystemEncoding(const readingArguments& arguments) {
  if (!arguments.systemEncoding) return std::nullopt;
  const auto row = findEncoding(*arguments.systemEncoding);
  const unsigned codePage = row ? tableRW::codePageOf(*row) : platform::systemCodePage;
  const bool isItself = row == tableRW::encodingSystem;
  // The library keeps its own choice; the tool looks at the same page when it tells what fits.
  if (row && (codePage != platform::systemCodePage || isItself) &&
      platform::chooseSystemCodePage(codePage) && vo_options_set_system_code_page(codePage) != 0)
    return std::nullopt;
  return fmt::format(
      "--system-encoding {} cannot be a system's code page: give UTF-8, ASCII, CP866 or "
      "CP1250 to CP1258",
      inQuotes(*arguments.systemEncoding));
}

std::optional<std::uint64_t> parseCount(std::string_view text) {
  return wholeNumber<std::uint64_t>(text);
}

std::optional<std::int32_t> findEncoding(std::string_view name) {
  if (const auto row = wholeNumber<std::int32_t>(name)) {
    const bool exists = *row >= 0 && static_cast<std::size_t>(*row) < tableRW::textEncodingCount;
    return exists ? row : std::nullopt;
  }
  const std::string wanted = comparable(name);
  for (const auto column : {&tableRW::textEncodingRow::name, &tableRW::textEncodingRow::alias}) {
    const auto* const found =
        std::find_if(std::begin(tableRW::textEncodings), std::end(tableRW::textEncodings),
                     [&](const auto& row) { return comparable(row.*column) == wanted; });
    if (found != std::end(tableRW::textEncodings))
      return static_cast<std::int32_t>(found - std::begin(tableRW::textEncodings));
  }
  return std::nullopt;
}

std::vector<std::string> encodingNames() {
  std::vector<std::string> names;
  for (const auto& row : tableRW::textEncodings) names.emplace_back(row.name);
  return names;
}

std::wstring makeDelimiter(std::string_view text) {
  if (comparable(text) == "tab") return L"\t";
  std::wstring delimiter = toWide(text);
  for (std::size_t at = 0; (at = delimiter.find(L"\\t", at)) != std::wstring::npos; ++at)
    delimiter.replace(at, 2, 1, L'\t');
  return delimiter;
}

std::optional<tableRW::tableReaderOptions> makeReaderOptions(const readingArguments& arguments,
                                                             std::string& problem) {
  tableRW::tableReaderOptions options(toWide(arguments.file));
  if (arguments.type) {
    const auto type = findFileType(*arguments.type);
    if (!type) {
      problem = fmt::format("there is no type {}: the types are {}", inQuotes(*arguments.type),
                            fileTypeNames());
      return std::nullopt;
    }
    options.file_type = *type;
  }
  if (arguments.encoding) {
    const auto encoding = findEncoding(*arguments.encoding);
    if (!encoding) {
      problem = fmt::format(
          "there is no encoding {}: the encodings are {}, or a number from 0 to {}",
          inQuotes(*arguments.encoding), knownEncodings(), tableRW::textEncodingCount - 1);
      return std::nullopt;
    }
    options.encoding = *encoding;
  }
  if (!readPositions(arguments, options, problem)) return std::nullopt;
  if (arguments.delimiter) options.delimiter = makeDelimiter(*arguments.delimiter);
  if (arguments.quote) options.quote = toWide(*arguments.quote);
  if (arguments.table) options.table = toWide(*arguments.table);
  return options;
}

std::string commandFor(std::string_view command, const readingArguments& arguments) {
  std::string line = fmt::format("vok_table {} {}", command, shellWord(arguments.file));
  const auto append = [&line](std::string_view option, const std::optional<std::string>& value) {
    if (value) line += fmt::format(" {} {}", option, shellWord(*value));
  };
  append("--type", arguments.type);
  append("--encoding", arguments.encoding);
  append("--delimiter", arguments.delimiter);
  append("--quote", arguments.quote);
  append("--header-row", arguments.headerRow);
  append("--data-row", arguments.dataRow);
  append("--table", arguments.table);
  append("--system-encoding", arguments.systemEncoding);
  return line;
}

}  // namespace vokTable

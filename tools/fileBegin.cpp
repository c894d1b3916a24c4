#include "tools/fileBegin.h"

#include <algorithm>
#include <iterator>

#include "platform/files.h"
#include "tools/dbfLook.h"

namespace vokTable {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t bytesLookedAt = 4096;

struct signature {
  std::string_view bytes;
  otherFormat format;
};

// clang-format off
constexpr signature signatures[] = {
    {"SQLite format 3\0"sv,
     {"an SQLite database", "read it with --type sqlite"}},
    {"PK\3\4"sv,
     {"a ZIP archive", "read it with --type xls if it is an Excel workbook (.xlsx, .xlsm)"}},
    {"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv,
     {"a compound file", "read it with --type xls if it is an Excel workbook (.xls)"}},
    {"\0\1\0\0Standard Jet DB"sv,
     {"an Access database", "read it with --type access, or --type dhdb for drill holes"}},
    {"\0\1\0\0Standard ACE DB"sv,
     {"an Access database", "read it with --type access, or --type dhdb for drill holes"}},
    {"THIS IS MICROMINE EXTENDED DATA FILE!"sv,
     {"a Micromine data file", "read it with --type micromine"}},
};
// clang-format on
constexpr otherFormat dbf{"a dBASE or FoxPro table", "read it with --type dbf"};
constexpr otherFormat utf16{"UTF-16 text", "save it as UTF-8, which can be read"};

/// Bytes below the first control character of text, where UTF-16 has them in front of or behind Latin and Cyrillic.
bool isHigherHalf(char byte) { return static_cast<unsigned char>(byte) < '\t'; }

/// Whether all of every second byte, from `first` on, and none of the first of the others, is the higher half of a
/// character.
bool isTextOfUnits(std::string_view bytes, std::size_t first) {
  if (isHigherHalf(bytes[1 - first])) return false;
  for (std::size_t at = first; at < bytes.size(); at += 2)
    if (!isHigherHalf(bytes[at])) return false;
  return true;
}

}  // namespace

std::string firstBytes(const std::wstring& path, std::size_t count) {
  if (platform::isPipeOrDevice(path)) return {};
  platform::binaryFile file;
  file.openForReading(path);
  std::string bytes(count, '\0');
  bytes.resize(file.read(bytes.data(), bytes.size()));
  return bytes;
}

bool beginsLikeUtf16(std::string_view bytes) {
  constexpr std::size_t twoUnits = 4;
  if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) return true;
  return bytes.size() >= twoUnits && (isTextOfUnits(bytes, 1) || isTextOfUnits(bytes, 0));
}

std::optional<otherFormat> formatOfContent(const std::wstring& path) {
  const std::string begin = firstBytes(path, bytesLookedAt);
  if (begin.empty()) return std::nullopt;
  const auto* const known =
      std::find_if(std::begin(signatures), std::end(signatures),
                   [&](const signature& each) { return begin.starts_with(each.bytes); });
  if (known != std::end(signatures)) return known->format;
  if (lookAtDbf(path).isTable) return dbf;
  if (beginsLikeUtf16(begin)) return utf16;
  return std::nullopt;
}

}  // namespace vokTable

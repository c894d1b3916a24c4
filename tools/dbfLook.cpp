#include "tools/dbfLook.h"

#include <fmt/core.h>

#include <string_view>

#include "platform/files.h"
#include "tools/text.h"

namespace vokTable {
namespace {

constexpr std::size_t longestHeader = 0xFFFF;
constexpr std::size_t shortestHeader = 32;
constexpr unsigned dbase2 = 0x02;
constexpr std::size_t dbase2Header = 521;
constexpr std::string_view knownVersions =
    "\x02\x03\x04\x05\x30\x31\x32\x43\x63\x83\x8B\x8C\x8E\xCB\xE5\xF5\xFB";
constexpr std::uint64_t smallestMemoFile = 24;  // a header

/// Where a descriptor holds what is looked at.
struct descriptorLayout {
  std::size_t first;
  std::size_t size;
  std::size_t type;
  std::size_t length;
};
constexpr descriptorLayout usual{32, 32, 11, 16};
constexpr descriptorLayout dbase7{68, 48, 32, 33};

std::uint64_t numberAt(std::string_view bytes, std::size_t at, std::size_t size) {
  std::uint64_t number = 0;
  for (std::size_t i = size; i > 0; --i)
    number = number << 8 | static_cast<unsigned char>(bytes[at + i - 1]);
  return number;
}

struct fieldsLook {
  std::uint64_t recordLength = 1;  // the mark of deletion
  bool hasMemos = false;
};

fieldsLook lookAtFields(std::string_view header, const descriptorLayout& layout) {
  fieldsLook found;
  for (std::size_t at = layout.first; at + layout.size <= header.size(); at += layout.size) {
    if (header[at] == '\r' || header[at] == '\0') break;
    const std::uint64_t length = numberAt(header, at + layout.length, 1);
    found.recordLength += length;
    if (header[at + layout.type] == 'M' && (length == 10 || length == 4)) found.hasMemos = true;
  }
  return found;
}

// FORMAT: 04 stands for dBASE 7 and for dBASE IV; the lengths of the fields tell.
bool hasMemoFields(std::string_view header, unsigned version, std::uint64_t recordLength) {
  const fieldsLook fields = lookAtFields(header, usual);
  if ((version & 7U) == 4 && fields.recordLength != recordLength)
    return lookAtFields(header, dbase7).hasMemos;
  return fields.hasMemos;
}

/// A version, a day, and the NUL bytes that every header has and no text.
/// @param yearAt  the byte in front of the month; in dBASE II the year stands behind the day
bool beginsLikeDbf(std::string_view bytes, std::size_t yearAt) {
  return knownVersions.find(bytes[0]) != std::string_view::npos &&
         numberAt(bytes, yearAt + 1, 1) <= 12 && numberAt(bytes, yearAt + 2, 1) <= 31 &&
         bytes.substr(0, shortestHeader).find('\0') != std::string_view::npos;
}

/// The table's path with another extension. A dot in a folder's name begins none.
std::wstring pathBeside(const std::wstring& path, const wchar_t* extension) {
  const std::size_t name = path.find_last_of(L"/\\") + 1;  // 0 when there is neither
  const std::size_t dot = path.substr(name).rfind(L'.');
  return path.substr(0, dot == std::wstring::npos ? dot : name + dot) + extension;
}

bool hasFileBeside(const std::wstring& path, const wchar_t* extension) {
  platform::binaryFile file;
  file.openForReading(platform::findIgnoringCase(pathBeside(path, extension)));
  return file.size() >= smallestMemoFile;
}

}  // namespace

dbfLook lookAtDbf(const std::wstring& path) {
  platform::binaryFile file;
  std::string begin(longestHeader, '\0');
  file.openForReading(path);
  begin.resize(file.read(begin.data(), begin.size()));
  if (begin.size() < shortestHeader) return {};
  const unsigned version = static_cast<unsigned char>(begin[0]);
  const bool isOld = version == dbase2;
  const std::uint64_t headerLength = isOld ? dbase2Header : numberAt(begin, 8, 2);
  const std::uint64_t recordLength = isOld ? numberAt(begin, 6, 2) : numberAt(begin, 10, 2);
  if (headerLength < shortestHeader || headerLength > begin.size() || recordLength == 0) return {};
  dbfLook look;
  look.isTable = beginsLikeDbf(begin, isOld ? 2 : 1);
  look.recordsTold = isOld ? numberAt(begin, 1, 2) : numberAt(begin, 4, 4);
  look.recordsHeld = (file.size() - headerLength) / recordLength;
  look.isFoxPro = (version >= 0x30 && version <= 0x32) || version == 0xF5;
  begin.resize(headerLength);
  look.hasMemos = !isOld && hasMemoFields(begin, version, recordLength);
  return look;
}

void warnOfMissingParts(const std::wstring& path, const std::string& name,
                        const messageWriter& messages) {
  const dbfLook look = lookAtDbf(path);
  if (look.recordsHeld < look.recordsTold) {
    messages.warning(fmt::format("{} is cut: its header tells {}, the file holds {}", name,
                                 counted(look.recordsTold, "record"), grouped(look.recordsHeld)));
  }
  if (!look.hasMemos || hasFileBeside(path, L".fpt")) return;
  if (!look.isFoxPro && hasFileBeside(path, L".dbt")) return;
  messages.warning(
      fmt::format("{} has memo fields and no memo file beside it, so their texts are missing: put "
                  "its {} file there",
                  name, look.isFoxPro ? ".fpt" : ".dbt or .fpt"));
}

}  // namespace vokTable

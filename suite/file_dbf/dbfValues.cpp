#include "suite/file_dbf/dbfValues.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>

#include "suite/file_dbf/dbfCalendar.h"
#include "suite/file_dbf/dbfLayout.h"
#include "suite/file_dbf/dbfTextEnds.h"

namespace fileDbf {
namespace {

constexpr vo_dbf_value noValue = {nullptr, 0};
constexpr std::uint64_t signBit = std::uint64_t{1} << 63;
constexpr std::int64_t julianDayOf1970 = 2440588;
constexpr std::int64_t firstDayOf1970 = 719163;  // counted from 0001-01-01, which is day 1
constexpr std::int64_t millisecondsOfDay = 86400000;

vo_dbf_value shown(const std::string& text) { return {text.data(), text.size()}; }

vo_dbf_value slice(const char* bytes, textEnds ends) {
  return ends.begin == ends.end ? noValue : vo_dbf_value{bytes + ends.begin, ends.end - ends.begin};
}

vo_dbf_value readText(const char* bytes, std::size_t length) {
  textEnds ends = findTextEnds(bytes, length);
  if (ends.begin != ends.end) ends.begin = 0;  // blanks on the left belong to the text
  return slice(bytes, ends);
}

vo_dbf_value readNumber(const char* bytes, std::size_t length) {
  const vo_dbf_value value = slice(bytes, findTextEnds(bytes, length));
  const bool overflown =
      value.length > 0 && *value.bytes == '*' &&
      std::all_of(value.bytes, value.bytes + value.length, [](char c) { return c == '*'; });
  return overflown ? noValue : value;
}

// Text that is no date comes as it stands: somebody has to see it to put it right.
vo_dbf_value readDate(const char* bytes, std::size_t length, std::string& computed) {
  const vo_dbf_value stored = slice(bytes, findTextEnds(bytes, length));
  if (stored.length == 0) return noValue;
  const std::string_view text(stored.bytes, stored.length);
  if (text.find_first_not_of('0') == std::string_view::npos) return noValue;
  const std::optional<day> date = parseStoredDate(text);
  if (!date) return stored;
  computed = shownDate(*date);
  return shown(computed);
}

vo_dbf_value readLogical(const char* bytes) {
  switch (*bytes) {
    case 'T':
    case 't':
    case 'Y':
    case 'y':
    case '1':
      return {"T                ", 1};
    case 'F':
    case 'f':
    case 'N':
    case 'n':
    case '0':
      return {"F                ", 1};
    case '?':
    case ' ':
    case '\0':
      return noValue;
    default:
      return {bytes, 1};
  }
}

vo_dbf_value showInteger(std::int32_t number, std::string& computed) {
  computed = std::to_string(number);
  return shown(computed);
}

// The shortest digits that read back to the same number. WHY without an exponent wherever people write
// none: 100000 is no shorter as 1e+05 for those who read it, and a field of digits does not hold that.
vo_dbf_value showReal(std::uint64_t bits, std::string& computed) {
  constexpr double smallestPlain = 1e-5;
  constexpr double largestPlain = 1e16;
  const auto number = std::bit_cast<double>(bits);
  if (!std::isfinite(number)) return noValue;
  const double size = std::fabs(number);
  char text[40];
  char* end = text;
  if (size == 0)
    *end++ = '0';
  else if (size >= smallestPlain && size < largestPlain)
    end = std::to_chars(text, std::end(text), number, std::chars_format::fixed).ptr;
  else
    end = std::to_chars(text, std::end(text), number).ptr;
  computed.assign(text, end);
  return shown(computed);
}

// 10,000 times the amount, shown without zeros at the end.
vo_dbf_value showCurrency(std::int64_t stored, std::string& computed) {
  constexpr std::uint64_t unit = 10000;
  const bool negative = stored < 0;
  const std::uint64_t size =
      negative ? ~static_cast<std::uint64_t>(stored) + 1 : static_cast<std::uint64_t>(stored);
  computed = (negative ? "-" : "") + std::to_string(size / unit);
  if (size % unit != 0) {
    const std::string digits = std::to_string(unit + size % unit);
    computed += '.' + digits.substr(1, digits.find_last_not_of('0'));
  }
  return shown(computed);
}

vo_dbf_value showTime(std::int64_t daysSince1970, std::int64_t milliseconds,
                      std::string& computed) {
  const std::optional<std::string> text = shownTime(daysSince1970, milliseconds);
  if (!text) return noValue;
  computed = *text;
  return shown(computed);
}

bool isBlank(const char* bytes, std::size_t length) {
  return std::all_of(bytes, bytes + length, [](char c) { return c == ' '; });
}

vo_dbf_value readJulianTime(const char* bytes, std::string& computed) {
  if (loadLittle(bytes, 8) == 0 || isBlank(bytes, 8)) return noValue;
  const auto date = static_cast<std::int32_t>(loadLittle(bytes, 4));
  const auto time = static_cast<std::int32_t>(loadLittle(bytes + 4, 4));
  return showTime(date - julianDayOf1970, time, computed);
}

vo_dbf_value readMillisecondTime(const char* bytes, std::string& computed) {
  const auto count = std::bit_cast<double>(loadBig(bytes, 8));
  if (isBlank(bytes, 8) || !(count >= 1 && count < 1e15)) return noValue;
  const auto milliseconds = std::llround(count);
  return showTime(milliseconds / millisecondsOfDay - firstDayOf1970,
                  milliseconds % millisecondsOfDay, computed);
}

vo_dbf_value readOrderedInteger(const char* bytes, std::string& computed) {
  const auto bits = static_cast<std::uint32_t>(loadBig(bytes, 4));
  if (bits == 0) return noValue;
  return showInteger(static_cast<std::int32_t>(bits ^ 0x80000000U), computed);
}

vo_dbf_value readOrderedReal(const char* bytes, std::string& computed) {
  const std::uint64_t bits = loadBig(bytes, 8);
  if (bits == 0) return noValue;
  return showReal((bits & signBit) != 0 ? bits ^ signBit : ~bits, computed);
}

vo_dbf_value readSignedReal(const char* bytes, std::string& computed) {
  const std::uint64_t bits = loadBig(bytes, 8);
  return showReal(bits == 0 ? 0 : bits ^ signBit, computed);
}

vo_dbf_value readMemo(const char* bytes, std::size_t length, memoFile* memos,
                      std::string& computed) {
  if (memos == nullptr) return noValue;
  std::uint64_t block = 0;
  if (length == 4) {
    block = loadLittle(bytes, 4);
  } else {
    const textEnds ends = findTextEnds(bytes, length);
    const auto result = std::from_chars(bytes + ends.begin, bytes + ends.end, block);
    if (result.ec != std::errc() || result.ptr != bytes + ends.end) return noValue;
  }
  if (!memos->read(block, computed)) return noValue;
  computed.resize(std::min(computed.find('\0'), computed.size()));
  return computed.empty() ? noValue : shown(computed);
}

bool hasFlag(const tableHeader& header, const char* record, int bit) {
  const auto byte = static_cast<std::size_t>(bit) / 8;
  if (bit < 0 || byte >= header.nullFlagsLength) return false;
  return (byteAt(record, header.nullFlagsAt + byte) >> (bit % 8) & 1U) != 0;
}

// Varying text ends where its last byte says, when the flags say that it is that byte's matter.
std::size_t varyingLength(const tableHeader& header, const tableField& field, const char* record) {
  if (field.length == 0 || !hasFlag(header, record, field.lengthBit)) return field.length;
  return std::min<std::size_t>(byteAt(record, field.offset + field.length - 1), field.length - 1);
}

}  // namespace

vo_dbf_value readValue(const tableHeader& header, const tableField& field, const char* record,
                       memoFile* memos, std::string& computed) {
  if (hasFlag(header, record, field.nullBit)) return noValue;
  const char* const bytes = record + field.offset;
  switch (field.kind) {
    case fieldKind::text:
      return readText(bytes, field.length);
    case fieldKind::varyingText:
      return readText(bytes, varyingLength(header, field, record));
    case fieldKind::number:
      return readNumber(bytes, field.length);
    case fieldKind::date:
      return readDate(bytes, field.length, computed);
    case fieldKind::logical:
      return readLogical(bytes);
    case fieldKind::memo:
      return readMemo(bytes, field.length, memos, computed);
    case fieldKind::noText:
      return noValue;
    case fieldKind::integer:
      return showInteger(static_cast<std::int32_t>(loadLittle(bytes, 4)), computed);
    case fieldKind::orderedInteger:
      return readOrderedInteger(bytes, computed);
    case fieldKind::real:
      return showReal(loadLittle(bytes, 8), computed);
    case fieldKind::orderedReal:
      return readOrderedReal(bytes, computed);
    case fieldKind::signedReal:
      return readSignedReal(bytes, computed);
    case fieldKind::currency:
      return showCurrency(static_cast<std::int64_t>(loadLittle(bytes, 8)), computed);
    case fieldKind::julianTime:
      return readJulianTime(bytes, computed);
    case fieldKind::millisecondTime:
      return readMillisecondTime(bytes, computed);
  }
  return noValue;
}

}  // namespace fileDbf

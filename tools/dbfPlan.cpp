#include "tools/dbfPlan.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <memory>

#include "platform/vok_basic.h"
#include "tools/text.h"

namespace vokTable {
namespace {

constexpr auto dateType = static_cast<tableRW::fldType>(2);
constexpr std::int32_t widestText = 254;
constexpr std::int32_t widestNumber = 20;
constexpr std::int32_t dateWidth = 8;
constexpr std::int32_t emptyNumberWidth = 10;
constexpr std::size_t mostFields = 2046;
constexpr std::size_t longestRecord = 65535;
constexpr std::size_t longestName = 10;

bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

/// The parts of a number that is written the plain way: 12, -0.5.
struct plainNumber {
  std::int32_t whole;  // characters before the point, the sign included
  std::int32_t decimals;
};

std::optional<plainNumber> parsePlain(std::wstring_view text) {
  const std::size_t sign = text.starts_with(L'-') ? 1 : 0;
  std::size_t at = sign;
  while (at < text.size() && isDigit(text[at])) ++at;
  const std::size_t whole = at;
  if (whole == sign || (text[sign] == L'0' && whole > sign + 1)) return std::nullopt;
  std::size_t decimals = 0;
  if (at < text.size() && text[at] == L'.') {
    for (++at; at < text.size() && isDigit(text[at]); ++at) ++decimals;
    if (decimals == 0) return std::nullopt;
  }
  if (at != text.size() || text.size() > widestNumber) return std::nullopt;
  const bool isZero = text.find_first_not_of(L"-0.") == std::wstring_view::npos;
  if (isZero && sign != 0) return std::nullopt;  // its sign would be lost
  return plainNumber{static_cast<std::int32_t>(whole), static_cast<std::int32_t>(decimals)};
}

bool isDay(std::wstring_view text) {
  if (text.size() != 10 || text[4] != L'-' || text[7] != L'-') return false;
  const auto number = [&](std::size_t at, std::size_t count) {
    int value = 0;
    for (std::size_t i = at; i < at + count; ++i)
      value = isDigit(text[i]) ? 10 * value + (text[i] - L'0') : -100000;
    return value;
  };
  const int year = number(0, 4);
  const int month = number(5, 2);
  const int day = number(8, 2);
  if (year < 1 || month < 1 || day < 1) return false;
  return std::chrono::year_month_day(std::chrono::year(year),
                                     std::chrono::month(static_cast<unsigned>(month)),
                                     std::chrono::day(static_cast<unsigned>(day)))
      .ok();
}

/// What the values of a field need.
class fieldNeeds {
 public:
  void add(std::wstring_view value, const codePageLimits& page) {
    if (value.empty()) return;
    isEmpty_ = false;
    width_ = std::max(width_, page.sizeOf(value));
    allDays_ = allDays_ && isDay(value);
    if (!allNumbers_) return;
    const auto number = parsePlain(value);
    allNumbers_ = number.has_value();
    if (!number) return;
    whole_ = std::max(whole_, number->whole);
    decimals_ = std::max(decimals_, number->decimals);
  }

  void choose(tableRW::writerField& field) const {
    const std::int32_t width = whole_ + (decimals_ > 0 ? decimals_ + 1 : 0);
    if (isEmpty_ && field.type == tableRW::fldNumber) {
      field.width = emptyNumberWidth;
    } else if (!isEmpty_ && allNumbers_ && width <= widestNumber) {
      field.type = tableRW::fldNumber;
      field.width = width;
      field.decimals = static_cast<std::uint8_t>(decimals_);
    } else if (!isEmpty_ && allDays_) {
      field.type = dateType;
      field.width = dateWidth;
    } else {
      field.type = tableRW::fldText;
      field.width = static_cast<std::int32_t>(
          std::clamp<std::size_t>(width_, 1, static_cast<std::size_t>(widestText)));
    }
  }

 private:
  bool isEmpty_ = true;
  bool allNumbers_ = true;
  bool allDays_ = true;
  std::size_t width_ = 0;
  std::int32_t whole_ = 0;
  std::int32_t decimals_ = 0;
};

std::string latinOf(const std::wstring& name) {
  std::string latin;
  Tvo_std_string_adapter receiver(latin);
  const std::unique_ptr<vo_string_adp, decltype(&vo_string_adp_destroy)> adapter(
      vo_string_adp_create(&receiver), &vo_string_adp_destroy);
  vo_translit(name.c_str(), adapter.get());
  return latin;
}

std::string inCapitals(std::string text) {
  for (char& c : text)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return text;
}

bool isPlainInName(char c) {
  return isDigit(static_cast<wchar_t>(c)) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
         c == '_';
}

/// A transliterated name as the library makes it valid, in capitals: names of which these are equal are made
/// distinct.
std::string validName(std::string latin, std::size_t field) {
  latin.resize(std::min(latin.size(), longestName));
  latin.erase(latin.find_last_not_of(' ') + 1);
  latin.erase(0, std::min(latin.find_first_not_of(' '), latin.size()));
  if (latin.empty()) return fmt::format("FIELD{}", field + 1);
  for (char& c : latin)
    if (!isPlainInName(c)) c = '_';
  if (isDigit(static_cast<wchar_t>(latin.front()))) latin.insert(0, 1, '_');
  return inCapitals(latin.substr(0, longestName));
}

bool consistsOf(std::wstring_view text, wchar_t digit) {
  return text.find_first_not_of(digit) == std::wstring_view::npos;
}

/// Characters that a plain number takes in a field of so many decimals, rounded half away from zero. The
/// zero in front of the point needs no room.
std::size_t widthOf(std::wstring_view number, std::size_t decimals) {
  const bool negative = number.front() == L'-';
  if (negative) number.remove_prefix(1);
  const std::wstring_view whole = number.substr(0, number.find(L'.'));
  const std::wstring_view fraction = number.substr(std::min(whole.size() + 1, number.size()));
  const std::wstring_view kept = fraction.substr(0, decimals);
  const bool up = fraction.size() > decimals && fraction[decimals] >= L'5';
  const bool carries = up && consistsOf(kept, L'9');
  const bool isBelowOne = whole == L"0";
  std::size_t digits = isBelowOne ? 0 : whole.size();
  if (carries && (isBelowOne || consistsOf(whole, L'9'))) ++digits;
  const bool isZero = isBelowOne && !up && consistsOf(kept, L'0');
  if (digits == 0 && decimals == 0) digits = 1;
  return (negative && !isZero ? 1 : 0) + digits + (decimals > 0 ? decimals + 1 : 0);
}

bool parseSmall(std::string_view text, std::int32_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && number >= 0;
}

/// A type as --fields writes it: C20, N10.2, N8, D.
bool parseType(std::string_view text, tableRW::writerField& field) {
  if (text.empty()) return false;
  const char letter = inCapitals(std::string(text.substr(0, 1))).front();
  text.remove_prefix(1);
  field.decimals = 0;
  if (letter == 'D') {
    field.type = dateType;
    field.width = dateWidth;
    return text.empty();
  }
  std::int32_t decimals = 0;
  const std::size_t point = text.find('.');
  if (letter == 'N' && point != std::string_view::npos) {
    if (!parseSmall(text.substr(point + 1), decimals)) return false;
    text = text.substr(0, point);
  }
  if (!parseSmall(text, field.width) || field.width < 1) return false;
  if (letter == 'C') {
    field.type = tableRW::fldText;
    return field.width <= widestText;
  }
  field.type = tableRW::fldNumber;
  field.decimals = static_cast<std::uint8_t>(decimals);
  return letter == 'N' && field.width <= widestNumber &&
         (decimals == 0 || decimals + 2 <= field.width);
}

}  // namespace

std::optional<std::string> dbfPlan::chooseFields(const selectedTable& table,
                                                 const std::optional<std::string>& named,
                                                 std::vector<tableRW::writerField>& fields) {
  std::vector<fieldNeeds> needs(table.fieldCount());
  std::vector<std::wstring> row;
  for (std::size_t number = 0; number < table.count(); ++number) {
    table.getRow(number, row);
    for (std::size_t field = 0; field < std::min(row.size(), needs.size()); ++field)
      needs[field].add(row[field], page_);
  }
  std::size_t recordLength = 1;
  for (std::size_t field = 0; field < needs.size(); ++field) {
    fields_.push_back({table.fieldName(field), table.fieldType(field)});
    latinNames_.push_back(latinOf(fields_.back().name));
    needs[field].choose(fields_.back());
  }
  if (named)
    if (auto wrong = useNamed(table, *named)) return wrong;
  for (const tableRW::writerField& field : fields_)
    recordLength += static_cast<std::size_t>(field.width);
  if (fields_.size() > mostFields)
    return fmt::format("a DBF file holds {} fields at most, and the table has {}",
                       grouped(mostFields), grouped(fields_.size()));
  if (recordLength > longestRecord)
    return fmt::format("a record of a DBF file holds {} at most, and the table needs {}",
                       counted(longestRecord, "byte"), grouped(recordLength));
  fields = fields_;
  return std::nullopt;
}

std::optional<std::string> dbfPlan::useNamed(const selectedTable& table, std::string_view named) {
  while (!named.empty()) {
    const std::size_t comma = named.find(',');
    std::string_view entry = named.substr(0, comma);
    named = comma == std::string_view::npos ? std::string_view() : named.substr(comma + 1);
    while (!entry.empty() && entry.front() == ' ') entry.remove_prefix(1);
    while (!entry.empty() && entry.back() == ' ') entry.remove_suffix(1);
    const std::size_t sign = entry.rfind('=');
    if (sign == std::string_view::npos)
      return fmt::format("--fields {} has no type: write it as FIELD=TYPE", inQuotes(entry));
    const std::string_view name = entry.substr(0, sign);
    const auto field = table.fieldNum(toWide(name));
    if (!field) return fmt::format("--fields names {}, and there is no such field", inQuotes(name));
    if (!parseType(entry.substr(sign + 1), fields_[*field]))
      return fmt::format(
          "--fields {}: the types are C1 to C254, N1 to N20, N3.1 and the like, and D",
          inQuotes(entry));
  }
  return std::nullopt;
}

std::optional<std::string> dbfPlan::nameProblem(std::size_t field, std::wstring_view name) const {
  const std::string& latin = latinNames_[field];
  if (name.empty()) return "has no name, and gets one";
  if (latin.empty()) return "nothing of the name is left in Latin letters, and it gets another";
  if (latin.size() > longestName)
    return fmt::format("the name is cut to {} characters", longestName);
  if (!std::all_of(latin.begin(), latin.end(), isPlainInName) ||
      isDigit(static_cast<wchar_t>(latin.front())))
    return "the name is changed: it may hold letters, digits and _, and begins with no digit";
  for (std::size_t i = 0; i < field; ++i)
    if (validName(latinNames_[i], i) == inCapitals(latin))
      return fmt::format("the name is changed: {} is too much like it",
                         inQuotes(toUtf8(fields_[i].name)));
  return std::nullopt;
}

std::optional<std::string> dbfPlan::textProblem(std::wstring_view value, std::size_t width) const {
  for (std::size_t at = 0; at < value.size();) {
    const char32_t character = nextCharacter(value, at);
    if (character == 0) return "holds a NUL character, which ends the value";
    if (!page_.holds(character))
      return fmt::format("holds a character outside {} (U+{:04X})", page_.name(),
                         static_cast<std::uint32_t>(character));
  }
  const std::size_t size = page_.sizeOf(value);
  if (size > width) return fmt::format("is cut: it needs {}, and there are {}", size, width);
  if (value.back() == L' ') return "ends with a blank, which is taken for padding";
  return std::nullopt;
}

std::optional<std::string> dbfPlan::problem(std::size_t field, std::wstring_view value) const {
  if (value.empty()) return std::nullopt;
  const tableRW::writerField& target = fields_[field];
  if (target.type == tableRW::fldText)
    return textProblem(value, static_cast<std::size_t>(target.width));
  if (target.type == dateType)
    return isDay(value) ? std::nullopt : std::optional<std::string>("is no day as YYYY-MM-DD");
  const auto number = parsePlain(value);
  if (!number) return "is no plain number";
  if (widthOf(value, target.decimals) > static_cast<std::size_t>(target.width))
    return "does not fit, and becomes asterisks";
  if (number->decimals > target.decimals &&
      !consistsOf(value.substr(value.find(L'.') + 1 + target.decimals), L'0'))
    return fmt::format("is rounded to {}", counted(target.decimals, "decimal"));
  return std::nullopt;
}

std::optional<std::uint64_t> dbfPlan::fileSize(std::uint64_t rows) const {
  constexpr std::uint64_t header = 32;
  constexpr std::uint64_t descriptor = 32;
  std::uint64_t record = 1;
  for (const tableRW::writerField& field : fields_)
    record += static_cast<std::uint64_t>(field.width);
  return header + descriptor * fields_.size() + 1 + rows * record + 1;
}

const char* dbfPlan::alternative() const {
  return "choose other --fields, another --system-encoding or format";
}

}  // namespace vokTable

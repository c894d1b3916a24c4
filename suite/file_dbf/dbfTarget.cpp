#include "suite/file_dbf/dbfTarget.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "platform/calendar.h"
#include "suite/file_dbf/dbfCalendar.h"
#include "suite/file_dbf/dbfLanguages.h"
#include "suite/file_dbf/dbfLayout.h"
#include "suite/file_dbf/dbfNumbers.h"

namespace fileDbf {
namespace {

constexpr std::string_view writableTypes = "CNFDL";
constexpr unsigned char dateLength = 8;
constexpr unsigned char logicalLength = 1;
constexpr int firstYear = 1900;
constexpr const descriptorLayout& layout = descriptorsDbase3;

std::size_t headerLengthOf(std::size_t fields) { return layout.first + fields * layout.size + 1; }

std::size_t recordLengthOf(const std::vector<dbfFieldDef>& fields) {
  std::size_t length = 1;
  for (const dbfFieldDef& field : fields) length += field.length;
  return length;
}

void storeToday(char* bytes) {
  const platform::calendarTime date = platform::localTime();
  storeLittle(bytes, static_cast<std::uint64_t>(date.year - firstYear), 1);
  storeLittle(bytes + 1, static_cast<std::uint64_t>(date.month), 1);
  storeLittle(bytes + 2, static_cast<std::uint64_t>(date.day), 1);
}

void writeDate(std::wstring_view text, char* to, std::size_t width) {
  std::string narrow;
  for (const wchar_t c : withoutBlanks(text))
    narrow += c > 0 && c < 0x80 ? static_cast<char>(c) : '?';
  std::fill_n(to, width, ' ');
  const std::optional<day> date = parseWrittenDate(narrow);
  if (!date) return;
  std::string stored = shownDate(*date);
  stored.erase(std::remove(stored.begin(), stored.end(), '-'), stored.end());
  std::copy_n(stored.begin(), std::min(stored.size(), width), to);
}

char logicalOf(std::wstring_view text) {
  std::wstring word(withoutBlanks(text));
  for (wchar_t& c : word)
    if (c >= L'a' && c <= L'z') c = static_cast<wchar_t>(c - L'a' + L'A');
  for (const wchar_t* const yes : {L"T", L"Y", L"1", L"TRUE", L"YES"})
    if (word == yes) return 'T';
  for (const wchar_t* const no : {L"F", L"N", L"0", L"FALSE", L"NO"})
    if (word == no) return 'F';
  return ' ';
}

}  // namespace

std::optional<std::vector<dbfFieldDef>> writableFields(const dbfFieldDef* fields,
                                                       std::uint32_t count) {
  if (headerLengthOf(count) > largestLength || (fields == nullptr && count > 0))
    return std::nullopt;
  std::vector<dbfFieldDef> list;
  if (count > 0) list.assign(fields, fields + count);
  for (dbfFieldDef& field : list) {
    if (field.type == '\0' || writableTypes.find(field.type) == std::string_view::npos)
      return std::nullopt;
    if (field.type == 'D') field.length = dateLength;
    if (field.type == 'L') field.length = logicalLength;
    if (field.type != 'N' && field.type != 'F') field.decimals = 0;
  }
  if (recordLengthOf(list) > largestLength) return std::nullopt;
  return list;
}

tableTarget::tableTarget(std::unique_ptr<tableOutput> output, std::vector<dbfFieldDef> fields,
                         unsigned codePage)
    : output_(std::move(output)),
      fields_(std::move(fields)),
      text_(codePage),
      headerLength_(headerLengthOf(fields_.size())),
      recordLength_(recordLengthOf(fields_)),
      blockRecords_(std::max<std::size_t>(blockSize / recordLength_, 1)),
      block_(blockRecords_ * recordLength_ + 1) {
  std::size_t offset = 1;
  for (const dbfFieldDef& field : fields_) {
    offsets_.push_back(offset);
    offset += field.length;
  }
  const std::vector<char> header = makeHeader(languageDriverOf(codePage));
  failed_ = !output_->write(0, header.data(), header.size());
}

tableTarget::~tableTarget() { finish(); }

std::vector<char> tableTarget::makeHeader(unsigned char languageDriver) const {
  std::vector<char> header(headerLength_);
  char* const bytes = header.data();
  bytes[versionAt] = static_cast<char>(versionDbase3);
  storeToday(bytes + dateAt);
  storeLittle(bytes + headerLengthAt, headerLength_, 2);
  storeLittle(bytes + recordLengthAt, recordLength_, 2);
  bytes[languageAt] = static_cast<char>(languageDriver);
  char* descriptor = bytes + layout.first;
  for (const dbfFieldDef& field : fields_) {
    std::memcpy(descriptor, field.name, sizeof field.name - 1);
    descriptor[layout.type] = field.type;
    descriptor[layout.length] = static_cast<char>(field.length);
    descriptor[layout.decimals] = static_cast<char>(field.decimals);
    descriptor += layout.size;
  }
  *descriptor = static_cast<char>(descriptorsEnd);
  return header;
}

bool tableTarget::addRecords(std::int32_t count) {
  constexpr std::uint64_t most = std::numeric_limits<std::int32_t>::max();
  if (count < 0 || written_ + buffered_ + static_cast<std::uint64_t>(count) > most) return false;
  for (; count > 0; --count) {
    if (buffered_ == blockRecords_) flush();
    if (failed_) return false;
    std::memset(block_.data() + buffered_ * recordLength_, liveMark, recordLength_);
    ++buffered_;
  }
  return !failed_;
}

bool tableTarget::setValue(std::uint32_t field, std::int32_t record, const wchar_t* text) {
  if (failed_ || field >= fields_.size() || record < 0) return false;
  const auto number = static_cast<std::uint64_t>(record);
  if (number >= written_ + buffered_) return false;
  if (text == nullptr) text = L"";
  const dbfFieldDef& definition = fields_[field];
  if (number >= written_) {
    fillField(definition, text,
              block_.data() + static_cast<std::size_t>(number - written_) * recordLength_ +
                  offsets_[field]);
    return true;
  }
  value_.resize(definition.length);
  fillField(definition, text, value_.data());
  failed_ = !output_->write(positionOf(number) + offsets_[field], value_.data(), value_.size());
  return !failed_;
}

void tableTarget::fillField(const dbfFieldDef& field, const wchar_t* text, char* to) {
  switch (field.type) {
    case 'C':
      text_.write(text, to, field.length);
      break;
    case 'D':
      writeDate(text, to, field.length);
      break;
    case 'L':
      *to = logicalOf(text);
      break;
    default:
      writeNumber(text, field.decimals, to, field.length);
  }
}

void tableTarget::flush() {
  if (failed_ || buffered_ == 0) return;
  failed_ = !output_->write(positionOf(written_), block_.data(),
                            static_cast<std::size_t>(buffered_) * recordLength_);
  if (failed_) return;
  written_ += buffered_;
  buffered_ = 0;
  writeCount();
}

void tableTarget::writeCount() {
  char count[4];
  storeLittle(count, written_, sizeof count);
  if (!output_->write(recordCountAt, count, sizeof count)) failed_ = true;
}

void tableTarget::finish() {
  flush();
  if (failed_ || !output_->write(positionOf(written_), &fileEnd, 1)) return;
  char date[dateSize];
  storeToday(date);  // a table may have been open for days
  output_->write(dateAt, date, sizeof date);
}

}  // namespace fileDbf

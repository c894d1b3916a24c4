#include "table_rw/readers/tableReader_xlsOLE.h"

#include <utility>

#include "platform/files.h"
#include "platform/process.h"
#include "platform/vok_basic.h"
#include "table_rw/core/converterProgram.h"
#include "table_rw/core/pathNames.h"
#include "table_rw/text/splitText.h"
#include "table_rw/text/textFileReader.h"

namespace tableRW {
namespace {

constexpr const wchar_t* delimiter = L"$";

// The file name without its last dot and what follows; one whose only dot is its first character keeps it.
std::wstring stemOf(const std::wstring& path) {
  const std::wstring name = fileNameOf(path);
  const std::size_t dot = name.rfind(L'.');
  return dot == std::wstring::npos || dot == 0 ? name : name.substr(0, dot);
}

std::wstring inTemporaryFolder(const std::wstring& name) {
  return vo_options_get_temp_wpath() + name;
}

std::wstring listFile(const std::wstring& path) {
  return inTemporaryFolder(stemOf(path) + L"_tabList.csv");
}

std::wstring sheetFile(const std::wstring& path) {
  return inTemporaryFolder(stemOf(path) + L".csv");
}

// What the converter may leave behind for a source that ends in .xls.
// ODD: in these letters alone: older converters leave it for no other.
std::wstring intermediateFile(const std::wstring& path) {
  return path.ends_with(L".xls") ? inTemporaryFolder(stemOf(path) + L".xlsx") : std::wstring();
}

// Calls something when it goes, however that comes about.
template <class Work>
class atTheEnd {
 public:
  explicit atTheEnd(Work work) : work_(work) {}
  atTheEnd(const atTheEnd&) = delete;
  atTheEnd& operator=(const atTheEnd&) = delete;
  ~atTheEnd() { work_(); }

 private:
  Work work_;
};

// Runs the converter and waits. @return false when it could not be started
// ODD: it is waited for as long as it takes, and how it ends does not matter: what it has done is seen from its
// files.
bool runConverter(const std::wstring& commandLine) {
  return platform::runProcess(converterProgramPath(), commandLine).has_value();
}

// ODD: the blanks are part of the format: one before the source, two behind it, none of the folder quoted.
std::wstring commandLineBegin(const std::wstring& source, const std::wstring& folder) {
  return L" \"" + source + L"\" " + L" -destFolder " + folder;
}

}  // namespace

std::wstring sheetListCommandLine(const std::wstring& source, const std::wstring& folder) {
  return commandLineBegin(source, folder) + L" -tablelist -delimiter $";
}

std::wstring sheetCommandLine(const tableReaderOptions& options, bool headersOnly,
                              const std::wstring& folder) {
  std::wstring line = commandLineBegin(options.path, folder) + L" -copyMerged -delimiter $";
  if (!options.table.empty()) line += L" -table \"" + options.table + L"\"";
  if (headersOnly) line += L" -headers " + std::to_wstring(options.header_position);
  return line;
}

tableReader_xlsOLE::tableReader_xlsOLE(tableReaderOptions options)
    : tableReader(std::move(options)) {}

bool tableReader_xlsOLE::readOnlyHeaders() {
  rowLimit_ = -1;
  headersOnly_ = true;
  return readData();
}

bool tableReader_xlsOLE::readDemo(int n) {
  rowLimit_ = n;
  headersOnly_ = false;
  return readData();
}

bool tableReader_xlsOLE::read() {
  rowLimit_ = -1;
  headersOnly_ = false;
  return readData();
}

void tableReader_xlsOLE::setTable(std::wstring name) { options_.table = std::move(name); }

capability_options tableReader_xlsOLE::get_capabilities() { return {true, false, false, true}; }

void tableReader_xlsOLE::tableList(std::vector<std::wstring>& out) {
  out.clear();
  isWhole_ = true;
  const std::wstring file = listFile(options_.path);
  if (!runConverter(sheetListCommandLine(options_.path, vo_options_get_temp_wpath()))) return;
  const atTheEnd cleared([&file] { platform::removeFile(file); });
  if (!platform::fileExists(file)) return;
  textFileReader source;
  ok_ = source.open(file, encodingUtf8);
  std::wstring line;
  if (ok_ && readTextLine(source, line)) splitTextInto(line, delimiter, true, out);
  isWhole_ = !source.file.hasFailed();
}

bool tableReader_xlsOLE::readData() {
  const atTheEnd cleared([this] { clearTemp(); });
  // ODD: the direction is looked at behind the conversion: its files go in any case.
  return prepareCSV() && options_.direction == 0 && readVertical();
}

bool tableReader_xlsOLE::prepareCSV() {
  std::wstring sheet = sheetFile(options_.path);
  std::wstring intermediate = intermediateFile(options_.path);
  if (!runConverter(sheetCommandLine(options_, headersOnly_, vo_options_get_temp_wpath())))
    return false;
  sheetFile_ = std::move(sheet);
  intermediateFile_ = std::move(intermediate);
  return headersOnly_ || platform::fileExists(sheetFile_);
}

bool tableReader_xlsOLE::readVertical() {
  fieldNames_.clear();
  rows_.clear();
  errors_.clear();
  textFileReader source;
  ok_ = source.open(sheetFile_, encodingUtf8);
  isWhole_ = true;
  if (!ok_) return false;
  if (headersOnly_) options_.header_position = 0;
  const std::int64_t header = options_.header_position;
  std::wstring line;
  std::vector<std::wstring> values;
  for (std::int64_t number = 0; !source.file.atEnd(); ++number) {
    readTextLine(source, line);
    if (number < header) continue;
    splitTextInto(line, delimiter, false, values);
    if (header < 0 && number == 0) numberFields(values.size());
    if (number == header) {
      nameFields(values);
      if (headersOnly_) break;
    } else {
      addRecord(static_cast<std::uint64_t>(number), values);
    }
  }
  // ODD: true, too, of a text file that could not be read to its end: hosts show what there is.
  isWhole_ = !source.file.hasFailed();
  return true;
}

void tableReader_xlsOLE::numberFields(std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) fieldNames_.push_back(L"field_" + std::to_wstring(i));
}

void tableReader_xlsOLE::nameFields(const std::vector<std::wstring>& names) {
  fieldNames_ = names;
  for (std::size_t i = 0; i < fieldNames_.size(); ++i)
    if (fieldNames_[i].empty()) fieldNames_[i] = L"field_" + std::to_wstring(i);
}

// ODD: values are neither quoted nor trimmed: the converter writes none that need it.
void tableReader_xlsOLE::addRecord(std::uint64_t number, const std::vector<std::wstring>& values) {
  if (number < options_.data_position) return;
  bool isEmpty = true;
  for (const std::wstring& value : values) isEmpty = isEmpty && value.empty();
  if (isEmpty) return;
  if (values.size() != fieldNames_.size()) {
    errors_.push_back(number);
    return;
  }
  for (const std::wstring& value : values) rows_.addValue(std::wstring_view(value));
  rows_.endRow();
}

void tableReader_xlsOLE::clearTemp() noexcept {
  for (std::wstring* const file : {&intermediateFile_, &sheetFile_}) {
    if (!file->empty()) platform::removeFile(*file);
    file->clear();
  }
}

bool tableReader_xlsOLE::rejectedRecords(
    const std::function<bool(const rejectedRecord&)>& receive) {
  if (options_.direction != 0 || errors_.empty()) return false;
  const atTheEnd cleared([this, before = headersOnly_] {
    clearTemp();
    headersOnly_ = before;
  });
  headersOnly_ = false;
  textFileReader source;
  if (!prepareCSV() || !source.open(sheetFile_, encodingUtf8)) return false;
  rejectedRecord record;
  std::uint64_t number = 0;
  for (const std::uint64_t wanted : errors_) {
    for (; number <= wanted; ++number)
      if (!readTextLine(source, record.text))
        return !source.file.hasFailed();  // it has become shorter
    record.line = wanted;
    record.valueCount = splitText(record.text, delimiter, false).size();
    if (!receive(record)) break;
  }
  return true;
}

}  // namespace tableRW

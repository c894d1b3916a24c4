#include "table_rw/writers/xlsx/workbook.h"

#include <new>
#include <utility>

#include "platform/calendar.h"
#include "platform/files.h"
#include "table_rw/writers/xlsx/appProperties.h"
#include "table_rw/writers/xlsx/contentTypes.h"
#include "table_rw/writers/xlsx/coreProperties.h"
#include "table_rw/writers/xlsx/partNames.h"
#include "table_rw/writers/xlsx/relationships.h"
#include "table_rw/writers/xlsx/styles.h"
#include "table_rw/writers/xlsx/theme.h"
#include "table_rw/writers/xlsx/workbookPart.h"
#include "table_rw/writers/xlsx/zipWriter.h"

namespace SimpleXlsx {
namespace {

// In the order in which they stand in the package.
constexpr const wchar_t* fixedParts[] = {contentTypesPartName,
                                         packageRelationshipsPartName,
                                         corePropertiesPartName,
                                         appPropertiesPartName,
                                         workbookPartName,
                                         stylesPartName,
                                         workbookRelationshipsPartName,
                                         themePartName};

// A target that was created and is not whole yet: unless it is kept, what is left of it goes away with the
// object. A link stays and leads to an empty file; a pipe or a device stays.
class unfinishedTarget {
 public:
  explicit unfinishedTarget(const std::wstring& path) : path_(path) {}
  unfinishedTarget(const unfinishedTarget&) = delete;
  unfinishedTarget& operator=(const unfinishedTarget&) = delete;
  ~unfinishedTarget() {
    if (isCreated_ && !isKept_) discard();
  }

  void created() { isCreated_ = true; }
  void keep() { isKept_ = true; }

 private:
  void discard() const noexcept {
    try {
      if (platform::isPipeOrDevice(path_)) return;  // opening it again may wait for ever
      platform::binaryFile().openForWriting(path_);
      if (!platform::isLink(path_)) platform::removeFile(path_);
    } catch (const std::bad_alloc&) {
      // A process without memory for the path leaves an archive that has no directory.
    }
  }

  const std::wstring& path_;
  bool isCreated_ = false;
  bool isKept_ = false;
};

}  // namespace

CWorkbook::CWorkbook(packageDisk& disk)
    : folder_(std::make_unique<packageFolder>(disk)), strings_(std::make_unique<sharedStrings>()) {}

CWorkbook::CWorkbook(const CWorkbook& other)
    : folder_(std::make_unique<packageFolder>(other.folder_->disk())),
      strings_(std::make_unique<sharedStrings>(*other.strings_)) {
  for (const std::unique_ptr<CWorksheet>& original : other.sheets_) {
    sheets_.push_back(std::make_unique<CWorksheet>(original->title(), folder_->disk(), *strings_));
    sheets_.back()->copyFrom(*original, folder_->prepare(worksheetPartName(sheets_.size())));
  }
}

CWorkbook& CWorkbook::operator=(const CWorkbook& other) {
  CWorkbook copy(other);
  std::swap(folder_, copy.folder_);
  std::swap(strings_, copy.strings_);
  std::swap(sheets_, copy.sheets_);
  return *this;
}

CWorkbook::~CWorkbook() = default;

CWorksheet& CWorkbook::AddSheet(const std::wstring& title) {
  auto sheet = std::make_unique<CWorksheet>(title, folder_->disk(), *strings_);
  sheet->open(folder_->prepare(worksheetPartName(sheets_.size() + 1)));
  sheets_.push_back(
      std::move(sheet));  // behind all that may run out of memory: no half sheet joins
  return *sheets_.back();
}

bool CWorkbook::Save(const std::wstring& path) {
  const bool isSaved = writeParts() && pack(path);
  sheets_.clear();  // what is still open would keep the folder
  folder_->remove();
  return isSaved;
}

template <class Writer>
bool CWorkbook::writePart(const std::wstring& name, Writer write) {
  xmlPart part(folder_->disk());
  if (!folder_->open(part, name)) return false;
  write(part);
  return part.close();
}

// The order counts where several parts cannot be written: the first of them ends the saving.
bool CWorkbook::writeParts() {
  const std::size_t sheets = sheets_.size();
  const bool hasStrings = hasSharedStrings();
  const bool hasOthers =
      writePart(corePropertiesPartName,
                [](xmlPart& part) { writeCoreProperties(part, platform::localTime()); }) &&
      writePart(packageRelationshipsPartName, writePackageRelationships) &&
      writePart(appPropertiesPartName,
                [&](xmlPart& part) { writeAppProperties(part, titles()); }) &&
      writePart(contentTypesPartName,
                [&](xmlPart& part) { writeContentTypes(part, sheets, hasStrings); }) &&
      writePart(themePartName, writeTheme) &&
      (!hasStrings ||
       writePart(sharedStringsPartName, [&](xmlPart& part) { strings_->write(part); })) &&
      writePart(stylesPartName, writeStyles) &&
      writePart(workbookPartName, [&](xmlPart& part) { writeWorkbook(part, titles()); }) &&
      writePart(workbookRelationshipsPartName,
                [&](xmlPart& part) { writeWorkbookRelationships(part, sheets, hasStrings); });
  if (!hasOthers) return false;
  for (const std::unique_ptr<CWorksheet>& sheet : sheets_)
    if (!sheet->close()) return false;
  return true;
}

bool CWorkbook::pack(const std::wstring& path) {
  unfinishedTarget target(
      path);  // outlives the archive, which is closed before anything is discarded
  zipWriter archive(folder_->disk());
  if (!archive.create(path)) return false;
  target.created();
  for (const std::wstring& name : partNames())
    if (!archive.add(name, folder_->pathOf(name))) return false;
  if (archive.finish()) target.keep();
  return true;
}

std::vector<std::wstring> CWorkbook::partNames() const {
  std::vector<std::wstring> names(std::begin(fixedParts), std::end(fixedParts));
  if (hasSharedStrings()) names.push_back(sharedStringsPartName);
  for (std::size_t number = 1; number <= sheets_.size(); ++number)
    names.push_back(worksheetPartName(number));
  return names;
}

std::vector<std::wstring> CWorkbook::titles() const {
  std::vector<std::wstring> titles;
  for (const std::unique_ptr<CWorksheet>& sheet : sheets_) titles.push_back(sheet->title());
  return titles;
}

}  // namespace SimpleXlsx

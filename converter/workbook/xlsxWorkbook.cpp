#include "converter/workbook/xlsxWorkbook.h"

#include <charconv>
#include <unordered_map>

#include "converter/workbook/xlsxSheet.h"
#include "converter/workbook/xlsxStrings.h"
#include "converter/workbook/xlsxText.h"

namespace converter {
namespace {

// Far more than spreadsheet programs take; a part of a megabyte could name hundreds of millions.
constexpr std::size_t mostSheets = 65536;
constexpr std::size_t mostFormats = 1048576;

bool isTrue(std::string_view text) { return text == "1" || text == "true" || text == "on"; }

unsigned numberOr0(const char* text) {
  unsigned number = 0;
  if (text != nullptr) {
    const std::string_view digits(text);
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
  }
  return number;
}

class workbookEvents final : public xmlEvents {
 public:
  struct entry {
    std::string name;
    std::string relationshipId;
    bool isVisible;
  };
  std::vector<entry> entries;
  dateSystem dates = dateSystem::from1900;

  void startElement(const char* name, const xmlAttributes& attributes) override {
    if (isText(name, "workbookPr")) {
      if (const char* const value = attributes.find("date1904"); value != nullptr && isTrue(value))
        dates = dateSystem::from1904;
    } else if (isText(name, "sheet")) {
      entry found{"", "", true};
      attributes.forEach([&](const char* attribute, std::string_view value) {
        if (isText(attribute, "name")) appendUnescaped(found.name, value);
        if (isText(attribute, "id")) found.relationshipId = value;
        if (isText(attribute, "state")) found.isVisible = value == "visible";
      });
      entries.push_back(std::move(found));
    }
  }
  void endElement(const char*) override {}
  void text(std::string_view) override {}
  std::string stopReason() override {
    return entries.size() > mostSheets ? "the workbook is refused: it has too many sheets"
                                       : std::string();
  }
};

class styleEvents final : public xmlEvents {
 public:
  explicit styleEvents(numberFormats& formats) : formats_(&formats) {}

  void startElement(const char* name, const xmlAttributes& attributes) override {
    if (isText(name, "numFmt") && !isInDifferences_) {
      if (const char* const code = attributes.find("formatCode"))
        formats_->define(numberOr0(attributes.find("numFmtId")), code);
    } else if (isText(name, "cellXfs")) {
      isInCellStyles_ = true;
    } else if (isText(name, "dxfs")) {
      isInDifferences_ = true;
    } else if (isText(name, "xf") && isInCellStyles_) {
      formats_->addStyle(numberOr0(attributes.find("numFmtId")));
    }
  }
  void endElement(const char* name) override {
    if (isText(name, "cellXfs")) isInCellStyles_ = false;
    if (isText(name, "dxfs")) isInDifferences_ = false;
  }
  void text(std::string_view) override {}
  std::string stopReason() override {
    return formats_->size() > mostFormats ? "the workbook is refused: it has too many cell styles"
                                          : std::string();
  }

 private:
  numberFormats* formats_;
  bool isInCellStyles_ = false;
  bool isInDifferences_ = false;
};

}  // namespace

bool xlsxWorkbook::open(platform::binaryFile& file, std::string& problem) {
  std::string part;
  if (!archive_.open(file, problem) || !findWorkbookPart(part, problem)) return false;
  return readWorkbookPart(part, problem);
}

bool xlsxWorkbook::findWorkbookPart(std::string& part, std::string& problem) {
  std::vector<relationship> relationships;
  if (!readRelationships(archive_, "", relationships, problem)) return false;
  part = "xl/workbook.xml";
  for (const relationship& each : relationships)
    if (each.type == "officeDocument") part = each.target;
  if (part.ends_with(".bin"))
    problem = "the workbook is of the binary kind .xlsb, which is not read: save it as .xlsx";
  else if (archive_.find(part) == nullptr)
    problem = "the ZIP archive holds no Excel workbook";
  return problem.empty();
}

bool xlsxWorkbook::readWorkbookPart(const std::string& part, std::string& problem) {
  std::vector<relationship> relationships;
  workbookEvents events;
  if (!readRelationships(archive_, part, relationships, problem) ||
      !parseXml(archive_, *archive_.find(part), events, problem))
    return false;
  context_.dates = events.dates;
  std::string stylesPart;
  std::unordered_map<std::string_view, const relationship*> byId;
  for (const relationship& each : relationships) {
    byId.emplace(each.id, &each);
    if (each.type == "styles") stylesPart = each.target;
    if (each.type == "sharedStrings") stringsPart_ = each.target;
  }
  for (workbookEvents::entry& each : events.entries) {
    const auto found = byId.find(each.relationshipId);
    if (found == byId.end()) continue;
    sheetEntry sheet;
    sheet.name = std::move(each.name);
    sheet.isVisible = each.isVisible;
    sheet.hasCells = found->second->type == "worksheet";
    sheet.part = found->second->target;
    sheets_.push_back(std::move(sheet));
  }
  return readStyles(stylesPart, problem);
}

bool xlsxWorkbook::readStyles(const std::string& part, std::string& problem) {
  if (const zipMember* const member = archive_.find(part)) {
    styleEvents events(context_.formats);
    if (!parseXml(archive_, *member, events, problem)) return false;
  }
  context_.formats.resolve();
  return true;
}

bool xlsxWorkbook::readSharedStrings(const std::string& part, std::string& problem) {
  if (hasStrings_) return true;
  context_.sharedStrings = {};
  xlsxStringEvents events(context_.sharedStrings, context_.replacements, archive_.file().size());
  // Where the part is missing no cell may refer to one.
  if (const zipMember* const member = archive_.find(part))
    hasStrings_ = parseXml(archive_, *member, events, problem);
  else
    hasStrings_ = true;
  return hasStrings_;
}

bool xlsxWorkbook::readSheet(const sheetEntry& sheet, sheetReceiver& receiver,
                             std::string& problem) {
  const zipMember* const member = archive_.find(sheet.part);
  if (member == nullptr) {
    problem = sheet.part.empty()
                  ? "the workbook is damaged: the sheet's part is not in it"
                  : "the workbook is damaged: the sheet's part " + sheet.part + " is missing";
    return false;
  }
  if (!readSharedStrings(stringsPart_, problem)) return false;
  xlsxSheetEvents events(context_, receiver);
  if (!parseXml(archive_, *member, events, problem)) return false;
  problem = events.stopReason();
  return problem.empty();
}

}  // namespace converter

#include "converter/workbook/xlsxPackage.h"

namespace converter {
namespace {

constexpr std::size_t mostRelationships = 65536;

std::string_view folderOfPart(std::string_view part) { return part.substr(0, part.rfind('/') + 1); }

class relationshipEvents final : public xmlEvents {
 public:
  relationshipEvents(std::string_view folder, std::vector<relationship>& relationships)
      : folder_(folder), relationships_(&relationships) {}

  void startElement(const char* name, const xmlAttributes& attributes) override {
    if (!isText(name, "Relationship")) return;
    relationship found;
    std::string_view target;
    bool isExternal = false;
    attributes.forEach([&](const char* attribute, std::string_view value) {
      if (isText(attribute, "Id")) found.id = value;
      if (isText(attribute, "Type")) found.type = value.substr(value.rfind('/') + 1);
      if (isText(attribute, "Target")) target = value;
      if (isText(attribute, "TargetMode")) isExternal = value == "External";
    });
    if (!isExternal) found.target = resolveTarget(folder_, target);
    relationships_->push_back(std::move(found));
  }
  void endElement(const char*) override {}
  void text(std::string_view) override {}
  std::string stopReason() override {
    return relationships_->size() > mostRelationships
               ? "the workbook is refused: it has too many relationships"
               : std::string();
  }

 private:
  std::string_view folder_;
  std::vector<relationship>* relationships_;
};

}  // namespace

std::string resolveTarget(std::string_view folder, std::string_view target) {
  std::string path(!target.empty() && (target[0] == '/' || target[0] == '\\') ? "" : folder);
  path += target;
  std::vector<std::string_view> steps;
  std::string_view rest = path;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find_first_of("/\\"), rest.size());
    const std::string_view step = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (step.empty() || step == ".") continue;
    if (step != "..")
      steps.push_back(step);
    else if (!steps.empty())
      steps.pop_back();
  }
  std::string resolved;
  for (const std::string_view step : steps) {
    if (!resolved.empty()) resolved += '/';
    resolved += step;
  }
  return resolved;
}

bool readRelationships(const zipArchive& archive, std::string_view part,
                       std::vector<relationship>& relationships, std::string& problem) {
  const std::string_view folder = folderOfPart(part);
  std::string name(folder);
  name.append("_rels/").append(part.substr(folder.size())).append(".rels");
  const zipMember* const member = archive.find(name);
  if (member == nullptr) return true;
  relationshipEvents events(folder, relationships);
  return parseXml(archive, *member, events, problem);
}

}  // namespace converter

#include "tools/targetLimits.h"

#include "platform/codePages.h"
#include "tools/csvLimits.h"
#include "tools/dbfPlan.h"
#include "tools/formats.h"
#include "tools/xlsxLimits.h"

namespace vokTable {

targetLimits::~targetLimits() = default;

std::optional<std::string> targetLimits::chooseFields(const selectedTable& table,
                                                      const std::optional<std::string>&,
                                                      std::vector<tableRW::writerField>& fields) {
  for (std::size_t field = 0; field < table.fieldCount(); ++field)
    fields.push_back({table.fieldName(field), table.fieldType(field)});
  return std::nullopt;
}

std::optional<std::string> targetLimits::tableProblem(std::uint64_t, std::uint64_t) const {
  return std::nullopt;
}

std::optional<std::string> targetLimits::nameProblem(std::size_t field,
                                                     std::wstring_view name) const {
  return problem(field, name);
}

std::optional<std::string> targetLimits::rowProblem(const std::vector<std::wstring>&) const {
  return std::nullopt;
}

std::optional<std::uint64_t> targetLimits::rowSize(const std::vector<std::wstring>&) const {
  return std::nullopt;
}

std::optional<std::uint64_t> targetLimits::fileSize(std::uint64_t) const { return std::nullopt; }

const char* targetLimits::alternative() const { return "choose another format"; }

const char* targetLimits::whenMissing() const { return nullptr; }

std::unique_ptr<targetLimits> limitsOf(const std::wstring& path, const std::wstring& delimiter) {
  if (isWrittenAsWorkbook(path)) return std::make_unique<xlsxLimits>();
  if (isWrittenAsDbf(path))
    return std::make_unique<dbfPlan>(platform::resolveCodePage(platform::systemCodePage));
  return std::make_unique<csvLimits>(delimiter);
}

}  // namespace vokTable

#include "tools/targetLimits.h"

#include "tools/csvLimits.h"
#include "tools/formats.h"
#include "tools/xlsxLimits.h"

namespace vokTable {

targetLimits::~targetLimits() = default;

std::optional<std::string> targetLimits::tableProblem(std::uint64_t, std::uint64_t) const {
  return std::nullopt;
}

std::optional<std::string> targetLimits::rowProblem(const std::vector<std::wstring>&) const {
  return std::nullopt;
}

std::optional<std::uint64_t> targetLimits::rowSize(const std::vector<std::wstring>&) const {
  return std::nullopt;
}

const char* targetLimits::alternative() const { return "choose another format"; }

const char* targetLimits::whenMissing() const { return nullptr; }

std::unique_ptr<targetLimits> limitsOf(const std::wstring& path, const std::wstring& delimiter) {
  if (isWrittenAsDelimitedText(path)) return std::make_unique<csvLimits>(delimiter);
  if (isWrittenAsWorkbook(path)) return std::make_unique<xlsxLimits>();
  return nullptr;
}

}  // namespace vokTable

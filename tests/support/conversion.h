// The converter run within the test program: bytes of a workbook in, the text file or the problem out.
#ifndef VOK_TESTS_SUPPORT_CONVERSION_H
#define VOK_TESTS_SUPPORT_CONVERSION_H

#include <filesystem>
#include <string>

#include "converter/conversion.h"
#include "tests/support/temporaryFolder.h"

namespace testSupport {

class conversion {
 public:
  converter::conversionRequest request;

  /// What the text file holds, or `problem: ` and the reason. Nothing else may be left in its folder.
  std::string run(const std::string& workbook) {
    request.source = folder_.write(L"source.xls", workbook);
    request.folder = folder_.file(L"out");
    std::filesystem::create_directory(std::filesystem::path(request.folder));
    std::string problem;
    const bool isDone = converter::convert(request, problem);
    const std::wstring target = converter::targetPath(request);
    const std::string text = readFile(target).value_or("no file");
    std::filesystem::remove(std::filesystem::path(target));
    if (!std::filesystem::is_empty(std::filesystem::path(request.folder)))
      return "something is left";
    if (isDone) return text;
    return text == "no file" ? "problem: " + problem : "a file in spite of: " + problem;
  }

 private:
  temporaryFolder folder_;
};

}  // namespace testSupport

#endif

// Reading a file with the CSV reader and comparing all it answers with the slow twin of
// tests/reference.
#ifndef VOK_TESTS_SUPPORT_CSVCOMPARISON_H
#define VOK_TESTS_SUPPORT_CSVCOMPARISON_H

#include <cstdint>
#include <string>
#include <string_view>

#include "table_rw/core/tableReaderOptions.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace testSupport {

/// The options that matter for delimited text, with the library's defaults.
struct csvOptions {
  std::int32_t header = 0;
  std::uint64_t data = 1;
  std::wstring delimiter = L";";
  std::wstring quote = L"\"";
  std::int32_t encoding = 0;

  tableRW::tableReaderOptions forFile(const std::wstring& path) const;
};

/// The options as text, for messages.
std::string describe(const csvOptions& options);

/// What `read` of a CSV reader built directly for the file produces.
tableContent readCsvFile(const std::wstring& path, const csvOptions& options);

/// Compares `read`, `readOnlyHeaders` and the rejected records for a file that holds these bytes.
/// @return nothing when library and twin agree, else what differs
std::string differenceFromTwin(const std::wstring& path, std::string_view bytes,
                               const csvOptions& options);

}  // namespace testSupport

#endif

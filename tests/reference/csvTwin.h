// A slow and obvious reader of delimited text, written step by step after the rules of the dialect
// (see table_rw/readers/tableReader_csv.h); it shares only the decoding of bytes with the library.
#ifndef VOK_TESTS_REFERENCE_CSVTWIN_H
#define VOK_TESTS_REFERENCE_CSVTWIN_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "table_rw/core/tableReaderOptions.h"
#include "tests/support/tableText.h"

namespace reference {

/// The values of one decoded line, for a reader that holds `fieldCount` field names.
std::vector<std::wstring> parseLine(const std::wstring& line, const std::wstring& delimiter,
                                    const std::wstring& quote, std::size_t fieldCount);

/// A line that a read rejects.
struct rejectedLine {
  std::uint64_t number;
  std::size_t valueCount;
  std::wstring text;

  bool operator==(const rejectedLine&) const = default;
};

/// What a read of a file with these bytes produces; `options.path` does not matter.
/// @param rejected  receives the rejected lines, when it is not null
testSupport::tableContent readCsv(std::string_view fileBytes,
                                  const tableRW::tableReaderOptions& options,
                                  bool headersOnly = false,
                                  std::vector<rejectedLine>* rejected = nullptr);

}  // namespace reference

#endif

// tableReader::open and close: which variant reads a source. One table of variants and a loop.
#include <algorithm>
#include <string>
#include <utility>

#include "platform/caseFolding.h"
#include "table_rw/core/readerVariants.h"
#include "table_rw/core/tableReader.h"
#include "table_rw/text/textFileReader.h"

namespace tableRW {
namespace {

// ODD: positions wrap, by the unsigned comparison and the sum in 32 bits: hosts store positions at the ends of
// their ranges ("no header", "nothing but the header") and rely on where these two land them.
void normalisePositions(tableReaderOptions& options) {
  const auto header = static_cast<std::uint64_t>(std::int64_t{options.header_position});
  if (options.data_position > header) return;
  const auto next =
      static_cast<std::int32_t>(static_cast<std::uint32_t>(options.header_position) + 1U);
  options.data_position = static_cast<std::uint64_t>(std::int64_t{next});
}

using variantTest = bool (*)(const readerVariant&, const std::wstring&);

// Builds the first variant that passes a test; null when none does.
tableReader* makeFirst(variantTest fits, const std::wstring& text,
                       const tableReaderOptions& options) {
  const auto variants = readerVariants();
  const auto found =
      std::find_if(variants.begin(), variants.end(),
                   [&](const readerVariant& variant) { return fits(variant, text); });
  return found == variants.end() ? nullptr : found->make(options);
}

bool hasExtension(const readerVariant& variant, const std::wstring& extension) {
  const bool listed = std::any_of(
      variant.extensions.begin(), variant.extensions.end(),
      [&](const wchar_t* candidate) { return candidate != nullptr && extension == candidate; });
  return listed && (variant.usable == nullptr || variant.usable());
}

// ODD: the marker counts anywhere in the line: exports come under any extension and with words before it.
bool isMarkedBy(const readerVariant& variant, const std::wstring& firstLine) {
  return variant.firstLineMarker != nullptr &&
         firstLine.find(variant.firstLineMarker) != std::wstring::npos;
}

tableReader* makeByNumber(const tableReaderOptions& options) {
  for (const readerVariant& variant : readerVariants())
    if (variant.fileType == options.file_type) return variant.make(options);
  return makeDummyReader(options);
}

// ODD: the last dot of the whole path counts, so a dot in a folder's name takes the place of a missing
// extension; it matches nothing then and the file's first line decides.
tableReader* makeByExtension(const tableReaderOptions& options) {
  const std::size_t dot = options.path.rfind(L'.');
  if (dot == std::wstring::npos) return nullptr;
  return makeFirst(hasExtension, platform::lowerCase(options.path.substr(dot + 1)), options);
}

tableReader* makeByFirstLine(tableReaderOptions options) {
  std::wstring firstLine;
  {
    textFileReader file;
    if (!file.open(options.path, options.encoding)) return makeDummyReader(std::move(options));
    readTextLine(file, firstLine);
    // WHY no delimited text: it may be a table of Petrel's whose first line nobody has seen.
    if (file.file.hasFailed()) return makeDummyReader(std::move(options));
  }
  if (tableReader* reader = makeFirst(isMarkedBy, firstLine, options)) return reader;
  options.file_type = fileTypeCsv;
  return makeByNumber(options);
}

}  // namespace

tableReader* tableReader::open(tableReaderOptions options) {
  normalisePositions(options);
  if (options.file_type != fileTypeAuto) return makeByNumber(options);
  if (tableReader* reader = makeByExtension(options)) return reader;
  return makeByFirstLine(std::move(options));
}

void tableReader::close(tableReader* reader) { delete reader; }

}  // namespace tableRW

#include "fuzz/fuzzing.h"

#include <algorithm>
#include <cstdint>

#include "table_rw/text/textConversion.h"
#include "tests/support/tableText.h"
#include "tests/support/temporaryFolder.h"

namespace fuzzing {
namespace {

constexpr std::string_view partMark = "\xFF\xFF";

}  // namespace

void demand(bool holds, std::string_view what) {
  if (!holds) throw doesNotHold(std::string(what));
}

unsigned inputReader::byte() {
  const std::string_view one = bytes(1);
  return one.empty() ? 0u : static_cast<unsigned char>(one.front());
}

std::string_view inputReader::bytes(std::size_t size) {
  const std::string_view taken = bytes_.substr(0, size);
  bytes_.remove_prefix(taken.size());
  return taken;
}

std::string_view inputReader::part() {
  const std::string_view taken = bytes(std::min(bytes_.find(partMark), bytes_.size()));
  bytes(partMark.size());
  return taken;
}

std::wstring inputPath(const std::wstring& name) {
  static const testSupport::temporaryFolder folder;
  return folder.file(name);
}

std::wstring writeInput(const std::wstring& name, std::string_view bytes) {
  const std::wstring path = inputPath(name);
  testSupport::writeFile(path, bytes);
  return path;
}

std::wstring wideText(std::string_view bytes) {
  return tableRW::decodeText(bytes.data(), static_cast<std::int32_t>(bytes.size()),
                             tableRW::encodingUtf8);
}

std::string outcomeOf(const tableRW::tableReader& reader) {
  constexpr std::uint64_t fewRows = 4;
  constexpr std::size_t fewBytes = 120;
  if (!reader.isOK()) return "failed";
  if (reader.count() <= fewRows) {
    std::string whole = testSupport::describe(reader);
    if (whole.size() <= fewBytes) return whole;
  }
  return std::to_string(reader.fieldCount()) + " fields, " + std::to_string(reader.count()) +
         " rows, " + std::to_string(reader.errorCount()) + " rejected";
}

std::string checkedTable(tableRW::tableReader& reader, std::size_t sourceSize, bool needsFields) {
  if (!reader.read()) {
    demand(reader.count() == 0 && reader.fieldCount() == 0, "a failed read leaves a table");
    demand(!reader.isOK(), "a failed read is OK");
    return "failed";
  }
  const bool mayBeOk = !needsFields || reader.fieldCount() > 0;
  demand(reader.isOK() == mayBeOk, "isOK after a read that succeeds");
  demand(reader.count() <= sourceSize, "more rows than bytes");
  const testSupport::tableContent content = testSupport::contentOf(reader);
  for (const testSupport::textRow& row : content.rows)
    demand(row.size() == content.fields.size(), "a row without full width");
  demand(reader.read(), "the second read fails");
  demand(testSupport::contentOf(reader) == content, "the second read gives another table");
  return outcomeOf(reader);
}

}  // namespace fuzzing

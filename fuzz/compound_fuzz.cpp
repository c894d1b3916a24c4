// Compound files: every stream that is found is no longer than the file, and reading it anywhere gives the
// bytes that reading it from its beginning gives.
#include "converter/container/compoundFile.h"
#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"

namespace {

using fuzzing::demand;

// Names of what may be entries of the directory, which begin at every 128th byte.
std::vector<std::string> entryNames(std::string_view bytes) {
  constexpr std::size_t entrySize = 128;
  constexpr std::size_t longestName = 31;
  std::vector<std::string> names = {"Workbook", "Book", "EncryptedPackage"};
  for (std::size_t at = 0; at + entrySize <= bytes.size() && names.size() < 16; at += entrySize) {
    std::string name;
    for (std::size_t i = 0; i < longestName && bytes[at + 2 * i] != '\0'; ++i)
      name += bytes[at + 2 * i];
    if (!name.empty()) names.push_back(name);
  }
  return names;
}

std::string contentOf(converter::byteStream& stream, std::size_t fileSize) {
  std::string content;
  std::string buffer(777, '\0');
  while (const std::size_t count = stream.readAt(content.size(), buffer.data(), buffer.size())) {
    content.append(buffer, 0, count);
    demand(content.size() <= fileSize, "a stream is longer than its file");
  }
  return content;
}

}  // namespace

std::string fuzzing::compound(std::string_view bytes) {
  platform::binaryFile file;
  demand(file.openForReading(writeInput(L"input.ole", bytes)), "the input cannot be opened");
  converter::compoundFile compound;
  std::string problem;
  if (!compound.open(file, problem)) {
    demand(!problem.empty(), "a file is refused without a reason");
    return "refused";
  }
  std::size_t found = 0;
  std::size_t total = 0;
  for (const std::string& name : entryNames(bytes)) {
    const auto stream = compound.stream(name);
    if (stream == nullptr) continue;
    const std::string content = contentOf(*stream, bytes.size());
    ++found;
    total += content.size();
    std::string buffer(200, '\0');
    for (std::size_t at = 0; at < content.size() + 200; at += content.size() / 5 + 61) {
      const std::size_t count = stream->readAt(at, buffer.data(), buffer.size());
      const std::string expected = at < content.size() ? content.substr(at, buffer.size()) : "";
      demand(buffer.substr(0, count) == expected, "a stream has other bytes when read elsewhere");
    }
  }
  return std::to_string(found) + " streams, " + std::to_string(total) + " bytes";
}

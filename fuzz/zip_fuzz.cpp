// ZIP archives: a member that is read to its end has the size and the checksum that its entry names (the sum
// is computed here once more), and, stored, its bytes stand in the file; every other one has a reason.
#include <zlib.h>

#include <algorithm>

#include "converter/container/zipArchive.h"
#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"

namespace {

using fuzzing::demand;

constexpr std::size_t mostMembers = 16;
constexpr std::size_t largestMember = std::size_t{1} << 20;  // of those that are read

// The names of what may be entries of the directory.
std::vector<std::string> entryNames(std::string_view bytes) {
  constexpr std::string_view mark = "PK\1\2";
  constexpr std::size_t lengthAt = 28;
  constexpr std::size_t nameAt = 46;
  std::vector<std::string> names;
  for (std::size_t at = bytes.find(mark);
       at != std::string_view::npos && names.size() < mostMembers; at = bytes.find(mark, at + 1)) {
    if (at + nameAt > bytes.size()) break;
    const auto byteAt = [&](std::size_t place) { return static_cast<unsigned char>(bytes[place]); };
    const std::size_t length = byteAt(at + lengthAt) + std::size_t{256} * byteAt(at + lengthAt + 1);
    names.emplace_back(bytes.substr(at + nameAt, length));
  }
  return names;
}

// Whether the member could be read.
bool checkMember(const converter::zipArchive& archive, const converter::zipMember& member,
                 std::string_view bytes) {
  converter::zipMemberReader reader;
  reader.setSizeThatIsNeverTooMuch(largestMember);
  std::string problem;
  std::string content;
  std::string buffer(1000, '\0');
  std::ptrdiff_t count = reader.open(archive, member, problem) ? 1 : -1;
  while (count > 0) {
    count = reader.read(buffer.data(), buffer.size(), problem);
    if (count > 0) content.append(buffer, 0, static_cast<std::size_t>(count));
  }
  if (count < 0) {
    demand(!problem.empty(), "a member is refused without a reason");
    return false;
  }
  demand(problem.empty(), "a member is read in spite of a problem");
  demand(content.size() == member.size, "a member has not the size of its entry");
  demand(
      content.size() <= std::max<std::size_t>(
                            largestMember, bytes.size() * converter::zipMemberReader::largestRatio),
      "a member inflates too much");
  const uLong sum =
      crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(content.size()));
  demand(sum == member.checksum, "a member has not the checksum of its entry");
  if (member.method == 0)
    demand(bytes.find(content) != std::string_view::npos, "a stored member is not in the file");
  return true;
}

}  // namespace

std::string fuzzing::zip(std::string_view bytes) {
  platform::binaryFile file;
  demand(file.openForReading(writeInput(L"input.zip", bytes)), "the input cannot be opened");
  converter::zipArchive archive;
  std::string problem;
  if (!archive.open(file, problem)) {
    demand(!problem.empty(), "an archive is refused without a reason");
    return "refused";
  }
  std::size_t found = 0;
  std::size_t whole = 0;
  for (const std::string& name : entryNames(bytes)) {
    const converter::zipMember* const member = archive.find(name);
    if (member == nullptr) continue;
    ++found;
    whole += checkMember(archive, *member, bytes) ? 1u : 0u;
  }
  return std::to_string(whole) + " of " + std::to_string(found) + " members";
}

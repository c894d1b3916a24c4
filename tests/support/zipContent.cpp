#include "tests/support/zipContent.h"

#include <zlib.h>

#include <optional>

namespace testSupport {
namespace {

std::uint32_t number(std::string_view bytes, std::size_t at, std::size_t size) {
  std::uint32_t result = 0;
  for (std::size_t i = size; i-- > 0;)
    result = result << 8 | static_cast<unsigned char>(bytes.at(at + i));
  return result;
}

std::optional<std::string> inflated(std::string_view packed, std::size_t size) {
  std::string content(size + 1, '\0');
  z_stream stream{};
  if (inflateInit2(&stream, -15) != Z_OK) return std::nullopt;
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
  stream.avail_in = static_cast<uInt>(packed.size());
  stream.next_out = reinterpret_cast<Bytef*>(content.data());
  stream.avail_out = static_cast<uInt>(content.size());
  const int answer = inflate(&stream, Z_FINISH);
  const bool isWhole = answer == Z_STREAM_END && stream.avail_in == 0 && stream.total_out == size;
  inflateEnd(&stream);
  content.pop_back();
  return isWhole ? std::optional(content) : std::nullopt;
}

// A directory record at `at`. @return what is wrong with it or with its member
std::string readMember(std::string_view archive, std::size_t& at, std::size_t& expectedOffset,
                       zipMember& member) {
  if (number(archive, at, 4) != 0x02014B50) return "no directory record";
  const std::size_t nameSize = number(archive, at + 28, 2);
  const std::size_t packedSize = number(archive, at + 20, 4);
  const std::size_t size = number(archive, at + 24, 4);
  const std::size_t offset = number(archive, at + 42, 4);
  member.name = archive.substr(at + 46, nameSize);
  member.flags = number(archive, at + 8, 2);
  member.method = number(archive, at + 10, 2);
  member.time = number(archive, at + 12, 2);
  member.date = number(archive, at + 14, 2);
  if (number(archive, at + 30, 2) != 0 || number(archive, at + 32, 2) != 0)
    return "extra field or comment";
  if (offset != expectedOffset) return "members do not follow each other";
  if (number(archive, offset, 4) != 0x04034B50) return "no local header";
  // Version, flags, method, time, date, checksum, sizes, length of the name: the same in both places.
  if (archive.substr(offset + 4, 24) != archive.substr(at + 6, 24)) return "headers differ";
  if (number(archive, offset + 28, 2) != 0) return "extra field";
  if (archive.substr(offset + 30, nameSize) != member.name) return "names differ";
  const std::string_view packed = archive.substr(offset + 30 + nameSize, packedSize);
  const std::optional<std::string> content =
      member.method == 0 ? std::string(packed) : inflated(packed, size);
  if (!content || content->size() != size) return "data does not unpack";
  const auto checksum =
      crc32(0, reinterpret_cast<const Bytef*>(content->data()), static_cast<uInt>(content->size()));
  if (checksum != number(archive, at + 16, 4)) return "wrong checksum";
  member.content = *content;
  expectedOffset = offset + 30 + nameSize + packedSize;
  at += 46 + nameSize;
  return {};
}

}  // namespace

std::string zipContent::of(std::string_view name) const {
  for (const zipMember& member : members)
    if (member.name == name) return member.content;
  return "(missing)";
}

std::string zipContent::names() const {
  std::string all;
  for (const zipMember& member : members) all += (all.empty() ? "" : " ") + member.name;
  return all;
}

zipContent readZip(std::string_view archive) {
  zipContent result;
  if (archive.size() < 22 || number(archive, archive.size() - 22, 4) != 0x06054B50) {
    result.problem = "no end record";
    return result;
  }
  const std::size_t end = archive.size() - 22;
  const std::size_t count = number(archive, end + 10, 2);
  std::size_t at = number(archive, end + 16, 4);
  const std::size_t directory = at;
  std::size_t expectedOffset = 0;
  if (number(archive, end + 4, 4) != 0 || number(archive, end + 8, 2) != count ||
      at + number(archive, end + 12, 4) != end || number(archive, end + 20, 2) != 0)
    result.problem = "wrong end record";
  for (std::size_t i = 0; i < count && result.problem.empty(); ++i) {
    result.members.emplace_back();
    result.problem = readMember(archive, at, expectedOffset, result.members.back());
  }
  if (result.problem.empty() && (expectedOffset != directory || at != end))
    result.problem = "bytes that belong to nothing";
  return result;
}

}  // namespace testSupport

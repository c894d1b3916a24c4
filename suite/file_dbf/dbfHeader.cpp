#include "suite/file_dbf/dbfHeader.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "suite/file_dbf/dbfLayout.h"

namespace fileDbf {
namespace {

constexpr char nullFlagsType = '0';

struct descriptor {
  std::string name;
  char type;
  std::size_t length;
  std::size_t longLength;  // of a character field, with its byte of decimals as the higher one
  unsigned flags;
};

std::string nameOf(const char* bytes, std::size_t size) {
  std::string_view name(bytes, size);
  name = name.substr(0, name.find('\0'));
  name = name.substr(0, name.find_last_not_of(' ') + 1);
  return std::string(name);
}

// FORMAT: a list ends with 0D; some programs write 00, or 0A as the header's last byte, or nothing. Where nothing
// follows there is no room for a descriptor anyway.
bool endsList(char mark) { return mark == descriptorsEnd || mark == 0; }

std::vector<descriptor> readDescriptors(std::string_view header, const descriptorLayout& layout) {
  std::vector<descriptor> list;
  for (std::size_t at = layout.first; at + layout.size <= header.size(); at += layout.size) {
    if (endsList(header[at])) break;
    const char* const bytes = header.data() + at;
    const std::size_t length = byteAt(bytes, layout.length);
    const char type = bytes[layout.type];
    const std::size_t high = type == 'C' ? byteAt(bytes, layout.decimals) : 0;
    const unsigned flags = layout.size > fieldFlagsAt ? byteAt(bytes, fieldFlagsAt) : 0;
    list.push_back({nameOf(bytes, layout.nameSize), type, length, length + 256 * high, flags});
  }
  return list;
}

std::size_t sumOf(const std::vector<descriptor>& list, std::size_t descriptor::*length) {
  std::size_t sum = 1;  // the mark of deletion
  for (const descriptor& each : list) sum += each.*length;
  return sum;
}

// FORMAT: Clipper and FoxPro keep the higher byte of a long character field's length in its decimals;
// elsewhere that byte is garbage. It counts when the fields then fill the record exactly.
bool chooseLengths(std::vector<descriptor>& list, std::size_t recordLength) {
  if (sumOf(list, &descriptor::longLength) == recordLength)
    for (descriptor& each : list) each.length = each.longLength;
  return sumOf(list, &descriptor::length) <= recordLength;
}

// FORMAT: the null flags hold, in field order, one bit for each varying text (its last byte is its length)
// and one for each field that can be null.
void addFields(const std::vector<descriptor>& list, tableHeader& header) {
  const bool hasFlags = header.level == fileLevel::visualFoxPro;
  std::size_t offset = 1;
  int bit = 0;
  for (const descriptor& each : list) {
    tableField field;
    field.offset = offset;
    offset += each.length;
    if (hasFlags && each.type == nullFlagsType) {
      header.nullFlagsAt = field.offset;
      header.nullFlagsLength = each.length;
      continue;
    }
    field.name = each.name;
    field.type = each.type;
    field.length = each.length;
    field.kind = kindOf(each.type, each.length, header.level);
    if (field.kind == fieldKind::varyingText) field.lengthBit = bit++;
    if (hasFlags && (each.flags & flagNullable) != 0) field.nullBit = bit++;
    header.fields.push_back(std::move(field));
  }
}

bool readBytes(platform::binaryFile& file, std::size_t size, std::string& bytes) {
  bytes.resize(size);
  return file.seek(0) && file.read(bytes.data(), size) == size;
}

char byteOf(platform::binaryFile& file, std::uint64_t position) {
  char byte = 0;
  return file.seek(position) && file.read(&byte, 1) == 1 ? byte : '\0';
}

bool isRecordMark(char byte) { return byte == liveMark || byte == deletedMark; }

// FORMAT: Visual FoxPro leaves room for the name of a database behind its descriptors. Some programs do not
// count it in the header's length, and the records begin behind it all the same.
void skipUncountedBacklink(platform::binaryFile& file, std::size_t descriptors,
                           tableHeader& header) {
  const std::size_t listed = descriptorsDbase3.first + descriptors * descriptorsDbase3.size + 1;
  if (header.level != fileLevel::visualFoxPro || header.recordsAt != listed) return;
  if (isRecordMark(byteOf(file, listed)) || !isRecordMark(byteOf(file, listed + backlinkSize)))
    return;
  header.recordsAt = listed + backlinkSize;
}

// WHY: a value of a field without length takes nothing in the file, but something in memory: records of one
// byte with 2,046 such fields would fill any.
bool hasTooManyEmptyFields(const tableHeader& header, std::uint64_t fileSize) {
  constexpr std::uint64_t valuesForEachByte = 4;
  constexpr std::uint64_t alwaysAllowed = std::uint64_t{1} << 20;
  const auto empty = static_cast<std::uint64_t>(
      std::count_if(header.fields.begin(), header.fields.end(),
                    [](const tableField& field) { return field.length == 0; }));
  const std::uint64_t records = (fileSize - header.recordsAt) / header.recordLength;
  return records * empty > valuesForEachByte * fileSize + alwaysAllowed;
}

bool readDbase2(platform::binaryFile& file, tableHeader& header) {
  std::string bytes;
  if (!readBytes(file, recordsAt2, bytes)) return false;
  header.recordCount = loadLittle(bytes.data() + recordCountAt2, 2);
  header.recordLength = loadLittle(bytes.data() + recordLengthAt2, 2);
  header.recordsAt = recordsAt2;
  std::vector<descriptor> list = readDescriptors(bytes, descriptorsDbase2);
  if (sumOf(list, &descriptor::length) != header.recordLength) return false;
  addFields(list, header);
  return true;
}

bool readLater(platform::binaryFile& file, tableHeader& header) {
  std::string bytes;
  if (!readBytes(file, headerSize, bytes)) return false;
  header.recordCount = loadLittle(bytes.data() + recordCountAt, 4);
  header.recordsAt = loadLittle(bytes.data() + headerLengthAt, 2);
  header.recordLength = loadLittle(bytes.data() + recordLengthAt, 2);
  if (header.recordsAt < headerSize || header.recordLength == 0) return false;
  if (!readBytes(file, header.recordsAt, bytes)) return false;

  const bool foxPro = header.version >= versionFoxPro && header.version <= versionFoxProLast;
  if (foxPro) header.level = fileLevel::visualFoxPro;
  std::vector<descriptor> list = readDescriptors(bytes, descriptorsDbase3);
  // FORMAT: 04 stands for dBASE 7 in most lists and for dBASE IV in some; the lengths tell.
  if ((header.version & 7U) == 4 && sumOf(list, &descriptor::length) != header.recordLength) {
    header.level = fileLevel::dbase7;
    list = readDescriptors(bytes, descriptorsDbase7);
    for (descriptor& each : list) each.flags = 0;
  }
  if (!chooseLengths(list, header.recordLength)) return false;
  skipUncountedBacklink(file, list.size(), header);
  addFields(list, header);
  return true;
}

}  // namespace

bool tableHeader::hasMemos() const {
  return std::any_of(fields.begin(), fields.end(),
                     [](const tableField& field) { return field.kind == fieldKind::memo; });
}

std::optional<tableHeader> readHeader(platform::binaryFile& file) {
  char version = 0;
  tableHeader header;
  if (!file.seek(0) || file.read(&version, 1) != 1) return std::nullopt;
  header.version = static_cast<unsigned char>(version);
  const bool sound =
      header.version == versionDbase2 ? readDbase2(file, header) : readLater(file, header);
  const std::uint64_t size = file.size();
  if (!sound || size < header.recordsAt || hasTooManyEmptyFields(header, size)) return std::nullopt;
  return header;
}

}  // namespace fileDbf

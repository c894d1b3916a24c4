#include "table_rw/writers/xlsx/zipWriter.h"

#include <zlib.h>

#include <algorithm>
#include <array>

#include "platform/calendar.h"
#include "platform/caseFolding.h"
#include "table_rw/writers/xlsx/deflateStream.h"
#include "table_rw/writers/xlsx/xmlText.h"

namespace SimpleXlsx {
namespace {

// FORMAT: signatures and fixed sizes of the records, APPNOTE 4.3.7, 4.3.12 and 4.3.16.
constexpr std::uint32_t localHeader = 0x04034B50;
constexpr std::uint32_t centralHeader = 0x02014B50;
constexpr std::uint32_t endRecord = 0x06054B50;
constexpr std::size_t centralHeaderSize = 46;
constexpr std::uint64_t checksumInLocalHeader = 14;  // offset; both sizes follow it

constexpr std::uint16_t version = 20;          // deflate and folders
constexpr std::uint16_t namesInUtf8 = 0x0800;  // bit 11 of the flags
constexpr std::uint16_t stored = 0;
constexpr std::uint16_t deflated = 8;
constexpr std::uint32_t ordinaryFile = 0x20;  // the attribute "archive" of DOS
constexpr std::size_t longestName = 0xFFFF;

constexpr std::size_t inputSize = std::size_t{256} * 1024;

constexpr std::wstring_view storedEndings[] = {L".zip", L".zoo", L".arc",
                                               L".lzh", L".arj", L".tgz"};

bool isStored(const std::wstring& name) {
  const std::wstring lower = platform::lowerCase(name);
  return std::any_of(std::begin(storedEndings), std::end(storedEndings),
                     [&](std::wstring_view ending) { return lower.ends_with(ending); });
}

void put16(std::string& record, std::uint32_t number) {
  record += static_cast<char>(number & 0xFF);
  record += static_cast<char>(number >> 8 & 0xFF);
}

void put32(std::string& record, std::uint64_t number) {
  put16(record, static_cast<std::uint32_t>(number & 0xFFFF));
  put16(record, static_cast<std::uint32_t>(number >> 16 & 0xFFFF));
}

// DOS counts years from 1980, in seven bits; two seconds are one.
constexpr int firstYear = 1980;
constexpr int lastYear = 2107;

std::uint16_t dosDate(const platform::calendarTime& time) {
  const int year = std::clamp(time.year, firstYear, lastYear) - firstYear;
  return static_cast<std::uint16_t>(year << 9 | time.month << 5 | time.day);
}

std::uint16_t dosTime(const platform::calendarTime& time) {
  return static_cast<std::uint16_t>(time.hour << 11 | time.minute << 5 |
                                    std::min(time.second, 59) / 2);
}

std::uint16_t flagsOf(const std::string& name) {
  const bool isAscii = std::all_of(
      name.begin(), name.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
  return isAscii ? 0 : namesInUtf8;
}

std::string utf8Of(const std::wstring& name) {
  tableRW::growingArray<char> bytes;
  appendUtf8(name, bytes);
  return std::string(bytes.data(), bytes.size());
}

}  // namespace

bool zipWriter::create(const std::wstring& path) { return disk_.openForWriting(file_, path); }

bool zipWriter::add(const std::wstring& name, const std::wstring& path) {
  member added;
  added.name = utf8Of(name);
  if (members_.size() >= limits_.members || added.name.size() > longestName) return false;
  platform::binaryFile source;
  const auto time = platform::lastWriteTime(path);
  if (!time || !source.openForReading(path)) return false;
  added.time = dosTime(*time);
  added.date = dosDate(*time);
  added.method = isStored(name) ? stored : deflated;
  added.offset = written_;

  std::string header;
  put32(header, localHeader);
  put16(header, version);
  put16(header, flagsOf(added.name));
  put16(header, added.method);
  put16(header, added.time);
  put16(header, added.date);
  header.append(12, '\0');  // checksum and sizes, not known yet
  put16(header, static_cast<std::uint32_t>(added.name.size()));
  put16(header, 0);  // no extra field
  header += added.name;
  if (!put(header) || !putData(source, added) || !fits(added) || !completeHeader(added))
    return false;
  directorySize_ += centralHeaderSize + added.name.size();
  members_.push_back(std::move(added));
  return true;
}

bool zipWriter::putData(platform::binaryFile& source, member& added) {
  const std::uint64_t expected = source.size();
  const std::uint64_t start = written_;
  if (expected > limits_.memberSize) return false;
  std::vector<char> block(std::min<std::uint64_t>(inputSize, expected + 1));
  deflateStream compressor;
  const auto receive = [this](std::string_view piece) { return put(piece); };
  uLong checksum = crc32(0, nullptr, 0);
  bool isLast = false;
  while (!isLast) {
    const std::size_t size = source.read(block.data(), block.size());
    isLast = size < block.size();
    added.size += size;
    const std::string_view bytes(block.data(), size);
    checksum =
        crc32(checksum, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(size));
    const bool isWritten =
        added.method == stored ? put(bytes) : compressor.compress(bytes, isLast, receive);
    if (!isWritten) return false;
  }
  added.checksum = static_cast<std::uint32_t>(checksum);
  added.packedSize = written_ - start;
  return added.size == expected;  // a read that failed looks like the end of the file
}

bool zipWriter::fits(const member& added) const {
  return added.packedSize <= limits_.memberSize &&
         written_ + directorySize_ + centralHeaderSize + added.name.size() <= limits_.archiveSize;
}

bool zipWriter::completeHeader(const member& added) {
  std::string sizes;
  put32(sizes, added.checksum);
  put32(sizes, added.packedSize);
  put32(sizes, added.size);
  return file_.seek(added.offset + checksumInLocalHeader) &&
         disk_.write(file_, sizes.data(), sizes.size()) && file_.seek(written_);
}

bool zipWriter::finish() {
  const std::uint64_t directoryOffset = written_;
  std::string records;
  for (const member& each : members_) {
    put32(records, centralHeader);
    put16(records, version);  // made by DOS: attributes are those of DOS
    put16(records, version);
    put16(records, flagsOf(each.name));
    put16(records, each.method);
    put16(records, each.time);
    put16(records, each.date);
    put32(records, each.checksum);
    put32(records, each.packedSize);
    put32(records, each.size);
    put16(records, static_cast<std::uint32_t>(each.name.size()));
    put16(records, 0);  // no extra field
    put16(records, 0);  // no comment
    put16(records, 0);  // disk
    put16(records, 0);  // internal attributes
    put32(records, ordinaryFile);
    put32(records, each.offset);
    records += each.name;
  }
  put32(records, endRecord);
  put16(records, 0);  // this disk
  put16(records, 0);  // the disk of the directory
  put16(records, static_cast<std::uint32_t>(members_.size()));
  put16(records, static_cast<std::uint32_t>(members_.size()));
  put32(records, directorySize_);
  put32(records, directoryOffset);
  put16(records, 0);  // no comment
  const bool isWritten = put(records);
  return disk_.close(file_) && isWritten;
}

bool zipWriter::put(std::string_view bytes) {
  written_ += bytes.size();
  return disk_.write(file_, bytes.data(), bytes.size());
}

}  // namespace SimpleXlsx

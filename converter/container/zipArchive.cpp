#include "converter/container/zipArchive.h"

#include <zlib.h>

#include <algorithm>

#include "converter/container/littleEndian.h"

namespace converter {
namespace {

constexpr std::uint32_t endSignature = 0x06054B50;
constexpr std::size_t endSize = 22;
constexpr std::size_t longestArchiveComment = 0xFFFF;
constexpr std::uint32_t end64LocatorSignature = 0x07064B50;
constexpr std::size_t end64LocatorSize = 20;
constexpr std::uint32_t end64Signature = 0x06064B50;
constexpr std::size_t end64Size = 56;
constexpr std::uint32_t entrySignature = 0x02014B50;
constexpr std::size_t entrySize = 46;
constexpr std::uint32_t localSignature = 0x04034B50;
constexpr std::size_t localSize = 30;
constexpr std::uint16_t zip64Field = 1;
constexpr std::uint32_t saturated = 0xFFFFFFFF;

constexpr std::uint16_t methodStored = 0;
constexpr std::uint16_t methodDeflated = 8;
constexpr unsigned flagEncrypted = 1;

// A workbook has some dozens of members; a directory beyond this is no workbook's.
constexpr std::uint64_t largestDirectory = std::uint64_t{64} << 20;
constexpr std::size_t inputSize = std::size_t{128} * 1024;

std::string plainName(std::string_view name) {
  std::string plain(name);
  for (char& c : plain)
    if (c == '\\') c = '/';
  plain.erase(0, plain.find_first_not_of('/'));
  return plain;
}

std::string lowerCase(std::string name) {
  for (char& c : name)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return name;
}

// FORMAT: a saturated 32-bit number stands for the next 64-bit one of the extra field with the id 1.
void takeZip64(const unsigned char* extra, std::size_t size, zipMember& member) {
  while (size >= 4) {
    const std::uint16_t id = read16(extra);
    const std::size_t length = read16(extra + 2);
    extra += 4;
    size -= 4;
    if (length > size) return;
    if (id == zip64Field) {
      std::size_t at = 0;
      for (std::uint64_t* number : {&member.size, &member.compressedSize, &member.headerOffset}) {
        if (*number != saturated || at + 8 > length) continue;
        *number = read64(extra + at);
        at += 8;
      }
      return;
    }
    extra += length;
    size -= length;
  }
}

}  // namespace

bool zipArchive::open(platform::binaryFile& file, std::string& problem) {
  file_ = &file;
  members_.clear();
  lowerCaseMembers_.clear();
  directoryPlace place;
  if (findDirectory(place) && readDirectory(place)) return true;
  problem = "the ZIP archive is damaged: its directory is missing or broken";
  return false;
}

bool zipArchive::findDirectory(directoryPlace& place) {
  const std::uint64_t fileSize = file_->size();
  const auto tailSize = static_cast<std::size_t>(
      std::min<std::uint64_t>(fileSize, endSize + longestArchiveComment + end64LocatorSize));
  std::vector<unsigned char> tail(tailSize);
  const std::uint64_t tailOffset = fileSize - tailSize;
  if (tailSize < endSize || file_->readAt(tailOffset, tail.data(), tailSize) != tailSize)
    return false;
  std::size_t end = tailSize - endSize;
  while (read32(&tail[end]) != endSignature)
    if (end-- == 0) return false;
  place = {read32(&tail[end + 16]), read32(&tail[end + 12]), read16(&tail[end + 10])};
  if (place.offset == saturated || place.size == saturated || place.entries == 0xFFFF) {
    if (end >= end64LocatorSize && read32(&tail[end - end64LocatorSize]) == end64LocatorSignature) {
      unsigned char end64[end64Size];
      const std::uint64_t offset = read64(&tail[end - end64LocatorSize + 8]);
      if (file_->readAt(offset, end64, end64Size) != end64Size || read32(end64) != end64Signature)
        return false;
      place = {read64(end64 + 48), read64(end64 + 40), read64(end64 + 32)};
    }
  }
  return place.size <= largestDirectory && place.offset <= fileSize &&
         place.size <= fileSize - place.offset;
}

bool zipArchive::readDirectory(const directoryPlace& place) {
  std::vector<unsigned char> directory(static_cast<std::size_t>(place.size));
  if (file_->readAt(place.offset, directory.data(), directory.size()) != directory.size())
    return false;
  std::size_t at = 0;
  for (std::uint64_t number = 0; number < place.entries; ++number) {
    if (directory.size() - at < entrySize || read32(&directory[at]) != entrySignature) return false;
    const unsigned char* const entry = &directory[at];
    const std::size_t nameSize = read16(entry + 28);
    const std::size_t extraSize = read16(entry + 30);
    const std::size_t whole = entrySize + nameSize + extraSize + read16(entry + 32);
    if (directory.size() - at < whole) return false;
    zipMember member;
    member.flags = read16(entry + 8);
    member.method = read16(entry + 10);
    member.checksum = read32(entry + 16);
    member.compressedSize = read32(entry + 20);
    member.size = read32(entry + 24);
    member.headerOffset = read32(entry + 42);
    takeZip64(entry + entrySize + nameSize, extraSize, member);
    const std::string name =
        plainName({reinterpret_cast<const char*>(entry) + entrySize, nameSize});
    members_[name] = member;
    lowerCaseMembers_[lowerCase(name)] = member;
    at += whole;
  }
  return true;
}

const zipMember* zipArchive::find(std::string_view name) const {
  const std::string plain = plainName(name);
  if (const auto found = members_.find(plain); found != members_.end()) return &found->second;
  const auto found = lowerCaseMembers_.find(lowerCase(plain));
  return found == lowerCaseMembers_.end() ? nullptr : &found->second;
}

zipMemberReader::zipMemberReader() = default;

zipMemberReader::~zipMemberReader() {
  if (isInflating_) inflateEnd(inflater_.get());
}

bool zipMemberReader::open(const zipArchive& archive, const zipMember& member,
                           std::string& problem) {
  file_ = &archive.file();
  member_ = member;
  if ((member.flags & flagEncrypted) != 0) {
    problem = "the workbook is protected by a password";
    return false;
  }
  if (member.method != methodStored && member.method != methodDeflated) {
    problem = "the ZIP archive uses a method of compression that is not known: " +
              std::to_string(member.method);
    return false;
  }
  unsigned char local[localSize];
  const std::uint64_t fileSize = file_->size();
  if (file_->readAt(member.headerOffset, local, localSize) == localSize &&
      read32(local) == localSignature) {
    place_ = member.headerOffset + localSize + read16(local + 26) + read16(local + 28);
    if (place_ <= fileSize && member.compressedSize <= fileSize - place_) {
      unread_ = member.compressedSize;
      produced_ = 0;
      checksum_ = crc32(0, nullptr, 0);
      isAtEnd_ = false;
      if (member.method == methodStored) return true;
      input_.resize(inputSize);
      if (isInflating_) inflateEnd(inflater_.get());
      inflater_ = std::make_unique<z_stream_s>();
      isInflating_ = inflateInit2(inflater_.get(), -MAX_WBITS) == Z_OK;
      if (!isInflating_) throw std::bad_alloc();
      return true;
    }
  }
  problem = "the ZIP archive is damaged: a member does not lie where its directory says";
  return false;
}

std::ptrdiff_t zipMemberReader::read(void* buffer, std::size_t size, std::string& problem) {
  if (isAtEnd_ || size == 0) return 0;
  size = std::min(size, std::size_t{1} << 30);
  const std::ptrdiff_t count = member_.method == methodStored ? readStored(buffer, size, problem)
                                                              : readDeflated(buffer, size, problem);
  if (count < 0) return count;
  checksum_ = crc32(checksum_, static_cast<const Bytef*>(buffer), static_cast<uInt>(count));
  produced_ += static_cast<std::uint64_t>(count);
  if (produced_ > neverTooMuch_ && produced_ / largestRatio > member_.compressedSize) {
    problem = "the ZIP archive is refused: a member inflates to more than " +
              std::to_string(largestRatio) + " times its size";
    return -1;
  }
  return count == 0 ? finish(problem) : count;
}

std::ptrdiff_t zipMemberReader::readStored(void* buffer, std::size_t size, std::string& problem) {
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(size, unread_));
  if (file_->readAt(place_, buffer, wanted) != wanted) {
    problem = "the file could not be read";
    return -1;
  }
  place_ += wanted;
  unread_ -= wanted;
  return static_cast<std::ptrdiff_t>(wanted);
}

bool zipMemberReader::refill() {
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(input_.size(), unread_));
  if (wanted == 0 || file_->readAt(place_, input_.data(), wanted) != wanted) return false;
  place_ += wanted;
  unread_ -= wanted;
  inflater_->next_in = input_.data();
  inflater_->avail_in = static_cast<uInt>(wanted);
  return true;
}

std::ptrdiff_t zipMemberReader::readDeflated(void* buffer, std::size_t size, std::string& problem) {
  inflater_->next_out = static_cast<Bytef*>(buffer);
  inflater_->avail_out = static_cast<uInt>(size);
  while (inflater_->avail_out > 0) {
    const bool hasInput = inflater_->avail_in > 0 || refill();
    const int answer = hasInput ? inflate(inflater_.get(), Z_NO_FLUSH) : Z_DATA_ERROR;
    if (answer == Z_MEM_ERROR) throw std::bad_alloc();
    if (answer == Z_STREAM_END) {
      // What follows the end within the member is nobody's; the next read finds nothing stored.
      unread_ = 0;
      inflater_->avail_in = 0;
      member_.method = methodStored;
      break;
    }
    if (answer != Z_OK) {
      problem = "the ZIP archive is damaged: a member cannot be inflated";
      return -1;
    }
  }
  return static_cast<std::ptrdiff_t>(size - inflater_->avail_out);
}

std::ptrdiff_t zipMemberReader::finish(std::string& problem) {
  isAtEnd_ = true;
  if (produced_ == member_.size && checksum_ == member_.checksum) return 0;
  problem = "the ZIP archive is damaged: a member's checksum is wrong";
  return -1;
}

}  // namespace converter

#include "converter/container/compoundFile.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "converter/container/littleEndian.h"

namespace converter {
namespace {

constexpr std::array<unsigned char, 8> signature = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
constexpr std::size_t headerSize = 512;
constexpr std::size_t entriesInHeader = 109;
constexpr std::uint32_t lastSectorNumber = 0xFFFFFFF9;  // above it are marks: end of a chain, free
constexpr std::size_t directoryEntrySize = 128;
constexpr std::size_t miniSectorSize = 64;
constexpr std::uint8_t typeStream = 2;
constexpr std::uint8_t typeRoot = 5;

// Sectors of one stream, and how many bytes they hold: the last one may be cut short.
struct sectorChain {
  std::vector<std::uint32_t> sectors;
  std::uint64_t size = 0;
};

// Where sectors stand in a source.
struct sectorSpace {
  std::size_t sectorSize;
  std::uint64_t size;  // of all sectors together
};

// A chain ends where it comes to one of its sectors again, where it leads out of the source, and behind a sector that
// is cut short: what followed that would move to another place in the stream.
sectorChain chainOf(std::uint32_t first, const std::vector<std::uint32_t>& table,
                    const sectorSpace& space) {
  sectorChain chain;
  std::vector<bool> isSeen(table.size());
  for (std::uint32_t sector = first; sector < table.size() && !isSeen[sector];
       sector = table[sector]) {
    const std::uint64_t begin = sector * std::uint64_t{space.sectorSize};
    if (begin >= space.size) break;
    isSeen[sector] = true;
    chain.sectors.push_back(sector);
    const std::uint64_t size = std::min<std::uint64_t>(space.sectorSize, space.size - begin);
    chain.size += size;
    if (size < space.sectorSize) break;
  }
  return chain;
}

// Sectors of a source, one behind the other.
class chainedStream final : public byteStream {
 public:
  chainedStream(byteStream& source, std::uint64_t base, std::size_t sectorSize, sectorChain chain,
                std::uint64_t size)
      : source_(&source),
        base_(base),
        sectorSize_(sectorSize),
        sectors_(std::move(chain.sectors)),
        stated_(size),
        size_(std::min(size, chain.size)) {}

  std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t size) override {
    if (offset >= size_) return 0;
    size = static_cast<std::size_t>(std::min<std::uint64_t>(size, size_ - offset));
    std::size_t done = 0;
    while (done < size) {
      const std::uint64_t place = offset + done;
      const auto index = static_cast<std::size_t>(place / sectorSize_);
      const auto within = static_cast<std::size_t>(place % sectorSize_);
      // Neighbours on the disk are read together.
      std::size_t last = index;
      while ((last + 1 - index) * sectorSize_ - within < size - done &&
             sectors_[last + 1] == sectors_[last] + 1)
        ++last;
      const std::size_t wanted = std::min((last + 1 - index) * sectorSize_ - within, size - done);
      const std::size_t count =
          source_->readAt(base_ + sectors_[index] * std::uint64_t{sectorSize_} + within,
                          static_cast<char*>(buffer) + done, wanted);
      done += count;
      if (count < wanted) break;
    }
    return done;
  }

  std::optional<std::uint64_t> statedSize() const override { return stated_; }

 private:
  byteStream* source_;
  std::uint64_t base_;
  std::size_t sectorSize_;
  std::vector<std::uint32_t> sectors_;
  std::uint64_t stated_;
  std::uint64_t size_;
};

// The same over a file, which has no stream of its own to refer to.
class fileChain final : public byteStream {
 public:
  fileChain(platform::binaryFile& file, std::size_t sectorSize, sectorChain chain,
            std::uint64_t size)
      : source_(file), chain_(source_, sectorSize, sectorSize, std::move(chain), size) {}
  std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t size) override {
    return chain_.readAt(offset, buffer, size);
  }
  std::optional<std::uint64_t> statedSize() const override { return chain_.statedSize(); }

 private:
  fileStream source_;
  chainedStream chain_;
};

char lowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool equalNames(std::string_view one, std::string_view other) {
  return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                    [](char a, char b) { return lowerAscii(a) == lowerAscii(b); });
}

// The ASCII characters of a name in UTF-16; any other becomes `?`, which no wanted name holds.
std::string asciiName(const unsigned char* units, std::size_t bytes) {
  std::string name;
  for (std::size_t i = 0; i + 1 < bytes; i += 2) {
    const std::uint16_t unit = read16(units + i);
    if (unit == 0) break;
    name += unit < 0x80 ? static_cast<char>(unit) : '?';
  }
  return name;
}

}  // namespace

bool compoundFile::isCompoundFile(const unsigned char* bytes, std::size_t size) {
  return size >= signature.size() && std::equal(signature.begin(), signature.end(), bytes);
}

bool compoundFile::open(platform::binaryFile& file, std::string& problem) {
  file_ = &file;
  problem = "the compound file is damaged: its header or its sector table is broken";
  unsigned char header[headerSize];
  if (file.readAt(0, header, headerSize) != headerSize || !isCompoundFile(header, headerSize))
    return false;
  const unsigned sectorShift = read16(header + 30);
  if (sectorShift != 9 && sectorShift != 12) return false;
  sectorSize_ = std::size_t{1} << sectorShift;
  // FORMAT: sector n begins at (n + 1) sectors.
  sectorBytes_ = file.size() - std::min<std::uint64_t>(file.size(), sectorSize_);
  sectorCount_ = (sectorBytes_ + sectorSize_ - 1) / sectorSize_;
  miniCutoff_ = read32(header + 56);
  if (!readTable(header)) return false;
  readDirectory(read32(header + 48));
  const auto root = std::find_if(entries_.begin(), entries_.end(),
                                 [](const entry& each) { return each.type == typeRoot; });
  if (root == entries_.end()) return false;
  sectorChain ofRoot = chainOf(root->start, table_, {sectorSize_, sectorBytes_});
  miniBytes_ = std::min(root->size, ofRoot.size);
  miniStream_ = std::make_unique<fileChain>(*file_, sectorSize_, std::move(ofRoot), root->size);
  std::vector<unsigned char> sector;
  for (const std::uint32_t number : sectorsOf(read32(header + 60))) {
    if (!readSector(number, sector)) break;
    for (std::size_t at = 0; at < sectorSize_; at += 4) miniTable_.push_back(read32(&sector[at]));
  }
  problem.clear();
  return true;
}

bool compoundFile::readSector(std::uint32_t sector, std::vector<unsigned char>& bytes) {
  bytes.assign(sectorSize_, 0xFF);  // what a short last sector lacks is free
  return sector < sectorCount_ &&
         file_->readAt((sector + std::uint64_t{1}) * sectorSize_, bytes.data(), sectorSize_) > 0;
}

void compoundFile::appendTableSector(std::uint32_t sector) {
  std::vector<unsigned char> bytes;
  readSector(sector, bytes);
  for (std::size_t at = 0; at < sectorSize_; at += 4) table_.push_back(read32(&bytes[at]));
}

bool compoundFile::readTable(const unsigned char* header) {
  const auto isComplete = [this] { return table_.size() >= sectorCount_; };
  for (std::size_t i = 0; i < entriesInHeader && !isComplete(); ++i) {
    const std::uint32_t sector = read32(header + 76 + 4 * i);
    if (sector <= lastSectorNumber) appendTableSector(sector);
  }
  // FORMAT: further sector numbers of the FAT stand in a chain of sectors whose last entry is the next.
  std::uint32_t next = read32(header + 68);
  std::vector<unsigned char> numbers;
  for (std::uint64_t seen = 0; next <= lastSectorNumber && !isComplete(); ++seen) {
    if (seen > sectorCount_ || !readSector(next, numbers)) return false;
    for (std::size_t at = 0; at + 4 < sectorSize_ && !isComplete(); at += 4) {
      const std::uint32_t sector = read32(&numbers[at]);
      if (sector <= lastSectorNumber) appendTableSector(sector);
    }
    next = read32(&numbers[sectorSize_ - 4]);
  }
  return !table_.empty();
}

std::vector<std::uint32_t> compoundFile::sectorsOf(std::uint32_t first) const {
  return chainOf(first, table_, {sectorSize_, sectorBytes_}).sectors;
}

void compoundFile::readDirectory(std::uint32_t first) {
  std::vector<unsigned char> bytes;
  for (const std::uint32_t sector : sectorsOf(first)) {
    if (!readSector(sector, bytes)) break;
    for (std::size_t at = 0; at < sectorSize_; at += directoryEntrySize) {
      const unsigned char* const item = &bytes[at];
      const std::uint8_t type = item[66];
      if (type != typeStream && type != typeRoot) continue;
      const std::size_t nameSize = std::min<std::size_t>(read16(item + 64), 64);
      // FORMAT: with sectors of 512 bytes the upper half of the size may hold anything.
      const std::uint64_t size = sectorSize_ == 512 ? read32(item + 120) : read64(item + 120);
      entries_.push_back({asciiName(item, nameSize), type, read32(item + 116), size});
    }
  }
}

std::unique_ptr<byteStream> compoundFile::stream(std::string_view name) {
  for (const entry& each : entries_) {
    if (each.type != typeStream || !equalNames(each.name, name)) continue;
    if (each.size >= miniCutoff_)
      return std::make_unique<fileChain>(
          *file_, sectorSize_, chainOf(each.start, table_, {sectorSize_, sectorBytes_}), each.size);
    return std::make_unique<chainedStream>(
        *miniStream_, 0, miniSectorSize,
        chainOf(each.start, miniTable_, {miniSectorSize, miniBytes_}), each.size);
  }
  return nullptr;
}

}  // namespace converter

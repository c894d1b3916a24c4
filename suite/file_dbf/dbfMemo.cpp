#include "suite/file_dbf/dbfMemo.h"

#include <algorithm>

#include "suite/file_dbf/dbfLayout.h"
#include "suite/file_dbf/dbfPaths.h"

namespace fileDbf {
namespace {

constexpr std::size_t dbaseBlockSize = 512;
constexpr std::size_t smallestHeader = 24;
constexpr std::size_t dbaseBlockSizeAt = 20;
constexpr std::size_t foxProBlockSizeAt = 6;
constexpr std::size_t textHeaderSize = 8;  // in front of a text of dBASE IV and of FoxPro
constexpr std::uint64_t dbase4Begin = 0x0008FFFF;
constexpr std::uint64_t foxProText = 1;
constexpr std::size_t step = 4096;

bool isFoxPro(unsigned version) {
  return version == versionFoxProMemo || (version >= versionFoxPro && version <= versionFoxProLast);
}

}  // namespace

memoFile::memoFile(const std::wstring& tablePath, unsigned version) {
  const bool old = version == versionDbase3Memo || version == versionDbase3;
  const layout dbase = old ? layout::dbase3 : layout::dbase4;
  if (!isFoxPro(version) && openBeside(tablePath, L".dbt", dbase)) return;
  openBeside(tablePath, L".fpt", layout::foxPro);
}

bool memoFile::openBeside(const std::wstring& tablePath, const wchar_t* extension, layout kind) {
  const std::wstring path = platform::findIgnoringCase(withExtension(tablePath, extension));
  if (path.empty()) return false;
  isUnreadable_ = !file_.openForReading(path);
  if (isUnreadable_) return false;
  layout_ = kind;
  if (readHeader()) return true;
  file_.close();
  return false;
}

bool memoFile::readHeader() {
  char header[smallestHeader] = {};
  size_ = file_.size();
  if (file_.read(header, sizeof header) != sizeof header) return false;
  if (layout_ == layout::foxPro)
    blockSize_ = loadBig(header + foxProBlockSizeAt, 2);
  else if (layout_ == layout::dbase4)
    blockSize_ = loadLittle(header + dbaseBlockSizeAt, 2);
  if (blockSize_ == 0) blockSize_ = dbaseBlockSize;
  return true;
}

bool memoFile::read(std::uint64_t block, std::string& text) {
  text.clear();
  if (handedOut_ > mostPasses * size_ + alwaysAllowed || !find(block, text)) return false;
  handedOut_ += text.size();
  return true;
}

bool memoFile::find(std::uint64_t block, std::string& text) {
  if (!file_.isOpen() || block == 0 || block > size_ / blockSize_) return false;
  const std::uint64_t at = block * blockSize_;
  if (layout_ == layout::dbase3) return readUpToEndMark(at, text);
  char header[textHeaderSize];
  if (!file_.seek(at) || file_.read(header, sizeof header) != sizeof header) return false;
  if (layout_ == layout::foxPro)
    return loadBig(header, 4) == foxProText &&
           readText(at + textHeaderSize, loadBig(header + 4, 4), text);
  const std::uint64_t length = loadLittle(header + 4, 4);
  return loadLittle(header, 4) == dbase4Begin && length >= textHeaderSize &&
         readText(at + textHeaderSize, length - textHeaderSize, text);
}

bool memoFile::readText(std::uint64_t at, std::uint64_t length, std::string& text) {
  if (at > size_ || length > size_ - at) return false;
  text.resize(static_cast<std::size_t>(length));
  if (file_.read(text.data(), text.size()) == text.size()) return true;
  text.clear();
  return false;
}

bool memoFile::readUpToEndMark(std::uint64_t at, std::string& text) {
  if (at >= size_ || !file_.seek(at)) return false;
  char bytes[step];
  for (std::size_t size = step; size == step;) {
    size = file_.read(bytes, step);
    const char* const end = std::find(bytes, bytes + size, fileEnd);
    text.append(bytes, static_cast<std::size_t>(end - bytes));
    if (end != bytes + size) return true;
  }
  return true;
}

}  // namespace fileDbf

#include "platform/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <memory>
#include <utility>

#include "platform/caseFolding.h"
#include "platform/posix/nativePath.h"

namespace platform {
namespace {

// The kernel moves at most 2 GiB - 4 KiB in one call whatever is asked for, and some file systems
// refuse to be asked for more.
constexpr std::size_t largestTransfer = std::size_t{1} << 30;

int openFile(const std::wstring& path, int flags) {
  const std::string name = nativePath(path);
  int descriptor = -1;
  do {
    descriptor = ::open(name.c_str(), flags | O_CLOEXEC | O_NOCTTY, 0666);
  } while (descriptor < 0 && errno == EINTR);
  return descriptor;
}

// True also for what is there but cannot be asked: whoever opens it will hear why.
bool mayExist(const std::string& name) {
  struct stat attributes;
  return ::stat(name.c_str(), &attributes) == 0 || (errno != ENOENT && errno != ELOOP);
}

}  // namespace

bool fileExists(const std::wstring& path) {
  struct stat attributes;
  return ::stat(nativePath(path).c_str(), &attributes) == 0;
}

bool folderExists(const std::wstring& path) {
  struct stat attributes;
  return ::stat(nativePath(path).c_str(), &attributes) == 0 && S_ISDIR(attributes.st_mode);
}

bool removeFile(const std::wstring& path) { return ::unlink(smallNativePath(path).c_str()) == 0; }

bool isSameFile(const std::wstring& first, const std::wstring& second) {
  struct stat one;
  struct stat other;
  return ::stat(nativePath(first).c_str(), &one) == 0 &&
         ::stat(nativePath(second).c_str(), &other) == 0 && one.st_dev == other.st_dev &&
         one.st_ino == other.st_ino;
}

bool isLink(const std::wstring& path) {
  struct stat attributes;
  return ::lstat(nativePath(path).c_str(), &attributes) == 0 && S_ISLNK(attributes.st_mode);
}

bool isPipeOrDevice(const std::wstring& path) {
  struct stat attributes;
  return ::stat(nativePath(path).c_str(), &attributes) == 0 && !S_ISREG(attributes.st_mode) &&
         !S_ISDIR(attributes.st_mode);
}

bool replaceFile(const std::wstring& from, const std::wstring& to) {
  const std::string source = nativePath(from);
  const std::string target = nativePath(to);
  struct stat old;
  if (::stat(target.c_str(), &old) == 0) {
    // The kernel asks the folder alone, and would give the new file's permissions to everybody.
    if (::access(target.c_str(), W_OK) != 0) return false;
    if (S_ISREG(old.st_mode) && ::chmod(source.c_str(), old.st_mode & 07777) != 0) return false;
  }
  return std::rename(source.c_str(), target.c_str()) == 0;
}

std::wstring findIgnoringCase(const std::wstring& path) {
  if (fileExists(path)) return path;
  const std::size_t name = path.find_last_of(L"/\\") + 1;  // 0 when there is neither
  const std::wstring folder = path.substr(0, name);
  const std::wstring wanted = lowerCase(path.substr(name));
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(
      ::opendir(folder.empty() ? "." : nativePath(folder).c_str()), ::closedir);
  if (listing == nullptr) return {};
  while (const dirent* const entry = ::readdir(listing.get())) {
    const std::wstring found = wideText(entry->d_name);
    if (lowerCase(found) == wanted && mayExist(nativePath(folder + found))) return folder + found;
  }
  return {};
}

bool createFolder(const std::wstring& path) { return ::mkdir(nativePath(path).c_str(), 0777) == 0; }

bool createPrivateFolder(const std::wstring& path) {
  return ::mkdir(nativePath(path).c_str(), 0700) == 0;
}

bool removeFolderAndFiles(const std::wstring& path) {
  const std::string folder = nativePath(path);
  {
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(::opendir(folder.c_str()), ::closedir);
    if (listing == nullptr) return false;
    while (const dirent* const entry = ::readdir(listing.get()))
      ::unlink((folder + '/' + entry->d_name).c_str());
  }
  return ::rmdir(folder.c_str()) == 0;
}

bool removeFolder(const std::wstring& path) { return ::rmdir(smallNativePath(path).c_str()) == 0; }

std::string utf8Path(const std::wstring& path) { return nativePath(path); }

bool isDrivePath(const std::wstring&) { return false; }

bool binaryFile::openForReading(const std::wstring& path) {
  close();
  hasFailed_ = false;
  handle_ = openFile(path, O_RDONLY);
  struct stat attributes;
  // The kernel lets a folder be opened and refuses only to read it.
  if (isOpen() &&
      (::fstat(static_cast<int>(handle_), &attributes) != 0 || S_ISDIR(attributes.st_mode)))
    close();
  return isOpen();
}

bool binaryFile::openForWriting(const std::wstring& path) {
  close();
  hasFailed_ = false;
  handle_ = openFile(path, O_WRONLY | O_CREAT | O_TRUNC);
  return isOpen();
}

bool binaryFile::openForAppending(const std::wstring& path) {
  close();
  hasFailed_ = false;
  handle_ = openFile(path, O_WRONLY);
  if (isOpen() && ::lseek(static_cast<int>(handle_), 0, SEEK_END) < 0) close();
  return isOpen();
}

std::size_t binaryFile::read(void* buffer, std::size_t size) {
  if (!isOpen()) return 0;
  std::size_t done = 0;
  while (done < size) {
    const ssize_t count = ::read(static_cast<int>(handle_), static_cast<char*>(buffer) + done,
                                 std::min(size - done, largestTransfer));
    if (count > 0) {
      done += static_cast<std::size_t>(count);
    } else if (count == 0 || errno != EINTR) {
      if (count < 0) hasFailed_ = true;
      break;
    }
  }
  return done;
}

std::size_t binaryFile::readAt(std::uint64_t offset, void* buffer, std::size_t size) {
  return seek(offset) ? read(buffer, size) : 0;
}

bool binaryFile::write(const void* bytes, std::size_t size) {
  if (!isOpen()) return false;
  std::size_t done = 0;
  while (done < size) {
    const ssize_t count = ::write(static_cast<int>(handle_), static_cast<const char*>(bytes) + done,
                                  std::min(size - done, largestTransfer));
    if (count > 0)
      done += static_cast<std::size_t>(count);
    else if (count == 0 || errno != EINTR)
      return false;
  }
  return true;
}

bool binaryFile::seek(std::uint64_t position) {
  if (!isOpen() || position > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max()))
    return false;
  if (::lseek(static_cast<int>(handle_), static_cast<off_t>(position), SEEK_SET) >= 0) return true;
  hasFailed_ = true;
  return false;
}

std::uint64_t binaryFile::size() const {
  struct stat attributes;
  if (!isOpen()) return 0;
  if (::fstat(static_cast<int>(handle_), &attributes) != 0) {
    hasFailed_ = true;
    return 0;
  }
  return S_ISREG(attributes.st_mode) ? static_cast<std::uint64_t>(attributes.st_size) : 0;
}

bool binaryFile::close() {
  if (!isOpen()) return true;
  const int descriptor = static_cast<int>(std::exchange(handle_, closedHandle));
  // WHY: never again after EINTR: the descriptor is gone and may be another thread's by now.
  return ::close(descriptor) == 0 || errno == EINTR;
}

}  // namespace platform

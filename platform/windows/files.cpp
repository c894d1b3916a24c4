#include "platform/files.h"

#include <windows.h>

#include <algorithm>
#include <utility>

namespace platform {
namespace {

constexpr std::size_t largestTransfer = std::size_t{1} << 30;  // one call takes 32 bits

HANDLE asHandle(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

// A file or folder opened without access, only to be asked what it is.
class openedForQuestions {
 public:
  explicit openedForQuestions(const std::wstring& path)
      : handle_(CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                            nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr)) {}
  openedForQuestions(const openedForQuestions&) = delete;
  openedForQuestions& operator=(const openedForQuestions&) = delete;
  ~openedForQuestions() {
    if (handle_ != INVALID_HANDLE_VALUE) CloseHandle(handle_);
  }

  HANDLE handle() const { return handle_; }

 private:
  HANDLE handle_;
};

}  // namespace

bool fileExists(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA attributes;
  return GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &attributes) != 0;
}

bool folderExists(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA attributes;
  return GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &attributes) != 0 &&
         (attributes.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool removeFile(const std::wstring& path) { return DeleteFileW(path.c_str()) != 0; }

bool isSameFile(const std::wstring& first, const std::wstring& second) {
  const openedForQuestions one(first);
  const openedForQuestions other(second);
  BY_HANDLE_FILE_INFORMATION ofOne;
  BY_HANDLE_FILE_INFORMATION ofOther;
  return GetFileInformationByHandle(one.handle(), &ofOne) != 0 &&
         GetFileInformationByHandle(other.handle(), &ofOther) != 0 &&
         ofOne.dwVolumeSerialNumber == ofOther.dwVolumeSerialNumber &&
         ofOne.nFileIndexHigh == ofOther.nFileIndexHigh &&
         ofOne.nFileIndexLow == ofOther.nFileIndexLow;
}

bool isLink(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

bool isPipeOrDevice(const std::wstring& path) {
  const openedForQuestions file(path);
  return file.handle() != INVALID_HANDLE_VALUE && GetFileType(file.handle()) != FILE_TYPE_DISK;
}

bool replaceFile(const std::wstring& from, const std::wstring& to) {
  return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING) != 0;
}

// The system itself does not tell small letters from capitals.
std::wstring findIgnoringCase(const std::wstring& path) {
  return fileExists(path) ? path : std::wstring();
}

bool createFolder(const std::wstring& path) { return CreateDirectoryW(path.c_str(), nullptr) != 0; }

bool createPrivateFolder(const std::wstring& path) { return createFolder(path); }

bool removeFolderAndFiles(const std::wstring& path) {
  WIN32_FIND_DATAW entry;
  const HANDLE listing = FindFirstFileW((path + L"\\*").c_str(), &entry);
  if (listing == INVALID_HANDLE_VALUE) return false;
  do {
    DeleteFileW((path + L"\\" + entry.cFileName).c_str());
  } while (FindNextFileW(listing, &entry) != 0);
  FindClose(listing);
  return removeFolder(path);
}

bool removeFolder(const std::wstring& path) { return RemoveDirectoryW(path.c_str()) != 0; }

std::string utf8Path(const std::wstring& path) {
  const int needed =
      WideCharToMultiByte(CP_UTF8, 0, path.c_str(), -1, nullptr, 0, nullptr, nullptr);
  if (needed <= 0) return {};
  std::string bytes(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(CP_UTF8, 0, path.c_str(), -1, bytes.data(), needed, nullptr, nullptr);
  bytes.pop_back();  // the terminator
  std::replace(bytes.begin(), bytes.end(), '\\', '/');
  return bytes;
}

bool isDrivePath(const std::wstring& path) {
  return path.size() >= 2 && path[1] == L':' &&
         ((path[0] >= L'A' && path[0] <= L'Z') || (path[0] >= L'a' && path[0] <= L'z'));
}

// The sharing modes are those of the C runtime's secure open: readers get in beside readers, nobody
// gets in beside a writer.

bool binaryFile::openForReading(const std::wstring& path) {
  close();
  hasFailed_ = false;
  handle_ = reinterpret_cast<std::intptr_t>(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ,
                                                        nullptr, OPEN_EXISTING,
                                                        FILE_ATTRIBUTE_NORMAL, nullptr));
  return isOpen();
}

bool binaryFile::openForWriting(const std::wstring& path) {
  close();
  hasFailed_ = false;
  handle_ = reinterpret_cast<std::intptr_t>(CreateFileW(
      path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  return isOpen();
}

bool binaryFile::openForAppending(const std::wstring& path) {
  close();
  hasFailed_ = false;
  handle_ = reinterpret_cast<std::intptr_t>(CreateFileW(
      path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (isOpen() && SetFilePointerEx(asHandle(handle_), LARGE_INTEGER{}, nullptr, FILE_END) == 0)
    close();
  return isOpen();
}

std::size_t binaryFile::read(void* buffer, std::size_t size) {
  if (!isOpen()) return 0;
  std::size_t done = 0;
  while (done < size) {
    DWORD count = 0;
    if (ReadFile(asHandle(handle_), static_cast<char*>(buffer) + done,
                 static_cast<DWORD>(std::min(size - done, largestTransfer)), &count,
                 nullptr) == 0) {
      // A pipe ends when nobody writes to it any more.
      const DWORD reason = GetLastError();
      if (reason != ERROR_HANDLE_EOF && reason != ERROR_BROKEN_PIPE) hasFailed_ = true;
      break;
    }
    if (count == 0) break;
    done += count;
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
    DWORD count = 0;
    if (WriteFile(asHandle(handle_), static_cast<const char*>(bytes) + done,
                  static_cast<DWORD>(std::min(size - done, largestTransfer)), &count,
                  nullptr) == 0 ||
        count == 0)
      return false;
    done += count;
  }
  return true;
}

bool binaryFile::seek(std::uint64_t position) {
  LARGE_INTEGER wanted;
  wanted.QuadPart = static_cast<LONGLONG>(position);
  if (!isOpen() || wanted.QuadPart < 0) return false;
  if (SetFilePointerEx(asHandle(handle_), wanted, nullptr, FILE_BEGIN) != 0) return true;
  hasFailed_ = true;
  return false;
}

std::uint64_t binaryFile::size() const {
  LARGE_INTEGER size;
  if (!isOpen() || GetFileType(asHandle(handle_)) != FILE_TYPE_DISK) return 0;
  if (GetFileSizeEx(asHandle(handle_), &size) == 0) {
    hasFailed_ = true;
    return 0;
  }
  return static_cast<std::uint64_t>(size.QuadPart);
}

bool binaryFile::close() {
  if (!isOpen()) return true;
  return CloseHandle(asHandle(std::exchange(handle_, closedHandle))) != 0;
}

}  // namespace platform

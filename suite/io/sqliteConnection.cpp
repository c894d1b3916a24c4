#include "suite/io/sqliteConnection.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <new>
#include <utility>

#include "platform/caseFolding.h"
#include "platform/codePages.h"
#include "platform/files.h"

namespace suiteIo {
namespace {

constexpr int busyMilliseconds = 5000;
constexpr const wchar_t* memoryDatabase = L":memory:";

#ifdef _WIN32
constexpr const char* systemWithoutLocks = "win32-none";
#else
constexpr const char* systemWithoutLocks = "unix-none";
#endif

std::wstring trimmedKey(std::wstring_view key) {
  const std::size_t first = key.find_first_not_of(L" \t");
  if (first == std::wstring_view::npos) return {};
  return std::wstring(key.substr(first, key.find_last_not_of(L" \t") - first + 1));
}

// WHY an URI: a bare path may begin with "file:" and be taken for one, and only an URI has parameters.
std::string uriOf(const std::wstring& path, std::string_view parameters) {
  constexpr std::string_view plain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/:";
  std::string bytes = platform::utf8Path(path);
  const bool hasDrive = platform::isDrivePath(path);
  std::string uri = hasDrive ? "file:///" : bytes.substr(0, 2) == "//" ? "file://" : "file:";
  for (const char byte : bytes) {
    if (plain.find(byte) != std::string_view::npos) {
      uri += byte;
      continue;
    }
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    uri += {'%', digits[value >> 4], digits[value & 15]};
  }
  return uri.append(parameters);
}

// FORMAT: the first page of a database begins with these numbers, highest byte first.
struct databaseHeader {
  std::array<unsigned char, 100> bytes = {};

  std::uint32_t number(std::size_t at, std::size_t size = 4) const {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size; ++i) value = value << 8 | bytes[at + i];
    return value;
  }
  bool isOfDatabase() const {
    constexpr std::string_view magic{"SQLite format 3\0", 16};
    return std::equal(magic.begin(), magic.end(), bytes.begin());
  }
  // The version that readers must know; 2 is write-ahead mode.
  bool isWriteAhead() const { return isOfDatabase() && bytes[19] == 2; }
  std::uint64_t pageSize() const {
    const std::uint64_t size = number(16, 2);
    return size == 1 ? 65536 : size;
  }
  // What the file must have at least; 0 when an old engine has not kept the number up.
  std::uint64_t leastSize() const { return number(24) == number(92) ? number(28) * pageSize() : 0; }
};

// A database's file and what stands beside it, seen with the engine's eyes.
//
// WHY not files of our own: on POSIX systems a program that closes a file loses all its locks on it, those
// of the engine's other connections included. The engine knows that of its own files. It also knows where
// a link leads to, and what stands beside the file there.
class databaseFile {
 public:
  // @param connection  has the database open for reading, and no statements
  explicit databaseFile(sqlite3* connection) : name_(sqlite3_db_filename(connection, "main")) {
    sqlite3_file_control(connection, "main", SQLITE_FCNTL_FILE_POINTER, &file_);
    sqlite3_file_control(connection, "main", SQLITE_FCNTL_VFS_POINTER, &system_);
    sqlite3_int64 size = 0;
    file_->pMethods->xFileSize(file_, &size);
    size_ = static_cast<std::uint64_t>(size);
    file_->pMethods->xRead(file_, header_.bytes.data(), static_cast<int>(header_.bytes.size()), 0);
  }

  bool isEmpty() const { return size_ == 0; }
  bool isWriteAhead() const { return header_.isWriteAhead(); }
  bool hasLog() const { return has(sqlite3_filename_wal(name_), SQLITE_ACCESS_EXISTS); }
  // The log may be empty: that of a writer who has just begun, or has brought it in.
  bool hasLogAndIndex() const {
    return has((std::string(name_) + "-shm").c_str(), SQLITE_ACCESS_EXISTS) &&
           (hasLog() || has(sqlite3_filename_wal(name_), SQLITE_ACCESS_READWRITE));
  }

  // The engine fills a last page that is cut with zeros, and would give values that nobody has stored. Whole
  // pages may be missing while the file is being written.
  bool isCut() const {
    if (!header_.isOfDatabase() || header_.pageSize() == 0) return false;
    if (size_ % header_.pageSize() != 0 &&
        (size_ < header_.leastSize() || header_.leastSize() == 0))
      return true;
    return size_ < header_.leastSize() && !hasLog() &&
           !has(sqlite3_filename_journal(name_), SQLITE_ACCESS_EXISTS);
  }

  // True when somebody keeps all others out for as long as statements wait. Otherwise the connection holds a
  // reader's lock from here on.
  bool isLocked() {
    constexpr int stepMilliseconds = 50;
    for (int waited = 0; waited < busyMilliseconds; waited += stepMilliseconds) {
      if (file_->pMethods->xLock(file_, SQLITE_LOCK_SHARED) != SQLITE_BUSY) return false;
      file_->pMethods->xUnlock(file_, SQLITE_LOCK_NONE);
      sqlite3_sleep(stepMilliseconds);
    }
    return true;
  }

 private:
  // SQLITE_ACCESS_EXISTS takes an empty file for none, SQLITE_ACCESS_READWRITE does not.
  bool has(const char* name, int access) const {
    int answer = 0;
    return system_->xAccess(system_, name, access, &answer) == SQLITE_OK && answer != 0;
  }

  const char* name_;
  sqlite3_file* file_ = nullptr;
  sqlite3_vfs* system_ = nullptr;
  databaseHeader header_;
  std::uint64_t size_ = 0;
};

enum class readingMode { readOnly, withOwnIndex, unchanging, refused };

readingMode modeFor(databaseFile& file) {
  if (file.isEmpty()) return readingMode::unchanging;
  if (file.isCut()) return readingMode::refused;
  if ((file.hasLog() || file.isWriteAhead()) && file.hasLogAndIndex()) return readingMode::readOnly;
  // Whoever keeps all others out keeps the index to himself, too.
  if (file.hasLog()) return file.isLocked() ? readingMode::refused : readingMode::withOwnIndex;
  if (!file.isWriteAhead()) return readingMode::readOnly;
  return file.isLocked() ? readingMode::refused : readingMode::unchanging;
}

sqliteConnection openUri(const std::string& uri, int flags, const char* system) {
  sqlite3* opened = nullptr;
  const int result =
      sqlite3_open_v2(uri.c_str(), &opened, flags | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX, system);
  sqliteConnection connection(opened);  // a failed call leaves one to close too
  if (result == SQLITE_NOMEM) throw std::bad_alloc();
  if (result != SQLITE_OK) return nullptr;
  sqlite3_busy_timeout(opened, busyMilliseconds);
  return connection;
}

bool canBeDatabase(const std::wstring& path, bool creating) {
  if (path.empty()) return false;
  if (!platform::fileExists(path)) return creating;
  return !platform::folderExists(path) && !platform::isPipeOrDevice(path);
}

}  // namespace

std::optional<std::wstring> databaseOfConnectionString(std::wstring_view text) {
  while (true) {
    const std::size_t equals = text.find_first_of(L"=;\\/:");
    if (equals == std::wstring_view::npos || text[equals] != L'=') return std::nullopt;
    const std::wstring key = platform::lowerCase(trimmedKey(text.substr(0, equals)));
    if (key == L"database") {
      text.remove_prefix(equals + 1);
      return std::wstring(text.substr(0, text.rfind(L';')));
    }
    const std::size_t end = text.find(L';', equals);
    if (end == std::wstring_view::npos) return std::nullopt;
    text.remove_prefix(end + 1);
  }
}

sqliteConnection openConnection(const std::wstring& path, connectionKind kind) {
  const bool creating = kind == connectionKind::creating;
  const std::wstring name = path.substr(0, path.find(L'\0'));
  if (creating && name == memoryDatabase)
    return openUri("file::memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
  if (!canBeDatabase(name, creating)) return nullptr;
  return openUri(uriOf(name, ""), SQLITE_OPEN_READWRITE | (creating ? SQLITE_OPEN_CREATE : 0),
                 nullptr);
}

bool readingConnection::open(const std::wstring& path) {
  close();
  const std::wstring name = path.substr(0, path.find(L'\0'));
  if (!canBeDatabase(name, false)) return false;
  connection_ = openUri(uriOf(name, ""), SQLITE_OPEN_READONLY, nullptr);
  if (!connection_) return false;
  databaseFile file(connection_.get());
  const readingMode mode = modeFor(file);
  const bool hasOwnIndex = mode == readingMode::withOwnIndex;
  if (mode == readingMode::unchanging) {
    guard_ = std::exchange(connection_,
                           openUri(uriOf(name, "?immutable=1"), SQLITE_OPEN_READONLY, nullptr));
  } else if (hasOwnIndex) {
    guard_ = std::exchange(connection_,
                           openUri(uriOf(name, ""), SQLITE_OPEN_READONLY, systemWithoutLocks));
  }
  if (mode == readingMode::refused || !connection_) {
    close();
    return false;
  }
  // The last to close a log would bring it into the database.
  sqlite3_db_config(get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  if (hasOwnIndex) sqlite3_exec(get(), "PRAGMA locking_mode=EXCLUSIVE", nullptr, nullptr, nullptr);
  return true;
}

void readingConnection::close() {
  connection_.reset();
  guard_.reset();
}

bool readingConnection::isDisturbed() const {
  if (!guard_) return false;
  const databaseFile file(guard_.get());
  return !file.isEmpty() && file.hasLogAndIndex();
}

std::string utf8Of(std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  const int needed =
      platform::encodeCodePage(platform::utf8CodePage, text.data(), length, nullptr, 0);
  std::string bytes(static_cast<std::size_t>(needed), '\0');
  if (needed > 0)
    platform::encodeCodePage(platform::utf8CodePage, text.data(), length, bytes.data(), needed);
  return bytes;
}

}  // namespace suiteIo

#include "suite/io/sqliteConnection.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <new>

#include "platform/caseFolding.h"
#include "platform/codePages.h"
#include "platform/files.h"

namespace suiteIo {
namespace {

using namespace std::string_view_literals;

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

enum class readingMode { readOnly, withOwnIndex, unchanging, refused };

// FORMAT: the first page of a database begins with these numbers, highest byte first.
struct databaseHeader {
  std::array<unsigned char, 100> bytes = {};

  std::uint32_t number(std::size_t at) const {
    std::uint32_t value = 0;
    for (std::size_t i = at; i < at + 4; ++i) value = value << 8 | bytes[i];
    return value;
  }
  // The version that readers must know; 2 is write-ahead mode.
  bool isWriteAhead() const { return bytes[19] == 2; }
  bool isDatabase() const {
    constexpr std::string_view mark = "SQLite format 3\0"sv;
    return std::equal(mark.begin(), mark.end(), bytes.begin());
  }
  // What the file must have at least; 0 when an old engine has not kept the number up.
  std::uint64_t leastSize() const {
    const std::uint64_t pageSize = number(16) >> 16;
    const bool isKeptUp = isDatabase() && number(24) == number(92);
    return isKeptUp ? number(28) * (pageSize == 1 ? 65536 : pageSize) : 0;
  }
};

// True for a file that others may have open and one that holds anything; the engine too takes an empty one
// for none.
bool hasContent(const std::wstring& path) {
  if (!platform::fileExists(path)) return false;
  platform::binaryFile file;
  return !file.openForReading(path) || file.size() != 0;
}

readingMode modeFor(const std::wstring& path) {
  databaseHeader header;
  platform::binaryFile file;
  const bool isKnown = file.openForReading(path);
  if (isKnown && file.read(header.bytes.data(), header.bytes.size()) == 0)
    return readingMode::unchanging;
  if (hasContent(path + L"-wal"))
    return platform::fileExists(path + L"-shm") ? readingMode::readOnly : readingMode::withOwnIndex;
  // The engine fills a last page that is cut with zeros, and would give values that nobody has stored. While
  // a journal stands there, the file is being written.
  if (isKnown && file.size() < header.leastSize() && !hasContent(path + L"-journal"))
    return readingMode::refused;
  return isKnown && header.isWriteAhead() ? readingMode::unchanging : readingMode::readOnly;
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

sqliteConnection openForReading(const std::wstring& path) {
  const readingMode mode = modeFor(path);
  if (mode == readingMode::refused) return nullptr;
  const bool ownIndex = mode == readingMode::withOwnIndex;
  const char* const parameters = mode == readingMode::unchanging ? "?immutable=1" : "";
  sqliteConnection connection = openUri(uriOf(path, parameters), SQLITE_OPEN_READONLY,
                                        ownIndex ? systemWithoutLocks : nullptr);
  if (!connection) return nullptr;
  // The last to close a log would bring it into the database.
  sqlite3_db_config(connection.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  if (ownIndex)
    sqlite3_exec(connection.get(), "PRAGMA locking_mode=EXCLUSIVE", nullptr, nullptr, nullptr);
  return connection;
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
  if (name.empty()) return nullptr;
  if (creating && name == memoryDatabase)
    return openUri("file::memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
  const bool exists = platform::fileExists(name);
  if (exists ? platform::folderExists(name) || platform::isPipeOrDevice(name) : !creating)
    return nullptr;
  if (kind == connectionKind::reading) return openForReading(name);
  return openUri(uriOf(name, ""), SQLITE_OPEN_READWRITE | (creating ? SQLITE_OPEN_CREATE : 0),
                 nullptr);
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

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

enum class readingMode { readOnly, withOwnIndex, unchanging };

// The size of a file; nothing when it cannot be told, since others may have it open.
std::optional<std::uint64_t> sizeOf(const std::wstring& path) {
  platform::binaryFile file;
  if (!file.openForReading(path)) return std::nullopt;
  return file.size();
}

readingMode modeFor(const std::wstring& path) {
  // FORMAT: byte 19 of the header is the version that readers must know; 2 is write-ahead mode.
  std::array<unsigned char, 20> header = {};
  platform::binaryFile file;
  const bool isKnown = file.openForReading(path);
  if (isKnown && file.read(header.data(), header.size()) == 0) return readingMode::unchanging;
  // The engine too takes an empty log for none.
  const std::wstring log = path + L"-wal";
  if (platform::fileExists(log) && sizeOf(log) != 0)
    return platform::fileExists(path + L"-shm") ? readingMode::readOnly : readingMode::withOwnIndex;
  return isKnown && header[19] == 2 ? readingMode::unchanging : readingMode::readOnly;
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

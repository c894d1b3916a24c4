#include "suite/io/odbcSources.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

namespace suiteIo {
namespace {

// SQLDataSources and SQLDrivers are alike.
using entryLister = SQLRETURN(SQL_API*)(SQLHENV, SQLUSMALLINT, SQLCHAR*, SQLSMALLINT, SQLSMALLINT*,
                                        SQLCHAR*, SQLSMALLINT, SQLSMALLINT*);

struct listedEntry {
  std::string name;
  std::string rest;  // NUL characters included
};

std::vector<listedEntry> listEntries(SQLHENV environment, entryLister list) {
  std::vector<listedEntry> entries;
  if (environment == nullptr) return entries;
  SQLUSMALLINT direction = SQL_FETCH_FIRST;
  while (true) {
    std::array<SQLCHAR, 1024> name = {};
    std::array<SQLCHAR, 4096> rest = {};
    SQLSMALLINT nameLength = 0;
    SQLSMALLINT restLength = 0;
    const SQLRETURN result =
        list(environment, direction, name.data(), static_cast<SQLSMALLINT>(name.size() - 1),
             &nameLength, rest.data(), static_cast<SQLSMALLINT>(rest.size() - 1), &restLength);
    if (!SQL_SUCCEEDED(result)) return entries;
    const auto restSize =
        static_cast<std::size_t>(std::clamp<int>(restLength, 0, static_cast<int>(rest.size()) - 1));
    listedEntry entry;
    entry.name = static_cast<const char*>(static_cast<const void*>(name.data()));
    entry.rest.assign(static_cast<const char*>(static_cast<const void*>(rest.data())), restSize);
    entries.push_back(std::move(entry));
    direction = SQL_FETCH_NEXT;
  }
}

std::string lowered(std::string_view text) {
  std::string result(text);
  for (char& c : result)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return result;
}

// The value of a part `key=value` with this key, as it is written; nothing for every other part.
std::optional<std::string> valueOf(std::string_view part, std::string_view key) {
  const std::size_t equals = part.find('=');
  if (equals == std::string_view::npos || lowered(part.substr(0, equals)) != key)
    return std::nullopt;
  return std::string(part.substr(equals + 1));
}

std::string valueOf(const std::vector<std::string>& parts, std::string_view key) {
  for (const std::string& part : parts)
    if (const auto value = valueOf(part, key)) return *value;
  return {};
}

std::string withoutBraces(std::string text) {
  if (text.size() >= 2 && text.front() == '{' && text.back() == '}')
    return text.substr(1, text.size() - 2);
  return text;
}

const odbcEntry* find(const std::vector<odbcEntry>& entries, std::string_view name) {
  const auto found = std::find_if(entries.begin(), entries.end(), [&](const odbcEntry& entry) {
    return lowered(entry.name) == lowered(name);
  });
  return found == entries.end() ? nullptr : &*found;
}

// The file name of the library of a driver that is named, or given by its library.
std::string libraryName(const std::string& driver, const std::vector<odbcEntry>& drivers) {
  const odbcEntry* const entry = find(drivers, driver);
  const std::string library = lowered(entry == nullptr ? driver : entry->driverFile);
  return library.substr(library.find_last_of("/\\") + 1);
}

void turnSlashes(std::vector<std::string>& parts) {
  for (std::string& part : parts)
    if (valueOf(part, "dbq") || valueOf(part, "defaultdir"))
      std::replace(part.begin(), part.end(), '\\', '/');
}

// mdbtools passes over blanks before a value.
void guardBlank(std::string& part, std::string_view folder) {
  const auto file = valueOf(part, "dbq");
  if (file && !file->empty() && file->front() == ' ' && folder.empty())
    part.insert(part.size() - file->size(), "./");
}

}  // namespace

std::vector<odbcEntry> listDataSources(SQLHENV environment) {
  std::vector<odbcEntry> sources;
  for (const listedEntry& entry : listEntries(environment, SQLDataSources))
    sources.push_back({entry.name, entry.rest.c_str()});
  return sources;
}

std::vector<odbcEntry> listDrivers(SQLHENV environment) {
  std::vector<odbcEntry> drivers;
  for (const listedEntry& entry : listEntries(environment, SQLDrivers)) {
    odbcEntry driver{entry.name, {}};
    for (std::size_t at = 0; at < entry.rest.size(); at += std::strlen(&entry.rest[at]) + 1)
      if (const auto file = valueOf(&entry.rest[at], "driver")) driver.driverFile = *file;
    drivers.push_back(std::move(driver));
  }
  return drivers;
}

std::vector<std::string> partsOf(std::string_view connectionString) {
  std::vector<std::string> parts;
  while (!connectionString.empty()) {
    const std::size_t equals = connectionString.find('=');
    const bool braced = equals < connectionString.size() - 1 &&
                        equals < connectionString.find(';') && connectionString[equals + 1] == '{';
    const std::size_t closing = braced ? connectionString.find('}', equals) : 0;
    const std::size_t end =
        connectionString.find(';', closing == std::string_view::npos ? equals : closing);
    if (end != 0) parts.emplace_back(connectionString.substr(0, end));
    if (end == std::string_view::npos) break;
    connectionString.remove_prefix(end + 1);
  }
  return parts;
}

std::string fittedConnectionString(std::string_view text, const std::vector<odbcEntry>& sources,
                                   const std::vector<odbcEntry>& drivers) {
  std::vector<std::string> parts = partsOf(text);
  if (driversSpeakUtf8) turnSlashes(parts);
  const std::string sourceName = withoutBraces(valueOf(parts, "dsn"));
  const odbcEntry* const source = sourceName.empty() ? nullptr : find(sources, sourceName);
  const std::string driver =
      source != nullptr ? source->driverFile : withoutBraces(valueOf(parts, "driver"));
  const std::string library = libraryName(driver, drivers);
  if (library.find("mdbodbc") != std::string::npos) {
    const std::string folder = valueOf(parts, "defaultdir");
    for (std::string& part : parts) guardBlank(part, folder);
    const std::string file = valueOf(parts, "dbq");
    if (source != nullptr && !file.empty())
      return "Driver={" + driver + "};DBQ=" + folder + file + ";";
  }
  std::string fitted;
  for (const std::string& part : parts) fitted += part + ';';
  if (library.find("sqlite") != std::string::npos && valueOf(parts, "nocreat").empty())
    fitted += "NoCreat=1;";
  return fitted;
}

}  // namespace suiteIo

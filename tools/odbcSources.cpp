#include "tools/odbcSources.h"

#include <fmt/core.h>

#include <algorithm>
#include <memory>
#include <optional>

#include "platform/caseFolding.h"
#include "platform/codePages.h"
#include "platform/files.h"
#include "platform/vok_io.h"
#include "tools/formats.h"
#include "tools/text.h"

namespace vokTable {
namespace {

constexpr std::string_view accessDriver = "Microsoft Access Driver (*.mdb, *.accdb)";

struct listCloser {
  void operator()(vo_strings* list) const { vo_strings_destroy(list); }
};

// Narrow text of the library is in the system's code page; the tool's is UTF-8.
std::string fromSystem(const char* text) {
  const int length = static_cast<int>(std::string_view(text).size());
  if (length == 0) return {};
  const int needed = platform::decodeCodePage(platform::systemCodePage, text, length, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(std::max(needed, 0)), L'\0');
  platform::decodeCodePage(platform::systemCodePage, text, length, wide.data(), needed);
  return toUtf8(wide);
}

// The text is not empty.
std::string toSystem(const std::string& utf8) {
  const std::wstring wide = toWide(utf8);
  const int length = static_cast<int>(wide.size());
  const int needed =
      platform::encodeCodePage(platform::systemCodePage, wide.data(), length, nullptr, 0);
  std::string bytes(static_cast<std::size_t>(std::max(needed, 0)), '\0');
  platform::encodeCodePage(platform::systemCodePage, wide.data(), length, bytes.data(), needed);
  return bytes;
}

std::vector<std::string> listOf(void (*fill)(vo_strings*)) {
  const std::unique_ptr<vo_strings, listCloser> list(vo_strings_create());
  fill(list.get());
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < vo_strings_get_size(list.get()); ++i)
    texts.push_back(fromSystem(vo_strings_get_str(list.get(), i)));
  return texts;
}

// The word that a data source's name has to hold; empty: every one will do.
std::string_view wordOf(odbcKind kind) {
  if (kind == odbcKind::access) return "access";
  return kind == odbcKind::excel ? "excel" : "";
}

std::string connectionString(const std::wstring& path, odbcKind kind, const std::string& name) {
  if (kind == odbcKind::drillHoles) return fmt::format("Driver={{{}}};DBQ={};", name, toUtf8(path));
  const std::size_t file = path.find_last_of(L"/\\") + 1;  // 0 when there is neither
  return fmt::format("DSN={};DBQ={};DefaultDir={};", name, toUtf8(path.substr(file)),
                     toUtf8(path.substr(0, file)));
}

// Why the reader does not hand a file to any driver; empty when it does.
std::string refusalOf(const std::wstring& path) {
  const std::string name = toUtf8(path);
  if (path.find(L';') != std::wstring::npos)
    return "a path with a semicolon cannot be told to a driver; rename the file or the folder";
  if (fromSystem(toSystem(name).c_str()) != name)
    return fmt::format(
        "the path holds characters that the system's code page {} lacks; rename the file or the "
        "folder",
        platform::resolveCodePage(platform::systemCodePage));
  if (platform::isPipeOrDevice(path)) return "drivers read files, not pipes and devices";
  return {};
}

odbcAttempt attempt(const std::wstring& path, odbcKind kind, const std::string& name) {
  struct closer {
    void operator()(Ivo_odbc_connect* connection) const { vo_odbc_connect_destroy(connection); }
  };
  const std::unique_ptr<Ivo_odbc_connect, closer> connection(vo_odbc_connect_create());
  odbcAttempt made{name, false, refusalOf(path)};
  if (!made.message.empty()) return made;
  const std::string text = toSystem(connectionString(path, kind, name));
  made.connected = vo_odbc_connect_open_driver(connection.get(), nullptr, text.c_str());
  made.message = fromSystem(vo_odbc_connect_get_message(connection.get()));
  std::replace(made.message.begin(), made.message.end(), '\n', ' ');
  if (!made.connected && made.message.empty())
    made.message = "the driver refuses the file and gives no reason";
  return made;
}

bool isWindows(const odbcMachine& machine) { return machine.manager.starts_with("odbc32"); }

// What driver managers say when the driver itself cannot be used.
bool isDriverMissing(const odbcAttempt& made) {
  for (const char* const sign : {"Can't open lib", "(IM002)", "(IM003)", "(IM004)"})
    if (made.message.find(sign) != std::string::npos) return true;
  return false;
}

}  // namespace

odbcKind odbcKindOf(const tableRW::tableReaderOptions& options) {
  const std::wstring& path = options.path;
  const std::size_t dot = path.rfind(L'.');
  const std::wstring extension = dot == std::wstring::npos ? L"" : path.substr(dot);
  const std::wstring lowered = platform::lowerCase(extension);
  const bool automatic = options.file_type == tableRW::fileTypeAuto;
  if (options.file_type == tableRW::fileTypeMicromineDhdb || (automatic && lowered == L".dhdb"))
    return odbcKind::drillHoles;
  const bool isSheet = lowered == L".xls" || lowered == L".xlsx";
  const bool chosen = automatic && (lowered == L".mdb" || lowered == L".accdb" ||
                                    (isSheet && !platform::fileExists(converterPath())));
  if (!chosen && options.file_type != tableRW::fileTypeXlsOdbc &&
      options.file_type != tableRW::fileTypeAccessOdbc)
    return odbcKind::none;
  // Letter case counts here, as the reader has it.
  if (extension == L".mdb" || extension == L".accdb") return odbcKind::access;
  return extension == L".xls" || extension == L".xlsx" ? odbcKind::excel : odbcKind::any;
}

odbcMachine lookAtMachine() {
  const std::vector<std::string> manager = listOf(vo_odbc_get_manager);
  return {manager.empty() ? std::string() : manager.front(), listOf(vo_odbc_get_drivers),
          listOf(vo_odbc_get_data_sources)};
}

std::vector<std::string> waysFor(odbcKind kind, const odbcMachine& machine) {
  std::vector<std::string> ways;
  if (kind == odbcKind::drillHoles) {
    if (std::find(machine.drivers.begin(), machine.drivers.end(), accessDriver) !=
        machine.drivers.end())
      ways.emplace_back(accessDriver);
    return ways;
  }
  for (const std::string& name : machine.dataSources)
    if (toUtf8(platform::lowerCase(toWide(name))).find(wordOf(kind)) != std::string::npos)
      ways.push_back(name);
  return ways;
}

std::vector<odbcAttempt> tryToReach(const tableRW::tableReaderOptions& options, odbcKind kind,
                                    const odbcMachine& machine) {
  std::vector<odbcAttempt> attempts;
  for (const std::string& name : waysFor(kind, machine)) {
    attempts.push_back(attempt(options.path, kind, name));
    if (attempts.back().connected) break;
  }
  return attempts;
}

std::string needsOf(odbcKind kind, const odbcMachine& machine) {
  const std::string source =
      kind == odbcKind::drillHoles
          ? fmt::format("a driver named \"{}\"", accessDriver)
          : fmt::format("a data source whose name holds \"{}\"", wordOf(kind));
  if (isWindows(machine))
    return fmt::format(
        "install the 64-bit \"Microsoft Access Database Engine 2016 Redistributable\" from "
        "Microsoft; "
        "{} is needed (ODBC Data Sources, 64-bit)",
        source);
  if (kind == odbcKind::excel)
    return fmt::format(
        "install the converter vok_xls2csv.exe beside vok_table, or an ODBC driver for workbooks; "
        "{} "
        "in odbc.ini is needed then (docs/odbc.md)",
        source);
  // The package enters its driver under this name.
  const bool isInstalled = std::find(machine.drivers.begin(), machine.drivers.end(), "MDBTools") !=
                           machine.drivers.end();
  return fmt::format("{}{} is needed, an entry in {} that names libmdbodbc.so (docs/odbc.md)",
                     isInstalled ? "" : "install the package odbc-mdbtools; ", source,
                     kind == odbcKind::drillHoles ? "odbcinst.ini" : "odbc.ini");
}

exitCode checkOdbcSource(const tableRW::tableReaderOptions& options,
                         const messageWriter& messages) {
  const odbcKind kind = odbcKindOf(options);
  if (kind == odbcKind::none) return exitCode::clean;
  const std::string file = toUtf8(options.path);
  if (kind != odbcKind::drillHoles && options.path.find(L'.') == std::wstring::npos) {
    messages.error(fmt::format(
        "cannot open {}: without an extension its kind cannot be told; rename it", file));
    return exitCode::cannotOpen;
  }
  const odbcMachine machine = lookAtMachine();
  const std::vector<odbcAttempt> attempts = tryToReach(options, kind, machine);
  if (!attempts.empty() && attempts.back().connected) return exitCode::clean;
  const bool missing = std::all_of(attempts.begin(), attempts.end(), isDriverMissing);
  messages.error(fmt::format(
      "cannot open {}: {}", file,
      attempts.empty() ? "this machine has no ODBC driver for it" : "ODBC does not reach it"));
  for (const odbcAttempt& made : attempts)
    messages.detail(fmt::format("{}: {}", made.name, made.message));
  if (missing) messages.hint(needsOf(kind, machine));
  messages.hint("vok_table doctor shows what this machine has");
  return missing ? exitCode::notAvailable : exitCode::cannotOpen;
}

}  // namespace vokTable

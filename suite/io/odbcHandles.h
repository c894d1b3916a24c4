// Owners of ODBC handles and what the driver manager says: the ground that vok_io's ODBC operations stand
// on.
//
// The narrow functions are used. Windows' own drivers take narrow text in the system's code page; drivers of
// unixODBC take UTF-8 whatever the locale says, so on POSIX text passes through two conversions, which cost
// nothing where the system's page is UTF-8.
//
// Nothing throws but allocation failure. One object, one thread at a time.
#ifndef VOK_SUITE_IO_ODBCHANDLES_H
#define VOK_SUITE_IO_ODBCHANDLES_H

#ifdef _WIN32
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>

#include <memory>
#include <string>
#include <string_view>

namespace suiteIo {

#ifdef _WIN32
inline constexpr bool driversSpeakUtf8 = false;
#else
inline constexpr bool driversSpeakUtf8 = true;
#endif

template <SQLSMALLINT kind>
struct handleFreer {
  void operator()(SQLHANDLE handle) const { SQLFreeHandle(kind, handle); }
};
/// One handle, freed when its owner goes.
template <SQLSMALLINT kind>
using odbcHandle = std::unique_ptr<void, handleFreer<kind>>;
using odbcEnvironment = odbcHandle<SQL_HANDLE_ENV>;

/// A handle of its kind under its parent; null when it is refused.
template <SQLSMALLINT kind>
odbcHandle<kind> allocate(SQLHANDLE parent) {
  SQLHANDLE handle = nullptr;
  const SQLRETURN result = SQLAllocHandle(kind, parent, &handle);
  return odbcHandle<kind>(SQL_SUCCEEDED(result) ? handle : nullptr);
}

/// An environment that works by version 3 of ODBC; null when there is none to be had.
odbcEnvironment makeEnvironment();

/// What is known of the last failure on a handle, one line a record; empty when nothing is.
std::string diagnosticsOf(SQLSMALLINT kind, SQLHANDLE handle);

/// Text of the system's code page as a driver takes it, and back.
std::string toDriver(std::string_view text);
std::string fromDriver(std::string_view text);

/// A text's bytes for a function that takes them as unsigned, and does not change them.
SQLCHAR* bytesOf(const std::string& text);

}  // namespace suiteIo

#endif

// Data sources and drivers of the machine, and connection strings made to fit the driver that they lead to.
//
//     driver       what it does                               what is done about it
//     mdbtools     ignores DBQ= beside DSN= and opens the     DSN=x;DBQ=f;DefaultDir=d; becomes
//                  data source's own file, with success       Driver={driver of x};DBQ=df;
//     mdbtools     passes over blanks before a file's name    ./ is put before them
//     sqliteodbc   creates a missing database                 NoCreat=1; is added
//     all, POSIX   know `/` alone                             `\` in DBQ= and DefaultDir= becomes `/`
//
// Two more ways of mdbtools are seen to where tables are listed: see odbc.cpp. A driver is known by the file name
// of its library. Text here is the drivers'. No state; any thread.
#ifndef VOK_SUITE_IO_ODBCSOURCES_H
#define VOK_SUITE_IO_ODBCSOURCES_H

#include <string>
#include <string_view>
#include <vector>

#include "suite/io/odbcHandles.h"

namespace suiteIo {

struct odbcEntry {
  std::string name;
  std::string driverFile;  ///< of a data source: its driver's name or file
};

/// In the driver manager's order; without an environment there are none.
std::vector<odbcEntry> listDataSources(SQLHENV environment);
std::vector<odbcEntry> listDrivers(SQLHENV environment);

/// The parts of a connection string, between the semicolons that are not inside braces.
std::vector<std::string> partsOf(std::string_view connectionString);

/// The connection string as the driver behind it needs it.
/// @param sources, drivers  what the machine has
std::string fittedConnectionString(std::string_view text, const std::vector<odbcEntry>& sources,
                                   const std::vector<odbcEntry>& drivers);

}  // namespace suiteIo

#endif

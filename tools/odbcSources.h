// Sources that are read through ODBC: what they need of the machine, and why it does not work.
//
// The library has no messages, so the tool looks for what a reader will look for and makes the same attempts
// itself, where the driver's own words can be had. It opens connections and nothing else.
#ifndef VOK_TOOLS_ODBCSOURCES_H
#define VOK_TOOLS_ODBCSOURCES_H

#include <string>
#include <vector>

#include "table_rw/core/tableReaderOptions.h"
#include "tools/exitCodes.h"
#include "tools/messages.h"

namespace vokTable {

/// What kinds of source ODBC stands for.
enum class odbcKind { none, drillHoles, access, excel, any };

/// The kind as the reader of these options takes it; `none` for sources that are read otherwise.
odbcKind odbcKindOf(const tableRW::tableReaderOptions& options);

/// The machine's driver manager, drivers and data sources, by name.
struct odbcMachine {
  std::string manager;  // empty: it does not work
  std::vector<std::string> drivers;
  std::vector<std::string> dataSources;
};
odbcMachine lookAtMachine();

/// One way to reach a file, and what came of it.
struct odbcAttempt {
  std::string name;  // of the driver or data source
  bool connected = false;
  std::string message;  // the driver's own words
};

/// The ways in which a reader would try to reach the file, up to the first that works.
std::vector<odbcAttempt> tryToReach(const tableRW::tableReaderOptions& options, odbcKind kind,
                                    const odbcMachine& machine);

/// The drivers or data sources that a kind can be read with; none: something must be installed.
std::vector<std::string> waysFor(odbcKind kind, const odbcMachine& machine);

/// What a kind needs, and where it comes from, for this machine.
std::string needsOf(odbcKind kind, const odbcMachine& machine);

/// Explains why the file cannot be reached; says nothing when it can be, or is read otherwise.
/// @return notAvailable when a driver or a data source is missing, cannotOpen when they refuse the file
exitCode checkOdbcSource(const tableRW::tableReaderOptions& options, const messageWriter& messages);

}  // namespace vokTable

#endif

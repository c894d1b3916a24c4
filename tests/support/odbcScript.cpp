#include "tests/support/odbcScript.h"

#include <algorithm>
#include <sstream>
#include <utility>
#include <vector>

#include "platform/environment.h"
#include "platform/vok_io.h"
#include "tests/support/environmentSetter.h"
#include "tests/support/tableText.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"

namespace testSupport {
namespace {

// The driver manager keeps what it has read, so this holds for the whole process.
void useOwnConfiguration() {
  const std::wstring folder = wide(VOK_ODBC_TESTS);
  static const environmentSetter system(L"ODBCSYSINI", folder);
  static const environmentSetter user(L"ODBCINI", folder + L"/odbc.ini");
}

int callsOn(const std::wstring& path, const std::string& call) {
  std::istringstream log(readFile(path + L".log").value_or(""));
  int count = 0;
  for (std::string line; std::getline(log, line);) count += line == call ? 1 : 0;
  return count;
}

}  // namespace

bool hasOdbcTestDriver() {
  if (!onWindows) useOwnConfiguration();
  vo_strings* const list = vo_strings_create();
  vo_odbc_get_data_sources(list);
  bool found = false;
  for (std::size_t i = 0; i < vo_strings_get_size(list); ++i)
    found = found || std::string_view(vo_strings_get_str(list, i)) == "MS Access Tests";
  vo_strings_destroy(list);
  return found;
}

odbcScript::odbcScript(std::wstring path, std::string_view lines) : path_(std::move(path)) {
  writeFile(path_, lines);
  writeFile(path_ + L".log", "");
}

int odbcScript::calls(const std::string& call) const { return callsOn(path_, call); }

std::string odbcLeaks(const std::wstring& path) {
  std::string found;
  const int connections = callsOn(path, "connect") - callsOn(path, "disconnect");
  const int statements = callsOn(path, "statement") - callsOn(path, "free statement");
  if (connections != 0) found += std::to_string(connections) + " connections ";
  if (statements != 0) found += std::to_string(statements) + " statements";
  return found;
}

}  // namespace testSupport

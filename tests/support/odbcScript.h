// A file that the tests' own ODBC driver takes for a database, and what the driver was asked for: see
// tests/odbc_driver/odbc_test_driver.cpp for the lines.
//
//     const odbcScript file(folder.file(L"t.mdb"), "table\tt\tTABLE\nfields\ta:4\nrow\t1\n");
#ifndef VOK_TESTS_SUPPORT_ODBCSCRIPT_H
#define VOK_TESTS_SUPPORT_ODBCSCRIPT_H

#include <string>
#include <string_view>

namespace testSupport {

/// True when the private configuration of the driver manager with the tests' own driver is in force. Where the
/// environment is the test's to change, it is put in force.
bool hasOdbcTestDriver();

/// Empty when every connection and statement of this file has been closed again, else what has not.
std::string odbcLeaks(const std::wstring& path);

class odbcScript {
 public:
  odbcScript(std::wstring path, std::string_view lines);

  const std::wstring& path() const { return path_; }

  /// How often the driver was called so on this file.
  int calls(const std::string& call) const;
  std::string leaks() const { return odbcLeaks(path_); }

 private:
  std::wstring path_;
};

}  // namespace testSupport

#endif

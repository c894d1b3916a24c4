// Changes the process's environment for a test, and tells what of it the test cannot change.
#ifndef VOK_TESTS_SUPPORT_ENVIRONMENTSETTER_H
#define VOK_TESTS_SUPPORT_ENVIRONMENTSETTER_H

#include <optional>
#include <string>

namespace testSupport {

/// Sets a variable, or takes it out of the environment, until the object's end puts back what was
/// there.
class environmentSetter {
 public:
  environmentSetter(const std::wstring& name, const std::optional<std::wstring>& value);
  environmentSetter(const environmentSetter&) = delete;
  environmentSetter& operator=(const environmentSetter&) = delete;
  ~environmentSetter();

 private:
  std::wstring name_;
  std::optional<std::wstring> before_;
};

/// The system's code page where it is fixed while a process runs (GetACP on Windows); nothing where
/// the locale variables of the environment decide.
std::optional<unsigned> fixedSystemCodePage();

}  // namespace testSupport

#endif

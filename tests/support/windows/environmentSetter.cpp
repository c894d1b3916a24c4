#include "tests/support/environmentSetter.h"

#include <windows.h>

#include "platform/environment.h"

namespace testSupport {
namespace {

void setVariable(const std::wstring& name, const std::optional<std::wstring>& value) {
  SetEnvironmentVariableW(name.c_str(), value ? value->c_str() : nullptr);
}

}  // namespace

environmentSetter::environmentSetter(const std::wstring& name,
                                     const std::optional<std::wstring>& value)
    : name_(name), before_(platform::environmentVariable(name)) {
  setVariable(name_, value);
}

environmentSetter::~environmentSetter() { setVariable(name_, before_); }

std::optional<unsigned> fixedSystemCodePage() { return GetACP(); }

}  // namespace testSupport

#include "tests/support/environmentSetter.h"

#include <stdlib.h>

#include "platform/environment.h"
#include "platform/posix/nativePath.h"

namespace testSupport {
namespace {

void setVariable(const std::wstring& name, const std::optional<std::wstring>& value) {
  const std::string nativeName = platform::nativeBytes(name);
  if (value)
    ::setenv(nativeName.c_str(), platform::nativeBytes(*value).c_str(), 1);
  else
    ::unsetenv(nativeName.c_str());
}

}  // namespace

environmentSetter::environmentSetter(const std::wstring& name,
                                     const std::optional<std::wstring>& value)
    : name_(name), before_(platform::environmentVariable(name)) {
  setVariable(name_, value);
}

environmentSetter::~environmentSetter() { setVariable(name_, before_); }

std::optional<unsigned> fixedSystemCodePage() { return std::nullopt; }

}  // namespace testSupport

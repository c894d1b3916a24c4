#include "tests/support/namelessUser.h"

#include <pwd.h>
#include <unistd.h>

namespace testSupport {

bool asNamelessUser(const std::function<void()>& work) {
  constexpr uid_t nobodys = 54321;
  if (::getpwuid(nobodys) != nullptr || ::seteuid(nobodys) != 0) return false;
  work();
  return ::seteuid(::getuid()) == 0;
}

}  // namespace testSupport

#include "tests/support/namelessUser.h"

namespace testSupport {

bool asNamelessUser(const std::function<void()>&) { return false; }

}  // namespace testSupport

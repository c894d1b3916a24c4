// A user that the user database does not know, as in a container.
#ifndef VOK_TESTS_SUPPORT_NAMELESSUSER_H
#define VOK_TESTS_SUPPORT_NAMELESSUSER_H

#include <functional>

namespace testSupport {

/// Does the work as such a user. @return false, and nothing is done, where the test may not become one
bool asNamelessUser(const std::function<void()>& work);

}  // namespace testSupport

#endif

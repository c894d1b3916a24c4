// A file that its owner can no longer close in order, as where the other end of a network has gone.
#ifndef VOK_TESTS_SUPPORT_LOSTFILE_H
#define VOK_TESTS_SUPPORT_LOSTFILE_H

#include <string>

namespace testSupport {

/// Closes a file that this program holds open, behind its owner's back: closing it again fails.
/// @return false where that cannot be done: on Windows
bool loseFile(const std::wstring& path);

}  // namespace testSupport

#endif

// A named pipe in a folder of the test, where the system has such pipes among its files.
#ifndef VOK_TESTS_SUPPORT_NAMEDPIPE_H
#define VOK_TESTS_SUPPORT_NAMEDPIPE_H

#include <string>

namespace testSupport {

/// @return false where no file can be a pipe
bool makeNamedPipe(const std::wstring& path);

/// Lets a program through that waits for a reader of the pipe, and takes what it writes at once.
/// @return false when there was none
bool releaseWriter(const std::wstring& path);

}  // namespace testSupport

#endif

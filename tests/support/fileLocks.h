// Locks on files, as another program would meet them.
#ifndef VOK_TESTS_SUPPORT_FILELOCKS_H
#define VOK_TESTS_SUPPORT_FILELOCKS_H

#include <string>

namespace testSupport {

/// True while this program holds a lock on some part of the file. On POSIX systems asking ends them: the
/// last thing that a test does. True on Windows, where a lock belongs to the handle that set it.
bool ownsLockOn(const std::wstring& path);

}  // namespace testSupport

#endif

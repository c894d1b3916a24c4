// What the process can learn of its surroundings: variables, user, executable, temporary folder,
// thread and processor clock. What day and time it is: calendar.h.
//
// Nothing is kept between calls. The environment must not be changed by another thread meanwhile.
#ifndef VOK_PLATFORM_ENVIRONMENT_H
#define VOK_PLATFORM_ENVIRONMENT_H

#include <cstdint>
#include <optional>
#include <string>

namespace platform {

/// The value of an environment variable; nothing when it is not set. On POSIX the bytes are UTF-8.
std::optional<std::wstring> environmentVariable(const std::wstring& name);

/// The name of the user whom the process runs for; empty when the system does not tell.
std::wstring userName();

/// Full path of the running executable; empty when the system does not tell.
std::wstring executablePath();

/// The system's folder for temporary files, with a trailing separator. POSIX: TMPDIR, else /tmp.
std::wstring temporaryFolder();

/// A number that no other running thread of this process has.
std::uint32_t currentThreadId();

/// A count that grows with time, in the unit of CLOCKS_PER_SEC: what `clock()` answers.
long clockCount();

}  // namespace platform

#endif

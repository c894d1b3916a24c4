// Child processes.
//
// The command line is one text, as Windows passes it. On POSIX it is cut into arguments by the
// rules of the Windows C runtime: blanks and tabs separate, double quotes hold blanks together, 2n
// backslashes before a quote are n backslashes, 2n+1 are n backslashes and a literal quote, a
// doubled quote inside quotes is one quote. Argument zero follows that runtime's rule for program
// names: everything up to the first blank outside quotes, quotes removed, backslashes literal; a
// command line that begins with a blank therefore has an empty argument zero.
#ifndef VOK_PLATFORM_PROCESS_H
#define VOK_PLATFORM_PROCESS_H

#include <optional>
#include <string>
#include <vector>

namespace platform {

/// Starts a program without a window and waits, without a time-out, until it ends. The child
/// inherits the environment and the current folder, and on POSIX the three standard streams.
/// @param program      path of the executable file; it is not searched for
/// @param commandLine  the child's whole command line, passed on unchanged
/// @return the exit code; nothing when the program could not be started. On POSIX 128 + the signal
///         that ended it, and -1 when the host ignores SIGCHLD, so that the system kept no code
std::optional<int> runProcess(const std::wstring& program, const std::wstring& commandLine);

/// Cuts a command line into its arguments, argument zero first, by the rules above. The line ends
/// at its first NUL character.
std::vector<std::wstring> splitCommandLine(const std::wstring& commandLine);

}  // namespace platform

#endif

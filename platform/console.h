// What a command-line program needs of the terminal. The library itself never uses it.
//
// The two write buffers are the only state and belong to the program: one thread at a time writes
// to a stream. On POSIX the program ignores SIGPIPE if it wants to hear of a closed pipe.
#ifndef VOK_PLATFORM_CONSOLE_H
#define VOK_PLATFORM_CONSOLE_H

#include <string>
#include <string_view>
#include <vector>

namespace platform {

enum class standardStream { output, error };

/// The program's arguments, without the program's name, as wide text. On POSIX the bytes are UTF-8;
/// a byte that is none becomes a lone surrogate U+DC80 to U+DCFF, which files.h turns back.
std::vector<std::wstring> commandLineArguments(int count, char** values);

/// True when a person reads the stream on a terminal.
bool isTerminal(standardStream stream);

/// Columns of the terminal; 80 when they cannot be told.
int terminalWidth(standardStream stream);

/// Writes text as UTF-8 without changing line ends; on a Windows console as Unicode. Lone
/// surrogates U+DC80 to U+DCFF become the raw bytes they stand for, where the system takes bytes.
/// The text waits in a buffer of 64 KiB until that is full or flushText is called; nothing flushes
/// at the program's end.
/// @return false when text was lost since the last flush (a full disk, a closed pipe); text is
///         dropped from then on until the next flush
bool writeText(standardStream stream, std::wstring_view text);

/// Writes ASCII text at once and without asking for memory: the last word of a program that has none left.
void writeLastWord(standardStream stream, std::string_view ascii) noexcept;

/// Hands what is buffered to the system.
/// @return false when any text since the last flush was lost
bool flushText(standardStream stream);

}  // namespace platform

#endif

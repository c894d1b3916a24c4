// Files and folders of the operating system, by wide path.
//
// Paths: on Windows they go to the system as they are. On POSIX both `/` and `\` separate (a `\`
// becomes a `/` before the kernel sees it) and the path is encoded as UTF-8; a lone surrogate from
// U+DC80 to U+DCFF stands for the raw byte 80 to FF, so that names which are no UTF-8 stay
// reachable (console.h makes such paths from a command line). A path ends at its first NUL
// character, as it does for every system call.
//
// Errors are false results; nothing throws but allocation failure. The functions keep no state and
// may be called from any thread; one binaryFile belongs to one thread at a time.
#ifndef VOK_PLATFORM_FILES_H
#define VOK_PLATFORM_FILES_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace platform {

/// True when the system can tell the attributes of a file or a folder at this path.
bool fileExists(const std::wstring& path);

/// True when the path names a folder.
bool folderExists(const std::wstring& path);

/// Deletes one file, without asking for memory. @return false when it does not exist, is a folder or cannot be deleted
bool removeFile(const std::wstring& path);

/// True when both paths lead to one existing file or folder, by the same name or another (a link).
bool isSameFile(const std::wstring& first, const std::wstring& second);

/// True for a symbolic link, wherever it leads; on Windows for every reparse point.
bool isLink(const std::wstring& path);

/// True for a pipe, a socket or a device: its bytes can be read once, and opening it may wait for ever.
bool isPipeOrDevice(const std::wstring& path);

/// Moves a file within one volume; a file already at the target is replaced in one step. The new file
/// takes over who may read and write the old one (on Windows the folder decides that).
/// @return false also when the old file is read-only; nothing is moved then
bool replaceFile(const std::wstring& from, const std::wstring& to);

/// The path of the file whose name differs from the wanted one in letter case at most: the wanted
/// path itself when it exists, else the first that its folder lists. Empty when there is none.
std::wstring findIgnoringCase(const std::wstring& path);

/// Creates one folder level. @return false when it already exists or its parent is missing
bool createFolder(const std::wstring& path);

/// The same for a folder that nobody else may look into (on Windows the folder around it decides that).
bool createPrivateFolder(const std::wstring& path);

/// Deletes a folder with the files in it; when something is left in it, the folder stays, too.
bool removeFolderAndFiles(const std::wstring& path);

/// Deletes one empty folder, without asking for memory.
bool removeFolder(const std::wstring& path);

/// The path as UTF-8 for a library that takes it narrow and opens the file itself; separators are `/`. It names
/// the same file there, but for names of Windows that hold a lone surrogate.
std::string utf8Path(const std::wstring& path);

/// True for a path that begins with a drive's letter and a colon, where the system has drives.
bool isDrivePath(const std::wstring& path);

/// An open file as a sequence of bytes, closed with its owner.
class binaryFile {
 public:
  binaryFile() = default;
  binaryFile(binaryFile&& other) noexcept;
  binaryFile& operator=(binaryFile&& other) noexcept;
  binaryFile(const binaryFile&) = delete;
  binaryFile& operator=(const binaryFile&) = delete;
  ~binaryFile();

  /// Opens an existing file for reading; a file already open here is closed first. On Windows
  /// others may read it meanwhile but not write.
  /// @return false when it is missing, is a folder or may not be read
  bool openForReading(const std::wstring& path);

  /// Creates a file, or empties the one that is there, and opens it for writing; a file already
  /// open here is closed first. On Windows nobody else can open it meanwhile.
  bool openForWriting(const std::wstring& path);

  /// Opens an existing file for writing behind its last byte; a file already open here is closed first.
  /// @return false when it is missing; nothing is created then
  bool openForAppending(const std::wstring& path);

  bool isOpen() const { return handle_ != closedHandle; }

  /// Whether a read, a move for reading or writing, or the question for the size has failed since the file was
  /// opened, so that the bytes read may not be all that there are. The end of the file is no failure. The answer
  /// stays when the file is closed, up to the next opening.
  bool hasFailed() const { return hasFailed_; }

  /// Reads up to `size` bytes, fewer only at the end of the file.
  /// @return the number of bytes read; 0 at the end, after a read error (hasFailed tells) and for a file not open
  std::size_t read(void* buffer, std::size_t size);

  /// Reads up to `size` bytes from a place in the file, fewer only at its end. Where a `read` after it
  /// begins is not defined.
  /// @return the number of bytes read; 0 behind the end, after an error (hasFailed tells) and for what has no
  /// places
  std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t size);

  /// Writes all bytes. @return false when any of them could not be written or the file is not open
  bool write(const void* bytes, std::size_t size);

  /// Moves to a byte, counted from 0, for the next read or write; behind the end is allowed.
  /// @return false for a file that is not open or has no positions (a pipe)
  bool seek(std::uint64_t position);

  /// The file's size in bytes; 0 for what has none (a pipe) and for a file that is not open.
  std::uint64_t size() const;

  /// Closes the file. @return false when the system reports that written bytes were lost
  bool close();

 private:
  static constexpr std::intptr_t closedHandle = -1;
  std::intptr_t handle_ = closedHandle;  // a file descriptor, or a HANDLE, never both
  mutable bool hasFailed_ = false;       // mutable for the size, whose answer then is 0
};

}  // namespace platform

#endif

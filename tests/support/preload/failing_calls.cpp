// A library to be loaded before a program (LD_PRELOAD), whose n-th call of the system fails.
//
//     VOK_FAULT_CALL     open, read, write, lseek, stat, mmap, close, rename, unlink, mkdir, chmod, fsync, malloc
//     VOK_FAULT_NUMBER   the call that fails, counted from 1 in each process; 0: none, they are only counted
//     VOK_FAULT_MODE     once; rest (that call and all behind it, as on a disk that dies); short (reads and writes
//                        move few bytes, and every other one is interrupted first, which must not be noticed)
//     VOK_FAULT_FOLDER   calls on paths below it and on descriptors of such files count, no others
//     VOK_FAULT_REPORT   a file that gets a line "failed" from the first call that fails in a process, and a line
//                        "counted N" from each process that ends as a program does
//
// mmap stands for mprotect too, and malloc for calloc, realloc and their kin; neither asks for a folder.
// Counting begins with main: what fails before it, the C++ runtime ends the program for. It ends with main, too: what
// a runtime does behind it, such as keeping records of what was run, may break where memory fails.
// A call from within the C library itself is not seen: what a program writes through FILE is none of this.
// One thread alone; Linux with glibc alone.
#ifndef _GNU_SOURCE
#define _GNU_SOURCE  // RTLD_NEXT
#endif
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int mostDescriptors = 1024;
constexpr std::size_t fewBytes = 7;

enum class faultMode { once, rest, shortCounts };

struct {
  bool isArmed = false;
  const char* call = "";
  long number = 0;
  faultMode mode = faultMode::once;
  const char* folder = "";
  const char* report = nullptr;
  long count = 0;
  bool hasFailed = false;
  bool isSeen[mostDescriptors] = {};  // descriptors of files below the folder
} faults;

template <class Function>
Function nextOf(const char* name) {
  void* const found = ::dlsym(RTLD_NEXT, name);
  Function function = nullptr;
  std::memcpy(&function, &found, sizeof function);
  return function;
}
#define NEXT(name) nextOf<decltype(&::name)>(#name)

// WHY without the C library: it is called while calls fail, memory's own too.
void report(const char* line) {
  if (faults.report == nullptr) return;
  const long file = ::syscall(SYS_openat, AT_FDCWD, faults.report,
                              O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
  if (file < 0) return;
  ::syscall(SYS_write, file, line, std::strlen(line));
  ::syscall(SYS_close, file);
}

// Counts a call of this kind. True when it is to fail.
bool fails(const char* call) {
  if (!faults.isArmed || std::strcmp(call, faults.call) != 0) return false;
  ++faults.count;
  if (faults.mode == faultMode::shortCounts || faults.number == 0) return false;
  if (faults.count != faults.number &&
      !(faults.mode == faultMode::rest && faults.count > faults.number))
    return false;
  if (!faults.hasFailed) report("failed\n");
  faults.hasFailed = true;
  return true;
}

bool isBelowFolder(const char* path) {
  if (!faults.isArmed || path == nullptr) return false;
  const std::size_t size = std::strlen(faults.folder);
  return std::strncmp(path, faults.folder, size) == 0 && (path[size] == '/' || path[size] == '\0');
}

bool isSeen(int descriptor) {
  return faults.isArmed && descriptor >= 0 && descriptor < mostDescriptors &&
         faults.isSeen[descriptor];
}

void see(int descriptor, bool seen) {
  if (descriptor >= 0 && descriptor < mostDescriptors) faults.isSeen[descriptor] = seen;
}

int refuse(int error) {
  errno = error;
  return -1;
}

// How much a read or write is given to move; nothing when it is interrupted first.
bool shorten(const char* call, std::size_t& size) {
  if (faults.mode != faultMode::shortCounts || std::strcmp(call, faults.call) != 0) return true;
  if (faults.count % 2 == 1) {
    errno = EINTR;
    return false;
  }
  if (size > fewBytes) size = fewBytes + (size - fewBytes) / 2;
  return true;
}

template <class Open>
int openSeen(Open open, const char* path, int flags, mode_t mode) {
  const bool seen = isBelowFolder(path);
  if (seen && fails("open")) return refuse((flags & O_ACCMODE) == O_RDONLY ? EACCES : ENOSPC);
  const int descriptor = open(path, flags, mode);
  see(descriptor, seen);
  return descriptor;
}

mode_t modeOf(int flags, va_list arguments) {
  return (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : mode_t{0};
}

void begin() {
  const char* const call = std::getenv("VOK_FAULT_CALL");
  if (call == nullptr) return;
  const auto settingOf = [](const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
  };
  faults.call = call;
  faults.number = std::atol(settingOf("VOK_FAULT_NUMBER"));
  faults.folder = settingOf("VOK_FAULT_FOLDER");
  faults.report = std::getenv("VOK_FAULT_REPORT");
  const char* const mode = settingOf("VOK_FAULT_MODE");
  if (std::strcmp(mode, "rest") == 0) faults.mode = faultMode::rest;
  if (std::strcmp(mode, "short") == 0) faults.mode = faultMode::shortCounts;
  faults.isArmed = true;
  // Standard output may lead to a file below the folder.
  char target[4096] = {};
  if (::readlink("/proc/self/fd/1", target, sizeof target - 1) > 0) see(1, isBelowFolder(target));
}

__attribute__((destructor)) void end() {
  if (!faults.isArmed) return;
  faults.isArmed = false;
  char line[64];
  std::snprintf(line, sizeof line, "counted %ld\n", faults.count);
  report(line);
}

// Memory. WHY the C library's own names: dlsym asks for memory itself.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

void* noMemory() {
  errno = ENOMEM;
  return nullptr;
}

}  // namespace

extern "C" {

using mainFunction = int (*)(int, char**, char**);
static mainFunction programsMain = nullptr;

static int countedMain(int count, char** values, char** environment) {
  begin();
  const int code = programsMain(count, values, environment);
  end();
  return code;
}

int __libc_start_main(mainFunction main, int count, char** values, void (*first)(), void (*last)(),
                      void (*ofLoader)(), void* stack) {
  programsMain = main;
  using startFunction =
      int (*)(mainFunction, int, char**, void (*)(), void (*)(), void (*)(), void*);
  return nextOf<startFunction>("__libc_start_main")(countedMain, count, values, first, last,
                                                    ofLoader, stack);
}

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  return openSeen(NEXT(open), path, flags, mode);
}

int open64(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  return openSeen(NEXT(open64), path, flags, mode);
}

ssize_t read(int descriptor, void* buffer, std::size_t size) {
  if (isSeen(descriptor) && (fails("read") || !shorten("read", size)))
    return refuse(faults.mode == faultMode::shortCounts ? EINTR : EIO);
  return NEXT(read)(descriptor, buffer, size);
}

ssize_t pread64(int descriptor, void* buffer, std::size_t size, off64_t offset) {
  if (isSeen(descriptor) && (fails("read") || !shorten("read", size)))
    return refuse(faults.mode == faultMode::shortCounts ? EINTR : EIO);
  return NEXT(pread64)(descriptor, buffer, size, offset);
}

ssize_t write(int descriptor, const void* buffer, std::size_t size) {
  if (isSeen(descriptor) && (fails("write") || !shorten("write", size)))
    return refuse(faults.mode == faultMode::shortCounts ? EINTR : ENOSPC);
  return NEXT(write)(descriptor, buffer, size);
}

ssize_t pwrite64(int descriptor, const void* buffer, std::size_t size, off64_t offset) {
  if (isSeen(descriptor) && (fails("write") || !shorten("write", size)))
    return refuse(faults.mode == faultMode::shortCounts ? EINTR : ENOSPC);
  return NEXT(pwrite64)(descriptor, buffer, size, offset);
}

off_t lseek(int descriptor, off_t offset, int origin) noexcept {
  if (isSeen(descriptor) && fails("lseek")) return refuse(EIO);
  return NEXT(lseek)(descriptor, offset, origin);
}

off64_t lseek64(int descriptor, off64_t offset, int origin) noexcept {
  if (isSeen(descriptor) && fails("lseek")) return refuse(EIO);
  return NEXT(lseek64)(descriptor, offset, origin);
}

int fstat(int descriptor, struct stat* attributes) noexcept {
  if (isSeen(descriptor) && fails("stat")) return refuse(EIO);
  return NEXT(fstat)(descriptor, attributes);
}

int fstat64(int descriptor, struct stat64* attributes) noexcept {
  if (isSeen(descriptor) && fails("stat")) return refuse(EIO);
  return NEXT(fstat64)(descriptor, attributes);
}

int stat(const char* path, struct stat* attributes) noexcept {
  if (isBelowFolder(path) && fails("stat")) return refuse(EIO);
  return nextOf<int (*)(const char*, struct stat*)>("stat")(path, attributes);
}

int stat64(const char* path, struct stat64* attributes) noexcept {
  if (isBelowFolder(path) && fails("stat")) return refuse(EIO);
  return nextOf<int (*)(const char*, struct stat64*)>("stat64")(path, attributes);
}

int lstat(const char* path, struct stat* attributes) noexcept {
  if (isBelowFolder(path) && fails("stat")) return refuse(EIO);
  return NEXT(lstat)(path, attributes);
}

int lstat64(const char* path, struct stat64* attributes) noexcept {
  if (isBelowFolder(path) && fails("stat")) return refuse(EIO);
  return NEXT(lstat64)(path, attributes);
}

int close(int descriptor) {
  const bool failing = isSeen(descriptor) && fails("close");
  see(descriptor, false);
  const int answer = NEXT(close)(descriptor);
  return failing ? refuse(EIO) : answer;
}

int fsync(int descriptor) {
  if (isSeen(descriptor) && fails("fsync")) return refuse(EIO);
  return NEXT(fsync)(descriptor);
}

int fdatasync(int descriptor) {
  if (isSeen(descriptor) && fails("fsync")) return refuse(EIO);
  return NEXT(fdatasync)(descriptor);
}

int rename(const char* from, const char* to) noexcept {
  if (isBelowFolder(to) && fails("rename")) return refuse(EIO);
  return NEXT(rename)(from, to);
}

int unlink(const char* path) noexcept {
  if (isBelowFolder(path) && fails("unlink")) return refuse(EIO);
  return NEXT(unlink)(path);
}

int rmdir(const char* path) noexcept {
  if (isBelowFolder(path) && fails("unlink")) return refuse(EIO);
  return NEXT(rmdir)(path);
}

int mkdir(const char* path, mode_t mode) noexcept {
  if (isBelowFolder(path) && fails("mkdir")) return refuse(ENOSPC);
  return NEXT(mkdir)(path, mode);
}

int chmod(const char* path, mode_t mode) noexcept {
  if (isBelowFolder(path) && fails("chmod")) return refuse(EPERM);
  return NEXT(chmod)(path, mode);
}

void* mmap(void* address, std::size_t size, int protection, int flags, int descriptor,
           off_t offset) noexcept {
  if (fails("mmap")) {
    errno = ENOMEM;
    return MAP_FAILED;
  }
  return NEXT(mmap)(address, size, protection, flags, descriptor, offset);
}

void* mmap64(void* address, std::size_t size, int protection, int flags, int descriptor,
             off64_t offset) noexcept {
  if (fails("mmap")) {
    errno = ENOMEM;
    return MAP_FAILED;
  }
  return NEXT(mmap64)(address, size, protection, flags, descriptor, offset);
}

int mprotect(void* address, std::size_t size, int protection) noexcept {
  if (fails("mmap")) return refuse(ENOMEM);
  return NEXT(mprotect)(address, size, protection);
}

void* malloc(std::size_t size) noexcept {
  return fails("malloc") ? noMemory() : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) noexcept {
  return fails("malloc") ? noMemory() : __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) noexcept {
  return fails("malloc") ? noMemory() : __libc_realloc(memory, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  return fails("malloc") ? noMemory() : __libc_memalign(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) noexcept {
  *memory = fails("malloc") ? nullptr : __libc_memalign(alignment, size);
  return *memory == nullptr ? ENOMEM : 0;
}
}

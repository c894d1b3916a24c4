// Between wide text and the bytes that POSIX takes for names, arguments, variables and terminals.
//
// The bytes are UTF-8. A byte that belongs to no character becomes the lone surrogate U+DC00 + byte
// (U+DC80 to U+DCFF) and comes back as that byte, so every name that the system hands out is
// reachable. Other lone surrogates and elements above U+10FFFF are no text and become U+FFFD.
#ifndef VOK_PLATFORM_POSIX_NATIVEPATH_H
#define VOK_PLATFORM_POSIX_NATIVEPATH_H

#include <climits>
#include <string>
#include <string_view>

namespace platform {

std::string nativeBytes(std::wstring_view text);
std::wstring wideText(std::string_view bytes);

/// The bytes of a path up to its first NUL character, with `/` for every `\`.
std::string nativePath(std::wstring_view path);

/// The same without asking for memory, for what has to go when there is none.
class smallNativePath {
 public:
  explicit smallNativePath(std::wstring_view path);
  /// Terminated; empty, which names nothing, for a path that is longer than the system takes.
  const char* c_str() const { return bytes_; }

 private:
  char bytes_[PATH_MAX];
};

}  // namespace platform

#endif

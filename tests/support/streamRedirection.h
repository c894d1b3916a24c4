// Sends a standard stream of this process elsewhere for a test, and back again at the object's end.
//
// Nothing may be printed by other means meanwhile, which includes failing expectations.
#ifndef VOK_TESTS_SUPPORT_STREAMREDIRECTION_H
#define VOK_TESTS_SUPPORT_STREAMREDIRECTION_H

#include <cstdint>
#include <string>

#include "platform/console.h"

namespace testSupport {

class streamRedirection {
 public:
  explicit streamRedirection(platform::standardStream stream);
  streamRedirection(const streamRedirection&) = delete;
  streamRedirection& operator=(const streamRedirection&) = delete;
  ~streamRedirection();

  /// Each answers false when the system does not give such a target; the stream stays where it is
  /// then.
  bool toFile(const std::wstring& path);
  bool toClosedPipe();
  /// A terminal that nobody looks at.
  bool toTerminal(int columns);

 private:
  platform::standardStream stream_;
  std::intptr_t original_;
  std::intptr_t otherEnd_ = -1;  // of a terminal
};

}  // namespace testSupport

#endif

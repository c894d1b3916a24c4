// What a host has chosen as the system's code page. It is kept here and nowhere else: everything that
// converts text of the system asks resolveCodePage.
#include <atomic>

#include "platform/codePages.h"

namespace platform {
namespace {

std::atomic<unsigned>& hostsChoice() {
  static std::atomic<unsigned> choice{systemCodePage};
  return choice;
}

}  // namespace

unsigned chosenSystemCodePage() { return hostsChoice().load(std::memory_order_relaxed); }

bool chooseSystemCodePage(unsigned codePage) {
  const wchar_t sample = L'a';
  if (codePage != systemCodePage && encodeCodePage(codePage, &sample, 1, nullptr, 0) != 1)
    return false;
  hostsChoice().store(codePage, std::memory_order_relaxed);
  return true;
}

}  // namespace platform

#include "tools/interruption.h"

#include <csignal>

namespace vokTable {
namespace {

// SIGHUP, a closed terminal, is not known everywhere.
constexpr int signals[] = {
    SIGINT,
    SIGTERM,
#ifdef SIGHUP
    SIGHUP,
#endif
};

// WHY a global: a signal handler can reach nothing else.
volatile std::sig_atomic_t asked = 0;
int nested = 0;

extern "C" void noteSignal(int) { asked = 1; }

}  // namespace

interruption::interruption() {
  if (nested++ > 0) return;
  asked = 0;
  for (const int number : signals)
    if (std::signal(number, noteSignal) == SIG_IGN) std::signal(number, SIG_IGN);
}

interruption::~interruption() {
  if (--nested > 0) return;
  for (const int number : signals)
    if (std::signal(number, SIG_DFL) == SIG_IGN) std::signal(number, SIG_IGN);
}

bool interruption::isAskedFor() const { return asked != 0; }

}  // namespace vokTable

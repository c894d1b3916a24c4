// The system's code page as a host chooses it: a choice of the whole process, kept by the platform.
#include "platform/codePages.h"
#include "platform/vok_basic.h"

int vo_options_set_system_code_page(unsigned code_page) {
  return platform::chooseSystemCodePage(code_page) ? 1 : 0;
}

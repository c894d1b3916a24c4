// Says where the suite's main module is until the test ends.
#ifndef VOK_TESTS_SUPPORT_MAINMODULE_H
#define VOK_TESTS_SUPPORT_MAINMODULE_H

#include <string>

#include "platform/vok_basic.h"

namespace testSupport {

class mainModule {
 public:
  explicit mainModule(const std::wstring& path) { vo_options_set_main_module_path(path.c_str()); }
  mainModule(const mainModule&) = delete;
  mainModule& operator=(const mainModule&) = delete;
  ~mainModule() { vo_options_set_main_module_path(nullptr); }
};

}  // namespace testSupport

#endif

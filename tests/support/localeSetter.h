// Another locale of the C library for one test; the one before comes back with its end.
#ifndef VOK_TESTS_SUPPORT_LOCALESETTER_H
#define VOK_TESTS_SUPPORT_LOCALESETTER_H

#include <clocale>
#include <string>

namespace testSupport {

class localeSetter {
 public:
  explicit localeSetter(const char* name) : before_(std::setlocale(LC_ALL, nullptr)) {
    std::setlocale(LC_ALL, name);
  }
  localeSetter(const localeSetter&) = delete;
  localeSetter& operator=(const localeSetter&) = delete;
  ~localeSetter() { std::setlocale(LC_ALL, before_.c_str()); }

 private:
  std::string before_;
};

}  // namespace testSupport

#endif

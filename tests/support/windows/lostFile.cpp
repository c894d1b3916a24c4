#include "tests/support/lostFile.h"

namespace testSupport {

bool loseFile(const std::wstring&) { return false; }

}  // namespace testSupport

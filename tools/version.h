// The version that vok_table tells: the project's version in CMakeLists.txt. A test compares the
// two.
#ifndef VOK_TOOLS_VERSION_H
#define VOK_TOOLS_VERSION_H

namespace vokTable {

inline constexpr const char* versionText = "vok_table 1.0.0";

}  // namespace vokTable

#endif

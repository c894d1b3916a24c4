// A ZIP archive taken apart by the rules, for tests of what was written: the central directory must lead to
// every byte, each local header must say what the directory says, and every checksum must be right.
#ifndef VOK_TESTS_SUPPORT_ZIPCONTENT_H
#define VOK_TESTS_SUPPORT_ZIPCONTENT_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace testSupport {

struct zipMember {
  std::string name;
  std::string content;
  std::uint32_t flags = 0;
  std::uint32_t method = 0;
  std::uint32_t time = 0;  // as the archive has it
  std::uint32_t date = 0;
};

struct zipContent {
  std::string problem;  // empty when the archive is whole
  std::vector<zipMember> members;

  /// The content of a member; "(missing)" when there is none of that name.
  std::string of(std::string_view name) const;
  /// The names, in the order of the directory, with a blank between them.
  std::string names() const;
};

zipContent readZip(std::string_view archive);

}  // namespace testSupport

#endif

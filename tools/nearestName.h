// The name that somebody meant who wrote another: for messages about commands and options.
//
// No state; any thread.
#ifndef VOK_TOOLS_NEARESTNAME_H
#define VOK_TOOLS_NEARESTNAME_H

#include <string>
#include <string_view>
#include <vector>

namespace vokTable {

/// The name that begins with what was written, four letters at least; else the one that is fewest letters away from it
/// (put in, left out, exchanged; two neighbours that changed places count as one), when that is at most one letter in
/// three; else an empty text.
std::string nearestName(std::string_view written, const std::vector<std::string>& names);

}  // namespace vokTable

#endif

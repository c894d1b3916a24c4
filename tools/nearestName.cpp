#include "tools/nearestName.h"

#include <algorithm>

namespace vokTable {
namespace {

/// Letters to put in, leave out, exchange or swap with their neighbour on the way from one word to the other.
std::size_t distanceBetween(std::string_view from, std::string_view to) {
  const std::size_t width = to.size() + 1;
  std::vector<std::size_t> cells((from.size() + 1) * width);
  const auto cell = [&](std::size_t i, std::size_t j) -> std::size_t& {
    return cells[i * width + j];
  };
  for (std::size_t i = 0; i <= from.size(); ++i) {
    for (std::size_t j = 0; j <= to.size(); ++j) {
      if (i == 0 || j == 0) {
        cell(i, j) = i + j;
        continue;
      }
      const std::size_t exchanged = from[i - 1] == to[j - 1] ? 0 : 1;
      cell(i, j) =
          std::min({cell(i - 1, j) + 1, cell(i, j - 1) + 1, cell(i - 1, j - 1) + exchanged});
      const bool areSwapped =
          i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1];
      if (areSwapped) cell(i, j) = std::min(cell(i, j), cell(i - 2, j - 2) + 1);
    }
  }
  return cell(from.size(), to.size());
}

}  // namespace

std::string nearestName(std::string_view written, const std::vector<std::string>& names) {
  std::string nearest;
  std::size_t least = std::max<std::size_t>(written.size() / 3, 1) + 1;
  for (const std::string& name : names) {
    constexpr std::size_t tellingLetters = 4;  // "--en"
    if (written.size() >= tellingLetters && std::string_view(name).starts_with(written))
      return name;
    // Longer words are nobody's slip, and comparing them would take their product in memory.
    if (written.size() > 2 * name.size()) continue;
    const std::size_t distance = distanceBetween(written, name);
    if (distance >= least) continue;
    least = distance;
    nearest = name;
  }
  return nearest;
}

}  // namespace vokTable

#include "converter/workbook/numberFormat.h"

#include <algorithm>
#include <string>

namespace converter {
namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// What of a format's first section tells its kind: letters in lower case, `[h]` and the like as `{`, and the
// placeholders of digits; everything that is only shown is left out.
std::string essenceOf(std::string_view code) {
  std::string essence;
  for (std::size_t i = 0; i < code.size(); ++i) {
    const char c = code[i];
    if (c == ';') break;
    if (c == '"') {
      i = std::min(code.find('"', i + 1), code.size());
    } else if (c == '\\' || c == '_' || c == '*') {
      ++i;
    } else if (c == '[') {
      const std::size_t end = std::min(code.find(']', i), code.size());
      const std::string_view inside = code.substr(i + 1, end - i - 1);
      const bool isElapsed =
          !inside.empty() &&
          (lower(inside[0]) == 'h' || lower(inside[0]) == 'm' || lower(inside[0]) == 's') &&
          std::all_of(inside.begin(), inside.end(),
                      [&](char each) { return lower(each) == lower(inside[0]); });
      if (isElapsed) essence += '{';
      i = end;
    } else {
      essence += lower(c);
    }
  }
  return essence;
}

bool isDigitPlaceholder(char c) { return c == '0' || c == '#' || c == '?'; }

// Removes every occurrence of a word. @return whether there was one
bool remove(std::string& text, std::string_view word) {
  bool found = false;
  for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at)) {
    text.erase(at, word.size());
    found = true;
  }
  return found;
}

// Digits show a number, but for those behind the seconds: ss.000
bool showsDigits(const std::string& essence) {
  for (std::size_t i = 0; i < essence.size(); ++i) {
    if (!isDigitPlaceholder(essence[i])) continue;
    std::size_t before = i;
    while (before > 0 && (isDigitPlaceholder(essence[before - 1]) || essence[before - 1] == '.' ||
                          essence[before - 1] == ','))
      --before;
    if (before == i || before == 0 || (essence[before - 1] != 's' && essence[before - 1] != '{'))
      return true;
  }
  return false;
}

struct builtInRange {
  unsigned first;
  unsigned last;
  numberKind kind;
};

// FORMAT: 27 to 36 and 50 to 58 are dates in East Asian editions; some of them are times in one language and
// dates in another, and are taken for both, so that nothing is lost.
constexpr builtInRange builtInRanges[] = {
    {14, 17, numberKind::date    },
    {18, 21, numberKind::time    },
    {22, 22, numberKind::dateTime},
    {27, 31, numberKind::date    },
    {32, 33, numberKind::time    },
    {34, 35, numberKind::dateTime},
    {36, 36, numberKind::date    },
    {45, 45, numberKind::time    },
    {46, 46, numberKind::elapsed },
    {47, 47, numberKind::time    },
    {50, 54, numberKind::date    },
    {55, 56, numberKind::dateTime},
    {57, 58, numberKind::date    },
};

}  // namespace

numberKind kindOfFormatCode(std::string_view code) {
  std::string essence = essenceOf(code);
  remove(essence, "general");
  const bool hasHalves = remove(essence, "am/pm") || remove(essence, "a/p");
  remove(essence, "e+");
  remove(essence, "e-");
  if (showsDigits(essence)) return numberKind::number;
  const auto has = [&](char c) { return essence.find(c) != std::string::npos; };
  if (has('{')) return numberKind::elapsed;
  const bool hasClock = hasHalves || has('h') || has('s');
  // FORMAT: `m` is minutes beside hours or seconds, else the month; three and more are always the month.
  const bool hasMonth = has('m') && (!hasClock || essence.find("mmm") != std::string::npos);
  const bool hasDay = has('y') || has('d') || has('e') || has('b') || hasMonth;
  if (hasDay && hasClock) return numberKind::dateTime;
  if (hasDay) return numberKind::date;
  return hasClock ? numberKind::time : numberKind::number;
}

numberKind kindOfBuiltInFormat(unsigned number) {
  for (const builtInRange& range : builtInRanges)
    if (number >= range.first && number <= range.last) return range.kind;
  return numberKind::number;
}

void numberFormats::resolve() {
  kinds_.clear();
  for (const unsigned number : styles_) {
    const auto found = defined_.find(number);
    kinds_.push_back(found == defined_.end() ? kindOfBuiltInFormat(number) : found->second);
  }
}

}  // namespace converter

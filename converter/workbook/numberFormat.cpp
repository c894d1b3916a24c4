#include "converter/workbook/numberFormat.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <system_error>

namespace converter {
namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

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

// The kind of a section, by what `takeSection` leaves of it.
numberKind kindOfEssence(std::string essence) {
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
  // FORMAT: `aaa` and `aaaa` are the day of the week.
  const bool hasWeekday = essence.find("aaa") != std::string::npos;
  const bool hasDay = has('y') || has('d') || has('e') || has('b') || hasMonth || hasWeekday;
  if (hasDay && hasClock) return numberKind::dateTime;
  if (hasDay) return numberKind::date;
  return hasClock ? numberKind::time : numberKind::number;
}

bool isElapsed(std::string_view inside) {
  if (inside.empty()) return false;
  const char unit = lower(inside[0]);
  return (unit == 'h' || unit == 'm' || unit == 's') &&
         std::all_of(inside.begin(), inside.end(), [&](char each) { return lower(each) == unit; });
}

}  // namespace

struct numberFormat::section {
  // What tells its kind: letters in lower case, `[h]` and the like as `{`, and the placeholders of digits;
  // everything that is only shown is left out.
  std::string essence;
  part condition;

  bool hasCondition() const { return condition.compare != comparison::never; }

  // Takes what stands in brackets, if it is a condition: <1, >=100, <>0
  void takeCondition(std::string_view inside) {
    struct sign {
      std::string_view text;
      comparison compare;
    };
    static constexpr sign signs[] = {
        {"<=", comparison::lessOrEqual   },
        {">=", comparison::greaterOrEqual},
        {"<>", comparison::notEqual      },
        {"<",  comparison::less          },
        {">",  comparison::greater       },
        {"=",  comparison::equal         },
    };
    for (const sign& each : signs) {
      if (!inside.starts_with(each.text)) continue;
      inside.remove_prefix(each.text.size());
      double limit = 0;
      const char* const end = inside.data() + inside.size();
      const auto result = std::from_chars(inside.data(), end, limit);
      if (result.ec == std::errc() && result.ptr == end) condition = {limit, each.compare};
      return;
    }
  }

  // The part of a format for the numbers that its condition is for, or else those of the usual one.
  part asPart(comparison usual) const {
    part made = hasCondition() ? condition : part{0, usual};
    made.kind = kindOfEssence(essence);
    return made;
  }
};

// The first section of what is left of a code.
numberFormat::section numberFormat::takeSection(std::string_view& code) {
  section taken;
  std::size_t i = 0;
  for (; i < code.size() && code[i] != ';'; ++i) {
    const char c = code[i];
    if (c == '"') {
      i = std::min(code.find('"', i + 1), code.size());
    } else if (c == '\\' || c == '_' || c == '*') {
      ++i;
    } else if (c == '[') {
      const std::size_t end = std::min(code.find(']', i), code.size());
      const std::string_view inside = code.substr(i + 1, end - i - 1);
      if (isElapsed(inside)) taken.essence += '{';
      taken.takeCondition(inside);
      i = end;
    } else {
      taken.essence += lower(c);
    }
  }
  code.remove_prefix(std::min(i, code.size()));
  return taken;
}

numberFormat::numberFormat(std::string_view code) : rest_(numberKind::number) {
  constexpr std::size_t mostForNumbers = 3;  // a fourth one is for text
  std::vector<section> sections = {takeSection(code)};
  while (!code.empty() && sections.size() < mostForNumbers) {
    code.remove_prefix(1);
    sections.push_back(takeSection(code));
  }
  const bool endsInText = sections.back().essence.find('@') != std::string::npos;
  if (endsInText && sections.size() > 1) sections.pop_back();

  const section& first = sections.front();
  if (sections.size() == 1) {
    if (first.hasCondition())
      first_ = first.asPart(comparison::never);
    else
      rest_ = kindOfEssence(first.essence);
  } else if (sections.size() == mostForNumbers) {
    first_ = first.asPart(comparison::greater);
    second_ = sections[1].asPart(comparison::less);
    rest_ = kindOfEssence(sections[2].essence);
  } else if (sections[1].hasCondition()) {
    first_ = first.asPart(comparison::greater);
    second_ = sections[1].asPart(comparison::never);
    if (!first.hasCondition()) rest_ = first_.kind;
  } else {
    first_ = first.asPart(comparison::greaterOrEqual);
    rest_ = kindOfEssence(sections[1].essence);
  }
}

bool numberFormat::part::isFor(double number) const {
  switch (compare) {
    case comparison::less:
      return number < limit;
    case comparison::lessOrEqual:
      return number <= limit;
    case comparison::equal:
      return number == limit;
    case comparison::notEqual:
      return number != limit;
    case comparison::greaterOrEqual:
      return number >= limit;
    case comparison::greater:
      return number > limit;
    case comparison::never:
      break;
  }
  return false;
}

numberKind numberFormat::kindOf(double number) const {
  if (first_.isFor(number)) return first_.kind;
  return second_.isFor(number) ? second_.kind : rest_;
}

numberKind kindOfBuiltInFormat(unsigned number) {
  for (const builtInRange& range : builtInRanges)
    if (number >= range.first && number <= range.last) return range.kind;
  return numberKind::number;
}

void numberFormats::resolve() {
  formats_.clear();
  for (const unsigned number : styles_)
    formats_.push_back(&defined_.try_emplace(number, kindOfBuiltInFormat(number)).first->second);
}

}  // namespace converter

// vo_dbf_make_correct_names: field names that every program takes, no two of them equal.
//
// WHY the first of equal names keeps it, and a name that was right from the start too: whoever looks for a
// column finds it under the name that it was given wherever that is possible.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/vok_file_dbf.h"

namespace {

constexpr std::size_t longestName = sizeof(dbfFieldDef::name) - 1;

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

std::string inCapitals(std::string name) {
  for (char& c : name)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return name;
}

std::string validName(const dbfFieldDef& field, std::uint32_t index) {
  std::string name(field.name, std::find(field.name, field.name + longestName, '\0'));
  name.erase(name.find_last_not_of(' ') + 1);
  name.erase(0, std::min(name.find_first_not_of(' '), name.size()));
  if (name.empty()) return ("FIELD" + std::to_string(index + 1)).substr(0, longestName);
  for (char& c : name)
    if (!isDigit(c) && !isLetter(c)) c = '_';
  if (isDigit(name.front())) name.insert(0, 1, '_');
  return name.substr(0, longestName);
}

// The name with a number behind it, the first that is free: DEPTH_1, DEPTH_2...
std::string numberedName(const std::string& name, const std::set<std::string>& taken,
                         std::uint32_t& number) {
  while (true) {
    const std::string tail = "_" + std::to_string(++number);
    std::string candidate = name.substr(0, longestName - tail.size()) + tail;
    if (taken.count(inCapitals(candidate)) == 0) return candidate;
  }
}

}  // namespace

void vo_dbf_make_correct_names(dbfFieldDef* fields, uint32_t count) {
  if (fields == nullptr) return;
  std::vector<std::string> names;
  std::set<std::string> taken;
  std::vector<bool> isFirst;
  for (std::uint32_t i = 0; i < count; ++i) {
    names.push_back(validName(fields[i], i));
    isFirst.push_back(taken.insert(inCapitals(names.back())).second);
  }
  std::map<std::string, std::uint32_t> numbers;  // where each name's search goes on
  for (std::uint32_t i = 0; i < count; ++i) {
    if (!isFirst[i]) {
      names[i] = numberedName(names[i], taken, numbers[inCapitals(names[i])]);
      taken.insert(inCapitals(names[i]));
    }
    std::memset(fields[i].name, 0, sizeof fields[i].name);
    std::memcpy(fields[i].name, names[i].data(), names[i].size());
  }
}

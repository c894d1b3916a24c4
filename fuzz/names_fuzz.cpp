// Names that must be ASCII: transliteration character by character, and the field names of DBF tables, which are
// valid, distinct, and stay as they are when they were right already.
#include <algorithm>
#include <cstring>
#include <memory>
#include <set>

#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "platform/vok_basic.h"
#include "platform/vok_file_dbf.h"
#include "tests/support/targetSystem.h"

namespace {

using fuzzing::demand;

bool isAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }
bool isDigit(char byte) { return byte >= '0' && byte <= '9'; }

std::string capitals(std::string name) {
  for (char& byte : name)
    if (byte >= 'a' && byte <= 'z') byte = static_cast<char>(byte - 'a' + 'A');
  return name;
}

std::string latin(const std::wstring& text) {
  std::string out;
  Tvo_std_string_adapter receiver(out);
  const std::unique_ptr<vo_string_adp, decltype(&vo_string_adp_destroy)> adapter(
      vo_string_adp_create(&receiver), &vo_string_adp_destroy);
  vo_translit(text.c_str(), adapter.get());
  return out;
}

void checkLatin(std::wstring text, std::size_t cut) {
  constexpr std::size_t mostLetters = 4;
  text = text.c_str();  // to its first NUL
  const std::string whole = latin(text);
  demand(std::all_of(whole.begin(), whole.end(), isAscii), "transliterated to more than ASCII");
  demand(whole.size() <= mostLetters * text.size(), "too many letters");
  demand(latin(std::wstring(whole.begin(), whole.end())) == whole, "ASCII does not stay");
  // Where wide text is UTF-16 a cut may go through a pair.
  if (testSupport::wideIsUtf16) return;
  cut = std::min(cut, text.size());
  demand(latin(text.substr(0, cut)) + latin(text.substr(cut)) == whole,
         "a character depends on its neighbours");
}

void demandValid(const dbfFieldDef& field) {
  const auto length = static_cast<std::size_t>(
      std::find(field.name, field.name + sizeof field.name, '\0') - field.name);
  demand(length >= 1 && length <= 10, "the length of a name");
  demand(std::all_of(field.name + length, field.name + sizeof field.name,
                     [](char byte) { return byte == '\0'; }),
         "something behind a name");
  for (const char* byte = field.name; *byte != '\0'; ++byte)
    demand(isDigit(*byte) || *byte == '_' || (*byte >= 'A' && *byte <= 'Z') ||
               (*byte >= 'a' && *byte <= 'z'),
           "the characters of a name");
  demand(!isDigit(field.name[0]), "a name begins with a digit");
}

}  // namespace

// The first byte is where the text is cut; the text is the names, too, one behind the other.
std::string fuzzing::names(std::string_view bytes) {
  inputReader input(bytes);
  const std::size_t cut = input.byte();
  checkLatin(wideText(input.rest()), cut);
  std::vector<dbfFieldDef> fields;
  while (!input.isAtEnd()) {
    dbfFieldDef field = {};
    const std::string_view name = input.bytes(sizeof field.name);
    std::copy(name.begin(), name.end(), field.name);
    field.type = static_cast<char>(fields.size());
    fields.push_back(field);
  }
  const auto count = static_cast<std::uint32_t>(fields.size());
  vo_dbf_make_correct_names(fields.data(), count);
  std::set<std::string> all;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    demandValid(fields[i]);
    demand(all.insert(capitals(fields[i].name)).second, "a name twice");
    demand(fields[i].type == static_cast<char>(i), "more is changed than names");
  }
  const std::vector<dbfFieldDef> first = fields;
  vo_dbf_make_correct_names(fields.data(), count);
  for (std::size_t i = 0; i < fields.size(); ++i)
    demand(std::strcmp(fields[i].name, first[i].name) == 0, "a right name is changed");
  return std::to_string(count) + " names";
}

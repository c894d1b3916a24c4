// Which code page the metadata of an extended data file names.
#include <algorithm>
#include <string>
#include <string_view>

#include "suite/file_micromine/micromineHeader.h"

namespace fileMicromine {
namespace {

struct pageName {
  std::string_view name;
  unsigned codePage;
};

// FORMAT: the names of ICU's converters, without what follows their "_"; the newer names of Windows pages,
// which have the euro sign, and the plain names that people write.
constexpr pageName pageNames[] = {
    {"ibm-5346",     1250 },
    {"ibm-5347",     1251 },
    {"ibm-5348",     1252 },
    {"ibm-5349",     1253 },
    {"ibm-5350",     1254 },
    {"ibm-9447",     1255 },
    {"ibm-9448",     1256 },
    {"ibm-9449",     1257 },
    {"ibm-5354",     1258 },
    {"windows-1250", 1250 },
    {"windows-1251", 1251 },
    {"windows-1252", 1252 },
    {"windows-1253", 1253 },
    {"windows-1254", 1254 },
    {"windows-1255", 1255 },
    {"windows-1256", 1256 },
    {"windows-1257", 1257 },
    {"windows-1258", 1258 },
    {"ibm-866",      866  },
    {"cp866",        866  },
    {"ibm-1208",     65001},
    {"utf-8",        65001},
    {"utf8",         65001},
    {"us-ascii",     20127},
};

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

void skipSpace(std::string_view& text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
}

// What stands in quotes behind `name` and its equals sign; empty when nothing does.
std::string_view attributeValue(std::string_view text, std::string_view name) {
  for (std::size_t at = text.find(name); at != std::string_view::npos;
       at = text.find(name, at + 1)) {
    std::string_view rest = text.substr(at + name.size());
    if (at == 0 || !isSpace(text[at - 1])) continue;
    skipSpace(rest);
    if (!rest.starts_with('=')) continue;
    rest.remove_prefix(1);
    skipSpace(rest);
    if (rest.empty() || (rest.front() != '"' && rest.front() != '\'')) continue;
    const std::size_t end = rest.find(rest.front(), 1);
    if (end != std::string_view::npos) return rest.substr(1, end - 1);
  }
  return {};
}

}  // namespace

// WHY no XML parser: one attribute is wanted, whose name occurs once, of a file that may be broken.
unsigned codePageOfMetadata(std::string_view metadata) {
  const std::string_view named = attributeValue(metadata, "codepage");
  std::string name(named.substr(0, named.find('_')));
  std::transform(name.begin(), name.end(), name.begin(), lowered);
  for (const pageName& each : pageNames)
    if (name == each.name) return each.codePage;
  return 0;
}

}  // namespace fileMicromine

#include "tools/json.h"

#include "tools/text.h"

namespace vokTable {
namespace {

void appendEscape(std::wstring& out, char32_t unit) {
  constexpr wchar_t digits[] = L"0123456789abcdef";
  out += L"\\u";
  for (int shift = 12; shift >= 0; shift -= 4) out += digits[(unit >> shift) & 0xF];
}

/// The letter of a short escape; 0 when there is none.
wchar_t shortEscape(char32_t character) {
  switch (character) {
    case U'"':
      return L'"';
    case U'\\':
      return L'\\';
    case U'\b':
      return L'b';
    case U'\f':
      return L'f';
    case U'\n':
      return L'n';
    case U'\r':
      return L'r';
    case U'\t':
      return L't';
    default:
      return 0;
  }
}

}  // namespace

void appendJsonString(std::wstring& out, std::wstring_view text) {
  out += L'"';
  std::size_t plain = 0;  // where the text begins that stands as it is
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t begin = at;
    const char32_t character = nextCharacter(text, at);
    const wchar_t letter = shortEscape(character);
    if (letter == 0 && !drivesTerminal(character) && !isSurrogate(character)) continue;
    out.append(text, plain, begin - plain);
    plain = at;
    if (letter == 0) {
      appendEscape(out, character);
    } else {
      out += L'\\';
      out += letter;
    }
  }
  out.append(text, plain);
  out += L'"';
}

void jsonWriter::separate() {
  if (!isFirst_ && !afterKey_) output_.text(L",");
  if (breaks_) output_.text(L"\n");
  isFirst_ = afterKey_ = breaks_ = false;
}

void jsonWriter::open(wchar_t bracket) {
  separate();
  output_.text({&bracket, 1});
  isFirst_ = true;
}

void jsonWriter::close(wchar_t bracket) {
  if (breaks_) output_.text(L"\n");
  breaks_ = false;
  output_.text({&bracket, 1});
  isFirst_ = false;
}

void jsonWriter::key(std::string_view name) {
  string(name);
  output_.text(L":");
  afterKey_ = true;
}

void jsonWriter::string(std::wstring_view text) {
  separate();
  scratch_.clear();
  appendJsonString(scratch_, text);
  output_.text(scratch_);
}

void jsonWriter::string(std::string_view utf8) { string(std::wstring_view(toWide(utf8))); }

void jsonWriter::number(std::uint64_t value) {
  separate();
  output_.text(std::to_wstring(value));
}

void jsonWriter::truth(bool value) {
  separate();
  output_.text(value ? L"true" : L"false");
}

void jsonWriter::null() {
  separate();
  output_.text(L"null");
}

}  // namespace vokTable

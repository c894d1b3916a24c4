#include "tools/text.h"

#include <fmt/core.h>

#include <type_traits>

namespace vokTable {
namespace {

char32_t element(wchar_t unit) {
  return static_cast<char32_t>(static_cast<std::make_unsigned_t<wchar_t>>(unit));
}

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

void appendUtf8(std::string& out, char32_t character) {
  const auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
  if (character < 0x80) {
    put(character);
  } else if (character < 0x800) {
    put(0xC0 | (character >> 6));
    put(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    put(0xE0 | (character >> 12));
    put(0x80 | ((character >> 6) & 0x3F));
    put(0x80 | (character & 0x3F));
  } else {
    put(0xF0 | ((character >> 18) & 0x07));
    put(0x80 | ((character >> 12) & 0x3F));
    put(0x80 | ((character >> 6) & 0x3F));
    put(0x80 | (character & 0x3F));
  }
}

void appendWide(std::wstring& out, char32_t character) {
  if constexpr (sizeof(wchar_t) == 2) {
    if (character >= 0x10000) {
      const char32_t rest = character - 0x10000;
      out.push_back(static_cast<wchar_t>(0xD800 + (rest >> 10)));
      out.push_back(static_cast<wchar_t>(0xDC00 + (rest & 0x3FF)));
      return;
    }
  }
  out.push_back(static_cast<wchar_t>(character));
}

/// Number of bytes that a first byte announces; 0 for a byte that begins no character.
std::size_t announcedLength(unsigned char first) {
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  if (first >= 0xF0 && first <= 0xF4) return 4;
  return 0;
}

}  // namespace

bool drivesTerminal(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character <= 0x9F) || character == 0x061C ||
         character == 0x200E || character == 0x200F ||
         (character >= 0x2028 && character <= 0x202E) ||
         (character >= 0x2066 && character <= 0x2069) || character == byteOrderMark;
}

char32_t nextCharacter(std::wstring_view text, std::size_t& at) {
  const char32_t first = element(text[at++]);
  if (!isHighSurrogate(first) || at == text.size()) return first;
  const char32_t second = element(text[at]);
  if (!isLowSurrogate(second)) return first;
  ++at;
  return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

std::string toUtf8(std::wstring_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) appendUtf8(out, nextCharacter(text, at));
  return out;
}

std::wstring toWide(std::string_view utf8) {
  std::wstring out;
  out.reserve(utf8.size());
  for (std::size_t at = 0; at < utf8.size();) {
    const unsigned char first = static_cast<unsigned char>(utf8[at]);
    const std::size_t length = announcedLength(first);
    char32_t character = length < 2 ? first : first & (0xFFu >> (length + 1));
    std::size_t taken = 1;
    while (taken < length && at + taken < utf8.size()) {
      const unsigned char next = static_cast<unsigned char>(utf8[at + taken]);
      if ((next & 0xC0) != 0x80) break;
      character = (character << 6) | (next & 0x3F);
      ++taken;
    }
    appendWide(out, taken == length ? character : replacementCharacter);
    at += taken;
  }
  return out;
}

void appendShown(std::wstring& out, std::wstring_view value, destination where) {
  for (std::size_t at = 0; at < value.size();) {
    const std::size_t begin = at;
    const char32_t character = nextCharacter(value, at);
    if (character == U'\t') {
      out += L"\\t";
    } else if (character == U'\n') {
      out += L"\\n";
    } else if (character == U'\r') {
      out += L"\\r";
    } else if (isSurrogate(character) ||
               (where == destination::terminal && drivesTerminal(character))) {
      appendWide(out, replacementCharacter);
    } else {
      out.append(value, begin, at - begin);
    }
  }
}

std::size_t displayWidth(const std::string& utf8) {
  // fmt pads to a width in columns and never needs more columns than bytes; what it adds when asked
  // for as many columns as there are bytes tells how many columns the text itself takes.
  return 2 * utf8.size() - fmt::formatted_size("{:<{}}", utf8, utf8.size());
}

bool looksNumeric(std::wstring_view value) {
  std::size_t at = 0;
  const auto sign = [&] {
    if (at < value.size() && (value[at] == L'+' || value[at] == L'-')) ++at;
  };
  const auto digits = [&] {
    const std::size_t begin = at;
    while (at < value.size() && value[at] >= L'0' && value[at] <= L'9') ++at;
    return at - begin;
  };
  sign();
  std::size_t mantissa = digits();
  if (at < value.size() && (value[at] == L'.' || value[at] == L',')) {
    ++at;
    mantissa += digits();
  }
  if (mantissa == 0) return false;
  if (at < value.size() && (value[at] == L'e' || value[at] == L'E')) {
    ++at;
    sign();
    if (digits() == 0) return false;
  }
  return at == value.size();
}

std::string grouped(std::uint64_t count) {
  std::string digits = fmt::format("{}", count);
  for (std::size_t at = digits.size(); at > 3; at -= 3) digits.insert(at - 3, 1, ' ');
  return digits;
}

std::string counted(std::uint64_t count, std::string_view what) {
  return fmt::format("{} {}{}", grouped(count), what, count == 1 ? "" : "s");
}

std::string inQuotes(std::string_view text) { return fmt::format("\"{}\"", text); }

}  // namespace vokTable

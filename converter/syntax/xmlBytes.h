// Pieces of XML read straight from bytes, for the elements that a part repeats millions of times.
//
// Only the plainest form is known here: no references, no CDATA, no comments, no single quotes, ASCII names.
// Each function goes as far as it understands, and its caller leaves to the parser whatever holds more. So
// nothing here may accept what the parser would refuse or read otherwise.
//
// The bytes must be followed by a NUL, which no XML may contain: it stops every function, so none needs to
// know where the bytes end. They must be UTF-8, by declaration or for want of one.
#ifndef VOK_CONVERTER_SYNTAX_XMLBYTES_H
#define VOK_CONVERTER_SYNTAX_XMLBYTES_H

#include <array>
#include <cstddef>
#include <string_view>

namespace converter {

/// Whether the bytes begin with this text. Reads no further than the first difference.
template <std::size_t Size>
constexpr bool beginsWith(const char* at, const char (&text)[Size]) {
  for (std::size_t i = 0; i + 1 < Size; ++i)
    if (at[i] != text[i]) return false;
  return true;
}

/// Behind blanks. A CR that no LF follows stops it: the parser counts lines otherwise then.
inline const char* behindBlanks(const char* at, std::size_t& lines) {
  for (;; ++at) {
    if (*at == '\n')
      ++lines;
    else if (*at != ' ' && *at != '\t' && !(*at == '\r' && at[1] == '\n'))
      return at;
  }
}

namespace detail {

// ASCII that stands for itself in text and between double quotes.
constexpr std::array<bool, 256> plainCharacters = [] {
  std::array<bool, 256> plain{};
  for (std::size_t c = 0x20; c < 0x7F; ++c) plain[c] = true;
  for (const char c : {'<', '>', '&', '"'}) plain[static_cast<unsigned char>(c)] = false;
  return plain;
}();

inline bool isFollowing(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

inline bool isNameBegin(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':';
}

inline bool isNameCharacter(char c) {
  return isNameBegin(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

}  // namespace detail

/// Behind the plain ASCII of a value.
inline const char* behindPlain(const char* at) {
  while (detail::plainCharacters[static_cast<unsigned char>(*at)]) ++at;
  return at;
}

/// Behind text: ASCII, line feeds, and the characters of two and three bytes that need no closer look.
inline const char* behindText(const char* at, std::size_t& lines) {
  for (;;) {
    at = behindPlain(at);
    const auto c = static_cast<unsigned char>(*at);
    if (c == '"' || c == '\t' || c == '\n') {
      lines += c == '\n' ? 1 : 0;
      ++at;
    } else if (c >= 0xC2 && c <= 0xDF && detail::isFollowing(at[1])) {
      at += 2;
    } else if (((c >= 0xE1 && c <= 0xEC) || c == 0xEE) && detail::isFollowing(at[1]) &&
               detail::isFollowing(at[2])) {
      at += 3;
    } else {
      return at;
    }
  }
}

/// The attributes of one start tag.
class xmlTagBytes {
 public:
  /// Reads ` name="value"`, any number of them.
  /// @param at  behind the element's name
  /// @return behind the last one, at `>` or `/>`; null when there is anything else, a local name twice and
  ///         another namespace included
  const char* read(const char* at) {
    count_ = 0;
    for (; *at == ' '; ++at) {
      const char* const name = ++at;
      if (!detail::isNameBegin(*name)) return nullptr;
      while (detail::isNameCharacter(*at)) ++at;
      std::string_view found(name, static_cast<std::size_t>(at - name));
      found.remove_prefix(found.rfind(':') + 1);
      if (!beginsWith(at, "=\"") || count_ == names_.size() || find(found) != nullptr ||
          found == "xmlns")
        return nullptr;
      const char* const value = at + 2;
      at = behindPlain(value);
      if (*at != '"') return nullptr;
      names_[count_] = found;
      values_[count_++] = {value, static_cast<std::size_t>(at - value)};
    }
    return *at == '>' || beginsWith(at, "/>") ? at : nullptr;
  }

  /// The value of the attribute with this local name; null when there is none.
  const std::string_view* find(std::string_view name) const {
    for (std::size_t i = 0; i < count_; ++i)
      if (names_[i] == name) return &values_[i];
    return nullptr;
  }

 private:
  std::array<std::string_view, 16> names_;
  std::array<std::string_view, 16> values_;
  std::size_t count_ = 0;
};

}  // namespace converter

#endif

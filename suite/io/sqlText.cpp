#include "suite/io/sqlText.h"

#include <algorithm>

namespace suiteIo {
namespace {

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r' && c != '\v'); }

char upperCase(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool isWordCharacter(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
         c == '$' || static_cast<unsigned char>(c) >= 0x80;
}

/// The quote that closes what this one opens; NUL when it is none.
char closingQuote(char c) {
  if (c == '[') return ']';
  return c == '"' || c == '\'' || c == '`' ? c : '\0';
}

}  // namespace

bool sqlToken::isWord(std::string_view upperCaseWord) const {
  return kind == tokenKind::word &&
         std::equal(text.begin(), text.end(), upperCaseWord.begin(), upperCaseWord.end(),
                    [](char mine, char wanted) { return upperCase(mine) == wanted; });
}

void sqlTokens::skipBlanksAndComments() {
  while (at_ < text_.size()) {
    std::size_t end = 0;
    if (isBlank(text_[at_]))
      end = at_ + 1;
    else if (text_.substr(at_, 2) == "--")
      end = text_.find('\n', at_);
    else if (text_.substr(at_, 2) == "/*")
      end = std::min(text_.find("*/", at_ + 2), text_.size() - 2) + 2;
    else
      return;
    at_ = std::min(end, text_.size());
  }
}

std::size_t sqlTokens::endOfQuoted(char closing) const {
  std::size_t end = at_ + 1;
  while ((end = text_.find(closing, end)) != std::string_view::npos) {
    ++end;
    if (closing == ']' || end == text_.size() || text_[end] != closing) return end;
    ++end;
  }
  return text_.size();
}

sqlToken sqlTokens::next() {
  skipBlanksAndComments();
  if (at_ == text_.size()) return {};
  const std::size_t begin = at_;
  tokenKind kind = tokenKind::sign;
  if (const char closing = closingQuote(text_[begin]); closing != '\0') {
    kind = tokenKind::quoted;
    at_ = endOfQuoted(closing);
  } else if (isWordCharacter(text_[begin])) {
    kind = tokenKind::word;
    while (at_ < text_.size() && isWordCharacter(text_[at_])) ++at_;
  } else {
    ++at_;
  }
  return {kind, text_.substr(begin, at_ - begin)};
}

std::string unquoted(std::string_view name) {
  const char closing = name.empty() ? '\0' : closingQuote(name.front());
  if (closing == '\0') return std::string(name);
  std::string meaning;
  for (std::size_t i = 1; i < name.size(); ++i) {
    if (name[i] == closing) {
      if (closing == ']' || i + 1 == name.size() || name[i + 1] != closing) break;
      ++i;
    }
    meaning += name[i];
  }
  return meaning;
}

bool isSameType(std::string_view one, std::string_view other) {
  const auto comparable = [](std::string_view text) {
    std::string rest;
    for (const char c : text)
      if (!isBlank(c)) rest += upperCase(c);
    return rest;
  };
  return comparable(one) == comparable(other);
}

}  // namespace suiteIo

// SQL text as SQLite cuts it: words, names in any of the four kinds of quotes, numbers, signs. Blanks and
// comments only separate. What is not closed goes up to the end of the text.
//
// No state; any thread.
#ifndef VOK_SUITE_IO_SQLTEXT_H
#define VOK_SUITE_IO_SQLTEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace suiteIo {

enum class tokenKind { word, quoted, sign, end };

/// A piece of the text that was cut, quotes included.
struct sqlToken {
  tokenKind kind = tokenKind::end;
  std::string_view text;

  bool isSign(char sign) const { return kind == tokenKind::sign && text.front() == sign; }
  /// True for an unquoted word, whatever the case of its (ASCII) letters.
  bool isWord(std::string_view upperCaseWord) const;
  bool isName() const { return kind == tokenKind::word || kind == tokenKind::quoted; }
};

/// Hands out the tokens of a text that outlives it.
class sqlTokens {
 public:
  explicit sqlTokens(std::string_view text) : text_(text) {}

  /// The next token; from the end on always the end.
  sqlToken next();

 private:
  void skipBlanksAndComments();
  std::size_t endOfQuoted(char closing) const;

  std::string_view text_;
  std::size_t at_ = 0;
};

/// What a name means: without its quotes, doubled quotes inside being one.
std::string unquoted(std::string_view name);

/// Equal but for the case of ASCII letters and for blanks.
bool isSameType(std::string_view one, std::string_view other);

}  // namespace suiteIo

#endif

// What the tool says to its user: errors, warnings and hints on standard error, or kept for the JSON document.
//
// A message says what happened, where, and what to do. It is one line, begins with a small letter
// after the program's name, and names files and fields as the user knows them. Colours appear on a
// terminal only, and not when NO_COLOR is set to anything; where TERM is missing the terminal is
// not known to understand them.
//
// Control characters in a message are shown as U+FFFD: names of files and fields come from outside.
// One thread at a time.
#ifndef VOK_TOOLS_MESSAGES_H
#define VOK_TOOLS_MESSAGES_H

#include <string>
#include <string_view>
#include <vector>

namespace vokTable {

/// A message that was kept, in UTF-8, and the lines below it.
struct keptMessage {
  std::string kind;  // error, warning or hint
  std::string text;
  std::vector<std::string> details;
};

class messageWriter {
 public:
  /// @param terminal  a person reads standard error on a terminal
  /// @param colours   the terminal is to show colours
  messageWriter(bool terminal, bool colours) : terminal_(terminal), colours_(colours) {}

  /// A writer that fits what standard error is.
  static messageWriter forStandardError();

  /// From now on messages are kept here instead of shown; `kept` outlives the writer.
  void keepIn(std::vector<keptMessage>& kept) { kept_ = &kept; }

  void error(std::string_view text) const;  ///< why the work was not done
  void warning(
      std::string_view text) const;  ///< what is not as it should be, though the work was done
  void hint(std::string_view text) const;    ///< a likely cause, and what to try
  void detail(std::string_view text) const;  ///< one line more for the message before

  bool isTerminal() const { return terminal_; }

 private:
  void write(std::string_view colour, std::string_view label, std::string_view text) const;

  bool terminal_;
  bool colours_;
  std::vector<keptMessage>* kept_ = nullptr;
};

}  // namespace vokTable

#endif

// Standard output: data and nothing else, UTF-8, every line ended by LF on both targets.
//
// Whoever writes goes on until isOpen() answers false, then stops; `finish` tells at the end what
// became of it. A reader that closes its end of a pipe early has all it wanted: that is no failure.
// A disk that is full is one.
#ifndef VOK_TOOLS_OUTPUT_H
#define VOK_TOOLS_OUTPUT_H

#include <string>
#include <string_view>

#include "tools/exitCodes.h"
#include "tools/messages.h"
#include "tools/text.h"

namespace vokTable {

class dataOutput {
 public:
  /// The output for where standard output leads.
  static dataOutput forStandardOutput();

  explicit dataOutput(destination where) : where_(where) {}

  destination where() const { return where_; }

  /// False when nothing more is taken.
  bool isOpen() const { return state_ == state::open; }

  /// Writes text as it is.
  void text(std::wstring_view text);
  /// Writes one line as it is, and its end.
  void line(std::wstring_view text);
  /// Writes one value on a line of its own, made fit for showing (see appendShown).
  void value(std::wstring_view value);

  /// Hands to the system what was written so far, so that a message comes after it.
  void flush();
  /// The same at the end of the work, with an error message when not everything was taken.
  /// @param outcome  what the command answers when the output took everything
  exitCode finish(const messageWriter& messages, exitCode outcome);

 private:
  enum class state { open, readerGone, failed };
  void sendBuffer();
  void note(bool taken);

  destination where_;
  state state_ = state::open;
  std::wstring buffer_;
};

}  // namespace vokTable

#endif

#include "tools/messages.h"

#include <string>

#include "platform/console.h"
#include "platform/environment.h"
#include "tools/text.h"

namespace vokTable {
namespace {

constexpr std::string_view red = "\x1b[1;31m";
constexpr std::string_view yellow = "\x1b[1;33m";
constexpr std::string_view cyan = "\x1b[1;36m";
constexpr std::wstring_view plain = L"\x1b[0m";

bool terminalShowsColours() {
  const auto refused = platform::environmentVariable(L"NO_COLOR");
  if (refused && !refused->empty()) return false;
  const auto terminal = platform::environmentVariable(L"TERM");
  return terminal && !terminal->empty() && *terminal != L"dumb";
}

}  // namespace

messageWriter messageWriter::forStandardError() {
  const bool terminal = platform::isTerminal(platform::standardStream::error);
  return {terminal, terminal && terminalShowsColours()};
}

void messageWriter::error(std::string_view text) const { write(red, "error", text); }

void messageWriter::warning(std::string_view text) const { write(yellow, "warning", text); }

void messageWriter::hint(std::string_view text) const { write(cyan, "hint", text); }

void messageWriter::detail(std::string_view text) const { write({}, {}, text); }

void messageWriter::write(std::string_view colour, std::string_view label,
                          std::string_view text) const {
  if (kept_ != nullptr) {
    if (label.empty() && !kept_->empty())
      kept_->back().details.emplace_back(text);
    else
      kept_->push_back({std::string(label), std::string(text), {}});
    return;
  }
  std::wstring line;
  if (label.empty()) {
    line += L"  ";
  } else {
    line += L"vok_table: ";
    if (colours_) line += toWide(colour);
    line += toWide(label) + L":";
    if (colours_) line += plain;
    line += L" ";
  }
  appendShown(line, toWide(text), destination::terminal);
  line += L"\n";
  // WHY: the answers are not looked at. When standard error is gone nobody is left to be told, and
  // the exit code still says what happened.
  platform::writeText(platform::standardStream::error, line);
  platform::flushText(platform::standardStream::error);
}

}  // namespace vokTable

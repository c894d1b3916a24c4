#include "tools/progress.h"

#include <fmt/core.h>

#include <algorithm>
#include <chrono>
#include <new>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/console.h"
#include "tools/text.h"

namespace vokTable {
namespace {

using clock = std::chrono::steady_clock;

constexpr auto patience = std::chrono::milliseconds(500);
constexpr auto period = std::chrono::milliseconds(100);

void show(std::wstring_view text) {
  platform::writeText(platform::standardStream::error, text);
  platform::flushText(platform::standardStream::error);
}

/// Blanks over the line, instead of a control sequence that not every terminal knows.
void erase(std::size_t columns) { show(L"\r" + std::wstring(columns, L' ') + L"\r"); }

}  // namespace

progressLine::progressLine(const messageWriter& messages, std::string work)
    : work_(std::move(work)) {
  if (!messages.isTerminal()) return;
  try {
    thread_.emplace([this](const std::stop_token& stop) {
      try {
        draw(stop);
      } catch (const std::bad_alloc&) {
        // Without memory for a line there is no line; the work itself decides what happens.
      }
    });
  } catch (const std::system_error&) {
    // No thread, no line.
  }
}

void progressLine::advance(std::uint64_t done, std::uint64_t total) {
  done_.store(done, std::memory_order_relaxed);
  total_.store(total, std::memory_order_relaxed);
}

void progressLine::draw(const std::stop_token& stop) {
  const auto begin = clock::now();
  std::size_t drawn = 0;
  std::unique_lock lock(mutex_);
  for (auto wait = patience;; wait = period) {
    stopped_.wait_for(lock, stop, wait, [] { return false; });
    if (stop.stop_requested()) break;
    const std::chrono::duration<double> passed = clock::now() - begin;
    // The last column stays free: a terminal may go on to the next line when it is filled.
    const int width = platform::terminalWidth(platform::standardStream::error);
    const auto room = static_cast<std::size_t>(std::max(width - 1, 0));
    std::wstring line;
    appendShown(line, toWide(content(passed.count())), destination::terminal);
    if (displayWidth(toUtf8(line)) > room) line.resize(std::min(line.size(), room / 2));
    const std::size_t columns = displayWidth(toUtf8(line));
    if (drawn > columns) erase(drawn);
    show(L"\r" + line);
    drawn = columns;
  }
  if (drawn > 0) erase(drawn);
}

std::string progressLine::content(double seconds) const {
  const std::uint64_t total = total_.load(std::memory_order_relaxed);
  if (total == 0) return fmt::format("{}: {:.0f} s", work_, seconds);
  const std::uint64_t done = done_.load(std::memory_order_relaxed);
  return fmt::format("{}: {} of {} rows", work_, grouped(done), grouped(total));
}

}  // namespace vokTable

// A line on standard error that tells what a longer piece of work is doing, for people only: it
// appears after half a second, on a terminal, and is gone when the work is done.
//
//     progressLine progress(messages, "reading wells.csv");
//     ... progress.advance(rows, total);
//
// The line is drawn by a thread of its own, because a read is one call. While a progressLine lives
// nobody else may write to standard error; it is gone when its destructor returns.
#ifndef VOK_TOOLS_PROGRESS_H
#define VOK_TOOLS_PROGRESS_H

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>

#include "tools/messages.h"

namespace vokTable {

class progressLine {
 public:
  /// @param work  what is being done, as a message would say it
  progressLine(const messageWriter& messages, std::string work);
  progressLine(const progressLine&) = delete;
  progressLine& operator=(const progressLine&) = delete;
  ~progressLine() = default;

  /// How far the work is; without a call the line shows the time alone.
  void advance(std::uint64_t done, std::uint64_t total);

 private:
  void draw(const std::stop_token& stop);
  std::string content(double seconds) const;

  std::string work_;
  std::atomic<std::uint64_t> done_{0};
  std::atomic<std::uint64_t> total_{0};
  std::mutex mutex_;
  std::condition_variable_any stopped_;
  std::optional<std::jthread> thread_;  // last: it ends before what it uses is destroyed
};

}  // namespace vokTable

#endif

// The exit codes of vok_table. They are part of its interface: scripts rely on the numbers.
//
// A command answers with one of them, and main hands it on unchanged.
#ifndef VOK_TOOLS_EXITCODES_H
#define VOK_TOOLS_EXITCODES_H

namespace vokTable {

enum class exitCode : int {
  clean = 0,         ///< done, nothing to say
  rejected = 1,      ///< done, but lines were rejected, or the target cannot hold some values
  usage = 2,         ///< the command line cannot be followed
  cannotOpen = 3,    ///< the source is missing, is a folder or cannot be read
  notAvailable = 4,  ///< the format, or the driver it needs, is not available
  writeFailed = 5,   ///< the target or standard output did not take everything
};

/// The worse of two outcomes.
constexpr exitCode worse(exitCode first, exitCode second) {
  return static_cast<int>(first) > static_cast<int>(second) ? first : second;
}

/// Whether a target was written, whatever it could not hold.
constexpr bool isWritten(exitCode outcome) {
  return worse(outcome, exitCode::rejected) == exitCode::rejected;
}

}  // namespace vokTable

#endif

// Ctrl-C and its like, while something has to be cleaned up first.
#ifndef VOK_TOOLS_INTERRUPTION_H
#define VOK_TOOLS_INTERRUPTION_H

namespace vokTable {

/// While it lives, a request to end the program is noted instead of obeyed. They may be nested: what one within another
/// has noted, the outer one has, too.
class interruption {
 public:
  interruption();
  interruption(const interruption&) = delete;
  interruption& operator=(const interruption&) = delete;
  ~interruption();

  /// Whether somebody has asked meanwhile.
  bool isAskedFor() const;
};

}  // namespace vokTable

#endif

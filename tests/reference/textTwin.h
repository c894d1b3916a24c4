// Slow and obvious versions of what table_rw/text does with bytes and text, for comparison: one
// character at a time, nothing shared with the library.
#ifndef VOK_TESTS_REFERENCE_TEXTTWIN_H
#define VOK_TESTS_REFERENCE_TEXTTWIN_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace reference {

/// What a program sees of a file's bytes in text mode: CR LF as LF, nothing from the byte 1A on.
std::string foldTextMode(std::string_view fileBytes);

/// A text-mode stream over bytes in memory, with fgets and feof as the C language describes them.
class textStream {
 public:
  explicit textStream(std::string_view fileBytes) : bytes_(foldTextMode(fileBytes)) {}

  /// `fgets` into a buffer of `bufferSize` bytes. @return false where fgets answers a null pointer
  bool fgets(std::string& chunk, std::size_t bufferSize);

  bool feof() const { return endWasMet_; }

 private:
  std::string bytes_;
  std::size_t next_ = 0;
  bool endWasMet_ = false;
};

/// The bytes of one line, its LF included, taken in chunks of 1,023 bytes of which each ends at its
/// first NUL byte. @return false when nothing was read
bool readLineBytes(textStream& stream, std::string& line);

/// The line decoded, without one LF and then one CR at its end.
bool readTextLine(textStream& stream, int encoding, std::wstring& line);

std::vector<std::wstring> splitText(const std::wstring& text, const std::wstring& delimiter,
                                    bool skipEmpty);

std::wstring trimText(const std::wstring& text);

}  // namespace reference

#endif

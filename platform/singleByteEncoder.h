// Wide text to a single-byte code page by table, for writers: what encodeText answers, one look-up a
// character. The table is asked from the platform page by page of the BMP, when a page is first met.
//
// One object belongs to one thread at a time. Nothing fails but allocation.
#ifndef VOK_PLATFORM_SINGLEBYTEENCODER_H
#define VOK_PLATFORM_SINGLEBYTEENCODER_H

#include <array>
#include <cstddef>
#include <memory>
#include <string_view>

namespace platform {

/// What an encoder wrote.
struct encodedText {
  char* end;   ///< behind the last byte
  bool plain;  ///< no control character (00 to 1F) is among the bytes
};

class singleByteEncoder {
 public:
  /// @param codePage  one in which every character of the BMP is one byte, its substitution included
  explicit singleByteEncoder(unsigned codePage) : codePage_(codePage) {}

  /// Writes the bytes of `text`, at most mostBytes for each element. A character beyond the BMP is two
  /// units, each of them substituted.
  encodedText encode(std::wstring_view text, char* to);
  static constexpr std::size_t mostBytes = 2;

 private:
  static constexpr unsigned pageSize = 256;
  using page = std::array<char, pageSize>;

  const page& pageOf(unsigned number) {
    return pages_[number] != nullptr ? *pages_[number] : makePage(number);
  }
  const page& makePage(unsigned number);
  encodedText encodeByTable(const wchar_t* from, const wchar_t* end, char* to, bool control);

  unsigned codePage_;
  std::array<std::unique_ptr<page>, 256> pages_;
};

}  // namespace platform

#endif

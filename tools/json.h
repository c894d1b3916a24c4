// Writing of JSON documents, piece by piece into standard output: nothing is kept but how deep it stands.
//
// Strings are exact. Whatever could drive a terminal, and every control character, is written as an escape;
// so is a lone surrogate, as \uD800 and the like, which no other writing of it could bring across. The
// document is ASCII and UTF-8 at once for a reader that follows RFC 8259.
//
// WHY no library: none that is packaged both streams and takes text with lone surrogates; what remains beside
// the strings are commas and brackets.
//
// One object belongs to one thread at a time.
#ifndef VOK_TOOLS_JSON_H
#define VOK_TOOLS_JSON_H

#include <cstdint>
#include <string>
#include <string_view>

#include "tools/output.h"

namespace vokTable {

class jsonWriter {
 public:
  explicit jsonWriter(dataOutput& output) : output_(output) {}

  void beginObject() { open(L'{'); }
  void endObject() { close(L'}'); }
  void beginArray() { open(L'['); }
  void endArray() { close(L']'); }

  /// The name of the value that comes next, in an object.
  void key(std::string_view name);

  void string(std::wstring_view text);
  void string(std::string_view utf8);
  void number(std::uint64_t value);
  void truth(bool value);
  void null();

  /// A line break before the next value: big documents stay readable, and rows stand on lines of their own.
  void breakLine() { breaks_ = true; }

  /// False when standard output takes nothing more.
  bool isOpen() const { return output_.isOpen(); }

 private:
  void separate();
  void open(wchar_t bracket);
  void close(wchar_t bracket);

  dataOutput& output_;
  std::wstring scratch_;
  bool isFirst_ = true;  // of the values in this bracket
  bool afterKey_ = false;
  bool breaks_ = false;
};

/// Appends text between quotation marks, as it stands in a JSON document.
void appendJsonString(std::wstring& out, std::wstring_view text);

}  // namespace vokTable

#endif

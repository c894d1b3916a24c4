// What the first bytes of a file tell about its format, where the file's name tells nothing.
//
// The library takes a file of an unknown name for delimited text. Databases, workbooks and other tables would come
// out as garbage then, without a word, so the tool looks before it lets that happen. Text never begins like any
// of the formats that are known here.
//
// A pipe is not looked at: its bytes can be read once. No state; any thread.
#ifndef VOK_TOOLS_FILEBEGIN_H
#define VOK_TOOLS_FILEBEGIN_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vokTable {

/// The first bytes of a file, at most `count`; none of a pipe and of what cannot be read.
std::string firstBytes(const std::wstring& path, std::size_t count);

/// True for text in UTF-16, with a mark or without one.
bool beginsLikeUtf16(std::string_view bytes);

/// A format that is no delimited text.
struct otherFormat {
  std::string_view title;   // with its article
  std::string_view advice;  // what to do with such a file
};

/// What a file seems to be that would be taken for delimited text; nothing when there is no sign of it.
std::optional<otherFormat> formatOfContent(const std::wstring& path);

}  // namespace vokTable

#endif

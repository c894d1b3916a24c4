// Between the wide text of paths and arguments and the UTF-8 of files and messages.
#ifndef VOK_CONVERTER_WIDETEXT_H
#define VOK_CONVERTER_WIDETEXT_H

#include <string>
#include <string_view>

namespace converter {

std::string toUtf8(std::wstring_view text);
std::wstring toWide(std::string_view utf8);

}  // namespace converter

#endif

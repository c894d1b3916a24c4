// How a table tells the code page of its text: a byte of the header, the language driver, or a .cpg file
// beside it for pages that have no such byte. No state; any thread.
#ifndef VOK_SUITE_FILE_DBF_DBFLANGUAGES_H
#define VOK_SUITE_FILE_DBF_DBFLANGUAGES_H

#include <string>

namespace fileDbf {

/// The language driver of a code page; 0 when it has none.
unsigned char languageDriverOf(unsigned codePage);

/// What a .cpg file says of a code page: "UTF-8", "1258".
std::string codePageText(unsigned codePage);

}  // namespace fileDbf

#endif

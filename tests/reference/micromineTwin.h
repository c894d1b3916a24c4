// A slow and obvious version of what the Micromine reader makes of a data file that is whole up to its
// records: byte by byte, one value at a time, nothing shared with the library but the code pages.
#ifndef VOK_TESTS_REFERENCE_MICROMINETWIN_H
#define VOK_TESTS_REFERENCE_MICROMINETWIN_H

#include <string_view>

#include "tests/support/tableText.h"

namespace reference {

/// @param codePage  of the file's text
testSupport::tableContent readMicromine(std::string_view fileBytes, unsigned codePage);

}  // namespace reference

#endif

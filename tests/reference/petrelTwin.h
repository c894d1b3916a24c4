// A slow and obvious reader of Petrel tables, written step by step after the rules of the format
// (see table_rw/readers/tableReader_petrel.h); it shares only the decoding of bytes with the library.
#ifndef VOK_TESTS_REFERENCE_PETRELTWIN_H
#define VOK_TESTS_REFERENCE_PETRELTWIN_H

#include <cstdint>
#include <string_view>

#include "tests/support/tableText.h"

namespace reference {

/// What a read of a file with these bytes produces.
testSupport::tableContent readPetrel(std::string_view fileBytes, std::int32_t limit = -1,
                                     bool headersOnly = false);

}  // namespace reference

#endif

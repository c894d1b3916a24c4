#include "table_rw/text/valueDecoder.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>

#include "platform/codePages.h"
#include "table_rw/text/textConversion.h"
#include "table_rw/text/utf8.h"

namespace tableRW {

char* valueDecoder::decodeOther(const char* bytes, std::size_t size, char* to) const {
  const bool ascii =
      std::all_of(bytes, bytes + size, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  if (ascii || (codePage_ == platform::utf8CodePage && isValidUtf8({bytes, size})))
    return copyText(bytes, size, to);
  // A longer value is more than the platform converts at once: it comes out empty, as decodeText has it.
  if (size > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) return to;
  return narrowToUtf8(decodeBytes(bytes, static_cast<std::int32_t>(size), codePage_), to);
}

}  // namespace tableRW

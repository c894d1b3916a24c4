#include "table_rw/text/singleByteDecoder.h"

#include <string>

#include "table_rw/text/textConversion.h"
#include "table_rw/text/utf8.h"

namespace tableRW {
namespace {

bool hasOnlySingleBytes(unsigned codePage) {
  return (codePage >= 1250 && codePage <= 1258) || codePage == 866;
}

}  // namespace

bool singleByteDecoder::make(unsigned codePage) {
  if (!hasOnlySingleBytes(codePage)) return false;
  for (unsigned byte = 0; byte < 256; ++byte) {
    const char narrow = static_cast<char>(byte);
    const std::string utf8 = utf8FromWide(decodeBytes(&narrow, 1, codePage));
    if (utf8.empty() || utf8.size() > mostBytes) return false;
    std::memcpy(toUtf8_[byte].data(), utf8.data(), utf8.size());
    toUtf8_[byte].back() = static_cast<char>(utf8.size());
  }
  return true;
}

}  // namespace tableRW

#include "tests/reference/utf8.h"

namespace reference {
namespace {

bool isContinuation(unsigned byte) { return byte >= 0x80 && byte <= 0xBF; }

// The bytes that follow a lead byte; 0 for a byte that leads nothing.
unsigned followers(unsigned lead) {
  if (lead >= 0xC2 && lead <= 0xDF) return 1;
  if (lead >= 0xE0 && lead <= 0xEF) return 2;
  if (lead >= 0xF0 && lead <= 0xF4) return 3;
  return 0;
}

bool isSecondInRange(unsigned lead, unsigned second) {
  switch (lead) {
    case 0xE0:
      return second >= 0xA0;  // shorter forms exist
    case 0xED:
      return second <= 0x9F;  // surrogates
    case 0xF0:
      return second >= 0x90;  // shorter forms exist
    case 0xF4:
      return second <= 0x8F;  // above U+10FFFF
    default:
      return true;
  }
}

void append(std::u16string& units, unsigned character) {
  if (character > 0xFFFF) {
    units += static_cast<char16_t>(0xD800 + (character - 0x10000) / 0x400);
    units += static_cast<char16_t>(0xDC00 + (character - 0x10000) % 0x400);
  } else {
    units += static_cast<char16_t>(character);
  }
}

}  // namespace

std::u16string decodeUtf8(const std::string& bytes) {
  std::u16string units;
  std::size_t next = 0;
  while (next < bytes.size()) {
    const unsigned lead = static_cast<unsigned char>(bytes[next++]);
    if (lead < 0x80) {
      append(units, lead);
      continue;
    }
    const unsigned wanted = followers(lead);
    unsigned character = wanted == 1 ? lead - 0xC0 : wanted == 2 ? lead - 0xE0 : lead - 0xF0;
    bool isBroken = wanted == 0;
    for (unsigned i = 0; i < wanted && !isBroken; ++i) {
      const unsigned byte = next < bytes.size() ? static_cast<unsigned char>(bytes[next]) : 0u;
      if (!isContinuation(byte)) {
        isBroken = true;  // and the byte is looked at again
      } else {
        ++next;
        character = character * 64 + (byte - 0x80);
        if (i == 0 && !isSecondInRange(lead, byte)) isBroken = true;  // and the byte is used up
      }
    }
    append(units, isBroken ? 0xFFFD : character);
  }
  return units;
}

std::string encodeUtf8(const std::u16string& units) {
  std::string bytes;
  for (std::size_t i = 0; i < units.size(); ++i) {
    unsigned character = units[i];
    if (character >= 0xD800 && character <= 0xDFFF) {
      const unsigned next = i + 1 < units.size() ? units[i + 1] : 0u;
      if (character < 0xDC00 && next >= 0xDC00 && next <= 0xDFFF) {
        character = 0x10000 + (character - 0xD800) * 0x400 + (next - 0xDC00);
        ++i;
      } else {
        character = 0xFFFD;
      }
    }
    if (character < 0x80) {
      bytes += static_cast<char>(character);
    } else if (character < 0x800) {
      bytes += static_cast<char>(0xC0 + character / 64);
      bytes += static_cast<char>(0x80 + character % 64);
    } else if (character < 0x10000) {
      bytes += static_cast<char>(0xE0 + character / 4096);
      bytes += static_cast<char>(0x80 + character / 64 % 64);
      bytes += static_cast<char>(0x80 + character % 64);
    } else {
      bytes += static_cast<char>(0xF0 + character / 262144);
      bytes += static_cast<char>(0x80 + character / 4096 % 64);
      bytes += static_cast<char>(0x80 + character / 64 % 64);
      bytes += static_cast<char>(0x80 + character % 64);
    }
  }
  return bytes;
}

}  // namespace reference

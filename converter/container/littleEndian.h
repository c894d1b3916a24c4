// Integers and doubles as they stand in files, least significant byte first.
#ifndef VOK_CONVERTER_CONTAINER_LITTLEENDIAN_H
#define VOK_CONVERTER_CONTAINER_LITTLEENDIAN_H

#include <bit>
#include <cstdint>

namespace converter {

inline std::uint16_t read16(const unsigned char* bytes) {
  return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
}

inline std::uint32_t read32(const unsigned char* bytes) {
  return read16(bytes) | static_cast<std::uint32_t>(read16(bytes + 2)) << 16;
}

inline std::uint64_t read64(const unsigned char* bytes) {
  return read32(bytes) | static_cast<std::uint64_t>(read32(bytes + 4)) << 32;
}

inline double readDouble(const unsigned char* bytes) {
  return std::bit_cast<double>(read64(bytes));
}

}  // namespace converter

#endif

// Where the bytes of a DBF file stand: the one description that reading and writing share.
//
//     header 32 | field descriptors 32 each | 0D | [FoxPro: 263 bytes] | records | 1A
//     header 68 | field descriptors 48 each | 0D | [field properties]  | records | 1A    dBASE 7
//     header  8 | field descriptors 16 each | 0D | ... up to byte 521  | records | 1A    dBASE II
//
// A record is one byte that tells whether it is deleted and the fields one behind the other, as wide as
// their descriptors say. Numbers of the header are little-endian.
// FORMAT: the vendors' file descriptions, and what files in use hold.
#ifndef VOK_SUITE_FILE_DBF_DBFLAYOUT_H
#define VOK_SUITE_FILE_DBF_DBFLAYOUT_H

#include <cstddef>
#include <cstdint>

namespace fileDbf {

// --- the header ---
inline constexpr std::size_t headerSize = 32;
inline constexpr std::size_t versionAt = 0;
inline constexpr std::size_t dateAt = 1;  // year since 1900, month, day
inline constexpr std::size_t dateSize = 3;
inline constexpr std::size_t recordCountAt = 4;
inline constexpr std::size_t headerLengthAt = 8;
inline constexpr std::size_t recordLengthAt = 10;
inline constexpr std::size_t languageAt = 29;

// --- the versions that differ in layout ---
inline constexpr unsigned versionDbase2 = 0x02;
inline constexpr unsigned versionDbase3 = 0x03;  // what is written
inline constexpr unsigned versionDbase3Memo = 0x83;
inline constexpr unsigned versionFoxPro = 0x30;      // Visual FoxPro: 30 to 32
inline constexpr unsigned versionFoxProLast = 0x32;  // with varchar fields
inline constexpr unsigned versionFoxProMemo = 0xF5;  // FoxPro 2

// --- field descriptors, by offset in one of them ---
struct descriptorLayout {
  std::size_t first;  // where the first descriptor stands in the file
  std::size_t size;
  std::size_t nameSize;
  std::size_t type;
  std::size_t length;
  std::size_t decimals;
};
inline constexpr descriptorLayout descriptorsDbase3 = {headerSize, 32, 11, 11, 16, 17};
inline constexpr descriptorLayout descriptorsDbase7 = {68, 48, 32, 32, 33, 34};
inline constexpr descriptorLayout descriptorsDbase2 = {8, 16, 11, 11, 12, 15};
inline constexpr std::size_t backlinkSize = 263;  // behind the descriptors of Visual FoxPro
inline constexpr std::size_t fieldFlagsAt = 18;   // Visual FoxPro alone
inline constexpr unsigned flagNullable = 0x02;

inline constexpr unsigned char descriptorsEnd = 0x0D;

// --- dBASE II ---
inline constexpr std::size_t recordCountAt2 = 1;
inline constexpr std::size_t recordLengthAt2 = 6;
inline constexpr std::size_t recordsAt2 = 521;

// --- records ---
inline constexpr char liveMark = ' ';
inline constexpr char deletedMark = '*';
inline constexpr char fileEnd = 0x1A;
inline constexpr std::size_t largestLength = 0xFFFF;  // of a header and of a record

inline std::uint32_t byteAt(const char* bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]);
}

/// An unsigned number of `size` bytes, at most 8.
inline std::uint64_t loadLittle(const char* bytes, std::size_t size) {
  std::uint64_t number = 0;
  for (std::size_t i = size; i > 0; --i) number = number << 8 | byteAt(bytes, i - 1);
  return number;
}

inline std::uint64_t loadBig(const char* bytes, std::size_t size) {
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < size; ++i) number = number << 8 | byteAt(bytes, i);
  return number;
}

inline void storeLittle(char* bytes, std::uint64_t number, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(number >> (8 * i) & 0xFF);
}

}  // namespace fileDbf

#endif

// The wells table, the data of the text benchmarks: twelve columns, one row a sample, `;` between
// values, LF behind every line.
//
//     WELL     W0000000, W0000001 ...   unique, never blank
//     FIELD    one of 16 names          in Russian, in the ASCII file in Latin letters
//     LITH     one of 8 names           in Russian, in the ASCII file in English
//     the rest numbers and a date
//
// Of the values behind WELL 3 % are empty and 2 % have a blank on either side.
#ifndef VOK_BENCH_WELLS_H
#define VOK_BENCH_WELLS_H

#include <cstddef>

namespace bench {

inline constexpr char wellsHeader[] = "WELL;N;DEPTH;FIELD;GR;NPHI;RHOB;DT;CODE;LITH;PERM;DATE\n";
inline constexpr std::size_t wellsColumns = 12;
inline constexpr std::size_t wellsFieldColumn = 3;

/// A byte of the CP1251 file as a character. Only ASCII and the Russian letters occur in it.
constexpr wchar_t wideFromCp1251(unsigned char byte) {
  if (byte == 0xA8) return L'\x0401';  // Ё
  if (byte == 0xB8) return L'\x0451';  // ё
  return byte < 0xC0 ? static_cast<wchar_t>(byte) : static_cast<wchar_t>(0x0410 + (byte - 0xC0));
}

/// The way back.
constexpr unsigned char cp1251FromWide(wchar_t character) {
  if (character == L'\x0401') return 0xA8;
  if (character == L'\x0451') return 0xB8;
  return static_cast<unsigned char>(character < 0x80 ? character : character - 0x0410 + 0xC0);
}

}  // namespace bench

#endif

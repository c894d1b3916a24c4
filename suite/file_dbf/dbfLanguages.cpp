#include "suite/file_dbf/dbfLanguages.h"

#include <algorithm>
#include <iterator>

namespace fileDbf {
namespace {

// FORMAT: the drivers that other programs write for these pages.
constexpr struct {
  unsigned codePage;
  unsigned char driver;
} drivers[] = {
    {437,  0x01},
    {737,  0x6A},
    {850,  0x02},
    {852,  0x64},
    {857,  0x6B},
    {861,  0x67},
    {865,  0x66},
    {866,  0x65},
    {874,  0x7C},
    {932,  0x7B},
    {936,  0x7A},
    {949,  0x79},
    {950,  0x78},
    {1250, 0xC8},
    {1251, 0xC9},
    {1252, 0x03},
    {1253, 0xCB},
    {1254, 0xCA},
    {1255, 0x7D},
    {1256, 0x7E},
    {1257, 0xCC},
};
constexpr unsigned utf8 = 65001;
constexpr unsigned ascii = 20127;

}  // namespace

unsigned char languageDriverOf(unsigned codePage) {
  const auto* const found =
      std::find_if(std::begin(drivers), std::end(drivers),
                   [codePage](const auto& row) { return row.codePage == codePage; });
  return found == std::end(drivers) ? static_cast<unsigned char>(0) : found->driver;
}

std::string codePageText(unsigned codePage) {
  if (codePage == utf8) return "UTF-8";
  return codePage == ascii ? "US-ASCII" : std::to_string(codePage);
}

}  // namespace fileDbf

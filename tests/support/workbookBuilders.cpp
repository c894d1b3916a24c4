#include "tests/support/workbookBuilders.h"

#include <zlib.h>

#include <bit>
#include <stdexcept>

namespace testSupport {
namespace {

std::string le64(std::uint64_t value) {
  return le32(static_cast<std::uint32_t>(value)) + le32(static_cast<std::uint32_t>(value >> 32));
}

std::string deflated(const std::string& bytes) {
  z_stream stream{};
  if (deflateInit2(&stream, 6, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK)
    throw std::runtime_error("zlib does not start");
  std::string out(deflateBound(&stream, static_cast<uLong>(bytes.size())), '\0');
  std::string in = bytes;  // zlib takes no constant bytes
  stream.next_in = reinterpret_cast<Bytef*>(in.data());
  stream.avail_in = static_cast<uInt>(in.size());
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  const int answer = deflate(&stream, Z_FINISH);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  if (answer != Z_STREAM_END) throw std::runtime_error("zlib does not end");
  return out;
}

constexpr std::string_view mainNamespace =
    "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
constexpr std::string_view officeTypes =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships";

std::string relation(const std::string& id, const std::string& type, const std::string& target) {
  return "<Relationship Id=\"" + id + "\" Type=\"" + std::string(officeTypes) + "/" + type +
         "\" Target=\"" + target + "\"/>";
}

std::string biff(unsigned version, const std::string& globals, const std::string& cells,
                 const std::string& name) {
  constexpr unsigned begin = 0x0809;
  constexpr unsigned end = 0x000A;
  constexpr unsigned boundSheet = 0x0085;
  const auto beginOf = [&](unsigned kind) {
    return record(begin, le16(version) + le16(kind) + std::string(version == 0x600 ? 12 : 4, '\0'));
  };
  const std::string first = beginOf(5) + globals;
  const std::string listed = le16(0) + name;  // visible, a sheet
  const std::size_t place = first.size() + 8 + listed.size() + record(end, "").size();
  return first + record(boundSheet, le32(static_cast<std::uint32_t>(place)) + listed) +
         record(end, "") + beginOf(0x10) + cells + record(end, "");
}

}  // namespace

std::string le16(unsigned value) {
  return {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8 & 0xFF)};
}

std::string le32(std::uint32_t value) { return le16(value & 0xFFFF) + le16(value >> 16); }

std::string leDouble(double value) { return le64(std::bit_cast<std::uint64_t>(value)); }

std::string zipOf(const zipMembers& members, bool isDeflated) {
  std::string archive;
  std::string directory;
  for (const auto& [name, bytes] : members) {
    const std::string packed = isDeflated ? deflated(bytes) : bytes;
    const auto sum = static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size())));
    const std::string common = le16(20) + le16(0) + le16(isDeflated ? 8 : 0) + le32(0) + le32(sum) +
                               le32(static_cast<std::uint32_t>(packed.size())) +
                               le32(static_cast<std::uint32_t>(bytes.size())) +
                               le16(static_cast<unsigned>(name.size())) + le16(0);
    directory += "PK\1\2" + le16(20) + common + std::string(10, '\0') +
                 le32(static_cast<std::uint32_t>(archive.size())) + name;
    archive += "PK\3\4" + common + name + packed;
  }
  const auto count = static_cast<unsigned>(members.size());
  return archive + directory + "PK\5\6" + le32(0) + le16(count) + le16(count) +
         le32(static_cast<std::uint32_t>(directory.size())) +
         le32(static_cast<std::uint32_t>(archive.size())) + le16(0);
}

zipMembers xlsxBuilder::members() const {
  const std::string space = " xmlns=\"" + std::string(mainNamespace) + "\"";
  const std::string relations =
      "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">";
  zipMembers all = {
      {"_rels/.rels",
       relations + relation("r1",                                                           "officeDocument", "xl/workbook.xml") + "</Relationships>"},
      {"xl/workbook.xml",
       "<workbook" + space + " xmlns:r=\"" + std::string(officeTypes) + "\"><workbookPr " +
           properties +
           "/><sheets><sheet name=\"S\" sheetId=\"1\" r:id=\"r1\"/></sheets></workbook>"                                         },
      {"xl/_rels/workbook.xml.rels",
       relations + relation("r1","worksheet", "worksheets/sheet1.xml") +
           relation("r2", "styles", "styles.xml") +
           relation("r3", "sharedStrings", "sharedStrings.xml") + "</Relationships>"},
      {"xl/styles.xml",                                                         "<styleSheet" + space + "><numFmts>" + formats +
                            "</numFmts><cellStyleXfs><xf numFmtId=\"14\"/></cellStyleXfs>" +
                            "<cellXfs>" + styles + "</cellXfs></styleSheet>"                                                                                      },
      {"xl/worksheets/sheet1.xml",                                                                         "<worksheet" + space + ">" + worksheet + "</worksheet>"                                                 },
  };
  if (!sharedStrings.empty())
    all.emplace_back("xl/sharedStrings.xml", "<sst" + space + ">" + sharedStrings + "</sst>");
  return all;
}

std::string record(unsigned id, const std::string& data) {
  return le16(id) + le16(static_cast<unsigned>(data.size())) + data;
}

std::string biff8(const std::string& globals, const std::string& cells) {
  return biff(0x600, globals, cells, std::string("\1\0S", 3));
}

std::string biff5(const std::string& globals, const std::string& cells) {
  return biff(0x500, globals, cells, std::string("\1S", 2));
}

std::string compoundOf(const std::string& streamName, const std::string& bytes) {
  constexpr std::size_t sector = 512;
  constexpr std::uint32_t endOfChain = 0xFFFFFFFE;
  constexpr std::uint32_t freeSector = 0xFFFFFFFF;
  const bool isMini = bytes.size() < 4096;
  const auto size = static_cast<std::uint32_t>(bytes.size());
  const auto sectors = static_cast<std::uint32_t>((bytes.size() + sector - 1) / sector);
  const std::uint32_t miniSectors = isMini ? (size + 63) / 64 : 0;
  // Sector 0 the FAT, 1 the directory, 2 the mini FAT, from 3 on the bytes.
  std::string table = le32(0xFFFFFFFD) + le32(endOfChain) + le32(endOfChain);
  for (std::uint32_t i = 0; i < sectors; ++i) table += le32(i + 1 == sectors ? endOfChain : 4 + i);
  if (table.size() > sector) throw std::runtime_error("the stream is too long for this builder");
  while (table.size() < sector) table += le32(freeSector);
  std::string miniTable;
  for (std::uint32_t i = 0; i < miniSectors; ++i)
    miniTable += le32(i + 1 == miniSectors ? endOfChain : i + 1);
  while (miniTable.size() < sector) miniTable += le32(freeSector);
  const auto entry = [](const std::string& name, char type, std::uint32_t start,
                        std::uint32_t length) {
    std::string units;
    for (const char c : name) units += std::string{c, '\0'};
    std::string item = units;
    item.resize(64);
    item += le16(static_cast<unsigned>(units.size() + 2)) + std::string{type, '\0'};
    item.resize(116);
    return item + le32(start) + le32(length) + le32(0);
  };
  std::string directory =
      entry("Root Entry", 5, isMini ? 3 : endOfChain, isMini ? miniSectors * 64 : 0) +
      entry(streamName, 2, isMini ? 0 : 3, size);
  directory.resize(sector);
  std::string header = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + std::string(16, '\0') + le16(0x3E) +
                       le16(3) + le16(0xFFFE) + le16(9) + le16(6) + std::string(10, '\0') +
                       le32(1) + le32(1) + le32(0) + le32(4096) + le32(2) + le32(1) +
                       le32(endOfChain) + le32(0) + le32(0);
  while (header.size() < sector) header += le32(freeSector);
  std::string data = bytes;
  data.resize(sectors * sector);
  return header + table + directory + miniTable + data;
}

}  // namespace testSupport

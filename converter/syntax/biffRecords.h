// The records of a BIFF stream (.xls): number, length and data, one behind the other; and text that goes on
// in CONTINUE records.
//
// Read are BIFF5 and BIFF8 alike: what a record means is for those who ask. A record that leads out of the
// stream ends it. The zeros that some writers leave between records and behind the last one come as records
// with the number 0, which nobody asks for.
#ifndef VOK_CONVERTER_SYNTAX_BIFFRECORDS_H
#define VOK_CONVERTER_SYNTAX_BIFFRECORDS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "converter/container/byteStream.h"
#include "converter/container/littleEndian.h"

namespace converter {

namespace biff {
constexpr std::uint16_t formula = 0x0006;
constexpr std::uint16_t endOfFile = 0x000A;
constexpr std::uint16_t date1904 = 0x0022;
constexpr std::uint16_t filePass = 0x002F;
constexpr std::uint16_t continued = 0x003C;
constexpr std::uint16_t codePage = 0x0042;
constexpr std::uint16_t boundSheet = 0x0085;
constexpr std::uint16_t multipleRk = 0x00BD;
constexpr std::uint16_t richString = 0x00D6;
constexpr std::uint16_t extendedFormat = 0x00E0;
constexpr std::uint16_t mergedCells = 0x00E5;
constexpr std::uint16_t sharedStrings = 0x00FC;
constexpr std::uint16_t sharedLabel = 0x00FD;
constexpr std::uint16_t number = 0x0203;
constexpr std::uint16_t label = 0x0204;
constexpr std::uint16_t booleanOrError = 0x0205;
constexpr std::uint16_t formula3 = 0x0206;
constexpr std::uint16_t string = 0x0207;
constexpr std::uint16_t rk = 0x027E;
constexpr std::uint16_t formula4 = 0x0406;
constexpr std::uint16_t format = 0x041E;
constexpr std::uint16_t beginOfFile = 0x0809;
}  // namespace biff

/// The records of a stream, one at a time.
class recordReader {
 public:
  explicit recordReader(byteStream& stream);

  /// Goes to the record at a place of the stream.
  void seek(std::uint64_t place);

  /// Goes to the next record. @return false at the end of the stream
  bool next();

  /// Whether the record after this one has this number.
  bool nextIs(std::uint16_t id);

  std::uint16_t id() const { return id_; }
  std::size_t size() const { return size_; }
  /// The data of this record; valid until the next call of anything else here.
  const unsigned char* data() const { return &window_[dataAt_]; }

  /// Whether the stream, after its last record, is as long as it is said to be: some writers leave out the
  /// record that ends a sheet, and what was cut off must not look like that.
  bool isWhole() const;

 private:
  bool have(std::size_t count);

  byteStream* stream_;
  std::vector<unsigned char> window_;
  std::size_t filled_ = 0;         // bytes of the window
  std::size_t at_ = 0;             // of the next record in the window
  std::uint64_t windowPlace_ = 0;  // of the window in the stream
  std::uint16_t id_ = 0;
  std::size_t size_ = 0;
  std::size_t dataAt_ = 0;
};

/// Reads across the borders between a record and the CONTINUE records behind it.
class continuedReader {
 public:
  /// Begins at the data of the reader's record.
  explicit continuedReader(recordReader& records) : records_(&records) {}

  /// Whether anything is left.
  bool hasMore();

  /// @return false when so many bytes are not left
  bool skip(std::size_t count);
  bool read8(unsigned& value);
  bool read16(unsigned& value);
  bool read32(std::uint32_t& value);

  /// The characters of a BIFF8 string, as UTF-8. FORMAT: where a CONTINUE record cuts the characters it
  /// begins with a flag byte of its own, whose lowest bit tells their width from there on.
  /// @return false when the string is cut
  bool appendCharacters(std::string& text, std::size_t count, bool isWide);

 private:
  std::size_t left() const { return records_->size() - used_; }
  bool advance();

  recordReader* records_;
  std::size_t used_ = 0;  // bytes of the current record
};

}  // namespace converter

#endif

// A table that is written: records are filled in memory and go to the file in blocks.
//
// After every block the header gets the number of records that the file then holds, so whatever happens
// next, it opens with records that are whole. When a block cannot be written, nothing more is; the header
// still tells what is there.
// One object, one thread at a time. Nothing throws but allocation failure.
#ifndef VOK_SUITE_FILE_DBF_DBFTARGET_H
#define VOK_SUITE_FILE_DBF_DBFTARGET_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/vok_file_dbf.h"
#include "suite/file_dbf/dbfText.h"

namespace fileDbf {

/// Where the bytes go: a file, or what a test puts in its place.
class tableOutput {
 public:
  tableOutput() = default;
  tableOutput(const tableOutput&) = delete;
  tableOutput& operator=(const tableOutput&) = delete;
  virtual ~tableOutput() = default;

  /// Writes at a position of the file. @return false when not all bytes could be written
  virtual bool write(std::uint64_t at, const char* bytes, std::size_t size) = 0;
};

/// The fields of a table that can be written, with the lengths that it will have; nothing when it cannot.
std::optional<std::vector<dbfFieldDef>> writableFields(const dbfFieldDef* fields,
                                                       std::uint32_t count);

class tableTarget {
 public:
  static constexpr std::size_t blockSize = std::size_t{256} * 1024;

  /// @param fields    from writableFields
  /// @param codePage  of the table's text, not the system's 0
  tableTarget(std::unique_ptr<tableOutput> output, std::vector<dbfFieldDef> fields,
              unsigned codePage);
  tableTarget(const tableTarget&) = delete;
  tableTarget& operator=(const tableTarget&) = delete;
  ~tableTarget();

  /// True while everything could be written.
  bool isSound() const { return !failed_; }

  bool addRecords(std::int32_t count);
  bool setValue(std::uint32_t field, std::int32_t record, const wchar_t* text);

 private:
  std::vector<char> makeHeader(unsigned char languageDriver) const;
  void fillField(const dbfFieldDef& field, const wchar_t* text, char* to);
  std::uint64_t positionOf(std::uint64_t record) const {
    return headerLength_ + record * recordLength_;
  }
  void finish();
  void flush();
  void writeCount();

  std::unique_ptr<tableOutput> output_;
  std::vector<dbfFieldDef> fields_;
  std::vector<std::size_t> offsets_;  // of the fields in a record
  textField text_;
  std::size_t headerLength_;
  std::size_t recordLength_;
  std::size_t blockRecords_;
  std::vector<char> block_;
  std::vector<char> value_;     // of a record that is in the file already
  std::uint64_t written_ = 0;   // records in the file
  std::uint64_t buffered_ = 0;  // and in memory behind them
  bool failed_ = false;
};

}  // namespace fileDbf

#endif

// DBF files for tests, byte by byte:
//
//     dbfBuilder("NAME C5, DEPTH N8.2").row("A|1.5").row("B|2", '*').bytes()
//
// A field is its name, its letter, its length and, behind a point, its decimals; a `?` at the end makes it
// one that can be null. What a test damages, it changes in the bytes.
#ifndef VOK_TESTS_SUPPORT_DBFBUILDER_H
#define VOK_TESTS_SUPPORT_DBFBUILDER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace testSupport {

class dbfBuilder {
 public:
  /// @param version  the first byte: 03 dBASE III, 8C dBASE 7, 02 dBASE II, 30 Visual FoxPro...
  explicit dbfBuilder(std::string_view fields, unsigned version = 0x03);

  /// Adds a record of values set apart by bars: N and F right-aligned, the others padded on the right.
  dbfBuilder& row(std::string_view values, char mark = ' ');
  /// Adds a record of the fields' bytes as they are, padded on the right.
  dbfBuilder& record(std::string_view bytes, char mark = ' ');
  /// What follows the last descriptor; 0D when not said.
  dbfBuilder& end(std::string_view marks);
  /// What follows the last record; 1A when not said.
  dbfBuilder& tail(std::string_view bytes);

  std::size_t headerLength() const;
  std::size_t recordLength() const;
  std::string bytes() const;

 private:
  struct field {
    std::string name;
    char type = 'C';
    std::size_t length = 0;
    std::size_t decimals = 0;
    bool nullable = false;
  };

  std::string header() const;

  std::vector<field> fields_;
  unsigned version_;
  std::string records_;
  std::size_t count_ = 0;
  std::string end_ = "\x0D";
  std::string tail_ = "\x1A";
};

/// A number in `size` bytes.
std::string littleEndian(std::uint64_t number, std::size_t size);
std::string bigEndian(std::uint64_t number, std::size_t size);

/// The text with the bytes from `at` on replaced.
std::string poked(std::string text, std::size_t at, std::string_view bytes);

}  // namespace testSupport

#endif

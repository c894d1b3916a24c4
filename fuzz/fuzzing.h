// What the fuzz targets share: what a target is, how it cuts its input into choices and parts, where it puts
// files, and how it says that something does not hold.
//
//     std::string fuzzing::petrel(std::string_view bytes) {
//       inputReader input(bytes);
//       const int limit = input.byte();
//       const std::wstring path = writeInput(L"input.tops", input.rest());
//       ...
//       demand(reader->count() <= bytes.size(), "more rows than bytes");
//       return outcomeOf(*reader);
//     }
//
// A target checks what holds for every input. It answers in a few words what became of this one, so that a
// test can say what it expects of an input that was once answered wrongly (tests/fixtures/found.tsv).
//
// The targets are one list (targets.h) in one library, which libFuzzer (libfuzzer_main.cpp), the replayer
// (replay_main.cpp) and the ordinary tests (tests/found_inputs_test.cpp) run.
#ifndef VOK_FUZZ_FUZZING_H
#define VOK_FUZZ_FUZZING_H

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "table_rw/core/tableReader.h"

namespace fuzzing {

/// What does not hold for an input.
class doesNotHold : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

/// Throws doesNotHold with the words `what` when something does not hold.
void demand(bool holds, std::string_view what);

/// Cuts an input from its beginning; behind its end there are zeros and empty parts.
class inputReader {
 public:
  explicit inputReader(std::string_view bytes) : bytes_(bytes) {}

  unsigned byte();
  /// A choice from 0 to `count` - 1, of one byte.
  std::size_t below(std::size_t count) { return byte() % count; }
  template <class Value, std::size_t Count>
  const Value& oneOf(const Value (&values)[Count]) {
    return values[below(Count)];
  }
  bool isAtEnd() const { return bytes_.empty(); }
  /// Up to `size` bytes.
  std::string_view bytes(std::size_t size);
  /// What stands before the next mark FF FF, which no UTF-8 holds; the mark is skipped.
  std::string_view part();
  std::string_view rest() const { return bytes_; }

 private:
  std::string_view bytes_;
};

/// A path in a folder of this process alone, which goes with it.
std::wstring inputPath(const std::wstring& name);

/// Writes a file there. @return its path
std::wstring writeInput(const std::wstring& name, std::string_view bytes);

/// The bytes as wide text, whatever they are.
std::wstring wideText(std::string_view bytes);

/// The outcome of a read: `failed`, a small table as it is, or how many fields, rows and rejected lines there are.
std::string outcomeOf(const tableRW::tableReader& reader);

/// Reads a whole table and demands what holds for tables of every format but those with ragged rows: rows of full
/// width, no more of them than the source has bytes, and the same table from a second read.
/// @param needsFields  a source without fields is read, but isOK answers false then
std::string checkedTable(tableRW::tableReader& reader, std::size_t sourceSize,
                         bool needsFields = false);

}  // namespace fuzzing

#endif

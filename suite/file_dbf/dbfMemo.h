// The memo file beside a table: texts of any length, by the number of the block where they begin.
//
//     .dbt of dBASE III   512-byte blocks, a text up to 1A or the end of the file
//     .dbt of dBASE IV    blocks of the size at byte 20; FF FF 08 00, length with these 8 bytes, text
//     .fpt of FoxPro      blocks of the size at byte 6, big-endian; kind (1 is text), length, text
//
// A text has to lie in the file whole. A block number that leads into the header or out of the file, a
// length that reaches out of it and a block that does not begin as it must are no text: there are no
// links between blocks, so nothing can go round in circles.
// FORMAT: checked against files of each kind.
#ifndef VOK_SUITE_FILE_DBF_DBFMEMO_H
#define VOK_SUITE_FILE_DBF_DBFMEMO_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/files.h"

namespace fileDbf {

class memoFile {
 public:
  /// Looks for the memo file of a table, without regard to the case of its name. A table whose memo file
  /// is missing has no memo texts.
  /// @param version  of the table: its first byte
  memoFile(const std::wstring& tablePath, unsigned version);

  /// Reads the text at a block into `text`. @return false when there is none
  bool read(std::uint64_t block, std::string& text);

  /// Whether a memo file is there, but a text of it could not be read from the disk.
  bool hasFailed() const { return isUnreadable_ || file_.hasFailed(); }

  /// Begins to count anew how much was handed out. WHY it is counted: records that all name one long text
  /// would make a table of any size from a small file. A pass over a sound table hands out each text once;
  /// behind sixteen times the file there is no text any more.
  void beginPass() { handedOut_ = 0; }

 private:
  static constexpr std::uint64_t mostPasses = 16;
  static constexpr std::uint64_t alwaysAllowed = std::uint64_t{1} << 20;

  bool find(std::uint64_t block, std::string& text);
  enum class layout { dbase3, dbase4, foxPro };

  bool openBeside(const std::wstring& tablePath, const wchar_t* extension, layout kind);
  bool readHeader();
  bool readText(std::uint64_t at, std::uint64_t length, std::string& text);
  bool readUpToEndMark(std::uint64_t at, std::string& text);

  platform::binaryFile file_;
  bool isUnreadable_ = false;  // there, but not to be opened
  layout layout_ = layout::dbase3;
  std::uint64_t size_ = 0;
  std::uint64_t blockSize_ = 0;
  std::uint64_t handedOut_ = 0;  // bytes of texts since the pass began
};

}  // namespace fileDbf

#endif

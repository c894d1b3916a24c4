// One XML file being written: a declaration, then elements, through a buffer, in UTF-8.
//
//     part.start("sheet").attribute("name", L"List1").attribute("sheetId", 1).end();
//     part.start("vt:i4").text(L"1").end();
//
// It knows nothing of spreadsheets: the classes of the parts say what stands in them. Names of elements
// and attributes come from the program and are taken as they are.
//
// Failures are remembered and told by `close`: a part whose file was never opened, or that lost a byte, is
// not whole. One object belongs to one thread at a time.
#ifndef VOK_TABLE_RW_WRITERS_XLSX_XMLPART_H
#define VOK_TABLE_RW_WRITERS_XLSX_XMLPART_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "table_rw/text/growingArray.h"
#include "table_rw/writers/xlsx/packageDisk.h"

namespace SimpleXlsx {

class xmlPart {
 public:
  explicit xmlPart(packageDisk& disk) : disk_(disk) {}
  xmlPart(const xmlPart&) = delete;
  xmlPart& operator=(const xmlPart&) = delete;

  /// Creates the file and writes the declaration. ODD: through the narrow functions of the C runtime: a
  /// path that has no bytes in the process's locale cannot be opened.
  /// @return false when the file cannot be created; everything written then is lost, and `close` says so
  bool open(const std::wstring& path);

  /// Begins an element within the one that was begun last and not ended yet.
  xmlPart& start(const char* name);
  /// Adds an attribute to the element that was begun last; nothing may have been written into it yet.
  xmlPart& attribute(const char* name, std::wstring_view value);
  /// A value of the program's own is taken as it is, like the name.
  xmlPart& attribute(const char* name, const char* value);
  xmlPart& attribute(const char* name, std::uint64_t value);
  /// Writes text into the element, escaped.
  xmlPart& text(std::wstring_view text);
  xmlPart& text(std::uint64_t number);
  /// Ends the element that was begun last.
  xmlPart& end();

  /// Writes bytes that are XML already.
  xmlPart& raw(std::string_view bytes);

  /// The fast way for what is written a million times: room for `size` bytes of XML, valid until anything
  /// else is written, and the number of them that were used. Elements begun before must have content.
  char* room(std::size_t size) { return buffer_.room(size); }
  void advance(std::size_t size) {
    buffer_.advance(size);
    if (buffer_.size() >= largestBuffer) flush();
  }

  /// Bytes written so far: where the next one stands in the file.
  std::uint64_t position();
  /// Replaces bytes that were written before.
  void rewrite(std::uint64_t position, std::string_view bytes);

  /// Makes `copy` a second file with the same content at `path`; both go on by themselves.
  void copyTo(xmlPart& copy, const std::wstring& path);

  /// Writes what is left and closes the file. @return false when the file is not whole
  bool close();

 private:
  static constexpr std::size_t largestBuffer = std::size_t{256} * 1024;

  void put(std::string_view bytes);
  void closeStartTag();
  void flush();

  packageDisk& disk_;
  platform::binaryFile file_;
  std::wstring path_;
  tableRW::growingArray<char> buffer_;
  std::uint64_t flushed_ = 0;          // bytes that have left the buffer
  std::vector<const char*> elements_;  // begun and not ended
  bool isInStartTag_ = false;
  bool failed_ = true;  // until the file is open
};

}  // namespace SimpleXlsx

#endif

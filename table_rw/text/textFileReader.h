// Reading text files line by line, for every reader over text.
//
// A line ends at the byte LF (CR LF counts as LF, see textModeFile.h) and is decoded as a whole after
// it was cut, so a line end can never be part of a character. Bytes are taken in chunks of 1,023.
//
// ODD: a byte 0 cuts its chunk: what follows it up to the end of that chunk is lost, the line end
// included, so that the next line is joined on. Files of old loggers are padded with NUL bytes and
// hosts rely on the padding vanishing.
//
// Limits: a line of more than 2^31 - 1 bytes cannot be converted and comes back empty.
// One object belongs to one thread at a time.
#ifndef VOK_TABLE_RW_TEXT_TEXTFILEREADER_H
#define VOK_TABLE_RW_TEXT_TEXTFILEREADER_H

#include <string>

#include "table_rw/text/textEncoding.h"
#include "table_rw/text/textModeFile.h"

namespace tableRW {

/// An open text file and how its bytes are decoded.
struct textFileReader {
  textModeInput file;
  textEncoding encoding = encodingUtf8;
  unsigned codePage =
      0;  ///< the encoding's code page, the system's one resolved when the file opened

  /// Opens a file for reading. @return false when it cannot be opened
  bool open(const std::wstring& path, textEncoding encodingOfFile);
};

/// Reads one line, decodes it and removes one LF and then one CR from its end; nothing else is trimmed.
/// @param line  cleared first, also at the end of the file
/// @return false when nothing more could be read; a read error looks the same, but for
/// reader.file.hasFailed()
bool readTextLine(textFileReader& reader, std::wstring& line);

}  // namespace tableRW

#endif

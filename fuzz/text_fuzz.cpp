// Code pages, lines, splitting and the table's UTF-8 against slow twins.
//
// A page of one byte a character gives for a text what it gives for each of its characters (the tables themselves are
// compared with what Windows answers elsewhere, completely); UTF-8 gives what reference::decodeUtf8 does.
#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "platform/codePages.h"
#include "platform/singleByteEncoder.h"
#include "table_rw/text/splitText.h"
#include "table_rw/text/textConversion.h"
#include "table_rw/text/textFileReader.h"
#include "table_rw/text/utf8.h"
#include "tests/reference/textTwin.h"
#include "tests/reference/utf8.h"
#include "tests/support/targetSystem.h"

namespace {

using fuzzing::demand;

std::wstring decoded(std::string_view bytes, int encoding) {
  return tableRW::decodeText(bytes.data(), static_cast<std::int32_t>(bytes.size()), encoding);
}

std::string encoded(std::wstring_view text, int encoding) {
  return tableRW::encodeText(text.data(), static_cast<std::int32_t>(text.size()), encoding);
}

// A pair of surrogates is one element where an element is a code point.
std::wstring wideOfUnits(const std::u16string& units) {
  std::wstring wide;
  for (const char16_t unit : units) {
    const bool isLow = unit >= 0xDC00 && unit <= 0xDFFF;
    const bool isAfterHigh = !wide.empty() && wide.back() >= 0xD800 && wide.back() <= 0xDBFF;
    if (isLow && isAfterHigh && !testSupport::wideIsUtf16)
      wide.back() =
          static_cast<wchar_t>(0x10000 + (wide.back() - 0xD800) * 0x400 + (unit - 0xDC00));
    else
      wide += static_cast<wchar_t>(unit);
  }
  return wide;
}

std::u16string unitsOf(std::string_view bytes) {
  std::u16string units;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
    units += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) << 8 |
                                   static_cast<unsigned char>(bytes[i + 1]));
  return units;
}

// Wine's converter drops what follows a lead byte whose character passes the end; Windows' own does not.
bool readsBrokenUtf8AsWindows() {
  return decoded("\xF0x", tableRW::encodingUtf8) == wideOfUnits(reference::decodeUtf8("\xF0x"));
}

void checkUtf8(std::string_view bytes) {
  if (!readsBrokenUtf8AsWindows() && !tableRW::isValidUtf8(bytes)) return;
  const std::u16string units = reference::decodeUtf8(std::string(bytes));
  const std::wstring wide = decoded(bytes, tableRW::encodingUtf8);
  demand(wide == wideOfUnits(units), "decodeText of UTF-8");
  const std::string whole = reference::encodeUtf8(units);
  demand(encoded(wide, tableRW::encodingUtf8) == whole, "encodeText of UTF-8");
  // What is broken became U+FFFD and does not come back.
  demand(tableRW::isValidUtf8(bytes) == (whole == bytes), "isValidUtf8");
}

void checkPage(std::string_view bytes, const std::wstring& text, int encoding) {
  std::wstring slow;
  for (const char byte : bytes) slow += decoded({&byte, 1}, encoding);
  demand(decoded(bytes, encoding) == slow, "decodeText of a page");
  std::string slowBytes;
  for (const wchar_t element : text) slowBytes += encoded({&element, 1}, encoding);
  demand(encoded(text, encoding) == slowBytes, "encodeText of a page");
  platform::singleByteEncoder encoder(tableRW::codePageOf(encoding));
  std::string quick(text.size() * platform::singleByteEncoder::mostBytes, '\0');
  const platform::encodedText end = encoder.encode(text, quick.data());
  quick.resize(static_cast<std::size_t>(end.end - quick.data()));
  demand(quick == slowBytes, "singleByteEncoder");
}

std::size_t checkLines(std::string_view bytes, int encoding) {
  tableRW::textFileReader reader;
  demand(reader.open(fuzzing::writeInput(L"input.txt", bytes), encoding), "cannot be opened");
  reference::textStream stream(bytes);
  std::wstring line;
  std::wstring expected;
  std::size_t lines = 0;
  for (;; ++lines) {
    const bool isRead = readTextLine(reader, line);
    demand(isRead == reference::readTextLine(stream, encoding, expected), "the number of lines");
    demand(line == expected, "a line");
    demand(reader.file.atEnd() == stream.feof(), "the end of the file");
    if (!isRead) return lines;
  }
}

void checkPieces(const std::wstring& text, const std::wstring& delimiter) {
  for (const bool skipsEmpty : {false, true})
    demand(tableRW::splitText(text, delimiter, skipsEmpty) ==
               reference::splitText(text, delimiter, skipsEmpty),
           "splitText");
  demand(tableRW::trimText(text) == reference::trimText(text), "trimText");
}

}  // namespace

std::string fuzzing::text(std::string_view bytes) {
  constexpr int firstPage = 7;
  constexpr int lastPage = 17;
  inputReader input(bytes);
  const int encoding = static_cast<int>(input.below(tableRW::textEncodingCount));
  const std::wstring delimiter = wideText(input.bytes(input.below(4)));
  const std::string_view rest = input.rest();
  const std::u16string rawUnits = unitsOf(rest);
  const std::wstring units = wideOfUnits(rawUnits);
  checkUtf8(rest);
  demand(encoded(units, tableRW::encodingUtf8) == reference::encodeUtf8(rawUnits),
         "encodeText of surrogates");
  for (int page = firstPage; page <= lastPage; ++page)
    if (encoding == page || encoding < firstPage) checkPage(rest, units, page);
  demand(tableRW::wideFromUtf8(tableRW::utf8FromWide(units)) == units, "the table's UTF-8");
  checkPieces(wideText(rest), delimiter);
  return std::to_string(checkLines(rest, encoding)) + " lines";
}

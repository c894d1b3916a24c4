#include "table_rw/readers/csvBlockParser.h"

#include <bit>
#include <string>
#include <string_view>

#include "table_rw/text/utf8.h"

namespace tableRW {
namespace {

static_assert(textStep <= textModeInput::readAhead && textStep <= valueTable::writeAhead);

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// ASCII characters that the byte masks can stand for; those of a line end cannot.
bool isPlainMark(const std::wstring& text) {
  return text.size() == 1 && text[0] > 0 && text[0] < 0x80 && text[0] != L'\n' && text[0] != L'\r';
}

constexpr std::uint64_t below(unsigned bit) { return (std::uint64_t{1} << bit) - 1; }

}  // namespace

// One call of addRecords: where it stands in the bytes that lie ready, and what is known of the line that
// is being scanned. Offsets count from the first byte that lies ready.
class csvBlockParser::scan {
 public:
  scan(const csvBlockParser& parser, textModeInput& file, std::uint64_t number,
       std::size_t fieldCount, valueTable& rows, std::vector<std::uint64_t>& errors)
      : parser_(parser),
        file_(file),
        number_(number),
        fieldCount_(fieldCount),
        rows_(rows),
        errors_(errors) {}

  std::uint64_t run() {
    bool lastBlock = false;
    while (scanReady(lastBlock)) {
      if (lastBlock) {
        finishLastLine();
        return number_;
      }
      rebase();
      if (file_.buffered().size() > parser_.longestLine_) return number_;
      lastBlock = !file_.fillMore();
    }
    file_.skip(lineStart_);
    return number_;
  }

 private:
  struct lineState {
    bool doubtful = false;  // needs a closer look: a NUL, or perhaps broken UTF-8
    bool quoted = false;
    bool nonAscii = false;
  };

  // Scans whole blocks of 64 bytes, and the rest too when it is the last. @return false at a line that
  // has to be read the literal way; lineStart_ is there then
  bool scanReady(bool lastBlock) {
    ready_ = file_.buffered();
    while (scanned_ < ready_.size()) {
      const std::size_t left = ready_.size() - scanned_;
      if (left < maskedBytes && !lastBlock) return true;
      if (!scanBlock(left < maskedBytes ? below(static_cast<unsigned>(left)) : ~std::uint64_t{0}))
        return false;
      scanned_ += left < maskedBytes ? left : maskedBytes;
    }
    return true;
  }

  bool scanBlock(std::uint64_t valid) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(ready_.data()) + scanned_;
    textMasks masks = findMarks(bytes, parser_.marks_);
    masks.nonAscii &= valid;
    const std::uint64_t doubts = (masks.nuls & valid) | doubtfulBytes(bytes, masks.nonAscii, valid);
    const std::uint64_t quotes = masks.quotes & valid;
    std::uint64_t delimiters = masks.delimiters & valid;
    std::uint64_t lineEnds = masks.lineEnds & valid;
    reserveDelimiters();
    std::uint64_t ofLine = ~std::uint64_t{0};  // bits from the line's start on
    while (lineEnds != 0) {
      const auto bit = static_cast<unsigned>(std::countr_zero(lineEnds));
      const std::uint64_t upTo = lineEnds ^ (lineEnds - 1);  // through the line end
      addDelimiters(delimiters & upTo);
      note(ofLine & upTo, doubts, quotes, masks.nonAscii);
      if (!endLine(scanned_ + bit)) return false;
      delimiters &= ~upTo;
      ofLine = ~upTo;
      lineEnds &= lineEnds - 1;
    }
    addDelimiters(delimiters);
    note(ofLine, doubts, quotes, masks.nonAscii);
    return true;
  }

  // Bytes that may be no character of the code page; never too few, perhaps too many.
  std::uint64_t doubtfulBytes(const unsigned char* bytes, std::uint64_t nonAscii,
                              std::uint64_t valid) {
    if (parser_.kind_ == textKind::singleByte) return 0;
    if (parser_.kind_ == textKind::ascii) return nonAscii;
    if ((nonAscii | expectedNext_) == 0 && !doubtNext_) return 0;
    const utf8Masks kinds = findUtf8Kinds(bytes);
    const std::uint64_t two = kinds.leadsOfTwo & valid;
    const std::uint64_t three = kinds.leadsOfThree & valid;
    const std::uint64_t continuations = kinds.continuations & valid;
    const std::uint64_t expected = expectedNext_ | ((two | three) << 1) | (three << 2);
    expectedNext_ = ((two | three) >> 63) | (three >> 62);
    const bool sound = expected == continuations && nonAscii == (two | three | continuations);
    // WHY the next block too: a character that breaks off here may reach into it.
    const bool doubtful = !sound || doubtNext_;
    doubtNext_ = !sound;
    return doubtful ? ~std::uint64_t{0} : 0;
  }

  void note(std::uint64_t ofLine, std::uint64_t doubts, std::uint64_t quotes,
            std::uint64_t nonAscii) {
    line_.doubtful |= (doubts & ofLine) != 0;
    line_.quoted |= (quotes & ofLine) != 0;
    line_.nonAscii |= (nonAscii & ofLine) != 0;
  }

  void reserveDelimiters() {
    if (delimiters_.size() < delimiterCount_ + maskedBytes)
      delimiters_.resize(2 * delimiters_.size() + maskedBytes);
  }

  void addDelimiters(std::uint64_t mask) {
    std::uint32_t* to = delimiters_.data() + delimiterCount_;
    const auto base = static_cast<std::uint32_t>(scanned_);
    for (; mask != 0; mask &= mask - 1)
      *to++ = base + static_cast<std::uint32_t>(std::countr_zero(mask));
    delimiterCount_ = static_cast<std::size_t>(to - delimiters_.data());
  }

  // Takes the line that ends before the byte at `end`. @return false when it is not for this way
  bool endLine(std::size_t end) {
    if (line_.doubtful && !isSound(ready_.substr(lineStart_, end - lineStart_))) return false;
    if (number_ >= parser_.dataPosition_) addRecord(end);
    ++number_;
    lineStart_ = end + 1;
    delimiterCount_ = 0;
    line_ = lineState();
    return true;
  }

  bool isSound(std::string_view line) const {
    if (line.find('\0') != std::string_view::npos) return false;
    return parser_.kind_ == textKind::utf8 ? isValidUtf8(line) : !line_.nonAscii;
  }

  void addRecord(std::size_t end) {
    const char* const begin = ready_.data() + lineStart_;
    const char* stop = ready_.data() + end;
    if (stop != begin && stop[-1] == '\r') --stop;
    if (line_.quoted)
      addQuoted(begin, stop);
    else
      addPlain(begin, stop);
  }

  void addPlain(const char* begin, const char* end) {
    const std::size_t values = delimiterCount_ + 1;
    if (static_cast<std::size_t>(end - begin) == delimiterCount_) return;  // nothing but delimiters
    if (values != fieldCount_) {
      errors_.push_back(number_);
      return;
    }
    const char* next = begin;
    const char* const bytes = ready_.data();
    const std::uint32_t* const delimiters = delimiters_.data();
    addRow(values, begin, end, [=](std::size_t i) mutable {
      const char* const stop = i + 1 == values ? end : bytes + delimiters[i];
      const piece value = {next, stop};
      next = stop + 1;
      return value;
    });
  }

  void addQuoted(const char* begin, const char* end) {
    splitQuoted(begin, end);
    bool isEmpty = true;
    for (const piece& value : pieces_) isEmpty = isEmpty && value.begin == value.end;
    if (isEmpty) return;
    if (pieces_.size() != fieldCount_) {
      errors_.push_back(number_);
      return;
    }
    const piece* const values = pieces_.data();
    addRow(pieces_.size(), begin, end, [=](std::size_t i) { return values[i]; });
  }

  // The literal way's rules for a line that holds a quote. Joined pieces are neighbours in the line, so a
  // joined value is a longer piece.
  void splitQuoted(const char* begin, const char* end) {
    const char quote = static_cast<char>(parser_.marks_.quote);
    const bool join = delimiterCount_ + 1 != fieldCount_;
    bool insideQuotes = false;
    pieces_.clear();
    for (std::size_t i = 0; i <= delimiterCount_; ++i) {
      const char* const stop = i == delimiterCount_ ? end : ready_.data() + delimiters_[i];
      const bool empty = begin == stop;
      const bool ownValue = !join || empty || (*begin == quote && stop[-1] == quote);
      if (!ownValue && insideQuotes) {
        pieces_.back().end = stop;
        insideQuotes = stop[-1] != quote;
      } else {
        pieces_.push_back({begin, stop});
        if (!ownValue) insideQuotes = *begin == quote;
      }
      begin = stop + 1;
    }
    for (piece& value : pieces_) {
      if (value.begin != value.end && *value.begin == quote) ++value.begin;
      if (value.begin != value.end && value.end[-1] == quote) --value.end;
    }
  }

  template <class PieceOf>
  void addRow(std::size_t values, const char* begin, const char* end, PieceOf pieceOf) {
    const auto size = static_cast<std::size_t>(end - begin);
    if (parser_.kind_ == textKind::singleByte && line_.nonAscii) {
      rows_.addRow(values, size * singleByteDecoder::mostBytes,
                   [this, pieceOf](std::size_t i, char* to) mutable {
                     const piece value = trimmed(pieceOf(i));
                     return parser_.decoder_.convert(value.begin, sizeOf(value), to);
                   });
    } else {
      rows_.addRow(values, size, [pieceOf](std::size_t i, char* to) mutable {
        const piece value = trimmed(pieceOf(i));
        return copyText(value.begin, sizeOf(value), to);
      });
    }
  }

  static std::size_t sizeOf(piece value) {
    return static_cast<std::size_t>(value.end - value.begin);
  }

  static piece trimmed(piece value) {
    while (value.begin != value.end && isBlank(*value.begin)) ++value.begin;
    while (value.begin != value.end && isBlank(value.end[-1])) --value.end;
    return value;
  }

  // Forgets the lines that were taken, so that offsets count from the open line's start.
  void rebase() {
    file_.skip(lineStart_);
    scanned_ -= lineStart_;
    for (std::size_t i = 0; i < delimiterCount_; ++i)
      delimiters_[i] -= static_cast<std::uint32_t>(lineStart_);
    lineStart_ = 0;
  }

  // The file's last line, when it has no line end.
  void finishLastLine() {
    if (lineStart_ < ready_.size()) {
      if (expectedNext_ != 0) line_.doubtful = true;
      if (!endLine(ready_.size())) {
        file_.skip(lineStart_);
        return;
      }
      file_.skip(ready_.size());
      char nothing = 0;
      file_.getChunk(&nothing, 1);  // meets the end of the file, as reading the line would have
      return;
    }
    file_.skip(lineStart_);
  }

  const csvBlockParser& parser_;
  textModeInput& file_;
  std::uint64_t number_;
  std::size_t fieldCount_;
  valueTable& rows_;
  std::vector<std::uint64_t>& errors_;

  std::string_view ready_;
  std::size_t scanned_ = 0;
  std::size_t lineStart_ = 0;
  lineState line_;
  std::vector<std::uint32_t> delimiters_;
  std::size_t delimiterCount_ = 0;
  std::vector<piece> pieces_;
  std::uint64_t expectedNext_ = 0;  // continuation bytes that the next block has to begin with
  bool doubtNext_ = false;
};

csvBlockParser::csvBlockParser(const tableReaderOptions& options, unsigned codePage,
                               std::size_t longestLine)
    : dataPosition_(options.data_position), longestLine_(longestLine) {
  if (!isPlainMark(options.delimiter)) return;
  if (!options.quote.empty() && !isPlainMark(options.quote)) return;
  if (options.quote == options.delimiter) return;
  marks_.delimiter = static_cast<unsigned char>(options.delimiter[0]);
  marks_.hasQuote = !options.quote.empty();
  if (marks_.hasQuote) marks_.quote = static_cast<unsigned char>(options.quote[0]);
  if (codePage == 65001) {
    kind_ = textKind::utf8;
  } else if (codePage == 20127) {
    kind_ = textKind::ascii;
  } else if (decoder_.make(codePage)) {
    kind_ = textKind::singleByte;
  }
}

std::uint64_t csvBlockParser::addRecords(textModeInput& file, std::uint64_t number,
                                         std::size_t fieldCount, valueTable& rows,
                                         std::vector<std::uint64_t>& errors) {
  if (kind_ == textKind::none) return number;
  return scan(*this, file, number, fieldCount, rows, errors).run();
}

}  // namespace tableRW

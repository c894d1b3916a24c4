// Raw deflate, block by block, over zlib: bytes go in, compressed bytes come out in pieces.
//
// One object belongs to one thread at a time.
#ifndef VOK_TABLE_RW_WRITERS_XLSX_DEFLATESTREAM_H
#define VOK_TABLE_RW_WRITERS_XLSX_DEFLATESTREAM_H

#include <zlib.h>

#include <cstddef>
#include <string_view>
#include <vector>

namespace SimpleXlsx {

class deflateStream {
 public:
  /// @throws std::bad_alloc when zlib gets no memory
  deflateStream();
  deflateStream(const deflateStream&) = delete;
  deflateStream& operator=(const deflateStream&) = delete;
  ~deflateStream();

  /// Compresses more bytes and hands every piece that is ready to `receive`, a callable that takes a
  /// std::string_view and answers whether to go on.
  /// @param isLast  nothing follows: everything is handed over
  /// @return false when `receive` has answered so
  template <class Receiver>
  bool compress(std::string_view bytes, bool isLast, Receiver receive) {
    begin(bytes);
    while (true) {
      const std::string_view piece = next(isLast);
      if (!piece.empty() && !receive(piece)) return false;
      if (piece.size() < output_.size()) return true;
    }
  }

 private:
  void begin(std::string_view bytes);
  std::string_view next(bool isLast);

  z_stream stream_{};
  std::vector<char> output_;
};

}  // namespace SimpleXlsx

#endif
